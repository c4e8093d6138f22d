#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

#include "api/handle.h"

namespace zor_test {
namespace {

/// Works off jobs on one thread that lives as long as the object.
class Worker {
 public:
  ~Worker() {
    Run(nullptr);
    thread_.join();
  }

  /// Returns when the job is done; an empty job ends the thread.
  void Run(std::function<void()> job) {
    std::unique_lock<std::mutex> lock(mutex_);
    job_ = std::move(job);
    waiting_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !waiting_; });
  }

 private:
  void Loop() {
    std::unique_lock<std::mutex> lock(mutex_);
    bool last = false;
    while (!last) {
      changed_.wait(lock, [this] { return waiting_; });
      last = !job_;
      if (job_) job_();
      waiting_ = false;
      changed_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::function<void()> job_;
  bool waiting_ = false;
  std::thread thread_{[this] { Loop(); }};
};

constexpr const char* kFlagText = "Input must be zor_true or zor_false.";

TEST(ApiThreads, HaveALastErrorEach) {
  const Handle handle = MakeHandle();
  Worker worker;
  worker.Run([&] {
    EXPECT_EQ(LastError(handle), "");
    EXPECT_EQ(zor_set_use_mls(handle.get(), 2), zor_unknown_input_enum);
  });
  EXPECT_EQ(LastError(handle), "");
  EXPECT_EQ(zor_set_testing_type(handle.get(), 2), zor_unknown_input_enum);
  worker.Run([&] {
    EXPECT_EQ(LastError(handle), kFlagText);
    EXPECT_EQ(zor_set_use_mls(handle.get(), 1), zor_success);
    EXPECT_EQ(LastError(handle), "");
  });
  EXPECT_EQ(LastError(handle), "Input must be zor_cross_validation or zor_leave_one_out.");
}

TEST(ApiThreads, SeeNoTextOfAReleasedHandle) {
  Worker worker;
  Handle old = MakeHandle();
  const void* const address = old.get();
  worker.Run([&] { EXPECT_EQ(zor_set_use_mls(old.get(), 2), zor_unknown_input_enum); });
  EXPECT_EQ(zor_set_use_mls(old.get(), 2), zor_unknown_input_enum);
  old.reset();

  std::vector<Handle> handles;  // until one stands where the old one stood
  while (handles.size() < 1000 && (handles.empty() || handles.back().get() != address)) {
    handles.push_back(MakeHandle());
  }
  if (handles.back().get() != address) GTEST_SKIP() << "the memory is not used again";
  EXPECT_EQ(LastError(handles.back()), "");
  worker.Run([&] {
    EXPECT_EQ(LastError(handles.back()), "");
    EXPECT_EQ(zor_set_testing_type(handles.back().get(), 2), zor_unknown_input_enum);
    EXPECT_EQ(LastError(handles.back()), "Input must be zor_cross_validation or zor_leave_one_out.");
  });
}

TEST(ApiThreads, MayUseHandlesOfTheirOwn) {
  const auto work = [](uint32_t designs) {
    for (int round = 0; round < 3; ++round) {
      const Table table = MakeTable(designs, 3, 3);
      const Handle handle = MakeHandle();
      SetCounts(handle, table);
      SetNames(handle, table);
      EXPECT_EQ(zor_set_outputs_in_parallel_count(handle.get(), 2), zor_success);
      EXPECT_EQ(Build(handle, table), zor_success);
      std::vector<double> values(table.outputs.size());
      EXPECT_EQ(zor_solve(handle.get(), table.inputs.data(), values.data(), designs), zor_success);
      for (std::size_t i = 0; i < designs; ++i) EXPECT_NEAR(values[3 * i], table.Output(i, 0), 1e-9);
      EXPECT_EQ(zor_set_use_mls(handle.get(), 2), zor_unknown_input_enum);
      EXPECT_EQ(LastError(handle), kFlagText);
    }
  };
  std::thread other(work, 35);
  work(30);
  other.join();
}

TEST(ApiThreads, MayReadOneModelTogether) {
  const Table table = MakeTable(30, 2, 2);
  const Handle handle = MakeBuilt(table);
  const auto evaluate = [&] {
    std::vector<double> values(60);
    EXPECT_EQ(zor_solve(handle.get(), table.inputs.data(), values.data(), 30), zor_success);
    for (std::size_t i = 0; i < 30; ++i) EXPECT_NEAR(values[2 * i], table.Output(i, 0), 1e-9);
    EXPECT_EQ(zor_calculate_errors_per_output(handle.get(), 1, table.inputs.data(), 1, values.data()), zor_success);
    EXPECT_EQ(zor_calculate_cv_values_per_output(handle.get(), 1, values.data()), zor_success);
    EXPECT_EQ(zor_get_cop_per_output(handle.get(), 7, values.data()), zor_result_index_out_of_range);
  };
  std::thread other(evaluate);
  evaluate();
  other.join();
}

/// All numbers of a build on `workers` threads, made in a process of its own, so that each build is the first one.
std::vector<double> NumbersOfFreshProcess(uint32_t workers) {
  const Table table = MakeTable(40, 4, 6);
  const std::size_t count = 6 * (1 + 4 + 40 + 40 + 40);
  int ends[2] = {};
  EXPECT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    std::vector<double> numbers(count, 0.0);
    const Handle handle = MakeHandle();
    SetCounts(handle, table);
    zor_set_outputs_in_parallel_count(handle.get(), workers);
    bool good = Build(handle, table) == zor_success;
    double* next = numbers.data();
    for (int32_t k = 0; k < 6; ++k) {
      uint32_t groups[40] = {};
      good = good && zor_get_cop_per_output(handle.get(), k, next) == zor_success;
      good = good && zor_get_single_cop_per_output(handle.get(), k, next + 1) == zor_success;
      good = good && zor_calculate_cv_values_per_output(handle.get(), k, next + 5) == zor_success;
      good = good && zor_get_cv_indexes_per_output(handle.get(), k, groups) == zor_success;
      std::copy(groups, groups + 40, next + 45);
      next += 85;
    }
    good = good && zor_solve(handle.get(), table.inputs.data(), next, 40) == zor_success;
    const std::size_t bytes = count * sizeof(double);
    good = good && write(ends[1], numbers.data(), bytes) == static_cast<ssize_t>(bytes);
    _exit(good ? 0 : 1);
  }
  close(ends[1]);
  std::vector<double> numbers(count);
  std::size_t filled = 0;
  while (filled < count * sizeof(double)) {
    const ssize_t got =
        read(ends[0], reinterpret_cast<char*>(numbers.data()) + filled, count * sizeof(double) - filled);
    if (got <= 0) break;
    filled += static_cast<std::size_t>(got);
  }
  close(ends[0]);
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  return numbers;
}

TEST(ApiThreads, DoNotChangeTheBitsOfABuild) {
  const std::vector<double> one = NumbersOfFreshProcess(1);
  for (const uint32_t workers : {1u, 2u, 6u, 0u}) {
    const std::vector<double> others = NumbersOfFreshProcess(workers);
    EXPECT_EQ(std::memcmp(one.data(), others.data(), one.size() * sizeof(double)), 0) << workers << " workers";
  }
}

}  // namespace
}  // namespace zor_test
