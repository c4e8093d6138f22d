#include "build/zor_task.h"

#include <boost/thread/thread.hpp>
#include <cmath>
#include <exception>
#include <utility>

#include "support/exceptions.h"

namespace kestrel::zor {
namespace {

/// Moves the good rows up to the front; `good` is ascending.
void KeepRows(const std::vector<math::Index>& good, math::Matrix& inputs, math::Vector& output) {
  const auto count = static_cast<math::Index>(good.size());
  for (math::Index row = 0; row < count; ++row) {
    const math::Index source = good[static_cast<std::size_t>(row)];
    output(row) = output(source);
    for (math::Index column = 0; column < inputs.cols(); ++column) inputs(row, column) = inputs(source, column);
  }
  inputs.conservativeResize(count, Eigen::NoChange);
  output.conservativeResize(count);
}

template <class Value>
void FailUnlessSet(std::promise<Value>& promise, const std::exception_ptr& failure) {
  try {
    promise.set_exception(failure);
  } catch (const std::future_error&) {
    // It has its value: the failure came later.
  }
}

}  // namespace

ZorTask::ZorTask(std::shared_ptr<ZorRequest> request) : request_(std::move(request)) {}

math::IndexVector ZorTask::CleanData(math::Matrix& inputs, math::Vector& output) {
  std::vector<math::Index> good;
  std::vector<std::uint64_t> bad;
  for (math::Index row = 0; row < output.size(); ++row) {
    if (std::isfinite(output(row))) {
      good.push_back(row);
    } else {
      bad.push_back(static_cast<std::uint64_t>(row));
    }
  }
  if (good.empty()) throw utils::runtime_error(L"Unable to calculate ZOR without valid design values.");
  if (!bad.empty()) KeepRows(good, inputs, output);
  return Eigen::Map<const math::IndexVector>(bad.data(), static_cast<math::Index>(bad.size()));
}

void ZorTask::operator()() {
  try {
    Run();
  } catch (...) {  // an interruption of the thread is no std::exception and ends the task alike
    const std::exception_ptr failure = std::current_exception();
    FailUnlessSet(unused_indices_, failure);
    FailUnlessSet(results_, failure);
    FailUnlessSet(surrogate_, failure);
    FailUnlessSet(cv_indices_, failure);
  }
  request_.reset();
}

void ZorTask::Run() {
  utils::log::LogBase& log = *request_->task_log;
  const std::wstring& name = request_->response_name;
  math::metamodel::Zor zor = ConstructZOR();
  InitializeZOR(zor);
  CheckStopRequested();
  log.Debug() << L"Build subspaces for response " << name;
  zor.BuildSubspaces();
  CheckStopRequested();
  log.Debug() << L"Start metamodel evaluation for response " << name;
  zor.EvaluateMetamodels();
  CheckStopRequested();

  results_.set_value(zor.GetBestResult());
  surrogate_.set_value(zor.GetBestMetamodel());
  log.Debug() << L"Finished metamodel evaluation for response " << name << L" - Collecting results";
  cv_indices_.set_value(zor.GetSubset());
}

math::metamodel::Zor ZorTask::ConstructZOR() {
  math::Matrix inputs = *request_->inputs;
  unused_indices_.set_value(CleanData(inputs, request_->output));
  return math::metamodel::Zor(inputs, request_->output, request_->names, request_->response_name);
}

void ZorTask::InitializeZOR(math::metamodel::Zor& zor) const {
  zor.Initialize(request_->settings);
  zor.SetInfoImportant(request_->important_info);
  if (request_->search_log) zor.SetLog(request_->search_log);
  if (request_->subspace_results) zor.SetSubspaceResultContainer(request_->subspace_results);
  zor.SetStopHelper(request_->stop_helper);
  zor.SetGenerator(request_->generator);
}

void ZorTask::CheckStopRequested() const {
  if (request_->stop_request) utils::RaiseStopRequested();
  if (request_->interruptible) boost::this_thread::interruption_point();
}

}  // namespace kestrel::zor
