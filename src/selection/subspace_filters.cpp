#include "selection/subspace_filters.h"

#include <algorithm>

#include "statistics/significance_filter.h"
#include "support/error_report.h"

namespace kestrel::math::metamodel {
namespace {

constexpr std::uint64_t kLinear = 1;
constexpr std::uint64_t kLinearAndQuadratic = 3;

// The entries of mandatory inputs, and of selectable ones those that the filter keeps.
template <class Keeps>
IndexVector FilterEntries(const IndexVector& subspace, const IndexVector& importance, Keeps keeps) {
  IndexVector filtered = IndexVector::Zero(subspace.size());
  for (Index j = 0; j < subspace.size(); ++j) {
    if (importance(j) == 2 || (importance(j) == 1 && keeps(j))) filtered(j) = subspace(j);
  }
  return filtered;
}

}  // namespace

bool CheckImportanceSize(Index num_entries, Index num_inputs) {
  if (num_entries == num_inputs) return true;
  error::Report(L"size of importance vector not consistent to number of variables");
  return false;
}

std::uint64_t FullEntry(std::uint64_t level_count) { return level_count > 1 ? kLinearAndQuadratic : level_count; }

IndexVector FullSubspace(const IndexVector& importance, const IndexVector& level_counts) {
  return (importance.array() != 0).select(level_counts.unaryExpr(&FullEntry), IndexVector::Zero(importance.size()));
}

IndexVector MapImportance2Subspace(const boost::dynamic_bitset<>& linear_bits,
                                   const boost::dynamic_bitset<>& quadratic_bits, const IndexVector& importance,
                                   const IndexVector& level_counts) {
  IndexVector subspace = IndexVector::Zero(importance.size());
  for (Index j = 0; j < importance.size(); ++j) {
    const auto bit = static_cast<std::size_t>(j);
    if (importance(j) == 2 || (importance(j) == 1 && quadratic_bits[bit])) {
      subspace(j) = FullEntry(level_counts(j));
    } else if (importance(j) == 1 && linear_bits[bit]) {
      subspace(j) = std::min(kLinear, level_counts(j));
    }
  }
  return subspace;
}

IndexVector CoIFilterSubspace(const IndexVector& subspace, const VectorIn& values, double limit,
                              const IndexVector& importance) {
  return FilterEntries(subspace, importance, [&](Index j) { return values(j) >= limit; });
}

IndexVector CorrFilterSubspace(const IndexVector& subspace, const MatrixIn& M, double significance, double fraction,
                               const IndexVector& importance) {
  const boost::dynamic_bitset<> bits = statistics::CorrFilter(M, significance, fraction);
  return FilterEntries(subspace, importance, [&](Index j) { return bits[static_cast<std::size_t>(j)]; });
}

}  // namespace kestrel::math::metamodel
