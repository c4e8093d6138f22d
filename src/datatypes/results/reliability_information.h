#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/results/systems_information.h"

namespace kestrel::algorithm::datatypes {

/// What a reliability analysis leaves. The library carries these records through files.
class AlgorithmInfo::ReliabilityInformation : public AlgorithmInfo::SystemsInformation {
 public:
  class ReliabilityDesignSet;
  class ReliabilityDesignSetInfo;
  using DesignSetInfos = std::map<std::wstring, std::shared_ptr<ReliabilityDesignSetInfo>>;

  std::unique_ptr<DetailedInformationBase> Clone() const override;

  std::map<std::wstring, double> reli_total_infos_;
  std::map<std::wstring, double> stndrd_reli_infos_;
  std::vector<std::map<std::wstring, double>> reli_iteration_infos_;  ///< one per iteration
  std::map<std::uint64_t, std::vector<CHierachicalId>> design_iteration_map_;
  DesignSetInfos reli_design_set_infos_;
  std::map<std::wstring, std::int32_t> design_type_map_;
  std::wstring reli_method_name_;
  bool is_converged_ = false;
  bool is_form_converged_ = false;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// The designs of one step of a reliability analysis.
class AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet
    : public AlgorithmInfo::SystemsInformation::DesignSet {
 public:
  double probability_of_failure_ = 0.0;
  double standard_deviation_error_ = 0.0;
  double reliability_index_ = 0.0;
  std::uint64_t num_total_dir_ = 0;
  std::uint64_t num_done_dir_ = 0;
  std::vector<double> arsm_approx_errors_;
  std::map<std::wstring, double> input_importance_values_;  ///< by parameter

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// The result of a reliability analysis on a set of designs.
class AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo {
 public:
  std::vector<CHierachicalId> safe_domain_designs_;
  std::vector<CHierachicalId> unsafe_domain_designs_;
  std::vector<std::wstring> failed_strings_;
  std::vector<CHierachicalId> unsuccessful_designs_;
  std::vector<CHierachicalId> total_designs_;
  CHierachicalId most_probable_failure_point_id_;
  double probability_of_failure_ = 0.0;
  double standard_deviation_error_ = 0.0;
  double reliability_index_ = 0.0;
  double probability_of_failure_form_ = 0.0;
  double reliability_index_form_ = 0.0;
  std::wstring method_name_;
  double error_r2_ = 0.0;
  double error_loo_ = 0.0;
  std::map<std::wstring, std::vector<CHierachicalId>> arsm_ds_map_;
  bool has_valid_data_ = true;  ///< files that do not say so hold valid data

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation, 6)
BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet, 1)
BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo, 6)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation,
                     boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet,
                     boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo,
                     boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet")
BOOST_CLASS_EXPORT_KEY2(
    kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo,
    "kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo")
