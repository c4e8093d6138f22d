#include <boost/iostreams/device/array.hpp>
#include <boost/iostreams/stream.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "api/barrier.h"
#include "api/buffers.h"
#include "api/byte_collector.h"
#include "api/monitoring_description.h"
#include "api/stored_record.h"
#include "persistence/database/lyra.h"
#include "zor_api.h"

// Stored models and monitoring files. Paths come in as UTF-8.

namespace {

namespace io = boost::iostreams;

std::filesystem::path PathOf(const char* path) {
  kestrel::api::RequirePointer(path);
  return std::filesystem::u8path(path);
}

[[noreturn]] void RaiseFileError(const std::filesystem::path& path, const char* what, int error) {
  throw std::runtime_error("Could not " + std::string(what) + " \"" + path.u8string() + "\": " + std::strerror(error));
}

void StoreInFile(const ZOR& record, const std::filesystem::path& path) {
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!file) RaiseFileError(path, "open", errno);
  kestrel::api::StoreRecord(record, file);
  file.close();
  if (!file) RaiseFileError(path, "write", errno);
}

std::unique_ptr<ZOR> LoadFromFile(const std::filesystem::path& path) {
  // Opening a fifo would wait for its writer, and a device has no end.
  if (!std::filesystem::is_regular_file(path)) {
    throw std::runtime_error("\"" + path.u8string() + "\" is not a file.");
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) RaiseFileError(path, "open", errno);
  return kestrel::api::LoadRecord(file);
}

/// Runs `load`, hands its record out and returns the code. A handle that came in keeps the text of a failure.
template <class Load>
uint32_t HandOutRecord(zor_handle_t* handle, Load&& load) {
  if (handle == nullptr) return zor_handle_init_failed;
  try {
    *handle = std::forward<Load>(load)().release();
    return zor_success;
  } catch (const std::exception& error) {
    if (*handle != nullptr) (*handle)->SetLastError(error.what());
    return zor_handle_init_failed;
  }
}

}  // namespace

uint32_t zor_write_db_file(zor_handle_t handle, const char* path) {
  return kestrel::api::Guarded(handle, [&](const ZOR& record) {
    const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
    StoreInFile(record, PathOf(path));
    return zor_success;
  });
}

uint32_t zor_write_db_buf(zor_handle_t handle, void** buffer, size_t* size) {
  return kestrel::api::Guarded(handle, [&](const ZOR& record) {
    const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
    void*& target = kestrel::api::Target(buffer);
    std::size_t& length = kestrel::api::Target(size);
    kestrel::api::ByteCollector bytes;
    std::ostream stream(&bytes);
    kestrel::api::StoreRecord(record, stream);
    target = bytes.Release(length);
    return zor_success;
  });
}

uint32_t zor_read_db_file(zor_handle_t* handle, const char* path) {
  return HandOutRecord(handle, [&] { return LoadFromFile(PathOf(path)); });
}

uint32_t zor_read_db_buf(zor_handle_t* handle, const void* buffer, size_t size) {
  return HandOutRecord(handle, [&] {
    kestrel::api::RequirePointer(buffer);
    io::stream<io::array_source> stream(static_cast<const char*>(buffer), size);
    return kestrel::api::LoadRecord(stream);
  });
}

uint32_t zor_write_monitoring_file(zor_handle_t handle, const char* path) {
  return kestrel::api::GuardedResult(handle, [&](const ZOR& record) {
    kestrel::algorithm::datatypes::LYRA::SaveToFile(record.zorsolver_.GetLYRA(), PathOf(path).string());
    return zor_success;
  });
}

uint32_t zor_describe_monitoring_file(const char* path, char** text, size_t* length) {
  try {
    std::string description;
    uint32_t code = zor_success;
    try {
      description = kestrel::api::DescribeMonitoringFile(PathOf(path));
    } catch (const std::exception& error) {
      description = error.what();
      code = zor_handle_init_failed;
    }
    kestrel::api::HandOut(description, text, length);
    return code;
  } catch (const std::exception&) {
    return zor_handle_init_failed;  // there is nowhere to put the reason
  }
}
