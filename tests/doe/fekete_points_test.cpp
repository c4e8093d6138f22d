#include "doe/fekete_points.h"

#include <gtest/gtest.h>

#include <cmath>

#include "doe/smallest_distance.h"
#include "support/matrix_compare.h"

namespace kestrel::math::doe {
namespace {

using testing::MatrixNear;

Matrix Build(std::uint64_t num_points, std::uint64_t num_inputs) {
  random::Generator generator(3);
  return FeketePoints(num_points, num_inputs, generator);
}

TEST(FeketePoints, AreTheRegularBodies) {
  struct Case {
    const char* name;
    std::uint64_t points, inputs;
    double edge;
  };
  const double kPi = std::acos(-1.0);
  for (const Case& c : {Case{"line", 2, 1, 2.0}, Case{"opposite points", 2, 5, 2.0},
                        Case{"triangle", 3, 4, std::sqrt(3.0)}, Case{"polygon", 40, 2, 2.0 * std::sin(kPi / 40.0)},
                        Case{"tetrahedron", 4, 3, std::sqrt(8.0 / 3.0)}, Case{"octahedron", 6, 3, std::sqrt(2.0)},
                        Case{"icosahedron", 12, 3, 4.0 / std::sqrt(10.0 + 2.0 * std::sqrt(5.0))},
                        Case{"simplex", 8, 7, std::sqrt(16.0 / 7.0)}, Case{"cross", 12, 6, std::sqrt(2.0)}}) {
    SCOPED_TRACE(c.name);
    const Matrix points = Build(c.points, c.inputs);
    EXPECT_TRUE(MatrixNear(points.rowwise().norm(), Vector::Ones(points.rows()), 1e-14));
    EXPECT_NEAR(SmallestDistance(points), c.edge, 1e-6);
  }
}

TEST(FeketePoints, AreInEquilibrium) {
  const Matrix points = Build(150, 4);
  for (Index i = 0; i < points.rows(); ++i) {
    Eigen::RowVectorXd force = Eigen::RowVectorXd::Zero(points.cols());
    for (Index k = 0; k < points.rows(); ++k) {
      const Eigen::RowVectorXd difference = points.row(i) - points.row(k);
      if (k != i) force += difference / difference.squaredNorm();
    }
    EXPECT_TRUE(MatrixNear(force, 0.5 * 149.0 * points.row(i), 1e-5));
  }
}

}  // namespace
}  // namespace kestrel::math::doe
