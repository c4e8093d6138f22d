#include "doe/factorial_points.h"

#include <algorithm>
#include <numeric>

#include "doe/point_set.h"

namespace kestrel::math::doe {

Matrix FullCombinatorial(const std::vector<std::uint64_t>& levels_per_input) {
  Require(std::count(levels_per_input.begin(), levels_per_input.end(), 0U) == 0,
          L"Every input of a full combinatorial design needs at least one level.");
  const std::uint64_t num_points =
      std::accumulate(levels_per_input.begin(), levels_per_input.end(), std::uint64_t{1}, SaturatedProduct);
  Matrix points = CentrePoints(num_points, levels_per_input.size());
  std::uint64_t repeats = 1;  // rows for which the level of the input stays
  for (Index j = 0; j < points.cols(); ++j) {
    const std::uint64_t levels = levels_per_input[static_cast<std::size_t>(j)];
    for (Index i = 0; i < points.rows(); ++i) {
      points(i, j) = LevelValue(static_cast<std::uint64_t>(i) / repeats % levels, levels);
    }
    repeats *= levels;
  }
  return points;
}

Matrix FullFactorial(std::uint64_t num_inputs, std::uint64_t levels) {
  Require(levels >= 2, L"A full factorial design needs at least two levels.");
  RequireSize(SaturatedPower(levels, num_inputs), num_inputs);
  return FullCombinatorial(std::vector<std::uint64_t>(num_inputs, levels));
}

}  // namespace kestrel::math::doe
