#pragma once

#include <boost/shared_ptr.hpp>
#include <boost/unordered_set.hpp>
#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/design_manager.h"
#include "datatypes/parameter_manager.h"
#include "datatypes/results/algorithm_info.h"
#include "datatypes/results/surrogate_info.h"
#include "persistence/archive/persistent.h"
#include "persistence/database/lyra_attached_path.h"
#include "persistence/database/lyra_meta_data.h"

namespace kestrel::algorithm::datatypes {

/// Everything that a run leaves: parameters, designs, what the algorithm found, and free meta data. A copy is deep but
/// for the algorithm information, which it shares.
///
/// In a file the surrogates come without their samples, because the designs are there: reading takes the samples from
/// the designs again. Writing changes nothing in the record.
class LYRA {
 public:
  using AttachedPaths = std::map<boost::uuids::uuid, LYRAAttachedPath>;
  using DesignIds = boost::unordered_set<CHierachicalId>;
  using BoundsByName = std::map<std::wstring, std::pair<double, double>>;
  enum class eAttachment { kImage, kProcess };

  /// Writes the record to a database file, after `CheckConsistency`; missing directories of the path are made. Saves of
  /// one path by several processes take turns; one that cannot get its turn within a minute, because a process died in
  /// a save, goes on without it. Raises std::runtime_error "Error while writing \"...\": ...", and what the making of
  /// directories and the archive raise; the file is then left as far as it got.
  /// @param path  in the encoding of the file system.
  static void SaveToFile(const LYRA& lyra, const std::string& path);
  /// The same without lock, directories and check.
  static void SaveToFilePimpl(const LYRA& lyra, const std::string& path);

  /// Raises utils::runtime_error "Parameter \"...\" does not exist in manager." for a parameter of the designs that the
  /// parameter manager does not know. There is nothing to check without designs.
  void CheckConsistency() const;
  bool IsConsistent() const;

  const ParameterManager& GetParameterManager() const { return parameter_manager_; }
  ParameterManager& GetParameterManager() { return parameter_manager_; }
  void SetParameterManager(ParameterManager parameters) { parameter_manager_ = std::move(parameters); }
  const DesignManager& GetDesignContainer() const { return design_container_; }
  DesignManager& GetDesignContainer() { return design_container_; }
  void SetDesignContainer(DesignManager designs) { design_container_ = std::move(designs); }
  const DesignManager& GetApproxDesignContainer() const { return approx_design_container_; }
  void SetApproxDesignContainer(DesignManager designs) { approx_design_container_ = std::move(designs); }
  const DesignManager& GetValidatedBestDesigns() const { return validated_best_designs_; }
  void SetValidatedBestDesigns(DesignManager designs) { validated_best_designs_ = std::move(designs); }
  const Design& GetReferenceDesign() const { return reference_design_; }
  void SetReferenceDesign(Design design) { reference_design_ = std::move(design); }
  const Design& GetNominalDesign() const { return nominal_design_; }
  void SetNominalDesign(Design design) { nominal_design_ = std::move(design); }
  const CriterionSequence& GetCriteria() const { return criteria_; }
  void SetCriteria(CriterionSequence criteria) { criteria_ = std::move(criteria); }
  /// Null if there is none.
  const boost::shared_ptr<AlgorithmInfo>& GetAlgorithmInfo() const { return algorithm_info_; }
  void SetAlgorithmInfo(boost::shared_ptr<AlgorithmInfo> info) { algorithm_info_ = std::move(info); }
  /// The first type without algorithm information.
  AlgorithmInfo::eSamplingType GetSamplingType() const;

  /// Of the first design; std::domain_error without designs.
  std::vector<std::wstring> GetParameterNames() const;
  std::vector<std::wstring> GetResponseNames() const;

  /// Smallest and largest value of each parameter among the designs that are not deactivated and whose inputs are all
  /// finite. A parameter without numbers has no entry.
  BoundsByName GetParameterSamplingBounds() const;
  /// Bounds of the optimization parameters, infinite where they are not set; of a discrete parameter the smallest and
  /// largest number among its states. One without numbers has no entry.
  BoundsByName GetParameterBounds() const;

  /// The designs that are not deactivated.
  DesignManager GetFilteredDesignContainer() const;
  const DesignIds& GetDeactivatedDesigns() const { return deactivated_designs_; }
  void SetDeactivatedDesigns(DesignIds ids) { deactivated_designs_ = std::move(ids); }

  /// A path that is attached under this id already stays; false then.
  bool AttachFilePath(const boost::uuids::uuid& id, LYRAAttachedPath path, eAttachment kind = eAttachment::kProcess);
  /// From both kinds; false if there was none.
  bool RemoveFilePath(const boost::uuids::uuid& id);
  /// Null if there is none.
  const LYRAAttachedPath* GetAttachedFileData(const boost::uuids::uuid& id) const;
  const AttachedPaths& GetAttachedPaths(eAttachment kind) const;

  const MetaData& GetMetaData() const { return meta_data_; }
  void SetMetaData(const std::wstring& key, std::string value) { meta_data_[key] = std::move(value); }
  void ClearMetaData() { meta_data_.clear(); }

  /// The class version that was read last, that of this library for what was not read.
  std::uint32_t GetVersion() const { return version_; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  template <class Archive>
  void save(Archive& archive, unsigned int version) const;
  template <class Archive>
  void load(Archive& archive, unsigned int version);
  template <class Archive>
  void SaveAlgorithmInfo(Archive& archive) const;
  template <class Archive>
  void LoadFields(Archive& archive);

  MetaData StampedMetaData() const;
  void TakeDeactivatedDesigns();
  /// @param old_surrogates  what files before version 9 hold beside the algorithm information.
  void RepairAfterReading(SurrogateInfoContainer old_surrogates);

  ParameterManager parameter_manager_;
  DesignManager design_container_;
  CriterionSequence criteria_;
  DesignManager approx_design_container_;
  Design reference_design_;
  Design nominal_design_;
  boost::shared_ptr<AlgorithmInfo> algorithm_info_;
  MetaData meta_data_;
  DesignManager validated_best_designs_;
  AttachedPaths image_path_map_;
  AttachedPaths process_path_map_;
  DesignIds deactivated_designs_;
  std::uint32_t version_ = 14;
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::LYRA, 14)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::LYRA, boost::serialization::track_always)
