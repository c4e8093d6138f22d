#include "datatypes/design.h"

#include <algorithm>
#include <boost/format.hpp>
#include <boost/variant/get.hpp>
#include <cmath>
#include <unordered_set>

#include "persistence/archive/archives.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

CDesignEntrySequence MakeUninitialized(const wchar_t* prefix, std::size_t count) {
  CDesignEntrySequence values;
  for (std::size_t i = 0; i < count; ++i) values.Add(prefix + std::to_wstring(i), CDesignEntry());
  return values;
}

void RequireDimension(const CDesignEntrySequence& current, const CDesignEntrySequence& next, const wchar_t* refusal) {
  if (current.empty() || current.size() == next.size()) return;
  throw utils::logic_error((boost::wformat(refusal) % next.size() % current.size()).str());
}

bool AnyBad(const CDesignEntrySequence& values) {
  return std::any_of(values.begin(), values.end(), [](const auto& pair) { return IsBad(pair.second); });
}

bool AllBad(const CDesignEntrySequence& values) {
  return std::all_of(values.begin(), values.end(), [](const auto& pair) { return IsBad(pair.second); });
}

bool AnyFailed(const CriterionSequence& criteria) {
  return std::any_of(criteria.begin(), criteria.end(), [](const auto& pair) { return pair.second.IsFailed(); });
}

bool AllFailed(const CriterionSequence& criteria) {
  return std::all_of(criteria.begin(), criteria.end(), [](const auto& pair) { return pair.second.IsFailed(); });
}

std::unordered_set<const std::wstring*> NamesOf(const CDesignEntrySequence& values) {
  std::unordered_set<const std::wstring*> names;  // equal names share one text, so its address tells
  for (const auto& pair : values) names.insert(&pair.first.str());
  return names;
}

/// Files before version 3 hold the responses as `Variant`s.
template <class Archive>
void LoadVariantResponses(Archive& archive, CDesignEntrySequence& responses) {
  CVariantSequence variants;
  archive >> boost::serialization::make_nvp("responses_", variants);
  responses = CDesignEntrySequence(variants.GetHeader());
  for (const auto& [name, value] : variants) responses.Add({name, CDesignEntry(value)});
}

/// Files of version 0 hold one run message in the place of the list and of the run state, which follows from it.
template <class Archive>
void LoadSingleStatus(Archive& archive, RunInfoContainer& status, eRunState& state) {
  RunInfoMeta run_info;
  archive >> boost::serialization::make_nvp("status_", run_info);
  switch (run_info.GetRunInfo()) {
    case eRunInfo::kNotStarted: state = eRunState::kNotStarted; break;
    case eRunInfo::kRunning: state = eRunState::kRunning; break;
    default: state = eRunState::kDone;
  }
  status.push_back(std::move(run_info));
}

}  // namespace

bool IsBad(const CDesignEntry& entry) {
  if (const double* const real = boost::get<double>(&entry.GetData())) return !std::isfinite(*real);
  return entry.IsUninitialized() || entry.IsNaN() || entry.IsInf();
}

Design::Design(std::size_t parameter_count, std::size_t response_count, CHierachicalId id)
    : parameters_(MakeUninitialized(L"p", parameter_count)),
      responses_(MakeUninitialized(L"r", response_count)),
      id_(std::move(id)) {}

void Design::SetParameters(CDesignEntrySequence parameters) {
  RequireDimension(parameters_, parameters, L"SetParameters: Wrong dimension of parameters (%1% / %2%).");
  parameters_ = std::move(parameters);
}

void Design::SetResponses(CDesignEntrySequence responses) {
  RequireDimension(responses_, responses, L"SetResponses: Wrong dimension of responses (%1% / %2%).");
  responses_ = std::move(responses);
}

void Design::OverrideResponse(const std::wstring& key, CDesignEntry value) {
  if (CDesignEntry* const stored = responses_.GetData(key, std::nothrow)) {
    *stored = std::move(value);
  } else {
    responses_.Add(key, std::move(value));
  }
}

void Design::AddResponse(const std::wstring& key, CDesignEntry value) {
  if (responses_.Contains(key)) {
    throw utils::logic_error((boost::wformat(L"Response \"%1%\" already exists.") % key).str());
  }
  responses_.Add(key, std::move(value));
}

void Design::ClearResponses() {
  responses_.ClearAll();
  status_.clear();
  runstate_ = eRunState::kNotStarted;
}

void Design::ResetCriteriaValues() {
  criteria_.ForEach([](const auto&, Criterion& criterion) { criterion.ResetValues(); });
}

bool Design::HasFailedParameters() const { return AnyBad(parameters_); }

bool Design::HasFailedResponses() const { return AnyBad(responses_); }

bool Design::HasUnsafeLimitState() const {
  return std::any_of(criteria_.begin(), criteria_.end(),
                     [](const auto& pair) { return pair.second.IsLimitState() && pair.second.IsViolated(); });
}

bool Design::IsSucceeded() const {
  return IsDone() && !HasFailedParameters() && !status_.AnyFailed() && !HasFailedResponses() && !AnyFailed(criteria_);
}

bool Design::IsFailed() const {
  if (!IsDone()) return false;
  return HasFailedParameters() || (status_.AnyFailed() && AllBad(responses_) && AllFailed(criteria_));
}

bool Design::IsIncomplete() const { return IsDone() && !IsSucceeded() && !IsFailed(); }

void Design::AddMissingParameters(const Design& other) {
  const auto own_names = NamesOf(parameters_);
  CDesignEntrySequence completed = parameters_;
  for (const auto& pair : other.parameters_) {
    if (own_names.count(&pair.first.str()) == 0) completed.Add(pair);
  }
  parameters_ = std::move(completed);
}

void Design::RemoveUnusedParameters(const Design& other) {
  const auto used_names = NamesOf(other.parameters_);
  CDesignEntrySequence used(parameters_.GetHeader());
  for (const auto& pair : parameters_) {
    if (used_names.count(&pair.first.str()) != 0) used.Add(pair);
  }
  parameters_ = std::move(used);
}

bool Design::operator==(const Design& other) const {
  return id_ == other.id_ && activation_state_ == other.activation_state_ && isapproximated_ == other.isapproximated_ &&
         parameters_ == other.parameters_ && responses_ == other.responses_ && status_.HasSameRunInfos(other.status_) &&
         criteria_ == other.criteria_;
}

template <class Archive>
void Design::serialize(Archive& archive, const unsigned int version) {
  using boost::serialization::make_nvp;
  if constexpr (Archive::is_loading::value) *this = Design();  // what the file's version does not have

  archive& make_nvp("parameters_", parameters_);
  if (version >= 3) {
    archive& make_nvp("responses_", responses_);
  } else if constexpr (Archive::is_loading::value) {
    LoadVariantResponses(archive, responses_);
  }
  if (version >= 1) {
    archive& make_nvp("status_", status_);
    archive& make_nvp("runstate_", runstate_);
  } else if constexpr (Archive::is_loading::value) {
    LoadSingleStatus(archive, status_, runstate_);
  }
  if (version >= 2) archive& make_nvp("duplicates_", duplicates_);
  archive& make_nvp("activation_state_", activation_state_);
  archive& make_nvp("criteria_", criteria_);
  archive& make_nvp("isapproximated_", isapproximated_);
  archive& make_nvp("id_", id_);
  if (version >= 4) archive& make_nvp("iteration_", iteration_);
  if (version >= 5) archive& make_nvp("workflow_id_", workflow_id_) & make_nvp("type_", type_);
  if (version >= 6) archive& make_nvp("algo_iteration_", algo_iteration_);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::Design)
