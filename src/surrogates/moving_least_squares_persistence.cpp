#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/matrix_equality.h"
#include "surrogates/moving_least_squares.h"

// How MovingLeastSquares is compared, copied, stored and read. The virtual functions here make sure that a program
// which has the class also has this file, and with it the registration under which the class is read through its base.

namespace kestrel::math::metamodel {
namespace {

/// The first class version whose record is settings and tables, as it is now.
constexpr unsigned kOldestVersion = 3;

}  // namespace

bool MovingLeastSquares::operator==(const SurrogateBase& other) const {
  const auto* same_kind = dynamic_cast<const MovingLeastSquares*>(&other);
  return same_kind != nullptr && SurrogateBase::operator==(other) && settings_ == same_kind->settings_ &&
         SameEntries(coefficient_matrix_, same_kind->coefficient_matrix_) &&
         SameEntries(values_trans_, same_kind->values_trans_);
}

std::unique_ptr<SurrogateBase> MovingLeastSquares::Clone() const { return std::make_unique<MovingLeastSquares>(*this); }

void MovingLeastSquares::RestoreDerivedData() {
  search_.reset();
  plain_model_.reset();
  distances_.reset();
}

void MovingLeastSquares::RequireTablesFit() const {
  if (need_build_) return;
  const Index num_points = points_trans_reduced_.rows();
  const bool with_basis = settings_.GetOrder() > 0;
  const auto num_terms = static_cast<std::uint64_t>(coefficient_matrix_.cols());
  const bool basis_fits = with_basis ? coefficient_matrix_.rows() == num_points && num_terms == GetNumberCoefficients()
                                     : coefficient_matrix_.size() == 0;
  persistence::RequireStored(values_trans_.size() == num_points && basis_fits &&
                                 GetNumberCoefficients() <= static_cast<std::uint64_t>(num_points),
                             L"Stored moving least squares: basis or values do not match the samples.");
}

template <class Archive>
void MovingLeastSquares::serialize(Archive& archive, const unsigned int version) {
  using boost::serialization::make_nvp;
  persistence::RequireStored(version >= kOldestVersion,
                             L"Stored moving least squares: this class version can not be read.");
  archive& make_nvp("SurrogateBase", boost::serialization::base_object<SurrogateBase>(*this));
  archive& make_nvp("coefficient_matrix_", coefficient_matrix_);
  archive& make_nvp("settings_", settings_);
  archive& make_nvp("values_trans_", values_trans_);
  if constexpr (Archive::is_loading::value) {
    FinishLoading();
    RequireTablesFit();
  }
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::MovingLeastSquares)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::MovingLeastSquares)
