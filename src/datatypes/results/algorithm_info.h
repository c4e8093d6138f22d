#pragma once

#include <boost/serialization/version.hpp>
#include <boost/shared_ptr.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "datatypes/design_enums.h"
#include "datatypes/hierarchical_id.h"
#include "datatypes/results/signal_info.h"
#include "datatypes/type_names.h"
#include "persistence/archive/persistent.h"

namespace kestrel::zor {
class ZORCombinedSettings;
}

namespace kestrel::algorithm::datatypes {

class DesignManager;
class ParameterManager;

/// What an algorithm leaves beside its designs: its kind, the sets of designs of each step, and the details that only
/// its kind has. A copy shares the details.
class AlgorithmInfo {
 public:
  using eKind = enums::SupportedAlgorithms::eKind;
  using eSamplingType = enums::DOE::eType;

  class DetailedInformationBase;
  class ZORInformation;
  class SystemsInformation;
  class OptimizationInformation;
  class ReliabilityInformation;

  AlgorithmInfo() = default;
  /// The metamodel algorithm comes with an empty `ZORInformation`, every other kind without details.
  explicit AlgorithmInfo(eKind kind);

  eKind GetKind() const { return algo_type_; }
  const boost::shared_ptr<DetailedInformationBase>& GetDetailedInfo() const { return detailed_info_; }
  void SetDetailedInfo(boost::shared_ptr<DetailedInformationBase> info) { detailed_info_ = std::move(info); }

  /// Whether the details are those of a metamodel run; a null pointer if they are not.
  bool IsZORInfo() const { return GetZORInfo() != nullptr; }
  const ZORInformation* GetZORInfo() const;
  ZORInformation* GetZORInfo();

  /// Stores the settings of a metamodel run. Raises utils::runtime_error "ZOR information missing.".
  void SetCombinedZORSettings(const zor::ZORCombinedSettings& settings);

  /// How the designs were sampled; the first type without details, where setting it does nothing.
  eSamplingType GetSamplingType() const;
  void SetSamplingType(eSamplingType type);

  const std::map<std::wstring, std::vector<CHierachicalId>>& GetDesignGroups() const { return design_group_map_; }
  void SetDesignGroup(const std::wstring& name, std::vector<CHierachicalId> ids);

  /// Signals by name, and their names in order of insertion.
  const std::map<std::wstring, SignalInfo>& GetSignals() const { return signal_info_container_; }
  const std::vector<std::wstring>& GetSignalNames() const { return signal_info_names_; }
  /// Replaces the signal of that name.
  void SetSignal(const std::wstring& name, SignalInfo info);

  /// A copy with details of its own that know the designs they were built on and hold no samples: what a database
  /// stores beside these designs.
  boost::shared_ptr<AlgorithmInfo> CopyWithoutSupportData(const DesignManager& designs,
                                                          const ParameterManager& parameters) const;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  template <class Archive>
  void SerializeOldIterations(Archive& archive);

  eKind algo_type_ = eKind{};
  std::map<std::wstring, std::vector<CHierachicalId>> design_group_map_;
  std::map<std::wstring, std::wstring> additional_data_;
  std::map<std::wstring, SignalInfo> signal_info_container_;
  std::vector<std::wstring> signal_info_names_;
  boost::shared_ptr<DetailedInformationBase> detailed_info_;
};

/// The details that every kind of algorithm has, and what a database asks of them.
class AlgorithmInfo::DetailedInformationBase {
 public:
  virtual ~DetailedInformationBase() = default;

  /// The ids of the designs that each surrogate was built on.
  virtual void UpdateUsedDesignHIds(const DesignManager&, const ParameterManager&) {}
  /// Drops the samples of the surrogates, whose designs the database holds anyway.
  virtual void ResetSupportData() {}
  /// Takes the samples from the designs again.
  virtual void RestoreSupportData(const DesignManager&, const ParameterManager&) {}
  virtual void UpdateSurrogateSettings(const std::wstring& /*key*/, const std::wstring& /*value*/) {}
  /// Shares the surrogates.
  virtual std::unique_ptr<DetailedInformationBase> Clone() const;

  eSamplingType GetSamplingType() const { return sampling_type_; }
  void SetSamplingType(eSamplingType type) { sampling_type_ = type; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  eSamplingType sampling_type_ = eSamplingType{};
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo, 7)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo, boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo, "kestrel::algorithm::datatypes::AlgorithmInfo")
BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::DetailedInformationBase, 1)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::DetailedInformationBase,
                     boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::DetailedInformationBase,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::DetailedInformationBase")
