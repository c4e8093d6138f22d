#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "persistence/archive/archives.h"

namespace kestrel::testing {

/// Keeps what goes to the standard error stream from the reader of the test's own output.
class StderrCapture {
 public:
  StderrCapture() { ::testing::internal::CaptureStderr(); }
  ~StderrCapture() {
    if (!taken_) ::testing::internal::GetCapturedStderr();
  }
  StderrCapture(const StderrCapture&) = delete;
  StderrCapture& operator=(const StderrCapture&) = delete;

  std::string Take() {
    taken_ = true;
    return ::testing::internal::GetCapturedStderr();
  }

 private:
  bool taken_ = false;
};

/// Reads a record to the last byte, as a caller's file is read: a name at the wrong place is reported, not raised.
template <class Record>
void ReadToTheEnd(const std::string& bytes, Record& record) {
  std::istringstream stream(bytes);
  StderrCapture reports;
  portable_binary_iarchive(stream, 0) >> record;
  EXPECT_EQ(reports.Take(), "") << "a name at the wrong place";
  EXPECT_EQ(stream.peek(), std::istringstream::traits_type::eof()) << "bytes behind the record";
}

}  // namespace kestrel::testing
