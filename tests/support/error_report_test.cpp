#include "support/error_report.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "support/exceptions.h"

namespace kestrel::error {
namespace {

/// Sets the process-wide flag and catches the wide standard error stream for one scope.
class AssertMode {
 public:
  AssertMode() : buffer_(std::wcerr.rdbuf(caught_.rdbuf())) { replace_exception_by_assert = true; }
  AssertMode(const AssertMode&) = delete;
  AssertMode& operator=(const AssertMode&) = delete;
  ~AssertMode() {
    replace_exception_by_assert = false;
    std::wcerr.rdbuf(buffer_);
  }
  std::wstring Caught() const { return caught_.str(); }

 private:
  std::wostringstream caught_;
  std::wstreambuf* buffer_;
};

TEST(ErrorReport, RaisesTheComposedMessage) {
  try {
    Report(L"Needs at least ", 3, L" points, got ", 2.5);
    FAIL() << "nothing was raised";
  } catch (const utils::runtime_error& error) {
    EXPECT_EQ(error.What(), L"Needs at least 3 points, got 2.5");
  }
}

TEST(ErrorReport, WritesAndContinuesIfTheFlagIsSet) {
  const AssertMode mode;
  Report(L"first");
  Report(L"second ", 2);
  EXPECT_EQ(mode.Caught(), L"first\nsecond 2\n");
}

}  // namespace
}  // namespace kestrel::error
