#include "build/zor_handler.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <boost/thread/thread.hpp>
#include <cmath>
#include <future>
#include <limits>
#include <map>
#include <utility>

#include "build/error_lines.h"
#include "build/zor_task.h"
#include "build/zor_task_pool.h"
#include "datatypes/design_functions.h"
#include "datatypes/parameter_bounds.h"
#include "statistics/random.h"
#include "support/exceptions.h"

// The run: tasks are scheduled, their results collected and reported.

namespace kestrel::zor {
namespace {

using algorithm::datatypes::AlgorithmInfo;
using algorithm::datatypes::CHierachicalId;
using algorithm::datatypes::Design;
using algorithm::datatypes::SurrogateInfo;
using math::metamodel::SubspaceResultContainer;
using utils::log::LogBase;
using utils::log::LogLevel;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

constexpr LogLevel kAllLevels[] = {LogLevel::kError,       LogLevel::kDebug, LogLevel::kWarning,
                                   LogLevel::kInformation, LogLevel::kTrace, LogLevel::kDetailedInformation};

/// The messages of one task, kept apart until its response is collected. Levels that nobody reads are not composed.
struct TaskLog {
  explicit TaskLog(const LogBase& target) {
    int mask = 0;
    for (const LogLevel level : kAllLevels) mask |= target.Accepts(level) ? static_cast<int>(level) : 0;
    filter = std::make_shared<utils::log::LevelFilterLog>(messages, mask);
  }

  std::shared_ptr<utils::log::VectorLog> messages = std::make_shared<utils::log::VectorLog>();
  std::shared_ptr<LogBase> filter;
};

/// Minimum and maximum of each column.
std::vector<std::pair<double, double>> ColumnBounds(const math::Matrix& values) {
  std::vector<std::pair<double, double>> bounds;
  for (const auto& column : values.colwise()) bounds.emplace_back(column.minCoeff(), column.maxCoeff());
  return bounds;
}

/// Drops what the record does not keep: designs that did not count, responses of the black list, parameters that took
/// no part.
void RemoveUnused(algorithm::datatypes::DesignManager& designs, const std::vector<math::Index>& rows,
                  const std::vector<std::wstring>& black_list,
                  const algorithm::datatypes::ParameterManager& parameters) {
  if (rows.size() < designs.size()) {
    std::vector<bool> counts(designs.size(), false);
    for (const math::Index row : rows) counts[static_cast<std::size_t>(row)] = true;
    const Design* const first = &designs[0];
    std::vector<Design> kept;
    for (Design& design : designs) {
      if (counts[static_cast<std::size_t>(&design - first)]) kept.push_back(std::move(design));
    }
    designs = algorithm::datatypes::DesignManager(std::move(kept));
  }
  std::vector<std::wstring> unused;
  for (const auto& [name, value] : designs[0].GetParameters().GetSequence()) {
    if (parameters.ContainsParameter(name) == 0) unused.push_back(name);
  }
  if (unused.empty() && black_list.empty()) return;
  for (Design& design : designs) {
    CDesignEntrySequence values = design.GetParameters();
    for (const std::wstring& name : unused) values.Remove(name);
    design.SetParametersUnsafe(std::move(values));
    CDesignEntrySequence responses = design.GetResponses();
    for (const std::wstring& name : black_list) responses.Remove(name);
    design.OverrideResponses(std::move(responses));
  }
}

}  // namespace

void DefaultProgressCallable(double) {}

/// What the caller's thread waits for.
struct CZORHandler::PendingResponse {
  PendingResponse(std::wstring response_name, ZorTask& task, TaskLog task_log)
      : name(std::move(response_name)),
        log(std::move(task_log)),
        result(task.GetResultsFuture()),
        surrogate(task.GetBestSurrogateFuture()),
        cv_indices(task.GetCVIndicesFuture()),
        unused_indices(task.GetUnusedIndicesFuture()) {}

  /// Waits for the task, whose log has then its last message.
  void Wait() const {
    unused_indices.wait();
    result.wait();
    surrogate.wait();
    cv_indices.wait();
  }

