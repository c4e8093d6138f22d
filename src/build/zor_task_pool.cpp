#include "build/zor_task_pool.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/thread/thread.hpp>
#include <utility>
#include <vector>

namespace kestrel::zor {
namespace {

/// What a pool thread runs.
class ZORTaskWorker {
 public:
  explicit ZORTaskWorker(boost::asio::io_context& context) : context_(context) {}
  void operator()() const { context_.run(); }

 private:
  boost::asio::io_context& context_;
};

}  // namespace

struct ZORTaskPool::Impl {
  Impl() : work_guard(boost::asio::make_work_guard(context)) {}
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  ~Impl();

  boost::asio::io_context context;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_guard;
  std::vector<std::unique_ptr<boost::thread>> threads;
};

ZORTaskPool::Impl::~Impl() {
  const boost::this_thread::disable_interruption no_interruption;  // a join that is left early would leave a thread
  work_guard.reset();
  context.stop();
  for (const auto& thread : threads) thread->interrupt();
  for (const auto& thread : threads) thread->join();
}

ZORTaskPool::ZORTaskPool(unsigned long threads) : impl_(std::make_unique<Impl>()) {
  for (unsigned long i = 0; i < threads; ++i) {
    impl_->threads.push_back(std::make_unique<boost::thread>(ZORTaskWorker(impl_->context)));
  }
}

ZORTaskPool::~ZORTaskPool() = default;

void ZORTaskPool::Schedule(std::function<void()> job) { boost::asio::post(impl_->context, std::move(job)); }

}  // namespace kestrel::zor
