#include "support/stop_helper.h"

#include <gtest/gtest.h>

#include "support/exceptions.h"

namespace kestrel::utils {
namespace {

constexpr const char* kStopText = "Stop requested. Unable to continue.";

TEST(StopHelper, LetsPassUntilAStopIsRequested) {
  StopHelper helper;
  EXPECT_NO_THROW(CheckInterrupted(nullptr));
  EXPECT_NO_THROW(CheckInterrupted(&helper));
  helper.RequestStop();
  try {
    CheckInterrupted(&helper);
    FAIL() << "the stop was not seen";
  } catch (const runtime_error& error) {
    EXPECT_STREQ(error.what(), kStopText);
  }
}

}  // namespace
}  // namespace kestrel::utils
