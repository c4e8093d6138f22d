#pragma once

#include <string>

#include "handle.h"

namespace kestrel::cli {

/// What a file is by its first bytes.
enum class FileKind { kStoredModel, kMonitoringFile, kNeither };

/// Throws WorkError if the file cannot be read, or is no regular file: a pipe or a device might never end.
FileKind KindOfFile(const std::string& path);

/// The handle that the file holds, built or not. Throws WorkError with one line of text if it holds none.
Handle ReadStoredModel(const std::string& path);

/// Both throw WorkError if the file cannot be written.
void StoreModel(const Handle& handle, const std::string& path);
void WriteMonitoringFile(const Handle& handle, const std::string& path);

/// The library's description of a monitoring file, a JSON object. Throws WorkError with one line of text.
std::string DescribeMonitoringFile(const std::string& path);

}  // namespace kestrel::cli
