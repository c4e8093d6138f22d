#include "datatypes/results/surrogate_info.h"

#include <algorithm>
#include <iostream>

#include "datatypes/results/support_data.h"
#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/strings.h"

namespace kestrel::algorithm::datatypes {
namespace {

using boost::serialization::make_nvp;
using math::metamodel::Selection;
using persistence::RequireStored;

/// Columns of the single CoP matrix of a result.
enum SingleCoPColumn : math::Index { kFirstOrder = 0, kTotalEffect = 1 };

math::metamodel::AppraisalData MakeAppraisal(const math::metamodel::SubspaceResults& result) {
  math::metamodel::AppraisalData appraisal;
  appraisal.SetCoD(result.measures.CoD);
  appraisal.SetCoDAdj(result.measures.CoDadj);
  appraisal.SetCoP(result.measures.CoP);
  if (result.singleCoPs.cols() > kFirstOrder) appraisal.SetFirstOrderIndices(result.singleCoPs.col(kFirstOrder));
  if (result.singleCoPs.cols() > kTotalEffect) appraisal.SetSingleCoPs(result.singleCoPs.col(kTotalEffect));
  return appraisal;
}

/// For each input of the selection 0 if it is left out, else the mask of its powers among the main terms; an input that
/// stands in interactions alone counts as linear.
std::vector<std::uint64_t> SubspaceOf(const math::metamodel::SurrogateSettingsBase& settings) {
  const Selection variables = settings.GetVariableSelection();
  const Selection& main_terms = settings.GetMainTermSelection();
  std::vector<std::uint64_t> subspace(variables.size(), 0);
  for (std::size_t input = 0; input < variables.size(); ++input) {
    std::uint64_t power = 1;
    for (std::size_t term = input; term < main_terms.size(); term += variables.size(), power <<= 1) {
      if (main_terms.test(term)) subspace[input] |= power;
    }
    if (subspace[input] == 0 && variables.test(input)) subspace[input] = 1;
  }
  return subspace;
}

bool HasSample(const SurrogateInfo& info) { return info.GetSurrogate() && info.GetSurrogate()->GetNumberPoints() > 0; }

}  // namespace

SurrogateInfo::SurrogateInfo(std::wstring response_name, std::shared_ptr<math::metamodel::SurrogateBase> surrogate,
                             const math::metamodel::SubspaceResults& result,
                             const std::vector<std::wstring>& parameter_names)
    : response_name_(std::move(response_name)),
      surrogate_(std::move(surrogate)),
      appraisal_data_(MakeAppraisal(result)),
      num_vars_(result.GetNumberVariables()) {
  if (result.settings) subspace_ = SubspaceOf(*result.settings);
  for (std::size_t i = 0; i < parameter_names.size(); ++i) parameter_name_lookup_map_[parameter_names[i]] = i;
}

void SurrogateInfo::SetComponent(std::uint64_t index) {
  response_index_ = index;
  is_response_scalar_ = false;
}

std::wstring SurrogateInfo::GetResponseComponentName() const {
  return is_response_scalar_ ? response_name_ : response_name_ + L"[" + std::to_wstring(response_index_) + L"]";
}

std::vector<std::wstring> SurrogateInfo::GetParameterNames() const {
  std::vector<std::wstring> names(parameter_name_lookup_map_.size());
  for (const auto& [name, column] : parameter_name_lookup_map_) names[column] = name;
  return names;
}

void SurrogateInfo::ResetSupportData() {
  if (!surrogate_) return;
  surrogate_ = surrogate_->Clone();
  surrogate_->ClearSupportsForSerialize();
}

template <class Archive>
void SurrogateInfo::serialize(Archive& archive, unsigned int version) {
  archive& make_nvp("response_name_", response_name_);
  archive& make_nvp("response_index_", response_index_);
  archive& make_nvp("is_response_scalar_", is_response_scalar_);
  archive& make_nvp("surrogate_", surrogate_);
  archive& make_nvp("appraisal_data_", appraisal_data_);
  archive& make_nvp("num_vars_", num_vars_);
  archive& make_nvp("subspace_", subspace_);
  archive& make_nvp("parameter_name_lookup_map_", parameter_name_lookup_map_);
  if (version >= 2) archive& make_nvp("testing_type_", testing_type_);
  if (version >= 4) archive& make_nvp("used_hids_", used_hids_);
  if constexpr (Archive::is_loading::value) {
    std::vector<bool> seen(parameter_name_lookup_map_.size());
    for (const auto& entry : parameter_name_lookup_map_) {
      RequireStored(entry.second < seen.size() && !seen[entry.second],
                    L"Columns of the stored parameters do not match their names.");
      seen[entry.second] = true;
    }
  }
}

void SurrogateInfoContainer::AddSurrogateInfo(SurrogateInfo info) {
  positions_.emplace(info.GetResponseComponentName(), infos_.size());
  infos_.push_back(std::move(info));
}

std::vector<std::wstring> SurrogateInfoContainer::GetComponentNames() const {
  std::vector<std::wstring> names;
  for (const SurrogateInfo& info : infos_) names.push_back(info.GetResponseComponentName());
  return names;
}

const SurrogateInfo* SurrogateInfoContainer::GetSurrogateInfoByComponentName(const std::wstring& name) const {
  const auto position = positions_.find(name);
  return position == positions_.end() ? nullptr : &infos_[position->second];
}

bool SurrogateInfoContainer::CheckSurrogatesAvailability(utils::log::LogBase& log) const {
  bool available = true;
  for (const SurrogateInfo& info : infos_) {
    if (info.GetSurrogate()) available = info.GetSurrogate()->IsAvailable(log) && available;  // all of them report
  }
  return available;
}

void SurrogateInfoContainer::SetLog(const std::shared_ptr<utils::log::LogBase>& log) {
  log_ = log;
  for (const SurrogateInfo& info : infos_) {
    if (info.GetSurrogate()) info.GetSurrogate()->SetLog(log);
  }
}

void SurrogateInfoContainer::UpdateSurrogateSettings(const std::wstring& key, const std::wstring& value) const {
  for (const SurrogateInfo& info : infos_) {
    if (info.GetSurrogate()) info.GetSurrogate()->UpdateSettings(key, value);
  }
}

void SurrogateInfoContainer::Build(const CVIndexes& cv_indexes) const {
  for (const SurrogateInfo& info : infos_) {
    const auto& surrogate = info.GetSurrogate();
    if (!surrogate || surrogate->CheckAfterBuild()) continue;
    surrogate->SetSubsets(cv_indexes.at(info.GetResponseComponentName()));
    surrogate->Build();
  }
}

void SurrogateInfoContainer::BuildErrors(const CVIndexes& cv_indexes) const {
  for (const SurrogateInfo& info : infos_) {
    if (info.GetSurrogate()) info.GetSurrogate()->BuildErrors(cv_indexes.at(info.GetResponseComponentName()));
  }
}

void SurrogateInfoContainer::UpdateUsedDesignHIds(const DesignManager& designs, const ParameterManager& parameters) {
  SupportData support(designs, parameters, infos_);
  for (SurrogateInfo& info : infos_) {
    if (HasSample(info)) info.SetUsedHIds(support.FindDesigns(info));
  }
}

void SurrogateInfoContainer::ResetSupportData() {
  for (SurrogateInfo& info : infos_) info.ResetSupportData();
}

void SurrogateInfoContainer::RestoreSupportData(const DesignManager& designs, const ParameterManager& parameters) {
  SupportData support(designs, parameters, infos_);
  for (const SurrogateInfo& info : infos_) {
    if (!info.GetSurrogate() || HasSample(info)) continue;
    if (info.GetUsedHIds().empty()) {
      Warn(L"empty id vector for response '" + info.GetResponseComponentName() +
           L"' - not able to restore support data");
    } else {
      support.Restore(info);
    }
  }
}

void SurrogateInfoContainer::Warn(const std::wstring& text) const {
  if (log_) {
    log_->Warning() << text;
  } else {
    std::cerr << string::narrow(L"WARNING: " + text + L"\n");
  }
}

template <class Archive>
void SurrogateInfoContainer::serialize(Archive& archive, unsigned int) {
  archive& make_nvp("infos_", infos_);
  if constexpr (Archive::is_loading::value) {
    positions_.clear();
    for (std::size_t i = 0; i < infos_.size(); ++i) positions_.emplace(infos_[i].GetResponseComponentName(), i);
  }
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::SurrogateInfo)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::SurrogateInfoContainer)
