#pragma once

#include <boost/thread/shared_mutex.hpp>
#include <boost/thread/tss.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "build/zor_handler.h"
#include "build/zorsolver.h"
#include "datatypes/results/combined_zor_settings.h"
#include "datatypes/results/zor_information.h"
#include "selection/zor2_settings.h"
#include "support/linear_algebra.h"
#include "surrogates/surrogate2_base.h"
#include "zor_api.h"

/// What stands behind a handle: the problem, its settings and, once built, its models.
///
/// The mutex is only ever taken shared, by what changes or builds: it marks these calls, it does not serialise them.
struct ZOR {
 public:
  ZOR();
  ZOR(const ZOR&) = delete;
  ZOR& operator=(const ZOR&) = delete;

  /// Back to not built: drops the models and the last error; keeps settings, counts and names.
  void ClearResults();

  /// The text of the calling thread. Without memory for a new text the thread keeps an empty one.
  void SetLastError(std::string_view text) noexcept;
  const char* GetLastError() const noexcept;

  /// The samples of a build with their names, made up as "p0", "r0" and so on where none were given. Raises
  /// std::runtime_error if counts, names and matrices do not fit each other.
  /// @param inputs  N x n, @param outputs  N x m, one row per design.
  kestrel::zor::SampleTable BuildHandlerData(kestrel::math::Matrix inputs, kestrel::math::Matrix outputs) const;

  /// The settings of a build of these samples: advanced level, all outputs.
  kestrel::zor::ZORCombinedSettings GetCombinedSettings(const kestrel::zor::SampleTable& samples) const;

  /// Takes over what a build left. Raises std::runtime_error "ZOR information has wrong sizes." if the models are not
  /// as many as the outputs.
  void FillZORData(const kestrel::algorithm::datatypes::ZORInformation& information);

  /// Smallest and largest sampled value per input; NaN for the inputs without a name.
  std::vector<std::pair<double, double>> GetSamplingBounds() const;

  std::uint64_t number_parallel_outputs_ = 0;  ///< 0: one per hardware thread
  kestrel::math::metamodel::ZORSettings settings_;
  std::uint64_t num_inputs_ = 0;
  std::uint64_t num_outputs_ = 0;
  std::vector<std::string> input_names_;   ///< UTF-8; empty or one per input
  std::vector<std::string> output_names_;  ///< UTF-8; empty or one per output
  mutable boost::shared_mutex mutex_;
  kestrel::zor::ZORSolver zorsolver_{true};
  bool built_ = false;

  // Per output, while built.
  std::vector<double> cop_per_output_;
  std::vector<std::vector<double>> single_cops_per_output_;  ///< one per input
  std::vector<zor_model_type> model_per_output_;
  std::vector<std::vector<std::uint32_t>> cv_indexes_per_output_;  ///< per design of the model; empty: leave one out
  std::vector<std::shared_ptr<kestrel::math::metamodel::SurrogateBase>> surrogate_per_output_;

 private:
  /// A thread-specific text is found by the address of its owner, and the texts of other threads outlive the owner. The
  /// generation tells a text of this record from one that an earlier record at the same address left on a thread.
  struct LastError {
    std::uint64_t generation = 0;
    std::string text;
  };

  std::uint64_t generation_;
  boost::thread_specific_ptr<LastError> last_error_;
};
