#include <algorithm>
#include <boost/archive/archive_exception.hpp>
#include <boost/numeric/ublas/storage.hpp>
#include <boost/serialization/complex.hpp>
#include <complex>
#include <vector>

#include "persistence/archive/archives.h"
#include "values/variant_signal.h"

namespace boost::serialization {

/// Loads the cells of an uBLAS container. The bytes are those that uBLAS writes; its own loading takes memory for as
/// many cells as the file promises, while here the memory grows with the cells that arrive.
template <class T, class Allocator>
void serialize(kestrel::portable_binary_iarchive& archive,
               boost::numeric::ublas::unbounded_array<std::complex<T>, Allocator>& cells, unsigned /*version*/) {
  archive.check_annotation("size");
  const std::size_t count = archive.LoadCount(2 * sizeof(T));
  std::vector<std::complex<T>> read;
  for (std::size_t i = 0; i < count; ++i) archive >> make_nvp("item", read.emplace_back());
  cells.resize(count);
  std::copy(read.begin(), read.end(), cells.begin());
}

}  // namespace boost::serialization

namespace kestrel::math {
namespace {

using boost::serialization::make_nvp;

constexpr unsigned int kVersion = 6;

void RequireStoredValue(bool holds) {
  using boost::archive::archive_exception;
  if (!holds) throw archive_exception(archive_exception::input_stream_error);
}

/// The number of cells is the product of the sizes, which a file may have chosen to overflow.
template <class Matrix>
bool SizesFitCells(const Matrix& values) {
  const std::size_t cells = values.data().size();
  if (values.size1() == 0 || values.size2() == 0) return cells == 0;
  return cells / values.size1() == values.size2() && cells % values.size1() == 0;
}

}  // namespace

template <class T>
template <class Archive>
void Variant<T>::serialize(Archive& archive, unsigned int version) {
  using boost::archive::archive_exception;
  if (version != kVersion) throw archive_exception(archive_exception::unsupported_class_version, "Variant");
  int kind = GetKind();
  bool is_complex = complex_;
  bool is_ordered = ordered_;
  archive& make_nvp("kind_", kind);
  archive& make_nvp("complex_", is_complex);
  archive& make_nvp("ordered_", is_ordered);
  if constexpr (Archive::is_loading::value) {
    RequireStoredValue(kind >= UNINITIALIZED && kind <= XYDATA);
    Clear();
    SetKind(static_cast<EKind>(kind));
  }
  SerializeContent(archive);
  if constexpr (Archive::is_loading::value) {
    RequireConsistentContent();
    complex_ = is_complex;
    ordered_ = is_ordered;
  }
}

template <class T>
template <class Archive>
void Variant<T>::SerializeContent(Archive& archive) {
  switch (GetKind()) {
    case BOOLEAN: archive& make_nvp("boolean_", BooleanRef()); break;
    case SCALAR: archive& make_nvp("scalar_", ScalarRef()); break;
    case VECTOR: archive& make_nvp("vector_", VectorRef()); break;
    case MATRIX: archive& make_nvp("matrix_", MatrixRef()); break;
    case SIGNAL:
    case XYDATA:
      archive& make_nvp("timeline_", SignalVectorRef());
      archive& make_nvp("matrix_", SignalMatrixRef());
      break;
    case UNINITIALIZED: break;
  }
}

template <class T>
void Variant<T>::RequireConsistentContent() const {
  if (GetKind() < MATRIX) return;
  RequireStoredValue(SizesFitCells(GetMatrix()));
  if (GetKind() == MATRIX) return;
  const VectorType& timeline = GetTimeline();
  RequireStoredValue(timeline.size() == GetMatrix().size2());
  const auto is_real = [](const Complex& time) { return time.imag() == 0; };
  RequireStoredValue(std::all_of(timeline.begin(), timeline.end(), is_real));
}

template void Variant<double>::RequireConsistentContent() const;

}  // namespace kestrel::math

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::Variant<double>)
