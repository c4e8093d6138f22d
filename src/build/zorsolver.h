#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "calculator/calculator.h"
#include "datatypes/criterion.h"
#include "datatypes/design_manager.h"
#include "datatypes/results/zor_information.h"
#include "persistence/archive/persistent.h"
#include "persistence/database/lyra.h"
#include "support/linear_algebra.h"
#include "support/log.h"

namespace kestrel::zor {

namespace enums {
/// Against which bounds the inputs of an evaluation are tested.
enum class eExtrapolationTypes : std::int32_t { kFree = 0, kParameterBounds = 1, kSamplingBounds = 2 };
}  // namespace enums

/// Evaluates finished models. Points are q x n, one row per design, columns in the order of the parameters. Used by one
/// thread at a time.
///
/// Every evaluation refuses in the same way. A row out of bounds raises utils::runtime_error "Value %g of Parameter %s
/// violates bounds: [%g, %g]" if `throwing`, else that is logged and the result is empty. Another number of columns is
/// logged as "%u input columns expected." and the result is empty. Without usable models utils::runtime_error is
/// raised.
class ZORSolver {
 public:
  /// @param keep_log  collect the messages for `GetLog`; else they are dropped.
  explicit ZORSolver(bool keep_log = false);

  /// Takes over the record of a run and prepares its models for evaluation.
  /// @param path  of the file that the record came from; empty for a build in this process.
  void InitializeSolver(algorithm::datatypes::LYRA lyra, const std::filesystem::path& path);
  /// The same for the record that is there: derives names and bounds, builds what is not built. A record without
  /// models leaves a solver that refuses to evaluate.
  void InitializeSolver();

  /// All responses and, behind them, the values of all criteria of the record; q x (responses + criteria). A criterion
  /// without a real number for its value is NaN; why, goes to the log.
  /// @param extrapolate  no test of the bounds; else the sampling bounds.
  math::Matrix ApproximateDesigns(const math::MatrixIn& points, bool extrapolate, bool throwing) const;
  math::Matrix ApproximateDesigns(const math::MatrixIn& points, enums::eExtrapolationTypes type, bool throwing) const;
  /// The responses alone.
  math::Matrix ApproximateResponses(const math::MatrixIn& points, enums::eExtrapolationTypes type, bool throwing) const;

  /// Copies of the designs with the predicted responses in the place of their own and with the criteria of the record;
  /// pieces of a vector response are put together again, and dependent parameters of the record are computed first.
  /// Designs out of bounds, where that does not raise, leave all without responses and criteria.
  algorithm::datatypes::DesignManager Approximate(const algorithm::datatypes::DesignManager& designs,
                                                  enums::eExtrapolationTypes type, bool throwing) const;

  /// Gradients of one response, q x n.
  math::Matrix ApproximateGradientsPerResponse(const math::MatrixIn& points, const std::wstring& response,
                                               enums::eExtrapolationTypes type, bool throwing) const;
  /// Error records of one response, q x 5; the fifth value is the density.
  math::Matrix ApproximateErrorsPerResponse(const math::MatrixIn& points, const std::wstring& response,
                                            enums::eExtrapolationTypes type, bool throwing) const;

  /// True if a value lies outside its bounds or is NaN; a value on a bound does not. An unknown type raises
  /// utils::runtime_error "Extrapolation type is not defined.".
  bool BoundariesViolated(const math::MatrixIn& points, enums::eExtrapolationTypes type, bool throwing) const;

  const algorithm::datatypes::LYRA& GetLYRA() const { return lyra_; }
  /// The models; none without a record of a run.
  const algorithm::datatypes::SurrogateInfoContainer& GetSurrogateInfos() const;
  algorithm::datatypes::SurrogateInfoContainer& GetNonConstSurrogateInfos();
  /// The columns of the points that are asked for.
  const std::vector<std::wstring>& GetParameterNames() const { return derived_.parameter_names; }
  /// The columns of the predictions.
  const std::vector<std::wstring>& GetResponseNames() const { return derived_.response_names; }
  const algorithm::datatypes::CriterionSequence& GetAllCriteria() const { return lyra_.GetCriteria(); }
  std::vector<std::wstring> GetCriteriaNames() const;
  void SetCriteria(algorithm::datatypes::CriterionSequence criteria) { lyra_.SetCriteria(std::move(criteria)); }
  const algorithm::datatypes::Design& GetReferenceDesign() const { return lyra_.GetReferenceDesign(); }
  /// The parameters of the designs, q x n, in the order of `GetParameterNames`.
  math::Matrix DesignsToRequestMatrix(const algorithm::datatypes::DesignManager& designs) const;

  /// Replaces the collecting log.
  void InitializeLog();
  const utils::log::VectorLog& GetLog() const { return *kept_log_; }
  utils::log::LogBase& GetLoggerRef() const { return *log_; }

 private:
  using Limits = std::vector<std::pair<double, double>>;
  using Evaluation = std::function<math::Matrix(const math::metamodel::SurrogateBase&, const math::MatrixIn&)>;

  /// What was worked out from the record.
  struct DerivedState {
    std::vector<std::wstring> parameter_names;
    std::vector<std::wstring> response_names;
    std::vector<math::Index> inputs;  ///< columns of the points that the models see; empty: all, in their order
    Limits sampling_bounds;           ///< of each parameter
    Limits parameter_bounds;          ///< of each optimization parameter; infinite for the others
  };

  friend class boost::serialization::access;
  /// Reading is completed by `InitializeSolver()`, once the reader has compared the record with what came with it.
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  static DerivedState Derive(const algorithm::datatypes::LYRA& lyra,
                             const algorithm::datatypes::ZORInformation& information);
  math::Matrix DoForOne(const std::wstring& response, const Evaluation& evaluation, const math::MatrixIn& points,
                        enums::eExtrapolationTypes type, bool throwing) const;
  /// Runs `work` on the columns that the models see.
  template <class Work>
  math::Matrix OnInputs(const math::MatrixIn& points, Work&& work) const;
  /// The points with the dependent parameters of the record computed from the others.
  math::Matrix WithDependentParameters(const math::MatrixIn& points) const;
  /// `ApproximateDesigns` on points that are complete.
  math::Matrix ApproximateComplete(const math::MatrixIn& points, enums::eExtrapolationTypes type, bool throwing) const;
  math::Matrix ApproximateCriteria(const math::MatrixIn& points, const math::MatrixIn& responses) const;
  void FillCriteria(algorithm::datatypes::Design& design, calculator::Calculator& calculator) const;
  bool HasInputColumns(const math::MatrixIn& points) const;
  const Limits& GetLimits(enums::eExtrapolationTypes type) const;

  algorithm::datatypes::LYRA lyra_;
  DerivedState derived_;
  std::shared_ptr<utils::log::VectorLog> kept_log_;
  std::shared_ptr<utils::log::LogBase> log_;  ///< `kept_log_`, or one that drops everything
};

}  // namespace kestrel::zor

BOOST_CLASS_EXPORT_KEY2(kestrel::zor::ZORSolver, "kestrel::zor::ZORSolver")
