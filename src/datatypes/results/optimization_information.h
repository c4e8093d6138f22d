#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/results/systems_information.h"

namespace kestrel::algorithm::datatypes {

/// What an optimization leaves.
class AlgorithmInfo::OptimizationInformation : public AlgorithmInfo::SystemsInformation {
 public:
  class OptimizationDesignSet;

  std::unique_ptr<DetailedInformationBase> Clone() const override;

  std::vector<CHierachicalId> best_design_ids_;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// The designs of one step of an optimization.
class AlgorithmInfo::OptimizationInformation::OptimizationDesignSet
    : public AlgorithmInfo::SystemsInformation::DesignSet {
 public:
  std::map<std::wstring, std::pair<double, double>> lower_upper_bounds_map_;  ///< by parameter

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation, 1)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation,
                     boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation::OptimizationDesignSet,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation::OptimizationDesignSet")
