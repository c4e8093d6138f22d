#include "persistence/archive/test_records.h"

namespace kestrel::testing {

using boost::serialization::base_object;
using boost::serialization::make_nvp;

template <class Archive>
void Cell::serialize(Archive& archive, unsigned version) {
  read_version = version;
  archive& make_nvp("value_", value);
}

template <class Archive>
void Shape::serialize(Archive& archive, unsigned /*version*/) {
  archive& make_nvp("name_", name);
}

template <class Archive>
void Square::serialize(Archive& archive, unsigned /*version*/) {
  archive& make_nvp("Shape", base_object<Shape>(*this)) & make_nvp("side_", side) & make_nvp("next_", next);
}

template <class Archive>
void Disc::serialize(Archive& archive, unsigned /*version*/) {
  archive& make_nvp("Shape", base_object<Shape>(*this)) & make_nvp("radius_", radius);
}

template <class Archive>
void Stranger::serialize(Archive& archive, unsigned /*version*/) {
  archive& make_nvp("number_", number);
}

template <class Archive>
void Mixed::serialize(Archive& archive, unsigned /*version*/) {
  archive& make_nvp("numbers_", numbers) & make_nvp("cells_", cells) & make_nvp("texts_", texts);
  archive& make_nvp("cell_map_", cell_map) & make_nvp("set_", set) & make_nvp("hash_set_", hash_set);
  archive& make_nvp("flags_", flags) & make_nvp("bits_", bits) & make_nvp("boost_optional_", boost_optional);
  archive& make_nvp("optional_", optional) & make_nvp("variant_", variant) & make_nvp("matrix_", matrix);
  archive& make_nvp("vector_", vector) & make_nvp("indices_", indices) & make_nvp("shape_", shape);
  archive& make_nvp("same_shape_", same_shape) & make_nvp("boost_disc_", boost_disc) & make_nvp("owned_", owned);
}

Mixed MakeMixed() {
  Mixed mixed;
  mixed.numbers = {0.5, -1.0};
  mixed.cells = {Cell{0, 1.0}, Cell{0, 2.0}, Cell{0, 3.0}};
  mixed.texts = {L"one", L"\u00e4"};
  mixed.cell_map = {{"a", Cell{0, 4.0}}, {"b", Cell{0, 5.0}}};
  mixed.set = {1, 2};
  mixed.hash_set = {7};
  mixed.flags = {true, false, true};
  mixed.bits = boost::dynamic_bitset<>(70, 5);
  mixed.boost_optional = Cell{0, 6.0};
  mixed.optional = 2.5;
  mixed.variant = Cell{0, 7.0};
  mixed.matrix = (math::Matrix(2, 3) << 1, 2, 3, 4, 5, 6).finished();
  mixed.vector = math::Vector::LinSpaced(2, 1.0, 2.0);
  mixed.indices = (math::IndexVector(2) << 3, 100000).finished();
  auto square = std::make_shared<Square>();
  square->name = "square";
  square->side = 2.0;
  square->next = std::make_shared<Disc>();
  mixed.shape = square;
  mixed.same_shape = square;
  mixed.boost_disc = boost::make_shared<Disc>();
  mixed.owned = std::make_unique<Stranger>();
  return mixed;
}

}  // namespace kestrel::testing

KESTREL_INSTANTIATE_SERIALIZE(kestrel::testing::Cell)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::testing::Shape)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::testing::Square)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::testing::Disc)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::testing::Stranger)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::testing::Mixed)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::testing::Square)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::testing::Disc)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::testing::Stranger)
