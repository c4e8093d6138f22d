#include "statistics/transform/transform_minmax.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <stdexcept>

#include "statistics/sample_data.h"
#include "support/matrix_compare.h"

namespace kestrel::math::transform {
namespace {

using testing::kNaN;
using testing::MatrixNear;
using testing::Numbers;

TEST(MinMax, ScalesEachColumnToTheRange) {
  Matrix data(3, 4);
  data << 2, 5, kNaN, 7,  //
      4, 5, -1, 7,        //
      3, 5, 3, kNaN;
  Matrix scaled(3, 4);
  scaled << -1, -1, kNaN, -1,  //
      1, -1, -1, -1,           //
      0, -1, 1, kNaN;
  TransMinMax transform(-1.0, 1.0);
  EXPECT_TRUE(transform.Build(data));
  EXPECT_TRUE(MatrixNear(transform.ScaleForward(data), scaled, 1e-15));
  EXPECT_TRUE(MatrixNear(transform.ScaleBackward(scaled), data, 1e-15));
}

TEST(MinMax, TellsConstantColumnsByTheRelativeRange) {
  struct Case {
    const char* name;
    double low, high, largest;  // the scaled value of the second row
  };
  const Case cases[] = {
      {"within the tolerance", 1, 1 + 1.9e-12, 1.9e-12},
      {"beyond the tolerance", 1, 1 + 2.1e-12, 1},
      {"tiny", 0, 1e-300, 1},
      {"range beyond the largest double", -1.5e308, 1.5e308, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Matrix data = Numbers({c.low, c.high});
    TransMinMax transform;
    transform.Build(data);
    const Matrix scaled = transform.ScaleForward(data);
    EXPECT_NEAR(scaled(0), 0.0, 1e-3);  // the offset rounds where the factor is large
    EXPECT_NEAR(scaled(1), c.largest, 1e-3 * c.largest);
  }
}

RC_GTEST_PROP(MinMax, BackwardUndoesForward, ()) {
  const auto seed = *rc::gen::arbitrary<std::uint32_t>();
  const double magnitude = *rc::gen::element(1e-200, 1.0, 1e12, 1e290);
  const Matrix data = testing::UniformMatrix(6, 3, seed, -magnitude, magnitude);
  TransMinMax transform(2.0, -5.0);  // an inverted range is one, too
  transform.Build(data);
  RC_ASSERT(MatrixNear(transform.ScaleBackward(transform.ScaleForward(data)), data, 1e-14 * magnitude));
}

TEST(MinMax, RefusesWhatItCannotDo) {
  TransMinMax transform;
  for (const Matrix& data : {Matrix(1, 3), Matrix(5, 0), Matrix(0, 0)}) {
    EXPECT_THROW(transform.Build(data), std::runtime_error);
  }
  EXPECT_TRUE(transform.GetNeedBuild());
  EXPECT_THROW(transform.ScaleForward(Matrix::Ones(2, 1)), std::logic_error);
  EXPECT_THROW(transform.ScaleBackward(Matrix()), std::logic_error);
  transform.Build(Numbers({1, 2}));
  EXPECT_THROW(transform.Build(Matrix(1, 1)), std::runtime_error);
  EXPECT_EQ(transform.ScaleForward(Numbers({3}))(0), 2.0);  // as it was
}

}  // namespace
}  // namespace kestrel::math::transform
