#include "build/zor_handler.h"

#include <algorithm>
#include <boost/format.hpp>
#include <boost/thread/thread.hpp>
#include <cmath>
#include <future>
#include <limits>
#include <map>
#include <utility>

#include "build/zor_task.h"
#include "build/zor_task_pool.h"
#include "statistics/random.h"
#include "support/exceptions.h"

namespace kestrel::zor {
namespace {

using algorithm::datatypes::SurrogateInfo;
using Limits = std::vector<std::pair<double, double>>;

constexpr math::Index kMinDesigns = 2;

/// Parameters whose bounds nobody gave reach beyond their samples by this fraction of the sampled range at either end.
constexpr double kBoundsAdjustment = 0.1;

void RequireFiniteInputs(const math::Matrix& inputs) {
  if (inputs.allFinite()) return;
  for (math::Index design = 0; design < inputs.rows(); ++design) {
    for (math::Index input = 0; input < inputs.cols(); ++input) {
      if (std::isfinite(inputs(design, input))) continue;
      throw utils::runtime_error(
          (boost::wformat(L"Input %u of design %u is not a finite number.") % input % design).str());
    }
  }
}

/// Drops the responses that are not marked as used.
void RemoveUnusedResponses(SampleTable& samples, const std::map<std::wstring, bool>& usage) {
  math::Index kept = 0;
  for (math::Index column = 0; column < samples.responses.cols(); ++column) {
    const std::wstring name = samples.response_names[static_cast<std::size_t>(column)];
    const auto entry = usage.find(name);
    if (entry == usage.end() || !entry->second) continue;
    if (kept != column) samples.responses.col(kept) = samples.responses.col(column);
    samples.response_names[static_cast<std::size_t>(kept++)] = name;
  }
  samples.responses.conservativeResize(Eigen::NoChange, kept);
  samples.response_names.resize(static_cast<std::size_t>(kept));
}

Limits SampledRanges(const math::Matrix& samples) {
  Limits ranges;
  for (math::Index column = 0; column < samples.cols(); ++column) {
    ranges.emplace_back(samples.col(column).minCoeff(), samples.col(column).maxCoeff());
  }
  return ranges;
}

Limits WidenedRanges(Limits ranges) {
  for (auto& [lower, upper] : ranges) {
    const double margin = kBoundsAdjustment * (upper - lower);
    lower -= margin;
    upper += margin;
  }
  return ranges;
}

/// Smallest and largest finite value; the infinities in reverse order if there is none.
std::pair<double, double> FiniteRange(const math::VectorIn& values) {
  std::pair<double, double> range(std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity());
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    range.first = std::min(range.first, value);
    range.second = std::max(range.second, value);
  }
  return range;
}

/// The names, ranges and abilities of the samples beside the choices that the caller made.
ZORData DescribeData(const SampleTable& samples, ZORData data) {
  data.SetParameters(samples.parameter_names);
  data.SetResponses(samples.response_names);
  for (std::size_t i = 0; i < samples.response_names.size(); ++i) {
    const std::wstring& name = samples.response_names[i];
    data.responses_boundaries_[name] = FiniteRange(samples.responses.col(static_cast<math::Index>(i)));
    data.responses_zorability_[name] = true;  // a scalar response; without a valid value its task tells
  }
  return data;
}

std::wstring ErrorLines(const utils::log::VectorLog& log) {
  std::wstring lines;
  for (const auto& [level, text] : log.GetEntries()) {
    if (level == utils::log::LogLevel::kError) lines += text + L"\n";
  }
  return lines;
}

}  // namespace

void DefaultProgressCallable(double) {}

/// What the caller's thread waits for.
struct CZORHandler::PendingResponse {
  PendingResponse(std::wstring response_name, ZorTask& task)
      : name(std::move(response_name)),
        result(task.GetResultsFuture()),
        surrogate(task.GetBestSurrogateFuture()),
        cv_indices(task.GetCVIndicesFuture()),
        unused_indices(task.GetUnusedIndicesFuture()) {}

  std::wstring name;
  std::future<math::metamodel::SubspaceResults> result;
  std::future<std::shared_ptr<math::metamodel::SurrogateBase>> surrogate;
  std::future<math::metamodel::Subsets> cv_indices;
  std::future<math::IndexVector> unused_indices;
};

CZORHandler::CZORHandler(std::shared_ptr<utils::log::LogBase> log, SampleTable samples, ZORCombinedSettings settings)
    : log_(std::move(log)), samples_(std::move(samples)), settings_(std::move(settings)) {
  SetData();
}

void CZORHandler::SetData() {
  RequireFiniteInputs(samples_.parameters);
  utils::log::VectorLog messages;
  const bool usable = PrepareData(messages);
  messages.Forward(*log_);
  if (!usable) throw utils::runtime_error(ErrorLines(messages) + L"Given data is invalid.");
}

