#include <string>
#include <vector>

#include "api/barrier.h"
#include "api/buffers.h"
#include "api/custom_interface.h"
#include "support/strings.h"
#include "zor_api.h"

// Models from outside the library.

namespace {

std::wstring WideText(const char* text) { return text == nullptr ? std::wstring() : kestrel::string::widen(text); }

}  // namespace

uint32_t zor_available_custom_names(char** names, size_t* length) {
  if (!kestrel::zor::CustomInterfaceEnabled()) return zor_custom_not_enabled;
  std::string lines;
  for (const std::wstring& name : kestrel::zor::GetAvailableCustomSurrogates()) {
    lines += kestrel::string::narrow(name) + "\n";
  }
  kestrel::api::HandOut(lines, names, length);
  return zor_success;
}

uint32_t zor_set_paths_for_custom_interface(zor_handle_t handle, const char* const* paths, uint32_t count,
                                            const char* log_path) {
  const uint32_t code = kestrel::api::Guarded(handle, [&](const ZOR&) {
    std::vector<std::wstring> wide_paths;
    if (paths != nullptr) {
      for (uint32_t i = 0; i < count; ++i) wide_paths.push_back(WideText(paths[i]));
    }
    kestrel::zor::InitCustom(wide_paths, WideText(log_path));
    return zor_success;
  });
  if (code == zor_calculation_error) return zor_custom_not_enabled;
  return code;
}
