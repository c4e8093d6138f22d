#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace kestrel {

/// A folder of its own for one test, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zor_test_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() { std::filesystem::remove_all(folder_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

  /// Returns the path of the file written.
  std::string Write(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }

  std::string Read(const std::string& name) const {
    std::ostringstream content;
    content << std::ifstream(Path(name), std::ios::binary).rdbuf();
    return content.str();
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace kestrel
