#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/hierarchical_id.h"
#include "persistence/archive/persistent.h"
#include "selection/subspace_results.h"
#include "selection/zor2_settings.h"
#include "surrogates/surrogate2_base.h"
#include "surrogates/surrogate_appraisal_data.h"

namespace kestrel::algorithm::datatypes {

class DesignManager;
class ParameterManager;

/// The surrogate of one response and its quality.
class SurrogateInfo {
 public:
  using eTestingType = math::metamodel::TestingType::eTestingType;

  /// Of nothing, for reading.
  SurrogateInfo() = default;
  /// CoD, adjusted CoD and CoP of the result go to the appraisal data; column 0 of its single CoP matrix to the
  /// first-order indices and column 1 to the single CoPs, each only if the matrix has that column.
  /// @param parameter_names  of the columns of the surrogate's points; empty if nobody needs them.
  SurrogateInfo(std::wstring response_name, std::shared_ptr<math::metamodel::SurrogateBase> surrogate,
                const math::metamodel::SubspaceResults& result, const std::vector<std::wstring>& parameter_names = {});

  /// Marks the surrogate as that of one component of a vector response.
  void SetComponent(std::uint64_t index);
  void SetTestingType(eTestingType type) { testing_type_ = type; }

  const std::wstring& GetResponseName() const { return response_name_; }
  /// Position in a vector response, counted from 0; 0 for a scalar one.
  std::uint64_t GetResponseIndex() const { return response_index_; }
  bool IsResponseScalar() const { return is_response_scalar_; }
  /// The name of the scalar component that the surrogate stands for: the response's own for a scalar response, else
  /// with the index in square brackets behind it.
  std::wstring GetResponseComponentName() const;
  const std::shared_ptr<math::metamodel::SurrogateBase>& GetSurrogate() const { return surrogate_; }
  const math::metamodel::AppraisalData& GetAppraisalData() const { return appraisal_data_; }
  /// How many inputs the surrogate uses, and for each input 0 if it is left out, else the mask of its main terms.
  std::uint64_t GetNumVars() const { return num_vars_; }
  const std::vector<std::uint64_t>& GetSubspace() const { return subspace_; }
  eTestingType GetTestingType() const { return testing_type_; }
  /// The parameters of the columns of the surrogate's points, in their order; empty if that is not known.
  std::vector<std::wstring> GetParameterNames() const;

  /// The designs that the surrogate was built on, in the order of its points; empty if they are not known.
  const std::vector<CHierachicalId>& GetUsedHIds() const { return used_hids_; }
  void SetUsedHIds(std::vector<CHierachicalId> ids) { used_hids_ = std::move(ids); }

  /// Puts a copy of the surrogate without its sample in its place; others that hold the surrogate keep it whole.
  void ResetSupportData();

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  std::wstring response_name_;
  std::uint64_t response_index_ = 0;
  bool is_response_scalar_ = true;
  std::shared_ptr<math::metamodel::SurrogateBase> surrogate_;
  math::metamodel::AppraisalData appraisal_data_;
  std::uint64_t num_vars_ = 0;
  std::vector<std::uint64_t> subspace_;
  std::map<std::wstring, std::uint64_t> parameter_name_lookup_map_;  ///< name to column of the points
  eTestingType testing_type_ = math::metamodel::TestingType::kCrossValidation;
  std::vector<CHierachicalId> used_hids_;
};

/// Cross-validation subsets by the component name of a response.
using CVIndexes = std::map<std::wstring, math::metamodel::Subsets>;

/// The surrogates of a run, in the order of its responses. A copy shares them.
class SurrogateInfoContainer {
 public:
  /// The component names are all different.
  void AddSurrogateInfo(SurrogateInfo info);
  const std::vector<SurrogateInfo>& GetInfos() const { return infos_; }
  bool empty() const { return infos_.empty(); }
  std::vector<std::wstring> GetComponentNames() const;

  /// Null if there is no such component.
  const SurrogateInfo* GetSurrogateInfoByComponentName(const std::wstring& name) const;

  /// False, with the surrogates' own log lines, if one of them cannot be used in this process.
  bool CheckSurrogatesAvailability(utils::log::LogBase& log) const;
  /// Also of this record's own messages, which otherwise go to the standard error stream.
  void SetLog(const std::shared_ptr<utils::log::LogBase>& log);
  void UpdateSurrogateSettings(const std::wstring& key, const std::wstring& value) const;
  /// Builds what is not built yet, with the subsets of each response. A response without an entry raises the standard
  /// "map::at", here and below.
  void Build(const CVIndexes& cv_indexes) const;
  /// The same for the error estimates.
  void BuildErrors(const CVIndexes& cv_indexes) const;

  /// Finds the designs that each surrogate was built on: those whose parameters and response are, bit for bit, its
  /// points and values, in their order. Surrogates without a sample keep the ids they have; one whose sample is not
  /// among the designs gets none.
  void UpdateUsedDesignHIds(const DesignManager& designs, const ParameterManager& parameters);
  /// See `SurrogateInfo::ResetSupportData`.
  void ResetSupportData();
  /// Gives each surrogate without a sample the points and values of its designs, bit for bit as they were. Without ids
  /// that leaves a warning and a surrogate without data. Raises utils::logic_error for designs that are not there and
  /// utils::runtime_error if the parameters are not as many as the inputs of the surrogate.
  void RestoreSupportData(const DesignManager& designs, const ParameterManager& parameters);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  void Warn(const std::wstring& text) const;

  std::vector<SurrogateInfo> infos_;
  std::map<std::wstring, std::size_t> positions_;  ///< in `infos_`, by component name
  std::shared_ptr<utils::log::LogBase> log_;
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::SurrogateInfo, 4)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::SurrogateInfo, boost::serialization::track_always)
