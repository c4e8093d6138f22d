#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "statistics/transform/transform_boxcox.h"
#include "statistics/transform/transform_limits.h"
#include "statistics/transform/transform_minmax.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "support/stored.h"

namespace kestrel::math::transform {

/// The stored layout of the scalings, open to any content.
struct StoredBase {
  bool need_build_ = false;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& BOOST_SERIALIZATION_NVP(need_build_);
  }
};

struct StoredMinMax {
  StoredBase base;
  double min_scaled_ = 0.0, max_scaled_ = 1.0;
  Vector scaling_ = Vector::Ones(1), offset_forward_ = Vector::Zero(1), offset_backward_ = Vector::Zero(1);
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("Transform", base);
    archive& BOOST_SERIALIZATION_NVP(min_scaled_) & BOOST_SERIALIZATION_NVP(max_scaled_);
    archive& BOOST_SERIALIZATION_NVP(scaling_) & BOOST_SERIALIZATION_NVP(offset_forward_);
    archive& BOOST_SERIALIZATION_NVP(offset_backward_);
  }
};

struct StoredBoxCox {
  StoredBase base;
  double lambda_ = 0.5;
  std::int64_t lambda_inv_ = 2;
  double min_scaled_ = 0.1, max_scaled_ = 10.1;
  StoredMinMax trans_minmax_;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("Transform", base);
    archive& BOOST_SERIALIZATION_NVP(lambda_) & BOOST_SERIALIZATION_NVP(lambda_inv_);
    archive& BOOST_SERIALIZATION_NVP(min_scaled_) & BOOST_SERIALIZATION_NVP(max_scaled_);
    archive& BOOST_SERIALIZATION_NVP(trans_minmax_);
  }
};

namespace {

using testing::Load;
using testing::MatrixNear;
using testing::Store;

const Matrix kSample = (Matrix(4, 1) << 2.0, 3.5, 5.25, 11.0).finished();

TEST(StoredTransform, ScalesAsBeforeInBothStates) {
  for (const bool built : {false, true}) {
    TransMinMax minmax(-1.0, 3.0);
    TransLimits limits(2.5, 7.0);
    TransBoxCox boxcox(-3, 0.1, 10.1);
    for (Transform* transform : std::initializer_list<Transform*>{&minmax, &limits, &boxcox}) {
      if (built) transform->Build(kSample);
      const auto read = testing::RoundTrip<Transform>(*transform);
      EXPECT_TRUE(*read == *transform);
      if (!built) continue;
      const Matrix forward = transform->ScaleForward(kSample);
      EXPECT_TRUE(MatrixNear(read->ScaleForward(kSample), forward, 0.0));
      EXPECT_TRUE(MatrixNear(read->ScaleBackward(forward), transform->ScaleBackward(forward), 0.0));
    }
  }
}

TEST(StoredTransform, HasTheBytesOfTheFormat) {
  const auto named = [](const std::string& name) { return std::string{static_cast<char>(name.size()), '\0'} + name; };
  const auto word = [](char value) { return std::string{value, '\0'}; };
  const std::string one("\0\0\0\0\0\0\xF0\x3F", 8);
  const std::string two("\0\0\0\0\0\0\0\x40", 8);
  // Class, its name, tracked, version, object; the base, which is abstract and so not tracked, and its version.
  const std::string expected = word(0) + named("kestrel::math::transform::TransLimits") + word(1) + word(0) + word(0) +
                               named("Transform") + word(0) + word(0) + named("need_build_") + word(1) +
                               named("lower_limit_") + one + named("upper_limit_") + two;
  const TransLimits limits(1.0, 2.0);
  const Transform* const stored = &limits;
  EXPECT_EQ(Store(stored, testing::kNameAnnotations).substr(8), expected);
  EXPECT_EQ(
      testing::FirstNameOutOfOrder(TransBoxCox(), {"Transform", "lambda_", "lambda_inv_", "min_scaled_", "max_scaled_",
                                                   "trans_minmax_", "Transform", "min_scaled_", "max_scaled_",
                                                   "scaling_", "offset_forward_", "offset_backward_"}),
      "");
}

TEST(StoredTransform, SettlesTheExponentByItsDouble) {
  const struct {
    double exponent;
    std::int64_t stored;
    std::int64_t expected;
  } cases[] = {{0.5, 2, 2}, {0.0, std::numeric_limits<std::int64_t>::min(), 0}, {-1.0 / 20000, -20000, -20000}};
  for (const auto& c : cases) {
    StoredBoxCox record;
    record.lambda_ = c.exponent;
    record.lambda_inv_ = c.stored;
    TransBoxCox read;
    Load(Store(record), read);
    const Eigen::ArrayXXd y = kSample;
    EXPECT_TRUE(MatrixNear(read.ScaleForward(kSample), TransBoxCox::ForwardScaled(y, y.log(), c.expected), 0.0))
        << c.exponent;
  }
}

TEST(StoredTransform, RefusesWhatScalesOutOfBounds) {
  const std::function<void(StoredMinMax&)> minmax_faults[] = {
      [](auto& record) { record.scaling_.resize(0); },
      [](auto& record) { record.offset_forward_ = Vector::Zero(2); },
      [](auto& record) { record.offset_backward_.resize(0); },
      [](auto& record) { record.scaling_ = record.offset_forward_ = record.offset_backward_ = Vector(); },
  };
  for (const auto& spoil : minmax_faults) {
    StoredMinMax record;
    spoil(record);
    TransMinMax read;
    EXPECT_THROW(Load(Store(record), read), utils::runtime_error);
  }
  const std::function<void(StoredBoxCox&)> boxcox_faults[] = {
      [](auto& record) { record.lambda_ = 0.3; },
      [](auto& record) { record.lambda_ = std::numeric_limits<double>::quiet_NaN(); },
      [](auto& record) { record.trans_minmax_.base.need_build_ = true; },
      [](auto& record) {
        record.trans_minmax_.scaling_ = record.trans_minmax_.offset_forward_ = record.trans_minmax_.offset_backward_ =
            Vector::Ones(2);
      },
  };
  for (const auto& spoil : boxcox_faults) {
    StoredBoxCox record;
    spoil(record);
    TransBoxCox read;
    EXPECT_THROW(Load(Store(record), read), utils::runtime_error);
  }
}

}  // namespace
}  // namespace kestrel::math::transform
