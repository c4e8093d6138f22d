#pragma once

#include <filesystem>
#include <string>

namespace kestrel::api {

/// What a monitoring file holds, as one JSON object: "header", the file's own; "parameters", each with "name", "lower"
/// and "upper"; "responses"; "designs", counted by status; "models", each with "response", "model" and "cop". Raises an
/// exception with one line of text if the file cannot be read.
std::string DescribeMonitoringFile(const std::filesystem::path& path);

}  // namespace kestrel::api
