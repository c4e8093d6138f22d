#pragma once

#include <cstdint>

#include "support/linear_algebra.h"

/// Point sets around the centre of the box, e_i the unit vector of input i, and what is composed of them.
namespace kestrel::math::doe {

/// 2 n points: e_1, -e_1, e_2, -e_2, ...: the centres of the faces of the box.
Matrix AxialPoints(std::uint64_t num_inputs);

/// 1 + 2 n points: the centre and the axial points.
Matrix StarPoints(std::uint64_t num_inputs);

/// n (n - 1) / 2 points e_i + e_j, i < j: what the mixed terms of a quadratic model need beside the star points.
/// Refuses a single input.
Matrix MixedTermPoints(std::uint64_t num_inputs);

/// 2^n + 2 n + 1 points: the corners of the box and the star points; face-centred, because points outside of the box
/// are not allowed (Box and Wilson 1951, "On the experimental attainment of optimum conditions").
Matrix CentralComposite(std::uint64_t num_inputs);

}  // namespace kestrel::math::doe
