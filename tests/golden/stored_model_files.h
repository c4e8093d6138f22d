#pragma once

#include <vector>

#include "golden/golden_files.h"

namespace kestrel::testing {

/// A small built model of polynomials and a handle that is not built.
std::vector<GoldenFile> MakeStoredModelFiles();

}  // namespace kestrel::testing
