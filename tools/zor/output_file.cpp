#include "output_file.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "errors.h"
#include "numbers.h"
#include "text.h"

namespace kestrel::cli {

void RequireWritable(const std::string& path, const std::vector<std::string>& sources) {
  std::error_code ignored;
  const std::filesystem::path file(path);
  if (std::filesystem::is_directory(file, ignored)) throw InputError(path + ": Is a directory.");
  const bool exists = std::filesystem::exists(file, ignored);
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
  const bool is_allowed = exists ? access(path.c_str(), W_OK) == 0 : access(folder.c_str(), W_OK | X_OK) == 0;
  if (!is_allowed) throw InputError(path + ": Cannot be written: " + std::strerror(errno) + ".");
  for (const std::string& source : sources) {
    // Only what lies on a disk can be lost; /dev/null may be named twice.
    if (std::filesystem::is_regular_file(file, ignored) && std::filesystem::equivalent(file, source, ignored)) {
      throw InputError(path + ": Would overwrite a file that is read.");
    }
  }
}

void RequireWritten(std::ostream& stream, const std::string& name) {
  errno = 0;
  stream.flush();
  if (stream.good()) return;
  throw WorkError(name + ": Not all could be written" + (errno != 0 ? std::string(": ") + std::strerror(errno) : "") +
                  ".");
}

void WriteFile(const std::string& path, const std::function<void(std::ostream&)>& write) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  write(file);
  RequireWritten(file, path);
}

void WriteCsv(std::ostream& stream, const std::vector<std::string>& names, const std::vector<double>& values) {
  stream << Joined(names, ",") << '\n';
  std::size_t column = 0;
  for (const double value : values) {
    if (!std::isnan(value)) stream << ExactText(value);
    ++column;
    stream << (column == names.size() ? '\n' : ',');
    if (column == names.size()) column = 0;
  }
}

}  // namespace kestrel::cli
