#pragma once

#include <boost/atomic/atomic.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "datatypes/results/combined_zor_settings.h"
#include "datatypes/results/zor_information.h"
#include "support/linear_algebra.h"
#include "support/log.h"
#include "support/stop_helper.h"

namespace kestrel::zor {

/// The sampled designs: one row per design, one column per name.
struct SampleTable {
  std::vector<std::wstring> parameter_names;
  std::vector<std::wstring> response_names;
  math::Matrix parameters;
  math::Matrix responses;
};

/// Told the finished fraction of a build, 0 to 1.
using ProgressCallable = std::function<void(double)>;

/// Reports nothing.
void DefaultProgressCallable(double fraction);

class ZORTaskPool;

/// Runs one complete build: checks designs and settings, searches each response in a task of its own, and gathers the
/// results in the order of the responses. Serves one build.
class CZORHandler {
 public:
  /// Data that cannot be used raise utils::runtime_error with every error line logged, one a line, and at the end
  /// "Given data is invalid."; an input that is NaN or infinite raises "Input %u of design %u is not a finite number.",
  /// both counted from 0.
  CZORHandler(std::shared_ptr<utils::log::LogBase> log, SampleTable samples, ZORCombinedSettings settings);

  /// True if the build can run; else the reasons stand in the log as errors.
  bool Check(utils::log::LogBase& log) const;

  /// The whole run. The exception of a task ends it and comes out here, when no task runs any more. A refusal by
  /// `Check` raises utils::runtime_error with its lines.
  void Build();

  /// May be called from any thread: the build ends with "Stop requested. Unable to continue.".
  void RequestStop();
  void SetProgressCallable(ProgressCallable progress) { progress_ = std::move(progress); }

  const ZORCombinedSettings& GetSettings() const { return settings_; }
  const algorithm::datatypes::ZORInformation& GetZORInformation() const { return information_; }

 private:
  struct PendingResponse;

  void SetData();
  bool PrepareData(utils::log::LogBase& log);
  /// Raises utils::runtime_error "Stop requested. Unable to continue." once a stop was requested.
  void CheckStopRequested() const;
  std::vector<PendingResponse> ScheduleResponses(ZORTaskPool& pool) const;
  void CollectResponses(std::vector<PendingResponse>& responses);
  std::vector<std::uint64_t> GetParameterImportance() const;
  /// The search settings with the limits of the responses, if there are any.
  math::metamodel::ZORSettings GetSearchSettings() const;

  std::shared_ptr<utils::log::LogBase> log_;
  SampleTable samples_;
  ZORCombinedSettings settings_;
  algorithm::datatypes::ZORInformation information_;
  ProgressCallable progress_ = DefaultProgressCallable;
  boost::atomics::atomic<bool> stop_request_{false};
  std::shared_ptr<utils::StopHelper> stop_helper_ = std::make_shared<utils::StopHelper>();
};

}  // namespace kestrel::zor
