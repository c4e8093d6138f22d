#pragma once

#include <boost/numeric/conversion/cast.hpp>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/linear_algebra.h"

/// Between the caller's buffers and the library's containers. A null pointer where something has to be read or written
/// raises std::invalid_argument.
namespace kestrel::api {

/// Raises std::invalid_argument "A null pointer was given for a buffer.".
void RequirePointer(const void* pointer);

/// What a result pointer of the caller points to.
template <class Value>
Value& Target(Value* pointer) {
  RequirePointer(pointer);
  return *pointer;
}

/// A table of the caller, row by row, as a matrix of rows x columns.
/// @param stride  values from one row to the next.
math::Matrix ReadRows(const double* values, std::uint64_t rows, std::uint64_t columns, std::uint64_t stride);
math::Matrix ReadRows(const double* values, std::uint64_t rows, std::uint64_t columns);

/// Writes a block of columns of a matrix of `rows` rows, row by row. A matrix that does not have them is answered with
/// zor_internal_error, and nothing is written.
std::uint32_t WriteRows(const math::Matrix& matrix, std::uint64_t rows, std::uint64_t first_column,
                        std::uint64_t columns, double* values);

/// Writes the values one after the other. One that does not fit raises the range error of the conversion.
template <class Container, class Value>
void WriteValues(const Container& source, Value* values) {
  if (source.size() == 0) return;
  RequirePointer(values);
  for (const auto& value : source) *values++ = boost::numeric_cast<Value>(value);
}

/// A copy of the bytes for the caller, who gives it back to `zor_release_buf`; their number goes to `length`.
void* HandOutBytes(const char* bytes, std::size_t count, std::size_t* length);

/// Hands a copy of the text, not zero-terminated, to the caller, who gives it back to `zor_release_buf`.
void HandOut(const std::string& text, char** target, std::size_t* length);

}  // namespace kestrel::api
