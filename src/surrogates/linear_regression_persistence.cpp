#include "persistence/archive/require_stored.h"
#include "surrogates/linear_regression.h"

// How LinearRegression is compared, copied, stored and read. The virtual functions here make sure that a program which
// has the class also has this file, and with it the registration under which the class is read through its base.

namespace kestrel::math::metamodel {

bool LinearRegression::operator==(const SurrogateBase& other) const {
  const auto* same_kind = dynamic_cast<const LinearRegression*>(&other);
  return same_kind != nullptr && SurrogateBase::operator==(other) &&
         coefficients_.size() == same_kind->coefficients_.size() &&
         (coefficients_.array() == same_kind->coefficients_.array()).all() && settings_ == same_kind->settings_;
}

std::unique_ptr<SurrogateBase> LinearRegression::Clone() const { return std::make_unique<LinearRegression>(*this); }

void LinearRegression::RestoreDerivedData() {
  DropBasis();
  coefficient_matrix_ = BuildCoefficientMatrix(TransformSupportPoints(), settings_.GetMainTermSelection(),
                                               settings_.GetInteractionSelection());
}

}  // namespace kestrel::math::metamodel
