#include "doe/doe.h"

#include "doe/latin_hypercube.h"
#include "support/exceptions.h"

namespace kestrel::math::doe {

Matrix DOE::BuildClassic(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples) {
  const bool orthogonal = type == eClassicType::kLatinHypercubeOrthogonal;
  if (type != eClassicType::kLatinHypercube && !orthogonal) throw utils::logic_error(L"Unknown type of point set.");
  Matrix points = RandomLatinHypercube(static_cast<Index>(num_samples), static_cast<Index>(num_inputs), generator_);
  return orthogonal ? ReduceCorrelations(std::move(points)) : points;
}

}  // namespace kestrel::math::doe
