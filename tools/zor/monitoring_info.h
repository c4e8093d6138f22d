#pragma once

#include <ostream>
#include <string>

namespace kestrel::cli {

/// Both take the library's description of a monitoring file, a JSON object with "header", "parameters" (name, lower,
/// upper), "responses", "designs" (counts by status) and "models" (response, model, cop). Both throw WorkError if it is
/// none.

/// For people: the designs and tables of the header's values, of the parameters and of the models.
void PrintMonitoringInfo(std::ostream& stream, const std::string& description);

/// For programs: the description with the kind of the file.
void PrintMonitoringInfoJson(std::ostream& stream, const std::string& description);

}  // namespace kestrel::cli
