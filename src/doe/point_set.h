#pragma once

#include <cstdint>
#include <string>

#include "support/linear_algebra.h"

/// What the makers of point sets share. A point set has one row per point, one column per input and entries in
/// [-1, 1]. A request that cannot be met raises utils::logic_error, before memory is taken for it.
namespace kestrel::math::doe {

/// Entries of the largest matrix that is made here: half a gigabyte of numbers.
constexpr std::uint64_t kMaxEntries = std::uint64_t{1} << 26U;

/// Raises utils::logic_error with the message if the condition does not hold.
void Require(bool condition, const std::wstring& message);

/// a x b, the largest number where that does not fit; base^exponent likewise.
std::uint64_t SaturatedProduct(std::uint64_t a, std::uint64_t b);
std::uint64_t SaturatedPower(std::uint64_t base, std::uint64_t exponent);

/// Refuses sets without points or inputs and those of more than `kMaxEntries` entries.
void RequireSize(std::uint64_t num_points, std::uint64_t num_inputs);

/// All points at the centre, after `RequireSize`.
Matrix CentrePoints(std::uint64_t num_points, std::uint64_t num_inputs);

/// Level 0 .. count - 1 of count equally spaced ones from -1 to 1; a single level is 0.
double LevelValue(std::uint64_t level, std::uint64_t count);

}  // namespace kestrel::math::doe
