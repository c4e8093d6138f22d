#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "persistence/archive/archives.h"

namespace kestrel {

/// The bytes of one object in an archive of its own.
template <class Object>
std::string Write(const Object& object) {
  std::ostringstream stream;
  {
    portable_binary_oarchive archive(stream);
    archive << object;
  }
  return stream.str();
}

/// Reads an object to the last byte; a wrong annotation raises.
template <class Object>
Object Read(const std::string& bytes) {
  std::istringstream stream(bytes);
  portable_binary_iarchive archive(stream, 0x100000);
  Object object;
  archive >> object;
  EXPECT_EQ(stream.peek(), std::istringstream::traits_type::eof()) << "bytes behind the object";
  return object;
}

}  // namespace kestrel
