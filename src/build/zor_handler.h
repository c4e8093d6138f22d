#pragma once

#include <boost/atomic/atomic.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "build/combined_zor_settings_helper.h"
#include "datatypes/results/surrogate_info.h"
#include "support/linear_algebra.h"
#include "support/log.h"

namespace kestrel::zor {

/// The sampled designs: one row per design, one column per name.
struct SampleTable {
  std::vector<std::wstring> parameter_names;
  std::vector<std::wstring> response_names;
  math::Matrix parameters;
  math::Matrix responses;
};

using ProgressCallable = std::function<void(double)>;

/// Runs one complete build: checks designs and settings, searches each response in a task of its own, and gathers the
/// results in the order of the responses. Serves one build.
class CZORHandler {
 public:
  /// Data that cannot be used raise utils::runtime_error with every error line logged, one a line, and at the end
  /// "Given data is invalid.".
  CZORHandler(std::shared_ptr<utils::log::LogBase> log, SampleTable samples, ZORCombinedSettings settings);

  /// True if the build can run; else the reasons stand in the log as errors.
  bool Check(utils::log::LogBase& log) const;

  /// The whole run. The exception of a task ends it and comes out here.
  void Build();

  /// May be called from any thread: the build ends with "Stop requested. Unable to continue.".
  void RequestStop();
  void SetProgressCallable(ProgressCallable progress) { progress_ = std::move(progress); }

  const ZORCombinedSettings& GetSettings() const { return settings_; }
  const algorithm::datatypes::ZORInformation& GetZORInformation() const { return information_; }

 private:
  struct PendingResponse;

  void SetData();
  void CheckStopRequested() const;
  std::vector<std::uint64_t> GetImportance() const;

  std::shared_ptr<utils::log::LogBase> log_;
  SampleTable samples_;
  ZORCombinedSettings settings_;
  algorithm::datatypes::ZORInformation information_;
  ProgressCallable progress_;
  boost::atomics::atomic<bool> stop_request_{false};
  std::shared_ptr<utils::StopHelper> stop_helper_;
};

}  // namespace kestrel::zor
