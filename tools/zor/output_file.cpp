#include "output_file.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "errors.h"
#include "numbers.h"
#include "text.h"

namespace kestrel::cli {

namespace {

namespace fs = std::filesystem;

void RequireWritableFile(const std::string& path) {
  std::error_code ignored;
  const fs::path file(path);
  if (fs::is_directory(file, ignored)) throw InputError(path + ": Is a directory.");
  const fs::path folder = file.has_parent_path() ? file.parent_path() : fs::path(".");
  const bool is_allowed =
      fs::exists(file, ignored) ? access(path.c_str(), W_OK) == 0 : access(folder.c_str(), W_OK | X_OK) == 0;
  if (!is_allowed) throw InputError(path + ": Cannot be written: " + std::strerror(errno) + ".");
}

/// Whether one file would replace the other. Only what lies on a disk can be lost; /dev/null may be named twice.
bool IsSameFile(const std::string& path, const std::string& other) {
  std::error_code ignored;
  if (fs::exists(path, ignored)) return fs::is_regular_file(path, ignored) && fs::equivalent(path, other, ignored);
  // Of a relative path nothing is resolved if nothing of it exists.
  const auto resolved = [&](const std::string& name) {
    return fs::weakly_canonical(fs::absolute(name, ignored), ignored);
  };
  return resolved(path) == resolved(other);
}

}  // namespace

void RequireWritable(const std::vector<Target>& targets, const std::vector<std::string>& sources) {
  std::vector<Target> given;
  for (const Target& target : targets) {
    if (target.path.empty()) continue;
    RequireWritableFile(target.path);
    for (const std::string& source : sources) {
      if (IsSameFile(target.path, source)) throw InputError(target.path + ": Would overwrite a file that is read.");
    }
    for (const Target& other : given) {
      if (IsSameFile(target.path, other.path)) {
        throw InputError(other.option + " and " + target.option + " name the same file.");
      }
    }
    given.push_back(target);
  }
}

void RequireWritten(std::ostream& stream, const std::string& name) {
  errno = 0;
  stream.flush();
  if (stream.good()) return;
  throw WorkError(name + ": Not all could be written" + (errno != 0 ? std::string(": ") + std::strerror(errno) : "") +
                  ".");
}

void WriteCsv(std::ostream& stream, const Table& table) {
  stream << Joined(table.names, ",") << '\n';
  std::size_t column = 0;
  for (const double value : table.values) {
    if (!std::isnan(value)) stream << ExactText(value);
    ++column;
    stream << (column == table.names.size() ? '\n' : ',');
    if (column == table.names.size()) column = 0;
  }
}

void WriteCsvFile(const std::string& path, const Table& table) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  WriteCsv(file, table);
  RequireWritten(file, path);
}

}  // namespace kestrel::cli
