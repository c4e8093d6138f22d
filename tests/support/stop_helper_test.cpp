#include "support/stop_helper.h"

#include <gtest/gtest.h>

#include <boost/thread/thread.hpp>
#include <future>
#include <memory>
#include <thread>

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

TEST(StopHelper, EndsALoopOnAnotherThread) {
  const auto helper = std::make_shared<StopHelper>();
  std::promise<void> started;
  auto loop = std::async(std::launch::async, [&] {
    started.set_value();
    for (;;) CheckInterrupted(helper.get());
  });
  started.get_future().wait();
  helper->RequestStop();
  EXPECT_THROW(loop.get(), runtime_error);
}

/// Loops on a thread with `helper` (or none) until it is interrupted or `passes` are done; tells which.
bool IsInterrupted(const StopHelper* helper, int passes) {
  bool interrupted = false;
  std::promise<void> go;
  boost::thread thread([&, ready = go.get_future().share()] {
    ready.wait();
    try {
      for (int i = 0; i < passes; ++i) CheckInterrupted(helper);
    } catch (const boost::thread_interrupted&) {
      interrupted = true;
    }
  });
  thread.interrupt();
  go.set_value();
  thread.join();
  return interrupted;
}

TEST(StopHelper, IsAnInterruptionPointOnlyWithAHelper) {
  const StopHelper helper;
  EXPECT_TRUE(IsInterrupted(&helper, 1));
  EXPECT_FALSE(IsInterrupted(nullptr, 100));
}

}  // namespace
}  // namespace kestrel::utils
