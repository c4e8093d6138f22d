#include "evaluation.h"

#include <cstdint>

#include "errors.h"

namespace kestrel::cli {

namespace {

void CheckEvaluated(const Evaluation& models, std::uint32_t code) {
  if (code == zor_success) return;
  const std::string hint = models.extrapolate ? "" : " (--extrapolate predicts points outside the bounds)";
  throw WorkError(models.handle.ErrorText(code) + hint);
}

}  // namespace

Table Predictions(const Evaluation& models, const Table& points) {
  Table predictions{models.outputs, points.rows, std::vector<double>(points.rows * models.outputs.size())};
  const auto solve = models.extrapolate ? &zor_solve_extrapolate : &zor_solve;
  CheckEvaluated(models, solve(models.handle.get(), points.values.data(), predictions.values.data(),
                               static_cast<std::uint32_t>(points.rows)));
  return predictions;
}

}  // namespace kestrel::cli
