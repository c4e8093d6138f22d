#include "support/error_report.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "support/exceptions.h"

namespace kestrel::error {
namespace {

TEST(ErrorReport, RaisesTheComposedMessage) {
  try {
    Report(L"Needs at least ", 3, L" points, got ", 2.5);
    FAIL() << "nothing was raised";
  } catch (const utils::runtime_error& error) {
    EXPECT_EQ(error.What(), L"Needs at least 3 points, got 2.5");
  }
}

TEST(ErrorReport, WritesAndContinuesIfTheFlagIsSet) {
  std::wostringstream caught;
  std::wstreambuf* const original = std::wcerr.rdbuf(caught.rdbuf());
  replace_exception_by_assert = true;
  Report(L"first");
  Report(L"second ", 2);
  replace_exception_by_assert = false;
  std::wcerr.rdbuf(original);
  EXPECT_EQ(caught.str(), L"first\nsecond 2\n");
}

}  // namespace
}  // namespace kestrel::error