  std::wstring name;
  TaskLog log;
  std::future<math::metamodel::SubspaceResults> result;
  std::future<std::shared_ptr<math::metamodel::SurrogateBase>> surrogate;
  std::future<math::metamodel::Subsets> cv_indices;
  std::future<math::IndexVector> unused_indices;
};

bool CZORHandler::Check(LogBase& log) const {
  if (!settings_.Check(log, true)) {
    log.Error() << L"Invalid settings.";
    return false;
  }
  if (!settings_.WriteCVValues()) return true;
  bool good = true;
  for (const std::wstring& name : response_names_) {
    const std::wstring values_name = name + settings_.CVValuesSuffix();
    if (!settings_.GetZORData().responses_.Contains(values_name)) continue;
    log.Error() << L"Response " << values_name
                << L" does already exist but would be the name of a cross valdiation value. "
                   L"Please change the cross validation suffix.";
    good = false;
  }
  return good;
}

void CZORHandler::RequireCheck(LogBase& log) const {
  utils::log::VectorLog messages;
  const bool good = Check(messages);
  messages.Forward(log);
  if (!good) throw utils::runtime_error(ErrorLines(messages));
}

void CZORHandler::Build() {
  progress_(0.0);
  const std::shared_ptr<LogBase> log = InitializeAlgorithmLog();
  RequireCheck(*log);
  PrepareInformation();
  progress_(0.0);
  const math::Matrix all_values = GetZorPoints(parameters_, lyra_.GetDesignContainer())(rows_, Eigen::all);
  SaveSamplingInformation(parameters_, rows_.size(), ColumnBounds(all_values), *log);

  const auto workers = std::min<std::uint64_t>(settings_.NumResponsesParallel(), response_names_.size());
  if (settings_.GetSettingsType() == eSettingsType::kAutomatic) {
    log->Information() << L"Calculating " << workers << L" responses in parallel.";
    log->Information() << L"Max. responses in parallel: " << settings_.NumResponsesParallel();
  }
  PrintHeadline(LongestName(response_names_), *log, UsesGroups());
  {
    ZORTaskPool pool(workers);  // its end joins the threads, however the build ends
    try {
      std::vector<PendingResponse> responses = ScheduleResponses(pool, *log);
      CollectResponses(responses, *log);
    } catch (...) {
      RequestStop();  // the other tasks need not come to their end
      throw;
    }
  }
  PrintResults(*log);
  FinishRecord();
}

std::shared_ptr<LogBase> CZORHandler::InitializeAlgorithmLog() const {
  const ZORAdvancedSettings advanced = settings_.ExtractAdvancedSettingsByType();
  if (!advanced.log_in_file_) return log_;
  const auto file = std::make_shared<utils::log::BasicFileStreamLog>(advanced.log_file_path_);
  return std::make_shared<utils::log::LogMulti>(std::vector<std::shared_ptr<LogBase>>{log_, file});
}

/// What the record tells of the run beside its designs; the models follow.
void CZORHandler::PrepareInformation() {
  // A record of an earlier run, which may have been given, shares its algorithm information with its copies.
  const auto& earlier = lyra_.GetAlgorithmInfo();
  const auto algorithm = earlier ? boost::make_shared<AlgorithmInfo>(*earlier)
                                 : boost::make_shared<AlgorithmInfo>(AlgorithmInfo::eKind::kMetamodel);
  ZORInformation fresh;
  fresh.SetSamplingType(algorithm->GetSamplingType());
  fresh.parameter_manager_ = GetAdaptedZORParameterManager();
  fresh.parameter_names_ = input_names_;
  fresh.sampling_limits_ = ColumnBounds(points_);
  for (const std::wstring& name : input_names_) {
    fresh.defined_limits_.push_back(
        NumberBoundsOf(fresh.parameter_manager_.GetParameter(name)).value_or(std::pair(kNan, kNan)));
  }
  fresh.calculated_models_ = std::make_shared<SubspaceResultContainer>();
  fresh.best_models_ = std::make_shared<SubspaceResultContainer>();
  algorithm->SetDetailedInfo(boost::make_shared<ZORInformation>(std::move(fresh)));
  algorithm->SetCombinedZORSettings(settings_);
  lyra_.SetAlgorithmInfo(algorithm);
}

CZORHandler::ZORInformation& CZORHandler::GetInformation() {
  ZORInformation* const information = lyra_.GetAlgorithmInfo() ? lyra_.GetAlgorithmInfo()->GetZORInfo() : nullptr;
  if (information == nullptr) throw utils::runtime_error(L"Unable to set surrogate information.");
  return *information;
}

std::vector<CZORHandler::PendingResponse> CZORHandler::ScheduleResponses(ZORTaskPool& pool, LogBase& log) {
  const boost::this_thread::disable_interruption no_interruption;
  const auto inputs = std::make_shared<const math::Matrix>(points_);
  const std::vector<std::uint64_t> importance = GetParameterImportance();
  const math::metamodel::ZORSettings search_settings = GetSearchSettings();
  const std::uint64_t root_seed = math::random::DrawSharedSeed();

  std::vector<PendingResponse> responses;
  for (std::size_t i = 0; i < response_names_.size(); ++i) {
    const std::wstring& name = response_names_[i];
    TaskLog task_log(log);
    const auto request = std::make_shared<ZorTask::ZorRequest>(stop_request_);
    request->inputs = inputs;
    request->output = values_.col(static_cast<math::Index>(i));
    request->important_info = importance;
    request->settings = search_settings;
    request->task_log = task_log.filter;
    request->search_log = task_log.filter;
    request->stop_helper = stop_helper_;
    request->subspace_results = GetInformation().calculated_models_;
    request->names = input_names_;
    request->response_name = name;
    // A stream of its own by position: the result does not depend on which worker comes first.
    request->generator = math::random::MakeStream(root_seed, i);
    const auto task = std::make_shared<ZorTask>(request);
    responses.emplace_back(name, *task, std::move(task_log));
    CheckStopRequested();
    pool.Schedule([task] { (*task)(); });
  }
  return responses;
}

void CZORHandler::CollectResponses(std::vector<PendingResponse>& responses, LogBase& log) {
  std::size_t finished = 0;
  for (PendingResponse& response : responses) {
    response.Wait();
    response.log.messages->Forward(log);
    CollectResponse(response);
    PrintModel(models_.back(), LongestName(response_names_), log);
    log.Information() << L"Finished evaluation of response " << response.name;
    progress_(static_cast<double>(++finished) / static_cast<double>(responses.size()));
  }
}

void CZORHandler::CollectResponse(PendingResponse& response) {
  std::vector<bool> is_used(rows_.size(), true);
  // The failure of a task that has no valid values comes first.
  for (const std::uint64_t row : response.unused_indices.get()) is_used[row] = false;
  const std::shared_ptr<math::metamodel::SurrogateBase> surrogate = response.surrogate.get();
  models_.push_back({response.name, response.result.get(), surrogate});
  ZORInformation& information = GetInformation();
  math::metamodel::Subsets cv_indices = response.cv_indices.get();
  if (settings_.WriteCVValues()) AddCVValues(models_.back(), cv_indices, is_used);
  information.cv_indexes_[response.name] = std::move(cv_indices);
  information.best_models_->AddSubspaceResult(response.name, models_.back().result);
  AddSurrogateInfo(models_.back(), surrogate, is_used);
}

void CZORHandler::AddSurrogateInfo(const ReportedModel& model,
                                   const std::shared_ptr<math::metamodel::SurrogateBase>& surrogate,
                                   const std::vector<bool>& is_used) {
  SurrogateInfo info(model.response, surrogate, model.result, input_names_);
  for (const auto& [response, pieces] : components_) {
    const auto piece = std::find(pieces.begin(), pieces.end(), model.response);
    if (piece == pieces.end() || (pieces.size() == 1 && pieces[0] == response)) continue;
    info = SurrogateInfo(response, surrogate, model.result, input_names_);
    info.SetComponent(static_cast<std::uint64_t>(piece - pieces.begin()));
    break;
  }
  info.SetTestingType(GetSearchSettings().testing_type_);
  std::vector<CHierachicalId> used;
  const auto& designs = std::as_const(lyra_).GetDesignContainer();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    if (is_used[i]) used.push_back(designs[static_cast<std::size_t>(rows_[i])].GetId());
  }
  info.SetUsedHIds(std::move(used));
  GetInformation().GetNonConstSurrogateInfos().AddSurrogateInfo(std::move(info));
}

