#include "statistics/sample_splitting.h"

#include <algorithm>
#include <cmath>

#include "statistics/distances.h"
#include "statistics/transform/transform_minmax.h"

namespace kestrel::math::statistics {
namespace {

// The exchange counts in whole multiples of a power of two, so that its sums are exact: the potentials can be updated
// for ever without drift, potentials that are equal stay so, and each exchange lowers the total, which ends the sweeps.
using Units = std::int64_t;
using UnitMatrix = Eigen::Matrix<Units, Eigen::Dynamic, Eigen::Dynamic>;

// 1 / (d^2 + 0.0001) of all pairs in the finest units in which the fall of an exchange, of at most 2 N + 2 pair
// potentials, keeps within 62 bits. Up to 255 samples that is no coarser than the rounding of the largest of them.
UnitMatrix PairPotentials(const Matrix& squared_distances) {
  constexpr double kSoftening = 0.0001;
  const Index n = squared_distances.rows();
  // A sample with a NaN or an infinity is far from all others.
  Matrix potentials = (squared_distances.array() + kSoftening).inverse();
  potentials = potentials.array().isFinite().select(potentials, 0.0);
  potentials.diagonal().setZero();
  const double largest_sum = static_cast<double>(2 * n + 2) * potentials.maxCoeff();
  if (largest_sum == 0.0) return UnitMatrix::Zero(n, n);
  const int shift = 61 - std::ilogb(largest_sum);
  return potentials.unaryExpr([shift](double potential) { return Units{std::llround(std::ldexp(potential, shift))}; });
}

class SubsetExchange {
 public:
  SubsetExchange(UnitMatrix pair_potentials, Index num_subsets);

  // One pass over the samples in ascending order; returns whether any was exchanged.
  bool Sweep();

  IndexVector Subsets() const { return subset_.cast<std::uint64_t>(); }

 private:
  struct Candidate {
    Index partner;
    Units fall;
  };

  Candidate BestPartner(Index i) const;
  bool Counts(Units fall) const;
  void Exchange(Index i, const Candidate& candidate);

  UnitMatrix pair_potentials_;  // N x N, zero diagonal
  Eigen::Matrix<Index, Eigen::Dynamic, 1> subset_;
  UnitMatrix potentials_;  // N x k: the potential of each sample against each subset
  double total_ = 0.0;
};

SubsetExchange::SubsetExchange(UnitMatrix pair_potentials, Index num_subsets)
    : pair_potentials_(std::move(pair_potentials)),
      subset_(pair_potentials_.rows()),
      potentials_(UnitMatrix::Zero(pair_potentials_.rows(), num_subsets)) {
  for (Index i = 0; i < subset_.size(); ++i) {
    subset_(i) = i % num_subsets;
    potentials_.col(subset_(i)) += pair_potentials_.col(i);
  }
  for (Index i = 0; i < subset_.size(); ++i) total_ += 0.5 * static_cast<double>(potentials_(i, subset_(i)));
}

bool SubsetExchange::Sweep() {
  bool exchanged = false;
  for (Index i = 0; i < subset_.size(); ++i) {
    const Candidate best = BestPartner(i);
    if (!Counts(best.fall)) continue;
    Exchange(i, best);
    exchanged = true;
  }
  return exchanged;
}

// The first of the partners with the largest fall. What i and j lose in their own subsets they meet again in the
// other's, but for the pair (i, j) itself, which each finds there before the exchange and not after it.
SubsetExchange::Candidate SubsetExchange::BestPartner(Index i) const {
  const Index own = subset_(i);
  Candidate best{i, 0};
  for (Index j = 0; j < subset_.size(); ++j) {
    const Index other = subset_(j);
    if (other == own) continue;
    const Units fall = potentials_(i, own) - potentials_(i, other) + potentials_(j, other) - potentials_(j, own) +
                       2 * pair_potentials_(i, j);
    if (fall > best.fall) best = {j, fall};
  }
  return best;
}

bool SubsetExchange::Counts(Units fall) const {
  constexpr double kSmallestFall = 1e-12;
  return fall > 0 && static_cast<double>(fall) > kSmallestFall * total_;
}

void SubsetExchange::Exchange(Index i, const Candidate& candidate) {
  const Index j = candidate.partner;
  const UnitMatrix moved = pair_potentials_.col(j) - pair_potentials_.col(i);
  potentials_.col(subset_(i)) += moved;
  potentials_.col(subset_(j)) -= moved;
  std::swap(subset_(i), subset_(j));
  total_ -= static_cast<double>(candidate.fall);
}

}  // namespace

std::uint64_t NumberOfSubsets(std::uint64_t n) {
  if (n < 100) return 5;
  return n < 220 ? n / 20 : 10;
}

IndexVector CalculateCVIndices(const MatrixIn& inputs, random::Generator& generator) {
  constexpr std::uint64_t kLargestPotentialSplit = 200;
  const auto n = static_cast<std::uint64_t>(inputs.rows());
  const std::uint64_t k = NumberOfSubsets(n);
  return n > kLargestPotentialSplit ? SampleSplittingRandom(n, k, generator) : SampleSplittingPotential(inputs, k);
}

IndexVector SampleSplittingRandom(std::uint64_t n, std::uint64_t k, random::Generator& generator) {
  const std::uint64_t num_subsets = std::max<std::uint64_t>(k, 1);
  const IndexVector order = random::RandomPermutation(n, generator);
  IndexVector subsets(order.size());
  for (Index i = 0; i < order.size(); ++i) {
    subsets(static_cast<Index>(order(i))) = static_cast<std::uint64_t>(i) % num_subsets;
  }
  return subsets;
}

IndexVector SampleSplittingPotential(const MatrixIn& inputs, std::uint64_t k) {
  const Index n = inputs.rows();
  // Subsets beyond the number of samples stay empty.
  const auto most_subsets = static_cast<std::uint64_t>(std::max<Index>(n, 1));
  const auto num_subsets = static_cast<Index>(std::clamp<std::uint64_t>(k, 1, most_subsets));
  if (n < 2 || inputs.cols() == 0) {  // nothing to tell the samples apart
    return IndexVector::NullaryExpr(n, [&](Index i) { return static_cast<std::uint64_t>(i % num_subsets); });
  }
  transform::TransMinMax scale;
  scale.Build(inputs);
  SubsetExchange exchange(PairPotentials(CalcDistanceMatrix(scale.ScaleForward(inputs))), num_subsets);
  while (exchange.Sweep()) {
  }
  return exchange.Subsets();
}

}  // namespace kestrel::math::statistics
