#pragma once

#include <cstdint>
#include <vector>

#include "support/linear_algebra.h"

namespace kestrel::math::metamodel {

/// Sample rows in the order of their subsets; group g holds the entries [begin[g], begin[g + 1]) of `rows`.
struct GroupedRows {
  std::vector<Index> rows;
  std::vector<Index> begin;

  Index Count(std::size_t g) const { return begin[g + 1] - begin[g]; }
  std::size_t NumGroups() const { return begin.size() - 1; }
  std::vector<Index> Group(std::size_t g) const { return {rows.begin() + begin[g], rows.begin() + begin[g + 1]}; }
};

/// One group for each subset number that a sample has, by rising number; within a group by rising row.
GroupedRows GroupRows(const std::vector<std::uint64_t>& subsets);

/// The subset numbers that make each of `count` samples a subset of its own: to leave one out.
std::vector<std::uint64_t> SingleRows(Index count);

}  // namespace kestrel::math::metamodel
