#include "doe/d_optimal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "doe/factorial_points.h"
#include "doe/model_matrix.h"

namespace kestrel::math::doe {
namespace {

// The largest determinant of all choices of `count` of the candidates, each as often as wanted.
double BestOfAll(const IndexMatrix& exponents, const Matrix& candidates, Index count) {
  std::vector<Index> chosen(static_cast<std::size_t>(count), 0);
  double best = 0.0;
  while (true) {
    best = std::max(best, Information(exponents, candidates(chosen, Eigen::all)));
    std::size_t last = chosen.size();
    while (last > 0 && chosen[last - 1] == candidates.rows() - 1) --last;
    if (last == 0) return best;
    std::fill(chosen.begin() + static_cast<std::ptrdiff_t>(last - 1), chosen.end(), chosen[last - 1] + 1);
  }
}

double Found(const IndexMatrix& exponents, std::uint64_t num_points) {
  random::Generator generator(8);
  return Information(exponents, DOptimal(exponents, num_points, generator));
}

TEST(DOptimal, FindsTheLargestDeterminantOfSmallSets) {
  struct Case {
    const char* name;
    IndexMatrix exponents;
    Matrix candidates;
  };
  const IndexMatrix custom{{0, 0}, {1, 0}, {0, 2}, {1, 1}};
  for (const Case& c : {Case{"linear", LinearTerms(3), FullFactorial(3, 2)},
                        Case{"without mixed terms", QuadraticTerms(2, false), FullFactorial(2, 3)},
                        Case{"quadratic", QuadraticTerms(2, true), FullFactorial(2, 3)},
                        Case{"customizable", custom, FullCombinatorial({2, 3})}}) {
    SCOPED_TRACE(c.name);
    for (Index extra = 0; extra <= 2; ++extra) {
      const Index count = c.exponents.rows() + extra;
      const double best = BestOfAll(c.exponents, c.candidates, count);
      EXPECT_NEAR(Found(c.exponents, static_cast<std::uint64_t>(count)), best, 1e-9 * best) << count;
    }
  }
}

TEST(DOptimal, LinearSetsAreHadamardMatrices) {
  for (const std::uint64_t points : {4U, 8U, 12U}) {  // det(F'F) = N^N, the bound of Hadamard
    const double bound = std::pow(points, points);
    EXPECT_NEAR(Found(LinearTerms(points - 1), points), bound, 1e-9 * bound) << points;
  }
}

TEST(DOptimal, PlacesTheLevelsOfACubicModel) {
  // The best four points for a cubic are -1, -1/sqrt(5), 1/sqrt(5), 1 (Guest 1958), here to the grid of levels.
  const IndexMatrix terms{{0}, {1}, {2}, {3}};
  random::Generator generator(8);
  Matrix points = DOptimal(terms, 4, generator);
  std::sort(points.data(), points.data() + points.size());
  for (Index i = 0; i < 4; ++i) {
    EXPECT_NEAR(points(i), (Vector(4) << -1.0, -std::sqrt(0.2), std::sqrt(0.2), 1.0).finished()(i), 1.0 / 12.0);
  }
}

}  // namespace
}  // namespace kestrel::math::doe
