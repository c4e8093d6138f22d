#pragma once

#include <istream>
#include <memory>
#include <ostream>

#include "api/zor_record.h"

/// A record as a stored model: one tracked pointer in a portable archive.
namespace kestrel::api {

/// Raises an archive exception if the stream does not take all bytes.
void StoreRecord(const ZOR& record, std::ostream& stream);

/// Raises an exception for everything that is not a stored model, and for one whose parts contradict each other.
std::unique_ptr<ZOR> LoadRecord(std::istream& stream);

}  // namespace kestrel::api
