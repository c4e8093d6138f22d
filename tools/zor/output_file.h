#pragma once

#include <fstream>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace kestrel::cli {

/// Throws InputError if a file of this name could not be written, or is one of `sources`. Touches nothing, so a build
/// that fails later leaves an older file alone.
void RequireWritable(const std::string& path, const std::vector<std::string>& sources);

/// Creates or replaces the file with what `write` puts on the stream. Throws WorkError if not all of it arrives there.
void WriteFile(const std::string& path, const std::function<void(std::ostream&)>& write);

/// Throws WorkError if what was put on the stream did not arrive; `name` is how the message calls it.
void RequireWritten(std::ostream& stream, const std::string& name);

/// Writes a CSV table: a row of names, then rows x names values, row by row; NaN becomes an empty cell. The numbers
/// read back as the same doubles.
void WriteCsv(std::ostream& stream, const std::vector<std::string>& names, const std::vector<double>& values);

}  // namespace kestrel::cli
