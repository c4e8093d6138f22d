#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/results/zor_information.h"
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
  explicit ZORSolver(bool keep_log);

  /// Takes over the models of a build and prepares them for evaluation.
  void InitializeSolver(algorithm::datatypes::ZORInformation information);

  /// All responses, q x number of responses. @param extrapolate  no test of the bounds; else the sampling bounds.
  math::Matrix ApproximateDesigns(const math::MatrixIn& points, bool extrapolate, bool throwing) const;
  math::Matrix ApproximateDesigns(const math::MatrixIn& points, enums::eExtrapolationTypes type, bool throwing) const;

  /// Gradients of one response, q x n.
  math::Matrix ApproximateGradientsPerResponse(const math::MatrixIn& points, const std::wstring& response,
                                               enums::eExtrapolationTypes type, bool throwing) const;
  /// Error records of one response, q x 5; the fifth value is the density.
  math::Matrix ApproximateErrorsPerResponse(const math::MatrixIn& points, const std::wstring& response,
                                            enums::eExtrapolationTypes type, bool throwing) const;

  /// True if a value lies outside its bounds or is NaN; a value on a bound does not. An unknown type raises
  /// utils::runtime_error "Extrapolation type is not defined.".
  bool BoundariesViolated(const math::MatrixIn& points, enums::eExtrapolationTypes type, bool throwing) const;

  const algorithm::datatypes::ZORInformation& GetInformation() const { return information_; }
  const utils::log::VectorLog& GetLog() const { return *kept_log_; }

 private:
  using Limits = std::vector<std::pair<double, double>>;
  using Evaluation = std::function<math::Matrix(const math::metamodel::SurrogateBase&, const math::MatrixIn&)>;

  math::Matrix DoForOne(const std::wstring& response, const Evaluation& evaluation, const math::MatrixIn& points,
                        enums::eExtrapolationTypes type, bool throwing) const;
  bool HasInputColumns(const math::MatrixIn& points) const;
  const Limits& GetLimits(enums::eExtrapolationTypes type) const;

  algorithm::datatypes::ZORInformation information_;
  std::shared_ptr<utils::log::VectorLog> kept_log_;
  std::shared_ptr<utils::log::LogBase> log_;  ///< `kept_log_`, or one that drops everything
};

}  // namespace kestrel::zor
