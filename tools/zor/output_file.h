#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "table.h"

namespace kestrel::cli {

/// A file that an option names; an empty path is an option that was not given.
struct Target {
  std::string option;
  std::string path;
};

/// Throws InputError if one of the targets could not be written, is one of `sources`, or is named by two options.
/// Touches nothing, so a build that fails later leaves older files alone.
void RequireWritable(const std::vector<Target>& targets, const std::vector<std::string>& sources);

/// Throws WorkError if what was put on the stream did not arrive; `name` is how the message calls it.
void RequireWritten(std::ostream& stream, const std::string& name);

/// Writes a CSV table: a row of names, then the values; NaN becomes an empty cell. The numbers read back as the same
/// doubles.
void WriteCsv(std::ostream& stream, const Table& table);

/// Creates or replaces the file. Throws WorkError if not all of the table arrives there.
void WriteCsvFile(const std::string& path, const Table& table);

}  // namespace kestrel::cli
