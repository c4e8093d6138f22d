#pragma once

#include <string>
#include <vector>

#include "golden/plain_schema.h"

namespace kestrel::testing {

/// Every value of a stored model, read from its bytes alone.
std::vector<PlainValue> WalkStoredModel(std::string bytes);
/// The same of a database file, behind its header.
std::vector<PlainValue> WalkMonitoringFile(std::string bytes);

}  // namespace kestrel::testing
