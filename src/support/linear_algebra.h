#pragma once

#include <Eigen/Core>

#include <cstdint>

/// Names of the dense types that every floor shares. All are column-major; a sample matrix has one row per design and
/// one column per input. `MatrixIn` and `VectorIn` take whole matrices and blocks alike without a copy.
namespace kestrel::math {

using Eigen::Index;
using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;
using MatrixIn = Eigen::Ref<const Matrix>;
using VectorIn = Eigen::Ref<const Vector>;

using IndexVector = Eigen::Matrix<std::uint64_t, Eigen::Dynamic, 1>;
using IndexMatrix = Eigen::Matrix<std::uint64_t, Eigen::Dynamic, Eigen::Dynamic>;
using IndexVectorIn = Eigen::Ref<const IndexVector>;
using IndexMatrixIn = Eigen::Ref<const IndexMatrix>;

}  // namespace kestrel::math
