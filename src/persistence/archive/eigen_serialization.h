#pragma once

#include "persistence/archive/archive_format.h"

#include <Eigen/Core>
#include <boost/archive/archive_exception.hpp>
#include <boost/mpl/int.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/split_free.hpp>
#include <boost/serialization/version.hpp>

#include <cstdint>

/// Dense matrices and vectors, class version 2: the numbers of columns and of rows, then the items by columns, all of
/// it without annotations. Before version 2 each of them was annotated. Items are stored as their type is: doubles as
/// 8 raw bytes, indices as words.
namespace boost::serialization {

template <class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
struct version<Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>> {
  using tag = mpl::integral_c_tag;
  using type = mpl::int_<2>;
  static constexpr int value = 2;
};

template <class Archive, class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
void save(Archive& archive, const Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>& matrix,
          unsigned /*version*/) {
  const kestrel::portable_binary_archive_noannotate<Archive> guard(archive);
  const std::int64_t cols = matrix.cols();
  const std::int64_t rows = matrix.rows();
  archive << make_nvp("cols", cols) << make_nvp("rows", rows);
  for (Eigen::Index j = 0; j < cols; ++j) {
    for (Eigen::Index i = 0; i < rows; ++i) archive << make_nvp("item", matrix.coeffRef(i, j));
  }
}

template <class Archive, class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
void load(Archive& archive, Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>& matrix, unsigned version) {
  const auto load_body = [&] {
    std::int64_t cols = 0;
    std::int64_t rows = 0;
    archive >> make_nvp("cols", cols) >> make_nvp("rows", rows);
    matrix.resize(rows, cols);
    for (Eigen::Index j = 0; j < cols; ++j) {
      for (Eigen::Index i = 0; i < rows; ++i) archive >> make_nvp("item", matrix.coeffRef(i, j));
    }
  };
  if (version < 2) return load_body();
  const kestrel::portable_binary_archive_noannotate<Archive> guard(archive);
  load_body();
}

template <class Archive, class Scalar, int Rows, int Cols, int Options, int MaxRows, int MaxCols>
void serialize(Archive& archive, Eigen::Matrix<Scalar, Rows, Cols, Options, MaxRows, MaxCols>& matrix,
               unsigned version) {
  split_free(archive, matrix, version);
}

}  // namespace boost::serialization
