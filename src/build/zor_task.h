#pragma once

#include <boost/atomic/atomic.hpp>
#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "selection/subspace_results.h"
#include "selection/zor2.h"
#include "selection/zor2_settings.h"
#include "statistics/random.h"
#include "support/linear_algebra.h"
#include "support/log.h"
#include "support/stop_helper.h"

namespace kestrel::zor {

/// The search of one response, wrapped into a job whose results come back through four futures.
class ZorTask {
 public:
  /// What a task needs, by value unless it is shared with the handler.
  struct ZorRequest {
    explicit ZorRequest(const boost::atomics::atomic<bool>& stop) : stop_request(stop) {}

    std::shared_ptr<const math::Matrix> inputs;  ///< N x n, one row per design; one table for all tasks that wait
    math::Vector output;                         ///< length N; entries that are not finite are dropped
    std::vector<std::uint64_t> important_info;
    math::metamodel::ZORSettings settings;
    std::shared_ptr<utils::log::LogBase> task_log;
    std::shared_ptr<utils::log::LogBase> search_log;
    const boost::atomics::atomic<bool>& stop_request;
    std::shared_ptr<utils::StopHelper> stop_helper;
    std::shared_ptr<math::metamodel::SubspaceResultContainer> subspace_results;  ///< may be null
    std::vector<std::wstring> names;
    std::wstring response_name;
    math::random::Generator generator;  ///< the random stream of this response
    bool interruptible = true;          ///< `CheckStopRequested` is an interruption point of the thread library
  };

  explicit ZorTask(std::shared_ptr<ZorRequest> request);

  /// Runs the search once. Every exception goes into the promises not yet set.
  void operator()();

  std::future<math::metamodel::SubspaceResults> GetResultsFuture() { return results_.get_future(); }
  std::future<std::shared_ptr<math::metamodel::SurrogateBase>> GetBestSurrogateFuture() {
    return surrogate_.get_future();
  }
  std::future<math::metamodel::Subsets> GetCVIndicesFuture() { return cv_indices_.get_future(); }
  std::future<math::IndexVector> GetUnusedIndicesFuture() { return unused_indices_.get_future(); }

  /// Removes the rows whose output is NaN or infinite and returns their indices, counted before any removal. Raises
  /// utils::runtime_error "Unable to calculate ZOR without valid design values." if no row is left.
  static math::IndexVector CleanData(math::Matrix& inputs, math::Vector& output);

 private:
  void Run();
  math::metamodel::Zor ConstructZOR();
  void InitializeZOR(math::metamodel::Zor& zor) const;
  void CheckStopRequested() const;

  std::shared_ptr<ZorRequest> request_;
  std::promise<math::metamodel::SubspaceResults> results_;
  std::promise<std::shared_ptr<math::metamodel::SurrogateBase>> surrogate_;
  std::promise<math::metamodel::Subsets> cv_indices_;
  std::promise<math::IndexVector> unused_indices_;
};

}  // namespace kestrel::zor
