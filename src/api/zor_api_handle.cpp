#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iterator>
#include <memory>

#include "api/zor_record.h"
#include "support/version.h"
#include "zor_api.h"

// The handle, the error texts and the version.

namespace {

struct ErrorText {
  uint32_t code;
  const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {zor_success, "Exexcution successful."},
    {zor_invalid_handle, "ZOR handle is invalid."},
    {zor_calculation_error,
     "Error occured during calculation. Check zor_get_last_error( zor_handle_t ) for further details."},
    {zor_settings_check_failed, "Settings check failed. Check zor_get_last_error( zor_handle_t ) for further details."},
    {zor_custom_not_enabled, "Custom interface is not enabled."},
    {zor_unknown_input_enum,
     "Unknown enum given as input. Check zor_get_last_error( zor_handle_t ) for further details."},
    {zor_unknown_return_enum,
     "Unknown enum given as return value. Check zor_get_last_error( zor_handle_t ) for further details."},
    {zor_size_mismatch, "Sizes of function inputs do not match."},
    {zor_result_index_out_of_range, "Index for results out of range."},
    {zor_index_out_of_range, "Index out of range."},
    {zor_invalid_name, "Found invalid characters in given names."},
    {zor_not_implemented, "Feature is not yet implemented."},
    {zor_internal_error, "API internal error."},
    {zor_handle_init_failed, "Unable to initialize ZOR handle."},
    {zor_not_built, "ZOR needs to be built before calling for results."},
    {zor_max_error, "Maximum error code to ensure systems compatibility."},
};

}  // namespace

uint32_t zor_create(zor_handle_t* handle) {
  if (handle == nullptr) return zor_invalid_handle;
  try {
    *handle = std::make_unique<ZOR>().release();
    return zor_success;
  } catch (const std::exception&) {
    return zor_handle_init_failed;
  }
}

void zor_release(zor_handle_t handle) { const std::unique_ptr<ZOR> owned(handle); }

const char* zor_get_last_error(zor_handle_t handle) { return handle == nullptr ? "" : handle->GetLastError(); }

const char* zor_get_error_description(uint32_t code) {
  const auto has_code = [code](const ErrorText& entry) { return entry.code == code; };
  const auto entry = std::find_if(std::begin(kErrorTexts), std::end(kErrorTexts), has_code);
  return entry == std::end(kErrorTexts) ? nullptr : entry->text;
}

uint32_t zor_set_error_callback(zor_handle_t /*handle*/, ...) { return zor_not_implemented; }

const char* zor_get_version_str(void) { return kestrel::kVersion.text; }

const char* zor_get_build_str(void) { return kestrel::BuildText(); }

void zor_release_buf(void* buffer) { std::free(buffer); }
