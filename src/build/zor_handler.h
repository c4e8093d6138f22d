#pragma once

#include <boost/atomic/atomic.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "build/build_report.h"
#include "datatypes/design_manager.h"
#include "datatypes/design_responses.h"
#include "datatypes/nvp_sequence.h"
#include "datatypes/parameter_manager.h"
#include "datatypes/results/combined_zor_settings.h"
#include "datatypes/results/zor_information.h"
#include "persistence/database/lyra.h"
#include "support/linear_algebra.h"
#include "support/log.h"
#include "support/stop_helper.h"
#include "values/variant.h"

namespace kestrel::zor {

/// Told the finished fraction of a build, 0 to 1.
using ProgressCallable = std::function<void(double)>;

/// Reports nothing.
void DefaultProgressCallable(double fraction);

class ZORTaskPool;

/// Runs one complete build: checks designs, parameters and settings, searches each response in a task of its own, and
/// gathers the results in the order of the responses into the record of the run. Serves one build.
class CZORHandler {
 public:
  using Designs = algorithm::datatypes::DesignManager;
  using Parameters = algorithm::datatypes::ParameterManager;
  using LYRA = algorithm::datatypes::LYRA;
  using ZORInformation = algorithm::datatypes::AlgorithmInfo::ZORInformation;
  /// A column per name, as a Variant of the kind VECTOR; all of one length.
  using Columns = CNVPSequence<std::wstring, math::Variant<double>, std::uint64_t>;

  /// Data that cannot be used raise utils::runtime_error with every error line logged, one a line, and at the end
  /// "Given data is invalid."; an input that is NaN or infinite raises "Input %u of design %u is not a finite number.",
  /// both counted from 0.
  CZORHandler(std::shared_ptr<utils::log::LogBase> log, Parameters parameters, Designs designs,
              algorithm::datatypes::Design reference, ZORCombinedSettings settings);
  /// From columns of samples. Columns of different lengths raise utils::runtime_error.
  CZORHandler(std::shared_ptr<utils::log::LogBase> log, const Columns& parameters, const Columns& responses,
              ZORCombinedSettings settings);

  /// Prepares record, parameters and responses; the constructors end in it. Raises as they do.
  void SetData(utils::log::LogBase& log);
  /// Replaces the settings and prepares anew.
  void UpdateSettings(utils::log::LogBase& log, ZORCombinedSettings settings);
  /// Goes on from the record of an earlier run, without its meta data and the attached files of its tools.
  void FillLYRA(utils::log::LogBase& log, const LYRA& lyra, ZORCombinedSettings settings);

  /// True if the build can run; else the reasons stand in the log as errors.
  bool Check(utils::log::LogBase& log) const;

  /// The whole run. The exception of a task ends it and comes out here, when no task runs any more. A refusal by
  /// `Check` raises utils::runtime_error with its lines.
  void Build();

  /// May be called from any thread: the build ends with "Stop requested. Unable to continue.".
  void RequestStop();
  void SetProgressCallable(ProgressCallable progress) { progress_ = std::move(progress); }

  /// Names of the responses that hold cross-validation values of an earlier run with the same suffix.
  std::vector<std::wstring> ExtractResponsesBlackList(utils::log::LogBase& log) const;

  const ZORCombinedSettings& GetSettings() const { return settings_; }
  const LYRA& GetLYRA() const { return lyra_; }
  /// The record, for the one who goes on with it; the handler is of no use afterwards.
  LYRA TakeLYRA() { return std::move(lyra_); }

  /// The parameters that are not constant: the inputs of the models.
  Parameters GetNonConstParameterManager() const;
  /// The parameters with their bounds at the smallest and largest sample, widened by the safety factor, if the settings
  /// ask for that; else as they are.
  Parameters GetAdaptedZORParameterManager() const;
  /// The sampled values of the inputs, N x n, one row per design.
  static math::Matrix GetZorPoints(const Parameters& parameters, const Designs& designs);
  /// The numbers behind the designs: the inputs, or the scalar responses that are modelled; one row per design.
  const math::Matrix& GetZorValues(bool responses) const { return responses ? values_ : points_; }

 private:
  struct PendingResponse;

  bool PrepareData(utils::log::LogBase& log);
  void DescribeData();
  bool PrepareParameters(utils::log::LogBase& log);
  void AddMissingBounds(utils::log::LogBase& log);
  bool SelectDesigns(utils::log::LogBase& log);
  bool PrepareInputs(utils::log::LogBase& log);
  math::Matrix ResponseValues(const Designs& designs) const;
  void SetResponsesBoundaries();

  /// Raises utils::runtime_error "Stop requested. Unable to continue." once a stop was requested.
  void CheckStopRequested() const;
  void RequireCheck(utils::log::LogBase& log) const;
  std::shared_ptr<utils::log::LogBase> InitializeAlgorithmLog() const;
  void PrepareInformation();
  std::vector<PendingResponse> ScheduleResponses(ZORTaskPool& pool, utils::log::LogBase& log);
  void CollectResponses(std::vector<PendingResponse>& responses, utils::log::LogBase& log);
  void CollectResponse(PendingResponse& response);
  void AddSurrogateInfo(const ReportedModel& model, const std::shared_ptr<math::metamodel::SurrogateBase>& surrogate,
                        const std::vector<bool>& is_used);
  void AddCVValues(const ReportedModel& model, const std::vector<std::uint64_t>& cv_indices,
                   const std::vector<bool>& is_used);
  void PrintResults(utils::log::LogBase& log);
  void FinishRecord();
  std::vector<std::uint64_t> GetParameterImportance() const;
  math::metamodel::ZORSettings GetSearchSettings() const;
  /// The models are tested on groups of designs, not on single ones.
  bool UsesGroups() const;
  ZORInformation& GetInformation();

  std::shared_ptr<utils::log::LogBase> log_;
  LYRA lyra_;
  ZORCombinedSettings settings_;
  Parameters parameters_;                                  ///< those of the designs, without dependent ones
  std::vector<std::wstring> black_list_;                   ///< responses that do not count
  std::vector<math::Index> rows_;                          ///< positions of the N designs that count
  std::vector<std::wstring> input_names_;                  ///< the parameters that are not constant
  std::vector<std::wstring> response_names_;               ///< the scalar responses that are modelled
  algorithm::datatypes::SplitResponseMapping components_;  ///< the responses that they are pieces of
  math::Matrix points_;                                    ///< N x inputs
  math::Matrix values_;                                    ///< N x modelled responses
  ReportedModels models_;
  ProgressCallable progress_ = DefaultProgressCallable;
  boost::atomics::atomic<bool> stop_request_{false};
  std::shared_ptr<utils::StopHelper> stop_helper_ = std::make_shared<utils::StopHelper>();
};

}  // namespace kestrel::zor
