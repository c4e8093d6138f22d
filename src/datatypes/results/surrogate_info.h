#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "selection/subspace_results.h"
#include "surrogates/surrogate2_base.h"
#include "surrogates/surrogate_appraisal_data.h"

namespace kestrel::algorithm::datatypes {

/// The surrogate of one response and its quality.
class SurrogateInfo {
 public:
  /// CoD, adjusted CoD and CoP of the result go to the appraisal data; column 0 of its single CoP matrix to the
  /// first-order indices and column 1 to the single CoPs, each only if the matrix has that column.
  SurrogateInfo(std::wstring response_name, std::shared_ptr<math::metamodel::SurrogateBase> surrogate,
                const math::metamodel::SubspaceResults& result);

  const std::wstring& GetResponseName() const { return response_name_; }
  /// The name of the scalar component that the surrogate stands for: the response's own for a scalar response.
  const std::wstring& GetResponseComponentName() const { return response_name_; }
  const std::shared_ptr<math::metamodel::SurrogateBase>& GetSurrogate() const { return surrogate_; }
  const math::metamodel::AppraisalData& GetAppraisalData() const { return appraisal_data_; }

 private:
  std::wstring response_name_;
  std::shared_ptr<math::metamodel::SurrogateBase> surrogate_;
  math::metamodel::AppraisalData appraisal_data_;
};

/// Cross-validation subsets by the component name of a response.
using CVIndexes = std::map<std::wstring, math::metamodel::Subsets>;

/// The surrogates of a run, in the order of its responses.
class SurrogateInfoContainer {
 public:
  /// The component names are all different.
  void AddSurrogateInfo(SurrogateInfo info);
  const std::vector<SurrogateInfo>& GetInfos() const { return infos_; }
  bool empty() const { return infos_.empty(); }

  /// Null if there is no such component.
  const SurrogateInfo* GetSurrogateInfoByComponentName(const std::wstring& name) const;

  /// False, with the surrogates' own log lines, if one of them cannot be used in this process.
  bool CheckSurrogatesAvailability(utils::log::LogBase& log) const;
  void SetLog(const std::shared_ptr<utils::log::LogBase>& log) const;
  /// Builds what is not built yet, with the subsets of each response. A response without an entry raises the standard
  /// "map::at", here and below.
  void Build(const CVIndexes& cv_indexes) const;
  /// The same for the error estimates.
  void BuildErrors(const CVIndexes& cv_indexes) const;

 private:
  std::vector<SurrogateInfo> infos_;
  std::map<std::wstring, std::size_t> positions_;  ///< in `infos_`, by component name
};

/// What a metamodel run leaves: the models and what evaluating them needs.
struct ZORInformation {
  std::vector<std::wstring> parameter_names_;
  std::vector<std::wstring> response_names_;
  std::vector<std::pair<double, double>> sampling_limits_;  ///< smallest and largest sampled value of each parameter
  std::vector<std::pair<double, double>> defined_limits_;   ///< lower and upper bound of each parameter
  SurrogateInfoContainer surrogate_infos_;
  CVIndexes cv_indexes_;
};

}  // namespace kestrel::algorithm::datatypes
