#include "surrogates/kernels/kernel_nodal_influence.h"

#include <algorithm>
#include <stdexcept>

#include "persistence/archive/archives.h"

namespace kestrel::math::metamodel {

KernelNodalInflExp::KernelNodalInflExp(const VectorIn& parameters) { SetParameters(parameters); }

void KernelNodalInflExp::ReplaceDistances(Eigen::Ref<Matrix> squared_distances) const {
  RequireParameters(parameters_);
  if (squared_distances.size() == 0) return;
  const auto count = static_cast<double>(squared_distances.rows());
  const auto k = static_cast<Index>(std::min(count, std::floor(parameters_[0])));
  Vector sorted(squared_distances.rows());
  for (auto column : squared_distances.colwise()) {
    sorted = column;
    std::nth_element(sorted.data(), sorted.data() + (k - 1), sorted.data() + sorted.size());
    column = column.array() * helper_term_ / sorted[k - 1];
    ReplaceExponents(column);
  }
}

std::unique_ptr<KernelBase> KernelNodalInflExp::clone() const {
  if (parameters_.size() == 0) return std::make_unique<KernelNodalInflExp>();
  return std::make_unique<KernelNodalInflExp>(parameters_);
}

void KernelNodalInflExp::SetParameters(const VectorIn& parameters) {
  RequireParameters(parameters);
  if (!(parameters[0] >= 1.0)) throw std::domain_error("KernelNodalInflExp: parameter must be greater or equal one");
  KernelBase::SetParameters(parameters);
  helper_term_ = -6.907755278982138;  // ln(0.001)
}

template <class Archive>
void KernelNodalInfl::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("KernelBase", boost::serialization::base_object<KernelBase>(*this));
}

template <class Archive>
void KernelNodalInflExp::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("KernelNodalInfl", boost::serialization::base_object<KernelNodalInfl>(*this));
  archive& make_nvp("helper_term_", helper_term_);
  if constexpr (Archive::is_loading::value) {
    if (parameters_.size() > 0) static_cast<void>(KernelNodalInflExp(parameters_));  // by the checks of new parameters
  }
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelNodalInfl)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelNodalInfl)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelNodalInflExp)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelNodalInflExp)
