#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "zor_api.h"

// Describes a monitoring file. The library reads paths, so the bytes go to a file that lives in memory.

namespace {

class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("monitoring_file", 0)) {
    if (descriptor_ < 0) std::abort();
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor_); }

  void Write(const std::uint8_t* data, std::size_t size) const {
    if (ftruncate(descriptor_, 0) != 0) std::abort();
    if (pwrite(descriptor_, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
  }
  std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const MemoryFile file;
  file.Write(data, size);
  char* text = nullptr;
  std::size_t length = 0;
  zor_describe_monitoring_file(file.Path().c_str(), &text, &length);
  zor_release_buf(text);
  return 0;
}
