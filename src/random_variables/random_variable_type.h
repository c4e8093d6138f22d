#pragma once

#include <cstdint>

/// The distributions that an input can follow. The numbers are part of the file format.
namespace kestrel::enums::RandomVariable {

enum eType : std::int32_t {
  UNIFORM = 0,
  NORMAL = 1,
  TRUNCATEDNORMAL = 2,
  LOGNORMAL = 3,
  EXPONENTIAL = 4,
  TRIANGULAR = 5,
  WEIBULL = 6,
  GUMBEL = 7,
  FRECHET = 8,
  POLYMAP = 9,
  KERNEL = 10,
  BERNOULLI = 11,
  BETA = 12,
  LOGUNIFORM = 13,
  DISCRETE = 14,
  MULTIUNIFORM = 15,
  LAMBDA = 16
};

}  // namespace kestrel::enums::RandomVariable
