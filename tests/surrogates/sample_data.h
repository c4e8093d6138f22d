#pragma once

#include <boost/random/normal_distribution.hpp>
#include <boost/random/uniform_real_distribution.hpp>

#include "statistics/random.h"
#include "support/linear_algebra.h"

/// Samples for the tests of surrogates, the same in every run.
namespace kestrel::testing {

/// N x n points, uniform in [low, high].
inline math::Matrix RandomPoints(math::Index count, math::Index inputs, unsigned seed, double low = -1.0,
                                 double high = 2.0) {
  math::random::Generator generator(seed);
  boost::random::uniform_real_distribution<> uniform(low, high);
  math::Matrix points(count, inputs);
  for (math::Index j = 0; j < inputs; ++j) {
    for (math::Index i = 0; i < count; ++i) points(i, j) = uniform(generator);
  }
  return points;
}

/// Length N, normal with mean 0 and the given deviation.
inline math::Vector Noise(math::Index count, double deviation, unsigned seed) {
  math::random::Generator generator(seed);
  boost::random::normal_distribution<> normal(0.0, deviation);
  math::Vector noise(count);
  for (math::Index i = 0; i < count; ++i) noise[i] = normal(generator);
  return noise;
}

}  // namespace kestrel::testing
