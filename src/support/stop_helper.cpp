#include "support/stop_helper.h"

#include <boost/thread/thread.hpp>

#include "support/exceptions.h"

namespace kestrel::utils {

void CheckInterrupted(const StopHelper* helper) {
  if (helper == nullptr) return;
  boost::this_thread::interruption_point();
  if (helper->StopRequested()) RaiseStopRequested();
}

void RaiseStopRequested() { throw runtime_error(L"Stop requested. Unable to continue."); }

}  // namespace kestrel::utils
