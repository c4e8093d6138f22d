#include "doe/sampled_points.h"

#include <boost/random/sobol.hpp>
#include <boost/random/uniform_real_distribution.hpp>
#include <cmath>

#include "doe/point_set.h"

namespace kestrel::math::doe {

Matrix PlainMonteCarlo(std::uint64_t num_points, std::uint64_t num_inputs, random::Generator& generator) {
  Matrix points = CentrePoints(num_points, num_inputs);
  const boost::random::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (double& entry : points.reshaped()) entry = uniform(generator);
  return points;
}

Matrix SobolSequence(std::uint64_t num_points, std::uint64_t num_inputs) {
  constexpr std::uint64_t kMaxInputs = boost::random::default_sobol_table::max_dimension;
  Require(num_inputs <= kMaxInputs, L"A Sobol sequence has at most " + std::to_wstring(kMaxInputs) + L" inputs, not " +
                                        std::to_wstring(num_inputs) + L".");
  Matrix points = CentrePoints(num_points, num_inputs);
  points.row(0).setConstant(-1.0);  // the engine leaves out the first point, which is 0 in [0, 1)
  boost::random::sobol engine(num_inputs);
  for (Index i = 1; i < points.rows(); ++i) {
    for (double& entry : points.row(i)) entry = std::ldexp(static_cast<double>(engine()), -63) - 1.0;
  }
  return points;
}

}  // namespace kestrel::math::doe
