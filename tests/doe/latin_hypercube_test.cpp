#include "doe/latin_hypercube.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "doe/doe.h"
#include "statistics/basic_statistics_colwise.h"
#include "support/matrix_compare.h"

namespace kestrel::math::doe {
namespace {

using testing::MatrixNear;

Matrix Build(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples, std::uint64_t seed = 1) {
  random::Generator generator(seed);
  return DOE(generator).BuildClassic(type, num_inputs, num_samples);
}

double LargestCorrelation(const Matrix& points) {
  const Index n = points.cols();
  return (statistics::CalcLinCCMatrixColwise(points) - Matrix::Identity(n, n)).cwiseAbs().maxCoeff();
}

struct Kind {
  const char* name;
  eClassicType type;
};

class LatinHypercube : public ::testing::TestWithParam<Kind> {};

TEST_P(LatinHypercube, HasOnePointInEachCell) {
  struct Shape {
    std::uint64_t inputs, samples;
  };
  const bool scattered = GetParam().type == eClassicType::kLatinHypercube;
  for (const Shape& s : {Shape{1, 1}, Shape{1, 7}, Shape{5, 1}, Shape{4, 2}, Shape{8, 3}, Shape{3, 40}}) {
    SCOPED_TRACE(std::to_string(s.inputs) + " inputs, " + std::to_string(s.samples) + " samples");
    const Matrix points = Build(GetParam().type, s.inputs, s.samples);
    ASSERT_EQ(points.rows(), static_cast<Index>(s.samples));
    ASSERT_EQ(points.cols(), static_cast<Index>(s.inputs));
    const double width = 2.0 / static_cast<double>(s.samples);
    for (Index j = 0; j < points.cols(); ++j) {
      Vector column = points.col(j);
      std::sort(column.begin(), column.end());
      const Vector centres = Vector::LinSpaced(points.rows(), -1.0 + 0.5 * width, 1.0 - 0.5 * width);
      EXPECT_TRUE(MatrixNear(column, centres, scattered ? 0.5 * width : 1e-15));
      EXPECT_EQ(MatrixNear(column, centres, 1e-6), !scattered);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Types, LatinHypercube,
                         ::testing::Values(Kind{"Random", eClassicType::kLatinHypercube},
                                           Kind{"Midpoint", eClassicType::kLatinHypercubeMidpoint},
                                           Kind{"Orthogonal", eClassicType::kLatinHypercubeOrthogonal},
                                           Kind{"SpaceFilling", eClassicType::kLatinHypercubeSpaceFilling},
                                           Kind{"Advanced", eClassicType::kLatinHypercubeAdvanced}),
                         [](const auto& kind) { return kind.param.name; });

TEST(OrthogonalLatinHypercube, HasColumnsWithoutCorrelation) {
  struct Case {
    std::uint64_t inputs, samples;
    double largest;
  };
  for (const Case& c : {Case{2, 100, 0.011}, Case{20, 1000, 1e-3}, Case{8, 30, 0.04}}) {
    SCOPED_TRACE(std::to_string(c.inputs) + " inputs, " + std::to_string(c.samples) + " samples");
    EXPECT_LT(LargestCorrelation(Build(eClassicType::kLatinHypercubeOrthogonal, c.inputs, c.samples)), c.largest);
    EXPECT_GT(LargestCorrelation(Build(eClassicType::kLatinHypercubeMidpoint, c.inputs, c.samples)), c.largest);
  }
}

}  // namespace
}  // namespace kestrel::math::doe