bool CZORHandler::PrepareData(utils::log::LogBase& log) {
  const auto refuse = [&log](const wchar_t* reason) {
    log.Error() << reason;
    return false;
  };
  if (!settings_.Check(log, false)) return refuse(L"Incorrect settings given.");
  settings_.SetZORData(DescribeData(samples_, settings_.GetZORData()));
  RemoveUnusedResponses(samples_, settings_.GetResponsesUsage());
  if (samples_.parameters.rows() < kMinDesigns) {
    return refuse(L"There are not enough designs for ZOR. Need at least 2 designs.");
  }
  if (samples_.response_names.empty()) return refuse(L"There are no responses a ZOR can be found for.");
  if (samples_.parameter_names.empty()) return refuse(L"There are no parameters a ZOR can be found for.");

  information_.parameter_names_ = samples_.parameter_names;
  information_.sampling_limits_ = SampledRanges(samples_.parameters);
  information_.defined_limits_ = WidenedRanges(information_.sampling_limits_);
  return true;
}

bool CZORHandler::Check(utils::log::LogBase& log) const {
  if (!settings_.Check(log, true)) {
    log.Error() << L"Invalid settings.";
    return false;
  }
  if (!settings_.WriteCVValues()) return true;
  bool good = true;
  const CDesignEntrySequence& all = settings_.GetZORData().responses_;
  for (const std::wstring& name : samples_.response_names) {
    const std::wstring values_name = name + settings_.CVValuesSuffix();
    if (!all.Contains(values_name)) continue;
    log.Error() << L"Response " << values_name
                << L" does already exist but would be the name of a cross valdiation value. "
                   L"Please change the cross validation suffix.";
    good = false;
  }
  return good;
}

void CZORHandler::Build() {
  progress_(0.0);
  utils::log::VectorLog messages;
  const bool good = Check(messages);
  messages.Forward(*log_);
  if (!good) {
    std::wstring lines = ErrorLines(messages);
    lines.pop_back();
    throw utils::runtime_error(lines);
  }

  const auto workers = std::min<std::uint64_t>(settings_.NumResponsesParallel(), samples_.response_names.size());
  ZORTaskPool pool(workers);  // its end joins the threads, however the build ends
  try {
    std::vector<PendingResponse> responses = ScheduleResponses(pool);
    CollectResponses(responses);
  } catch (...) {
    RequestStop();  // the other tasks need not come to their end
    throw;
  }
}

std::vector<CZORHandler::PendingResponse> CZORHandler::ScheduleResponses(ZORTaskPool& pool) const {
  const boost::this_thread::disable_interruption no_interruption;
  const auto inputs = std::make_shared<const math::Matrix>(samples_.parameters);
  const std::vector<std::uint64_t> importance = GetParameterImportance();
  const math::metamodel::ZORSettings search_settings = GetSearchSettings();
  const std::uint64_t root_seed = math::random::DrawSharedSeed();

  std::vector<PendingResponse> responses;
  for (std::size_t i = 0; i < samples_.response_names.size(); ++i) {
    const std::wstring& name = samples_.response_names[i];
    const auto request = std::make_shared<ZorTask::ZorRequest>(stop_request_);
    request->inputs = inputs;
    request->output = samples_.responses.col(static_cast<math::Index>(i));
    request->important_info = importance;
    request->settings = search_settings;
    request->task_log = log_;
    request->search_log = log_;
    request->stop_helper = stop_helper_;
    request->names = samples_.parameter_names;
    request->response_name = name;
    // A stream of its own by position: the result does not depend on which worker comes first.
    request->generator = math::random::MakeStream(root_seed, i);
    const auto task = std::make_shared<ZorTask>(request);
    responses.emplace_back(name, *task);
    CheckStopRequested();
    pool.Schedule([task] { (*task)(); });
  }
  return responses;
}

void CZORHandler::CollectResponses(std::vector<PendingResponse>& responses) {
  std::size_t finished = 0;
  for (PendingResponse& response : responses) {
    response.unused_indices.get();  // the failure of a task that has no valid values comes first
    const math::metamodel::SubspaceResults result = response.result.get();
    information_.surrogate_infos_.AddSurrogateInfo(SurrogateInfo(response.name, response.surrogate.get(), result));
    information_.cv_indexes_[response.name] = response.cv_indices.get();
    log_->Information() << L"Finished evaluation of response " << response.name;
    progress_(static_cast<double>(++finished) / static_cast<double>(responses.size()));
  }
}

void CZORHandler::RequestStop() {
  stop_request_ = true;
  stop_helper_->RequestStop();
}

void CZORHandler::CheckStopRequested() const {
  if (stop_request_) utils::RaiseStopRequested();
}

std::vector<std::uint64_t> CZORHandler::GetParameterImportance() const {
  std::vector<std::uint64_t> importance(samples_.parameter_names.size(), 1);
  const auto& given = settings_.GetParameterImportance();
  for (std::size_t i = 0; i < importance.size(); ++i) {
    const auto entry = given.find(samples_.parameter_names[i]);
    if (entry != given.end()) importance[i] = entry->second;
  }
  return importance;
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
