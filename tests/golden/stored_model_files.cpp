#include "golden/stored_model_files.h"

#include <limits>
#include <memory>
#include <stdexcept>

#include "zor_api.h"

namespace kestrel::testing {
namespace {

struct Release {
  void operator()(zor_handle_t handle) const { zor_release(handle); }
};
using Handle = std::unique_ptr<ZOR, Release>;

void Check(uint32_t code) {
  if (code != zor_success) throw std::runtime_error("The golden model cannot be made: code " + std::to_string(code));
}

/// Two inputs, two outputs, all named, and one design built at a time on any machine.
Handle MakeHandle() {
  zor_handle_t raw = nullptr;
  Check(zor_create(&raw));
  Handle handle(raw);
  const char* const inputs[] = {"a", "b_2"};
  const char* const outputs[] = {"stress", "weight"};
  Check(zor_set_input_count(raw, 2));
  Check(zor_set_output_count(raw, 2));
  Check(zor_set_input_names(raw, inputs, 2));
  Check(zor_set_output_names(raw, outputs, 2));
  Check(zor_set_outputs_in_parallel_count(raw, 1));
  Check(zor_set_max_coi(raw, 0.25));
  return handle;
}

std::string Store(const Handle& handle) {
  void* buffer = nullptr;
  std::size_t size = 0;
  Check(zor_write_db_buf(handle.get(), &buffer, &size));
  std::string bytes(static_cast<const char*>(buffer), size);
  zor_release_buf(buffer);
  return bytes;
}

/// Polynomials alone, of order 1, so that there are few candidates and the file stays small.
std::string StoreBuiltModel() {
  const Handle handle = MakeHandle();
  Check(zor_set_use_mls(handle.get(), 0));
  Check(zor_set_use_kriging(handle.get(), 0));
  Check(zor_set_use_boxcox(handle.get(), 0));
  Check(zor_set_max_order_polynomial(handle.get(), 1));
  Check(zor_build_split(handle.get(), GoldenInputs().data(), GoldenOutputs().data(), kGoldenDesigns));
  return Store(handle);
}

}  // namespace

std::vector<double> GoldenInputs() { return {0, 0, 4, 0, 0, 4, 4, 4, 1, 2, 3, 1, 2, 3, 2, 2}; }

std::vector<double> GoldenOutputs() {
  std::vector<double> outputs;
  const std::vector<double> inputs = GoldenInputs();
  for (std::size_t row = 0; row < inputs.size(); row += 2) {
    outputs.push_back(1.0 + 2.0 * inputs[row] - inputs[row + 1]);
    outputs.push_back(3.0 - 0.5 * inputs[row] + inputs[row + 1]);
  }
  outputs.back() = std::numeric_limits<double>::quiet_NaN();
  return outputs;
}

std::vector<GoldenFile> MakeStoredModelFiles() {
  return {{"stored_model/built.zor", StoreBuiltModel()}, {"stored_model/not_built.zor", Store(MakeHandle())}};
}

}  // namespace kestrel::testing
