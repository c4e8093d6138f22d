#pragma once

#include <boost/thread/shared_lock_guard.hpp>
#include <boost/thread/shared_mutex.hpp>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <utility>
#include <vector>

#include "api/zor_record.h"
#include "zor_api.h"

/// What stands between a caller and the exceptions of the library, written once. `work` takes the record and returns
/// the code of the exported function.
namespace kestrel::api {

/// Runs `work` on the record of the handle. Whatever it throws becomes the last error of the calling thread.
template <class Work>
std::uint32_t Guarded(zor_handle_t handle, Work&& work) {
  if (handle == nullptr) return zor_invalid_handle;
  handle->SetLastError("");
  try {
    return std::forward<Work>(work)(*handle);
  } catch (const std::exception& error) {
    handle->SetLastError(error.what());
    return zor_calculation_error;
  }
}

/// The same for what changes the problem or its settings: the models are dropped first.
template <class Work>
std::uint32_t GuardedChange(zor_handle_t handle, Work&& work) {
  return Guarded(handle, [&work](ZOR& record) {
    const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
    record.ClearResults();
    return std::forward<Work>(work)(record);
  });
}

/// The same for what needs the models.
template <class Work>
std::uint32_t GuardedResult(zor_handle_t handle, Work&& work) {
  if (handle != nullptr && !handle->built_) {
    handle->SetLastError("ZOR needs to be built first.");
    return zor_not_built;
  }
  return Guarded(handle, std::forward<Work>(work));
}

/// Runs `work` on the entry of an output. A negative index raises the range error of the vector.
template <class Entry, class Work>
std::uint32_t WithEntry(const std::vector<Entry>& entries, std::int32_t output, Work&& work) {
  if (output >= 0 && static_cast<std::size_t>(output) >= entries.size()) return zor_result_index_out_of_range;
  return std::forward<Work>(work)(entries.at(static_cast<std::size_t>(output)));
}

}  // namespace kestrel::api
