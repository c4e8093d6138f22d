#pragma once

#include <cstdint>

#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Three-level points on the middles of edges and faces, none in a corner: the corners -1, 1 of the inputs of each
/// block of an incomplete block design, all other inputs at 0, and the centre once, because repeated points tell
/// nothing of a deterministic response (Box and Behnken 1960, "Some new three level designs for the study of
/// quantitative variables", Technometrics 2). The blocks are the pairs of inputs, for 6 and 7 inputs the triples of
/// that paper. Refuses fewer than three inputs, which have no such design.
Matrix BoxBehnken(std::uint64_t num_inputs);

}  // namespace kestrel::math::doe
