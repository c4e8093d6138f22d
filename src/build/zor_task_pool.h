#pragma once

#include <functional>
#include <memory>

namespace kestrel::zor {

/// A fixed number of threads that work off jobs in the order posted. Jobs do not throw.
class ZORTaskPool {
 public:
  explicit ZORTaskPool(unsigned long threads);
  /// Drops the jobs not yet begun, interrupts and joins every thread in turn.
  ~ZORTaskPool();
  ZORTaskPool(const ZORTaskPool&) = delete;
  ZORTaskPool& operator=(const ZORTaskPool&) = delete;

  void Schedule(std::function<void()> job);

 private:
  struct Impl;  // keeps the I/O library out of this header
  std::unique_ptr<Impl> impl_;
};

}  // namespace kestrel::zor