/// Adds the cross-validation values as a response of its own; designs that the model did not use get no value.
void CZORHandler::AddCVValues(const ReportedModel& model, const math::metamodel::Subsets& cv_indices,
                              const std::vector<bool>& is_used) {
  if (!model.surrogate) return;
  const math::Vector values = model.surrogate->ApproximateCrossValidation(cv_indices);
  const std::wstring name = model.response + settings_.CVValuesSuffix();
  auto& designs = lyra_.GetDesignContainer();
  math::Index next = 0;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    CDesignEntry entry;
    if (is_used[i]) entry = values[next++];
    designs[static_cast<std::size_t>(rows_[i])].OverrideResponse(name, std::move(entry));
  }
  GetInformation().response_to_cv_mapping_[model.response] = name;
}

void CZORHandler::PrintResults(LogBase& log) {
  ZORInformation& information = GetInformation();
  PrintBestMetamodels(models_, UsesGroups(), log);
  PrintPolynomialInfo(models_, log);
  const auto frequencies = RelativeFrequencyOfImportance(models_, input_names_);
  information.relative_freq_of_importance_ = {frequencies.begin(), frequencies.end()};
  PrintRelativeFrequencyOfImportance(frequencies, log);
  if (!settings_.ExtractAdvancedSettingsByType().write_function_string_) return;
  for (const ReportedModel& model : models_) {
    if (model.result.model_type != math::metamodel::ModelType::kPolynomial || !model.surrogate) continue;
    information.function_strings_[model.response] = model.surrogate->GetFunctionStr(input_names_);
  }
  PrintRegressionFunctions(information.function_strings_, log);
}

