#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "zor_api.h"

// Reads a stored model and, where it is taken for one, asks it for everything.

namespace {

// A model of many inputs or designs makes each run slow without going other ways through the code.
constexpr std::uint32_t kMostColumns = 64;
constexpr std::uint32_t kPoints = 2;

void AskOutput(zor_handle_t handle, std::int32_t output, const std::vector<double>& points, std::uint32_t inputs) {
  std::vector<double> values(static_cast<std::size_t>(inputs) * kPoints + 8 * kPoints);
  zor_get_cop_per_output(handle, output, values.data());
  zor_calculate_gradients_per_output_extrapolate(handle, output, points.data(), kPoints, values.data());
  zor_calculate_errors_per_output_extrapolate(handle, output, points.data(), kPoints, values.data());
  zor_calculate_density_per_output_extrapolate(handle, output, points.data(), kPoints, values.data(), kPoints);
  char* text = nullptr;
  std::size_t length = 0;
  if (zor_get_model_str_per_output(handle, output, &text, &length) == zor_success) zor_release_buf(text);
}

void Ask(zor_handle_t handle) {
  std::uint32_t inputs = 0;
  std::uint32_t outputs = 0;
  if (zor_get_input_count(handle, &inputs) != zor_success || inputs > kMostColumns) return;
  if (zor_get_output_count(handle, &outputs) != zor_success || outputs > kMostColumns) return;
  const std::vector<double> points(static_cast<std::size_t>(inputs) * kPoints, 0.5);
  std::vector<double> values(static_cast<std::size_t>(outputs) * kPoints);
  if (zor_solve_extrapolate(handle, points.data(), values.data(), kPoints) == zor_not_built) return;
  zor_solve(handle, points.data(), values.data(), kPoints);
  std::vector<double> bounds(2 * static_cast<std::size_t>(inputs));
  zor_get_input_bounds(handle, bounds.data());
  for (std::uint32_t output = 0; output < outputs; ++output) {
    AskOutput(handle, static_cast<std::int32_t>(output), points, inputs);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zor_handle_t handle = nullptr;
  if (zor_read_db_buf(&handle, data, size) != zor_success) return 0;
  Ask(handle);
  void* buffer = nullptr;
  std::size_t length = 0;
  if (zor_write_db_buf(handle, &buffer, &length) == zor_success) zor_release_buf(buffer);
  zor_release(handle);
  return 0;
}
