#include "model_file.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string_view>
#include <system_error>

#include "errors.h"
#include "text.h"

namespace kestrel::cli {

namespace {

constexpr std::string_view kStoredModelMagic = "KBA";
constexpr std::string_view kMonitoringFileMagic = "LYRA";

void RequireRegularFile(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (error) throw WorkError(path + ": " + error.message() + ".");
  if (std::filesystem::is_directory(status)) throw WorkError(path + ": Is a directory.");
  if (!std::filesystem::is_regular_file(status)) throw WorkError(path + ": Is not a regular file.");
}

[[noreturn]] void RefuseContent(const std::string& path, const std::string& kind, const std::string& reason) {
  throw WorkError(path + ": Cannot be read as a " + kind + ": " + Escaped(reason));
}

/// Keeps back what the library says on the standard error stream. On a damaged file it can go on for long, one line for
/// each mismatch, until it gives up; then its last word, the error, is enough.
class MessagesKeptBack {
 public:
  MessagesKeptBack() : stream_(std::cerr.rdbuf(text_.rdbuf())) {}
  ~MessagesKeptBack() { std::cerr.rdbuf(stream_); }
  MessagesKeptBack(const MessagesKeptBack&) = delete;
  MessagesKeptBack& operator=(const MessagesKeptBack&) = delete;

  /// For a file that was readable all the same.
  void Release() {
    std::cerr.rdbuf(stream_);
    std::cerr << text_.str();
  }

 private:
  std::ostringstream text_;
  std::streambuf* stream_;
};

void CheckWritten(const Handle& handle, std::uint32_t code, const std::string& path) {
  if (code != zor_success) throw WorkError(path + ": Cannot be written: " + handle.ErrorText(code));
}

}  // namespace

FileKind KindOfFile(const std::string& path) {
  RequireRegularFile(path);
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw WorkError(path + ": " + std::strerror(errno) + ".");
  std::array<char, kMonitoringFileMagic.size()> bytes{};
  file.read(bytes.data(), bytes.size());
  if (file.bad()) throw WorkError(path + ": " + std::strerror(errno) + ".");
  const std::string_view start(bytes.data(), static_cast<std::size_t>(file.gcount()));
  if (start == kMonitoringFileMagic) return FileKind::kMonitoringFile;
  return start.substr(0, kStoredModelMagic.size()) == kStoredModelMagic ? FileKind::kStoredModel : FileKind::kNeither;
}

Handle ReadStoredModel(const std::string& path) {
  switch (KindOfFile(path)) {
    case FileKind::kStoredModel: break;
    case FileKind::kMonitoringFile:
      throw WorkError(path + ": Is a monitoring file; expected is a stored model, as 'zor fit --store' writes it.");
    case FileKind::kNeither: throw WorkError(path + ": Is not a stored model.");
  }
  const Handle witness;  // gets the text of a failure
  zor_handle_t handle = witness.get();
  MessagesKeptBack messages;
  const std::uint32_t code = zor_read_db_file(&handle, path.c_str());
  if (code != zor_success) RefuseContent(path, "stored model", witness.ErrorText(code));
  messages.Release();
  return Handle(handle);
}

void StoreModel(const Handle& handle, const std::string& path) {
  CheckWritten(handle, zor_write_db_file(handle.get(), path.c_str()), path);
}

void WriteMonitoringFile(const Handle& handle, const std::string& path) {
  CheckWritten(handle, zor_write_monitoring_file(handle.get(), path.c_str()), path);
}

std::string DescribeMonitoringFile(const std::string& path) {
  char* buffer = nullptr;
  std::size_t length = 0;
  MessagesKeptBack messages;
  const std::uint32_t code = zor_describe_monitoring_file(path.c_str(), &buffer, &length);
  std::string text = TakeText(buffer, length);
  if (code != zor_success) RefuseContent(path, "monitoring file", text);
  messages.Release();
  return text;
}

}  // namespace kestrel::cli
