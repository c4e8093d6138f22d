#include "datatypes/results/optimization_information.h"

#include "persistence/archive/archives.h"

namespace kestrel::algorithm::datatypes {

using boost::serialization::base_object;
using boost::serialization::make_nvp;

std::unique_ptr<AlgorithmInfo::DetailedInformationBase> AlgorithmInfo::OptimizationInformation::Clone() const {
  return std::make_unique<OptimizationInformation>(*this);
}

template <class Archive>
void AlgorithmInfo::OptimizationInformation::serialize(Archive& archive, unsigned int) {
  archive& make_nvp("SystemsInformation", base_object<SystemsInformation>(*this));
  archive& make_nvp("best_design_ids_", best_design_ids_);
}

template <class Archive>
void AlgorithmInfo::OptimizationInformation::OptimizationDesignSet::serialize(Archive& archive, unsigned int) {
  archive& make_nvp("DesignSet", base_object<DesignSet>(*this));
  archive& make_nvp("lower_upper_bounds_map_", lower_upper_bounds_map_);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation)
KESTREL_INSTANTIATE_SERIALIZE(
    kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation::OptimizationDesignSet)
