#include "build/zor_task.h"

#include <gtest/gtest.h>

#include <boost/thread/thread.hpp>
#include <limits>
#include <ostream>

#include "build/samples.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"

namespace kestrel::zor {
namespace {

using math::IndexVector;
using math::Matrix;
using math::Vector;
using testing::MatrixNear;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr const char* kNoValues = "Unable to calculate ZOR without valid design values.";
constexpr const char* kStopped = "Stop requested. Unable to continue.";

struct CleanCase {
  const char* name;
  std::vector<double> output;
  std::vector<std::uint64_t> removed;

  friend void PrintTo(const CleanCase& of, std::ostream* stream) { *stream << of.name; }
};

class CleanData : public ::testing::TestWithParam<CleanCase> {};

TEST_P(CleanData, RemovesTheRowsWithoutAFiniteOutput) {
  const auto count = static_cast<math::Index>(GetParam().output.size());
  Vector output = Eigen::Map<const Vector>(GetParam().output.data(), count);
  Matrix inputs(count, 2);
  inputs.col(0).setLinSpaced(count, 0.0, static_cast<double>(count - 1));
  inputs.col(1) = -inputs.col(0);

  const IndexVector removed = ZorTask::CleanData(inputs, output);

  EXPECT_EQ(std::vector<std::uint64_t>(removed.begin(), removed.end()), GetParam().removed);
  ASSERT_EQ(output.size(), count - removed.size());
  ASSERT_EQ(inputs.rows(), output.size());
  for (math::Index row = 0; row < output.size(); ++row) {
    const auto source = static_cast<std::size_t>(inputs(row, 0));
    EXPECT_EQ(output(row), GetParam().output[source]);
    EXPECT_EQ(inputs(row, 1), -inputs(row, 0));
    if (row > 0) {
      EXPECT_GT(inputs(row, 0), inputs(row - 1, 0));
    }
  }
}

constexpr double kMax = std::numeric_limits<double>::max();

INSTANTIATE_TEST_SUITE_P(Outputs, CleanData,
                         ::testing::Values(CleanCase{"AllGood", {1, 2, 3}, {}},
                                           CleanCase{"TwoOfSeven", {0, 1, kNan, 3, 4, kNan, 6}, {2, 5}},
                                           CleanCase{"BothEnds", {kInf, 1, -kInf}, {0, 2}},
                                           CleanCase{"Neighbours", {1, kNan, kInf, kNan, 5}, {1, 2, 3}},
                                           CleanCase{"LargestStays", {kMax, -kMax, kNan}, {2}}),
                         [](const auto& named) { return named.param.name; });

TEST(CleanDataRefusal, NeedsOneGoodRow) {
  for (const Vector& values : {Vector(), Vector(Vector::Constant(3, kNan)), Vector(Vector::Constant(1, -kInf))}) {
    Matrix inputs = Matrix::Zero(values.size(), 2);
    Vector output = values;
    EXPECT_THROW(ZorTask::CleanData(inputs, output), utils::runtime_error);
  }
}

/// A task on the first response of a table, with its futures.
struct TaskRun {
  explicit TaskRun(const Vector* output = nullptr) : request(std::make_shared<ZorTask::ZorRequest>(stop)) {
    const testing::SampleTable samples = testing::MakeSamples(30, 3, 1);
    request->inputs = std::make_shared<const Matrix>(samples.parameters);
    request->output = output ? *output : Vector(samples.responses.col(0));
    request->important_info.assign(3, 1);
    request->task_log = std::make_shared<utils::log::LogDummy>();
    request->search_log = request->task_log;
    request->stop_helper = std::make_shared<utils::StopHelper>();
    request->names = samples.parameter_names;
    request->response_name = L"r0";
    request->generator = math::random::MakeStream(1, 2);
  }

  void Start() {
    ZorTask task(request);
    results = task.GetResultsFuture();
    surrogate = task.GetBestSurrogateFuture();
    cv_indices = task.GetCVIndicesFuture();
    unused = task.GetUnusedIndicesFuture();
    task();
  }

  boost::atomics::atomic<bool> stop{false};
  std::shared_ptr<ZorTask::ZorRequest> request;
  std::future<math::metamodel::SubspaceResults> results;
  std::future<std::shared_ptr<math::metamodel::SurrogateBase>> surrogate;
  std::future<math::metamodel::Subsets> cv_indices;
  std::future<IndexVector> unused;
};

template <class Future>
std::string FailureOf(Future& future) {
  try {
    future.get();
    return "none";
  } catch (const std::exception& error) {
    return error.what();
  } catch (const boost::thread_interrupted&) {
    return "interrupted";
  }
}

TEST(Task, HandsBackTheBestModelOfTheGoodRows) {
  const testing::SampleTable samples = testing::MakeSamples(30, 3, 1);
  Vector output = samples.responses.col(0);
  output(4) = kNan;
  TaskRun run(&output);
  run.Start();
  const IndexVector unused = run.unused.get();
  ASSERT_EQ(unused.size(), 1);
  EXPECT_EQ(unused(0), 4u);
  EXPECT_NEAR(run.results.get().measures.CoP, 1.0, 1e-12);
  const auto surrogate = run.surrogate.get();
  EXPECT_EQ(surrogate->GetNumberPoints(), 29);
  EXPECT_TRUE(MatrixNear(surrogate->Approximate(samples.parameters), testing::Quadratic(samples.parameters), 1e-9));
  EXPECT_EQ(run.cv_indices.get().size(), 29u);
}

TEST(Task, FailsInAllFuturesWithoutValidValues) {
  const Vector output = Vector::Constant(30, kNan);
  TaskRun run(&output);
  run.Start();
  EXPECT_EQ(FailureOf(run.unused), kNoValues);
  EXPECT_EQ(FailureOf(run.results), kNoValues);
  EXPECT_EQ(FailureOf(run.surrogate), kNoValues);
  EXPECT_EQ(FailureOf(run.cv_indices), kNoValues);
}

TEST(Task, StopsBetweenTwoStepsAndKeepsWhatItHandedBack) {
  TaskRun run;
  run.stop = true;
  run.Start();
  EXPECT_EQ(run.unused.get().size(), 0);
  EXPECT_EQ(FailureOf(run.results), kStopped);
  EXPECT_EQ(FailureOf(run.surrogate), kStopped);
  EXPECT_EQ(FailureOf(run.cv_indices), kStopped);
}

TEST(Task, StopsInsideTheSearchByTheHelper) {
  TaskRun run;
  run.request->stop_helper->RequestStop();
  run.Start();
  EXPECT_EQ(FailureOf(run.results), kStopped);
}

TEST(TaskThreads, IsInterruptedIfTheRequestAsksForIt) {
  for (const bool interruptible : {true, false}) {
    TaskRun run;
    run.request->interruptible = interruptible;
    run.request->stop_helper = nullptr;  // the search has no interruption points without it
    std::promise<void> go;
    boost::thread worker([&] {
      go.get_future().wait();
      run.Start();
    });
    worker.interrupt();
    go.set_value();
    worker.join();
    EXPECT_EQ(FailureOf(run.cv_indices), interruptible ? "interrupted" : "none");
  }
}

}  // namespace
}  // namespace kestrel::zor
