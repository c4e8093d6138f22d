#include "doe/box_behnken.h"

#include <vector>

#include "doe/factorial_points.h"
#include "doe/point_set.h"

namespace kestrel::math::doe {
namespace {

using Block = std::vector<Index>;

std::vector<Block> Pairs(Index num_inputs) {
  std::vector<Block> blocks;
  for (Index i = 0; i < num_inputs; ++i) {
    for (Index j = i + 1; j < num_inputs; ++j) blocks.push_back({i, j});
  }
  return blocks;
}

// {i, i + 1, i + 3} around the circle: for 7 inputs every pair meets once; for 6 opposite inputs meet twice, as all
// partially balanced designs of that size have it.
std::vector<Block> Triples(Index num_inputs) {
  std::vector<Block> blocks;
  for (Index i = 0; i < num_inputs; ++i) blocks.push_back({i, (i + 1) % num_inputs, (i + 3) % num_inputs});
  return blocks;
}

}  // namespace

Matrix BoxBehnken(std::uint64_t num_inputs) {
  Require(num_inputs >= 3, L"A Box-Behnken design needs at least three inputs.");
  RequireSize(num_inputs, num_inputs);
  const bool by_triples = num_inputs == 6 || num_inputs == 7;
  const std::uint64_t num_blocks = by_triples ? num_inputs : num_inputs * (num_inputs - 1) / 2;
  const Matrix corners = FullFactorial(by_triples ? 3 : 2, 2);
  Matrix points = CentrePoints(num_blocks * static_cast<std::uint64_t>(corners.rows()) + 1, num_inputs);
  Index row = 0;
  for (const Block& block : by_triples ? Triples(points.cols()) : Pairs(points.cols())) {
    for (Index k = 0; k < corners.cols(); ++k) {
      points.col(block[static_cast<std::size_t>(k)]).segment(row, corners.rows()) = corners.col(k);
    }
    row += corners.rows();
  }
  return points;
}

}  // namespace kestrel::math::doe
