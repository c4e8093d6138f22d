#include "statistics/sample_splitting.h"

#include <gtest/gtest.h>

#include <vector>

#include "statistics/sample_data.h"

namespace kestrel::math::statistics {
namespace {

using testing::Numbers;
using testing::UniformMatrix;

// Every column brought to [0, 1].
Matrix Scaled(const Matrix& inputs) {
  const Eigen::RowVectorXd range = inputs.colwise().maxCoeff() - inputs.colwise().minCoeff();
  return (inputs.rowwise() - inputs.colwise().minCoeff()).array().rowwise() / range.array();
}

long double TotalPotential(const Matrix& scaled, const IndexVector& subsets) {
  long double total = 0.0L;
  for (Index j = 0; j < scaled.rows(); ++j) {
    for (Index i = 0; i < j; ++i) {
      if (subsets(i) == subsets(j)) total += 1.0L / ((scaled.row(i) - scaled.row(j)).squaredNorm() + 0.0001L);
    }
  }
  return total;
}

// The best exchange of sample i by the total potential before and after each; returns whether one was made.
bool ExchangeByTotals(const Matrix& scaled, IndexVector& subsets, Index i) {
  const long double before = TotalPotential(scaled, subsets);
  long double largest_fall = 1e-12L * before;
  Index partner = -1;
  for (Index j = 0; j < subsets.size(); ++j) {
    if (subsets(i) == subsets(j)) continue;
    std::swap(subsets(i), subsets(j));
    const long double fall = before - TotalPotential(scaled, subsets);
    std::swap(subsets(i), subsets(j));
    if (fall > largest_fall) {
      largest_fall = fall;
      partner = j;
    }
  }
  if (partner < 0) return false;
  std::swap(subsets(i), subsets(partner));
  return true;
}

IndexVector SplitByTotals(const Matrix& inputs, std::uint64_t k) {
  const Matrix scaled = Scaled(inputs);
  IndexVector subsets(inputs.rows());
  for (Index i = 0; i < subsets.size(); ++i) subsets(i) = static_cast<std::uint64_t>(i) % k;
  bool exchanged = true;
  while (exchanged) {
    exchanged = false;
    for (Index i = 0; i < subsets.size(); ++i) exchanged |= ExchangeByTotals(scaled, subsets, i);
  }
  return subsets;
}

std::vector<Index> SubsetSizes(const IndexVector& subsets, std::uint64_t k) {
  std::vector<Index> sizes;
  for (std::uint64_t s = 0; s < k; ++s) sizes.push_back((subsets.array() == s).count());
  return sizes;
}

TEST(NumberOfSubsets, GrowsWithTheSample) {
  const std::pair<std::uint64_t, std::uint64_t> cases[] = {{0, 5}, {119, 5}, {120, 6}, {199, 9}, {200, 10}, {5000, 10}};
  for (const auto& [n, subsets] : cases) EXPECT_EQ(NumberOfSubsets(n), subsets) << n;
}

TEST(CVIndices, SplitByPotentialUpTo200Samples) {
  random::Generator generator(1);
  const Matrix inputs = UniformMatrix(201, 2, 1);
  EXPECT_EQ(CalculateCVIndices(inputs.topRows(200), generator), SampleSplittingPotential(inputs.topRows(200), 10));
  EXPECT_EQ(generator, random::Generator(1));
  random::Generator again(1);
  EXPECT_EQ(CalculateCVIndices(inputs, generator), SampleSplittingRandom(201, 10, again));
}

TEST(RandomSplit, MakesSubsetsOfEqualSize) {
  random::Generator generator(5);
  const IndexVector subsets = SampleSplittingRandom(11, 4, generator);
  EXPECT_EQ(SubsetSizes(subsets, 4), (std::vector<Index>{3, 3, 3, 2}));
  EXPECT_NE(subsets, SampleSplittingRandom(11, 4, generator));
  EXPECT_EQ(SampleSplittingRandom(3, 0, generator), IndexVector::Zero(3));
}

TEST(PotentialSplit, MakesTheBestExchangesInTurn) {
  struct Case {
    Index n, inputs;
    std::uint64_t k;
  };
  for (const Case& c : {Case{10, 1, 5}, Case{40, 1, 5}, Case{13, 2, 5}, Case{30, 8, 5}}) {
    SCOPED_TRACE(c.n);
    Matrix inputs = UniformMatrix(c.n, c.inputs, static_cast<std::uint64_t>(c.n), -3.0, 50.0);
    inputs.row(c.n / 2) = inputs.row(0);  // a repeated sample
    const IndexVector subsets = SampleSplittingPotential(inputs, c.k);
    EXPECT_EQ(subsets, SplitByTotals(inputs, c.k));
    EXPECT_NE(subsets(0), subsets(c.n / 2));
  }
}

TEST(PotentialSplit, SettlesOnGridsOfEqualPotentials) {
  Matrix grid(100, 2);
  for (Index i = 0; i < 100; ++i)
    grid.row(i) << 0.1 * static_cast<double>(i % 10), 0.3 * static_cast<double>(i / 10 % 5);
  IndexVector subsets = SampleSplittingPotential(grid, 5);  // each point of the grid stands twice
  EXPECT_EQ(SubsetSizes(subsets, 5), std::vector<Index>(5, 20));
  for (Index i = 0; i < 50; ++i) EXPECT_NE(subsets(i), subsets(i + 50)) << i;
  for (Index i = 0; i < 100; i += 9) EXPECT_FALSE(ExchangeByTotals(Scaled(grid), subsets, i)) << i;
}

TEST(PotentialSplit, OfDegenerateSamples) {
  EXPECT_EQ(SampleSplittingPotential(UniformMatrix(4, 2, 1), 0), IndexVector::Zero(4));
  EXPECT_EQ(SubsetSizes(SampleSplittingPotential(UniformMatrix(3, 2, 1), 5), 5), (std::vector<Index>{1, 1, 1, 0, 0}));
  const IndexVector in_turn = Numbers({0, 1, 2, 0, 1, 2, 0}).cast<std::uint64_t>();
  EXPECT_EQ(SampleSplittingPotential(Matrix::Constant(7, 2, 4.0), 3), in_turn);
  Matrix broken = UniformMatrix(7, 2, 1);
  broken(2, 0) = testing::kNaN;
  broken(4, 1) = testing::kInf;
  EXPECT_EQ(SubsetSizes(SampleSplittingPotential(broken, 3), 3), (std::vector<Index>{3, 2, 2}));
}

}  // namespace
}  // namespace kestrel::math::statistics
