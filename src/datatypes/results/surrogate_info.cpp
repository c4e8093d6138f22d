#include "datatypes/results/surrogate_info.h"

#include <algorithm>

namespace kestrel::algorithm::datatypes {
namespace {

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

}  // namespace

SurrogateInfo::SurrogateInfo(std::wstring response_name, std::shared_ptr<math::metamodel::SurrogateBase> surrogate,
                             const math::metamodel::SubspaceResults& result)
    : response_name_(std::move(response_name)),
      surrogate_(std::move(surrogate)),
      appraisal_data_(MakeAppraisal(result)) {}

void SurrogateInfoContainer::AddSurrogateInfo(SurrogateInfo info) {
  positions_.emplace(info.GetResponseComponentName(), infos_.size());
  infos_.push_back(std::move(info));
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

void SurrogateInfoContainer::SetLog(const std::shared_ptr<utils::log::LogBase>& log) const {
  for (const SurrogateInfo& info : infos_) {
    if (info.GetSurrogate()) info.GetSurrogate()->SetLog(log);
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

}  // namespace kestrel::algorithm::datatypes
