#include "api/buffers.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "zor_api.h"

namespace kestrel::api {
namespace {

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;

}  // namespace

void RequirePointer(const void* pointer) {
  if (pointer == nullptr) throw std::invalid_argument("A null pointer was given for a buffer.");
}

math::Matrix ReadRows(const double* values, std::uint64_t rows, std::uint64_t columns, std::uint64_t stride) {
  math::Matrix matrix(static_cast<math::Index>(rows), static_cast<math::Index>(columns));  // refuses what overflows
  if (matrix.size() == 0) return matrix;
  RequirePointer(values);
  matrix = Eigen::Map<const RowMajor, 0, Eigen::OuterStride<>>(values, matrix.rows(), matrix.cols(),
                                                               Eigen::OuterStride<>(static_cast<math::Index>(stride)));
  return matrix;
}

math::Matrix ReadRows(const double* values, std::uint64_t rows, std::uint64_t columns) {
  return ReadRows(values, rows, columns, columns);
}

std::uint32_t WriteRows(const math::Matrix& matrix, std::uint64_t rows, std::uint64_t first_column,
                        std::uint64_t columns, double* values) {
  if (rows == 0) return zor_success;
  const auto first = static_cast<math::Index>(first_column);
  const auto count = static_cast<math::Index>(columns);
  if (matrix.rows() != static_cast<math::Index>(rows) || matrix.cols() < first + count) return zor_internal_error;
  RequirePointer(values);
  Eigen::Map<RowMajor>(values, matrix.rows(), count) = matrix.middleCols(first, count);
  return zor_success;
}

void* HandOutBytes(const char* bytes, std::size_t count, std::size_t* length) {
  std::size_t& size = Target(length);
  char* const copy = static_cast<char*>(std::malloc(count == 0 ? 1 : count));
  if (copy == nullptr) throw std::bad_alloc();
  std::copy(bytes, bytes + count, copy);
  size = count;
  return copy;
}

void HandOut(const std::string& text, char** target, std::size_t* length) {
  char*& buffer = Target(target);
  buffer = static_cast<char*>(HandOutBytes(text.data(), text.size(), length));
}

}  // namespace kestrel::api
