#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>

#include "persistence/archive/archives.h"

/// Objects to the bytes of an archive and back.
namespace kestrel::testing {

constexpr unsigned kNameAnnotations = 0x2000;
constexpr unsigned kRaiseOnMismatch = 0x100000;

template <class T>
std::string Store(const T& object, unsigned flags = 0) {
  std::ostringstream stream;
  portable_binary_oarchive(stream, flags) << object;
  return stream.str();
}

template <class T>
void Load(const std::string& bytes, T& object) {
  std::istringstream stream(bytes);
  portable_binary_iarchive(stream, kRaiseOnMismatch) >> object;
}

/// Writes an object through a pointer to its base and reads it; what was read gives the same bytes again.
template <class Base>
std::unique_ptr<Base> RoundTrip(const Base& object) {
  const Base* const stored = &object;
  const std::string bytes = Store(stored);
  Base* read = nullptr;
  Load(bytes, read);
  const Base* const again = read;
  EXPECT_EQ(Store(again), bytes);
  return std::unique_ptr<Base>(read);
}

/// The first of the names that an object's fields are not stored under in this order; empty if all are.
/// @param names  with blanks between them.
template <class T>
std::string FirstNameOutOfOrder(const T& object, const char* names) {
  const std::string bytes = Store(object, kNameAnnotations);
  std::size_t position = 0;
  std::istringstream words(names);
  for (std::string name; words >> name;) {
    const std::string item = std::string{static_cast<char>(name.size()), '\0'} + name;
    position = bytes.find(item, position);
    if (position == std::string::npos) return name;
    position += item.size();
  }
  return {};
}

template <class T>
std::string FirstNameOutOfOrder(const T& object, std::initializer_list<const char*> names) {
  std::string joined;
  for (const char* const name : names) joined.append(name).append(" ");
  return FirstNameOutOfOrder(object, joined.c_str());
}

}  // namespace kestrel::testing
