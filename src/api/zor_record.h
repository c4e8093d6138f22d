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
#include "persistence/archive/persistent.h"
#include "persistence/database/lyra.h"
#include "selection/zor2_settings.h"
#include "support/linear_algebra.h"
#include "surrogates/surrogate2_base.h"
#include "zor_api.h"

/// What stands behind a handle: the problem, its settings and, once built, its models.
///
/// The mutex is only ever taken shared, by what changes or builds: it marks these calls, it does not serialise them.
struct ZOR {
 public:
  /// A value of `zor_model_type`. Its type is fixed, so that it may hold whatever number a file gives.
  enum class ModelNumber : std::int32_t {};

  ZOR();
  ZOR(const ZOR&) = delete;
  ZOR& operator=(const ZOR&) = delete;

  /// Back to not built: drops the models and the last error; keeps settings, counts and names.
  void ClearResults();

  /// The text of the calling thread. Without memory for a new text the thread keeps an empty one.
  void SetLastError(std::string_view text) noexcept;
  const char* GetLastError() const noexcept;

  /// What a build is made of.
  struct HandlerData {
    kestrel::algorithm::datatypes::ParameterManager parameters;
    kestrel::algorithm::datatypes::DesignManager designs;
    std::vector<std::wstring> input_names;
    std::vector<std::wstring> output_names;
  };

  /// The samples as finished designs, with names made up as "p0", "r0" and so on where none were given, and parameters
  /// with bounds taken from them. Raises std::runtime_error if counts, names and matrices do not fit each other.
  /// @param inputs  N x n, @param outputs  N x m, one row per design.
  HandlerData BuildHandlerData(const kestrel::math::Matrix& inputs, const kestrel::math::Matrix& outputs) const;

  /// The settings of a build of these samples: advanced level, all outputs.
  kestrel::zor::ZORCombinedSettings GetCombinedSettings(const HandlerData& data) const;

  /// Takes over what a build left. Raises std::runtime_error "ZOR information missing." for a record of anything else,
  /// and "ZOR information has wrong sizes." if the models are not as many as the outputs.
  void FillZORData(const kestrel::algorithm::datatypes::LYRA& lyra);

  /// Compares a record that was read with its database. Raises std::runtime_error for the first difference.
  void CheckData() const;

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
  std::vector<ModelNumber> model_per_output_;
  std::vector<std::vector<std::uint32_t>> cv_indexes_per_output_;  ///< per design of the model; empty: leave one out
  std::vector<std::shared_ptr<kestrel::math::metamodel::SurrogateBase>> surrogate_per_output_;
  std::string report_;  ///< of the build, UTF-8; not stored

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  /// Brings what was read into the present form, compares it and prepares the evaluation.
  void FinishReading(unsigned int version);
  void TakeDescriptionFromDatabase();
  void CheckOutput(std::size_t output, const kestrel::algorithm::datatypes::SurrogateInfo& info,
                   const kestrel::algorithm::datatypes::ZORInformation& information) const;

  /// A thread-specific text is found by the address of its owner, and the texts of other threads outlive the owner. The
  /// generation tells a text of this record from one that an earlier record at the same address left on a thread.
  struct LastError {
    std::uint64_t generation = 0;
    std::string text;
  };

  std::uint64_t generation_;
  boost::thread_specific_ptr<LastError> last_error_;
};

BOOST_CLASS_VERSION(ZOR, 2)
