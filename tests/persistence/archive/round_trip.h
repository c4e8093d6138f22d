#pragma once

#include "persistence/archive/archives.h"

#include <initializer_list>
#include <sstream>
#include <string>

namespace kestrel::testing {

constexpr unsigned kNoHeader = boost::archive::no_header;

template <class T>
std::string Write(const T& value, unsigned flags = 0) {
  std::ostringstream stream;
  portable_binary_oarchive archive(stream, flags);
  archive << value;
  return stream.str();
}

template <class T>
void ReadInto(const std::string& bytes, T& value, unsigned flags = 0) {
  std::istringstream stream(bytes);
  portable_binary_iarchive archive(stream, flags);
  archive >> value;
}

template <class T>
T Read(const std::string& bytes, unsigned flags = 0) {
  T value{};
  ReadInto(bytes, value, flags);
  return value;
}

/// "00c0 0100" as the bytes 00 C0 01 00; blanks are left out.
inline std::string Bytes(const std::string& hex) {
  std::string digits;
  for (const char c : hex) {
    if (c != ' ') digits += c;
  }
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

}  // namespace kestrel::testing
