#include "surrogates/grouped_rows.h"

#include <algorithm>
#include <numeric>

namespace kestrel::math::metamodel {

GroupedRows GroupRows(const std::vector<std::uint64_t>& subsets) {
  GroupedRows grouped;
  grouped.rows.resize(subsets.size());
  std::iota(grouped.rows.begin(), grouped.rows.end(), Index{0});
  const auto subset_of = [&](Index row) { return subsets[static_cast<std::size_t>(row)]; };
  std::stable_sort(grouped.rows.begin(), grouped.rows.end(),
                   [&](Index a, Index b) { return subset_of(a) < subset_of(b); });
  for (std::size_t i = 0; i < grouped.rows.size(); ++i) {
    if (i == 0 || subset_of(grouped.rows[i]) != subset_of(grouped.rows[i - 1])) {
      grouped.begin.push_back(static_cast<Index>(i));
    }
  }
  grouped.begin.push_back(static_cast<Index>(grouped.rows.size()));
  return grouped;
}

std::vector<std::uint64_t> SingleRows(Index count) {
  std::vector<std::uint64_t> subsets(static_cast<std::size_t>(count));
  std::iota(subsets.begin(), subsets.end(), std::uint64_t{0});
  return subsets;
}

}  // namespace kestrel::math::metamodel
