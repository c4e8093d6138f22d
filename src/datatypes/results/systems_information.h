#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "datatypes/results/algorithm_info.h"
#include "datatypes/results/surrogate_info.h"

namespace kestrel::algorithm::datatypes {

/// Series of numbers by name, such as the course of an iteration.
using HistoryMap = std::map<std::wstring, std::vector<double>>;

/// The sets of designs that an algorithm worked with. The library carries these records through files.
class AlgorithmInfo::SystemsInformation : public AlgorithmInfo::DetailedInformationBase {
 public:
  class DesignSet;
  class AdditionalDesignContainer;
  using DesignSets = std::map<std::wstring, std::shared_ptr<DesignSet>>;

  std::unique_ptr<DetailedInformationBase> Clone() const override;

  std::map<std::uint64_t, CHierachicalId> index_id_map_;
  std::map<std::wstring, std::uint64_t> design_set_position_map_;  ///< position of a set, by its identifier
  std::wstring prefered_design_set_;
  std::vector<std::shared_ptr<AdditionalDesignContainer>> additional_designs_;
  DesignSets design_sets_map_;  ///< by identifier

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// Designs that belong together, and the course of the algorithm among them.
class AlgorithmInfo::SystemsInformation::DesignSet {
 public:
  virtual ~DesignSet() = default;

  template <class Visit>
  static void ForEachField(Visit visit);

  std::wstring identifier_;
  std::vector<CHierachicalId> design_ids_;
  std::map<std::wstring, std::wstring> design_specifications_;
  std::vector<std::wstring> history_names_;
  SurrogateInfoContainer surrogate_infos_;
  HistoryMap history_map_;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// Designs beside those of the system.
class AlgorithmInfo::SystemsInformation::AdditionalDesignContainer {
 public:
  template <class Visit>
  static void ForEachField(Visit visit);

  std::wstring identifier_;
  std::vector<CHierachicalId> designs_;
  std::map<CHierachicalId, CHierachicalId> similar_to_system_designs_;
  DesignSets design_sets_;
  std::map<std::wstring, std::uint64_t> design_set_position_map_;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

template <class Visit>
void AlgorithmInfo::SystemsInformation::DesignSet::ForEachField(Visit visit) {
  visit("identifier_", &DesignSet::identifier_, 0u);
  visit("design_ids_", &DesignSet::design_ids_, 0u);
  visit("design_specifications_", &DesignSet::design_specifications_, 0u);
  visit("history_names_", &DesignSet::history_names_, 0u);
  visit("surrogate_infos_", &DesignSet::surrogate_infos_, 0u);
  visit("history_map_", &DesignSet::history_map_, 0u);
}

template <class Visit>
void AlgorithmInfo::SystemsInformation::AdditionalDesignContainer::ForEachField(Visit visit) {
  using Self = AdditionalDesignContainer;
  visit("identifier_", &Self::identifier_, 0u);
  visit("designs_", &Self::designs_, 0u);
  visit("similar_to_system_designs_", &Self::similar_to_system_designs_, 0u);
  visit("design_sets_", &Self::design_sets_, 0u);
  visit("design_set_position_map_", &Self::design_set_position_map_, 0u);
}

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation, 6)
BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::DesignSet, 4)
BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::AdditionalDesignContainer, 1)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation,
                     boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::DesignSet,
                     boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::AdditionalDesignContainer,
                     boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::DesignSet,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::DesignSet")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::AdditionalDesignContainer,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::AdditionalDesignContainer")
