#pragma once

#include <gtest/gtest.h>

#include "surrogates/ordinary_kriging.h"
#include "surrogates/sample_data.h"

/// Kriging models for tests.
namespace kestrel::testing {

/// A smooth response of the first two inputs with a little noise; the others are useless.
inline math::Vector SmoothResponse(const math::Matrix& x) {
  return 3.0 + (2.0 * x.col(0).array()).sin() + 0.5 * x.col(0).array() * x.col(1).array().square() +
         Noise(x.rows(), 0.01, 77).array();
}

/// Settings for all inputs with the given radii; their number says whether the kernel is isotropic.
inline math::metamodel::OrdinaryKrigingSettings KrigingSettings(std::uint64_t inputs, const math::Vector& radii,
                                                                double nugget) {
  namespace metamodel = math::metamodel;
  metamodel::OrdinaryKrigingSettings settings(inputs);
  settings.SetKernelType(radii.size() == 1 ? metamodel::Kernel::kConstInflIsoExp : metamodel::Kernel::kConstInflExp);
  settings.SetKernelParameter(radii);
  settings.SetNugget(nugget);
  return settings;
}

inline math::metamodel::OrdinaryKriging BuiltKriging(const math::Matrix& points, const math::Vector& values,
                                                     const math::metamodel::OrdinaryKrigingSettings& settings) {
  math::metamodel::OrdinaryKriging kriging(points, values);
  kriging.Initialize(settings);
  EXPECT_TRUE(kriging.Build());
  return kriging;
}

/// Sample i in subset i modulo `count`.
inline math::metamodel::Subsets SubsetsInTurn(math::Index samples, std::uint64_t count) {
  math::metamodel::Subsets subsets;
  for (std::uint64_t i = 0; i < static_cast<std::uint64_t>(samples); ++i) subsets.push_back(i % count);
  return subsets;
}

}  // namespace kestrel::testing
