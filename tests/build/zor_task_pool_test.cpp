#include "build/zor_task_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <boost/thread/thread.hpp>
#include <future>
#include <optional>
#include <vector>

namespace kestrel::zor {
namespace {

TEST(TaskPoolThreads, RunsJobsInTheOrderPosted) {
  std::vector<int> order;
  std::promise<void> done;
  ZORTaskPool pool(1);
  for (int i = 0; i < 50; ++i) pool.Schedule([&order, i] { order.push_back(i); });
  pool.Schedule([&done] { done.set_value(); });
  done.get_future().wait();
  ASSERT_EQ(order.size(), 50u);
  for (int i = 0; i < 50; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

TEST(TaskPoolThreads, WorksOnAsManyJobsAsItHasThreads) {
  std::promise<void> first_runs;
  std::promise<void> second_runs;
  std::promise<void> done;
  ZORTaskPool pool(2);
  pool.Schedule([&] {  // ends only while the other job runs, too
    first_runs.set_value();
    second_runs.get_future().wait();
    done.set_value();
  });
  pool.Schedule([&] {
    first_runs.get_future().wait();
    second_runs.set_value();
  });
  done.get_future().wait();
}

TEST(TaskPoolThreads, InterruptsWhatRunsAndDropsWhatWaits) {
  std::promise<void> runs;
  std::atomic<bool> interrupted{false};
  std::atomic<bool> second_ran{false};
  std::optional<ZORTaskPool> pool(std::in_place, 1);
  pool->Schedule([&] {
    try {
      runs.set_value();
      while (true) {
        boost::this_thread::interruption_point();
        boost::this_thread::yield();
      }
    } catch (const boost::thread_interrupted&) {
      interrupted = true;
    }
  });
  pool->Schedule([&] { second_ran = true; });
  runs.get_future().wait();
  pool.reset();  // returns when the threads have ended
  EXPECT_TRUE(interrupted);
  EXPECT_FALSE(second_ran);
}

TEST(TaskPoolThreads, JoinsThoughItsOwnerIsInterrupted) {
  std::promise<void> runs;
  std::atomic<bool> ended{false};
  std::atomic<bool> owner_went_on{false};
  boost::thread owner([&] {
    {
      ZORTaskPool pool(1);
      pool.Schedule([&] {
        const boost::this_thread::disable_interruption no_interruption;
        runs.set_value();
        while (!boost::this_thread::interruption_requested()) boost::this_thread::yield();
        ended = true;
      });
      runs.get_future().wait();
    }
    owner_went_on = ended.load();
  });
  owner.interrupt();
  const boost::this_thread::disable_interruption no_interruption;
  owner.join();
  EXPECT_TRUE(owner_went_on);
}

TEST(TaskPoolThreads, MayHaveNoThreads) {
  bool ran = false;
  {
    ZORTaskPool pool(0);
    pool.Schedule([&ran] { ran = true; });
  }
  EXPECT_FALSE(ran);
}

}  // namespace
}  // namespace kestrel::zor