void CZORHandler::FinishRecord() {
  Designs designs = std::move(lyra_.GetDesignContainer());
  std::vector<std::wstring> unused = black_list_;
  for (const auto& [response, values] : GetInformation().response_to_cv_mapping_) {
    unused.erase(std::remove(unused.begin(), unused.end(), values), unused.end());  // written anew by this run
  }
  RemoveUnused(designs, rows_, unused, parameters_);
  designs = algorithm::datatypes::sortByParameterOrder(std::move(designs), parameters_);
  designs.SetDesignsDone(true);
  lyra_.SetDesignContainer(std::move(designs));
}

void CZORHandler::RequestStop() {
  stop_request_ = true;
  stop_helper_->RequestStop();
}

void CZORHandler::CheckStopRequested() const {
  if (stop_request_) utils::RaiseStopRequested();
}

std::vector<std::uint64_t> CZORHandler::GetParameterImportance() const {
  std::vector<std::uint64_t> importance(input_names_.size(), 1);
  const auto& given = settings_.GetParameterImportance();
  for (std::size_t i = 0; i < importance.size(); ++i) {
    const auto entry = given.find(input_names_[i]);
    if (entry != given.end()) importance[i] = entry->second;
  }
  return importance;
}

bool CZORHandler::UsesGroups() const {
  return GetSearchSettings().testing_type_ == math::metamodel::TestingType::kCrossValidation;
}

math::metamodel::ZORSettings CZORHandler::GetSearchSettings() const {
  math::metamodel::ZORSettings settings = settings_.ExtractAdvancedSettingsByType().pzor_settings_;
  const auto limits = settings_.GetLimits();
  if (std::isinf(limits.first) && std::isinf(limits.second)) return settings;
  settings.SetUseLimits(true);
  settings.SetLimits(limits);
  return settings;
}

}  // namespace kestrel::zor
