#pragma once

#include <atomic>

namespace kestrel::utils {

/// A stop flag shared between the thread that asks for a stop and the long loops that test it.
class StopHelper {
 public:
  void RequestStop() { stop_ = true; }
  bool StopRequested() const { return stop_; }

 private:
  std::atomic<bool> stop_{false};
};

/// Stands at the heads of long loops. Without a helper it does nothing; with one it is an interruption point of the
/// thread library and raises `utils::runtime_error` "Stop requested. Unable to continue." once a stop was requested.
void CheckInterrupted(const StopHelper* helper);

/// Raises the error of a requested stop.
[[noreturn]] void RaiseStopRequested();

}  // namespace kestrel::utils
