#include "evaluation.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "errors.h"

namespace kestrel::cli {

namespace {

constexpr std::array kErrorNames = {"_cop", "_rmse", "_mean", "_mean_abs"};
constexpr std::size_t kErrorCount = kErrorNames.size();

void CheckEvaluated(const Evaluation& models, std::uint32_t code) {
  if (code == zor_success) return;
  const std::string hint = models.extrapolate ? "" : " (--extrapolate predicts points outside the bounds)";
  throw WorkError(models.handle.ErrorText(code) + hint);
}

/// Room for one row per point.
Table TableFor(const Table& points, std::vector<std::string> names) {
  Table table{std::move(names), points.rows, {}};
  table.values.resize(table.rows * table.names.size());
  return table;
}

std::uint32_t RowCount(const Table& points) { return static_cast<std::uint32_t>(points.rows); }

/// Copies `width` columns, values.size() / width rows row by row, into the table from its column `first` on.
void CopyColumns(const std::vector<double>& values, std::size_t width, Table& table, std::size_t first) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    table.values[i / width * table.names.size() + first + i % width] = values[i];
  }
}

}  // namespace

Table Predictions(const Evaluation& models, const Table& points) {
  Table predictions = TableFor(points, models.outputs);
  const auto solve = models.extrapolate ? &zor_solve_extrapolate : &zor_solve;
  CheckEvaluated(models, solve(models.handle.get(), points.values.data(), predictions.values.data(), RowCount(points)));
  return predictions;
}

Table PredictionsWithCriteria(const Evaluation& models, const std::vector<std::string>& criteria, const Table& points) {
  const Table predictions = Predictions(models, points);
  if (criteria.empty()) return predictions;
  std::vector<double> values(points.rows * criteria.size());
  const auto solve = models.extrapolate ? &zor_solve_criteria_extrapolate : &zor_solve_criteria;
  CheckEvaluated(models, solve(models.handle.get(), points.values.data(), values.data(), RowCount(points)));
  std::vector<std::string> names = models.outputs;
  names.insert(names.end(), criteria.begin(), criteria.end());
  Table all = TableFor(points, std::move(names));
  CopyColumns(predictions.values, models.outputs.size(), all, 0);
  CopyColumns(values, criteria.size(), all, models.outputs.size());
  return all;
}

Table Gradients(const Evaluation& models, const Table& points) {
  std::vector<std::string> names;
  for (const std::string& output : models.outputs) {
    for (const std::string& input : points.names) names.push_back("d" + output + "/d" + input);
  }
  Table gradients = TableFor(points, std::move(names));
  const auto calculate =
      models.extrapolate ? &zor_calculate_gradients_per_output_extrapolate : &zor_calculate_gradients_per_output;
  std::vector<double> values(points.values.size());
  for (std::size_t output = 0; output < models.outputs.size(); ++output) {
    CheckEvaluated(models, calculate(models.handle.get(), static_cast<std::int32_t>(output), points.values.data(),
                                     RowCount(points), values.data()));
    CopyColumns(values, points.names.size(), gradients, output * points.names.size());
  }
  return gradients;
}

Table LocalErrors(const Evaluation& models, const Table& points) {
  std::vector<std::string> names;
  for (const std::string& output : models.outputs) {
    for (const char* const name : kErrorNames) names.push_back(output + name);
    names.push_back(output + "_density");
  }
  Table table = TableFor(points, std::move(names));
  if (points.rows == 0) return table;  // the library takes no room for densities as a mistake
  const auto errors_of =
      models.extrapolate ? &zor_calculate_errors_per_output_extrapolate : &zor_calculate_errors_per_output;
  const auto density_of =
      models.extrapolate ? &zor_calculate_density_per_output_extrapolate : &zor_calculate_density_per_output;
  std::vector<double> errors(points.rows * kErrorCount);
  std::vector<double> density(points.rows);
  for (std::size_t output = 0; output < models.outputs.size(); ++output) {
    const auto index = static_cast<std::int32_t>(output);
    const zor_handle_t handle = models.handle.get();
    CheckEvaluated(models, errors_of(handle, index, points.values.data(), RowCount(points), errors.data()));
    CheckEvaluated(models,
                   density_of(handle, index, points.values.data(), RowCount(points), density.data(), RowCount(points)));
    const std::size_t first = output * (kErrorCount + 1);
    CopyColumns(errors, kErrorCount, table, first);
    CopyColumns(density, 1, table, first + kErrorCount);
  }
  return table;
}

}  // namespace kestrel::cli
