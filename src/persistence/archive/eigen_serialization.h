#pragma once

#include "persistence/archive/portable_binary_iarchive.h"
#include "persistence/archive/portable_binary_oarchive.h"

#include <Eigen/Core>
#include <boost/archive/archive_exception.hpp>
#include <boost/mpl/int.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/split_free.hpp>
#include <boost/serialization/version.hpp>

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <vector>

// Dense matrices and vectors, class version 2: the numbers of columns and of rows, then the items by columns, all of
// it without annotations. Before version 2 each of them was annotated. Items are stored as their type is: doubles as
// 8 raw bytes, indices as words.

namespace kestrel::portable_binary_archive_impl {

template <class Scalar>
constexpr std::size_t kLeastItemBytes = std::is_same_v<Scalar, double> ? sizeof(double) : sizeof(std::uint16_t);

/// The next items of the file; doubles without annotations in one piece.
template <class Scalar>
void LoadItems(portable_binary_iarchive& archive, Scalar* items, std::size_t count, bool annotated) {
  if constexpr (std::is_same_v<Scalar, double>) {
    if (!annotated) return archive.load_binary(items, count * sizeof(double));
  }
  for (std::size_t i = 0; i < count; ++i) archive >> boost::serialization::make_nvp("item", items[i]);
}

/// The size of a matrix as a file gives it; raises an exception if `matrix` cannot have it or the file cannot hold it.
template <class Matrix>
std::size_t RequireSize(const portable_binary_iarchive& archive, const Matrix&, std::int64_t rows, std::int64_t cols) {
  constexpr std::int64_t kLargestEmpty = std::int64_t{1} << 24;  // rows without columns, or columns without rows
  constexpr std::int64_t kLargest = std::int64_t{1} << 48;
  const bool fits_type = (Matrix::RowsAtCompileTime == Eigen::Dynamic || Matrix::RowsAtCompileTime == rows) &&
                         (Matrix::ColsAtCompileTime == Eigen::Dynamic || Matrix::ColsAtCompileTime == cols);
  const bool is_size = rows >= 0 && cols >= 0 && (cols == 0 || rows <= kLargest / cols) &&
                       (rows * cols > 0 || std::max(rows, cols) <= kLargestEmpty);
  using boost::archive::archive_exception;
  if (!fits_type || !is_size) throw archive_exception(archive_exception::input_stream_error);
  const auto count = static_cast<std::size_t>(rows * cols);
  archive.RequireBytesLeft(count, kLeastItemBytes<typename Matrix::Scalar>);
  return count;
}

template <class Matrix>
void LoadMatrix(portable_binary_iarchive& archive, Matrix& matrix, bool annotated) {
  std::int64_t cols = 0;
  std::int64_t rows = 0;
  archive >> BOOST_SERIALIZATION_NVP(cols) >> BOOST_SERIALIZATION_NVP(rows);
  const std::size_t count = RequireSize(archive, matrix, rows, cols);
  if (archive.KnowsBytesLeft()) {
    matrix.resize(rows, cols);
    return LoadItems(archive, matrix.data(), count, annotated);
  }
  constexpr std::size_t kStep = std::size_t{1} << 16;
  std::vector<typename Matrix::Scalar> items;
  while (items.size() < count) {
    const std::size_t begin = items.size();
    items.resize(begin + std::min(kStep, count - begin));
    LoadItems(archive, items.data() + begin, items.size() - begin, annotated);
  }
  matrix = Eigen::Map<const Matrix>(items.data(), rows, cols);
}

}  // namespace kestrel::portable_binary_archive_impl

namespace boost::serialization {

template <class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
struct version<Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>> {
  using tag = mpl::integral_c_tag;
  using type = mpl::int_<2>;
  static constexpr int value = 2;
};

template <class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
void save(kestrel::portable_binary_oarchive& archive,
          const Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>& matrix, unsigned /*version*/) {
  static_assert((Options & Eigen::RowMajorBit) == 0);
  const kestrel::portable_binary_archive_noannotate guard(archive);
  const std::int64_t cols = matrix.cols();
  const std::int64_t rows = matrix.rows();
  archive << BOOST_SERIALIZATION_NVP(cols) << BOOST_SERIALIZATION_NVP(rows);
  const auto count = static_cast<std::size_t>(matrix.size());
  if constexpr (std::is_same_v<Scalar, double>) {
    archive.save_binary(matrix.data(), count * sizeof(double));
  } else {
    for (std::size_t i = 0; i < count; ++i) archive << make_nvp("item", matrix.data()[i]);
  }
}

template <class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
void load(kestrel::portable_binary_iarchive& archive,
          Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>& matrix, unsigned version) {
  static_assert((Options & Eigen::RowMajorBit) == 0);
  constexpr unsigned kFirstVersionWithoutAnnotations = 2;
  if (version < kFirstVersionWithoutAnnotations) {
    return kestrel::portable_binary_archive_impl::LoadMatrix(archive, matrix, true);
  }
  const kestrel::portable_binary_archive_noannotate guard(archive);
  kestrel::portable_binary_archive_impl::LoadMatrix(archive, matrix, false);
}

template <class Archive, class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
void serialize(Archive& archive, Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>& matrix,
               unsigned version) {
  split_free(archive, matrix, version);
}

}  // namespace boost::serialization
