#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace kestrel::testing {

inline std::string CommittedPath(const std::string& name) { return std::string(ZOR_TEST_DATA) + "/" + name; }

inline std::string Committed(const std::string& name) {
  std::ifstream file(CommittedPath(name), std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Empties the texts of the meta data that tell of the library's version and build and of the time of writing. An entry
/// is its key and, behind the check word of "second", its value; both texts are shorter than 16384 bytes, so that their
/// length is one word.
inline std::string WithoutStamps(std::string bytes) {
  for (const std::string key :
       {"quillMark version", "quillMark version_full", "quillMark suffix", "quillMark build date", "last_write_time"}) {
    const std::string stored = std::string{static_cast<char>(key.size()), '\0'} + key;
    const std::size_t found = bytes.find(stored);
    EXPECT_NE(found, std::string::npos) << key;
    if (found == std::string::npos) continue;
    const std::size_t length = found + stored.size() + 2;
    const auto low = static_cast<unsigned char>(bytes.at(length));
    const auto high = static_cast<unsigned char>(bytes.at(length + 1));
    bytes.replace(length, 2 + low + 256U * high, 2, '\0');
  }
  return bytes;
}

}  // namespace kestrel::testing
