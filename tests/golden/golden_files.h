#pragma once

#include <string>
#include <vector>

/// What the golden files hold. The numbers in them are small integers and halves, and the fits go through data without
/// noise, so that they hardly depend on the processor.
namespace kestrel::testing {

struct GoldenFile {
  std::string name;  ///< below the folder of the golden files
  std::string bytes;
};

/// The stored models come first: a build draws from the generator of the process.
std::vector<GoldenFile> MakeGoldenFiles();

/// The designs of the built stored model, row by row, and its two responses, the second of which is missing for the
/// last design:  stress = 1 + 2 a - b,  weight = 3 - a / 2 + b.
constexpr unsigned kGoldenDesigns = 8;
std::vector<double> GoldenInputs();
std::vector<double> GoldenOutputs();

}  // namespace kestrel::testing
