#pragma once

#include <limits>

#include "statistics/transform/transform_base.h"

namespace kestrel::math::transform {

/// Clamps on the way back from the model to the user; forward is the identity and needs no build. A NaN stays NaN.
class TransLimits final : public Transform {
 public:
  TransLimits() = default;
  TransLimits(double lower, double upper) : lower_limit_(lower), upper_limit_(upper) {}

  /// Ignores the data. Raises std::runtime_error "Minimum limit should be less than maximum." unless lower < upper;
  /// a NaN limit passes.
  bool Build(const MatrixIn& data) override;
  Matrix ScaleForward(const MatrixIn& data) const override { return data; }
  Matrix ScaleBackward(const MatrixIn& data) const override;
  std::vector<double> GetParameters() const override { return {lower_limit_, upper_limit_}; }
  std::wstring Str() const override;
  bool operator==(const Transform& other) const override;
  std::unique_ptr<Transform> Clone() const override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  double lower_limit_ = -std::numeric_limits<double>::infinity();
  double upper_limit_ = std::numeric_limits<double>::infinity();
};

}  // namespace kestrel::math::transform

BOOST_CLASS_EXPORT_KEY2(kestrel::math::transform::TransLimits, "kestrel::math::transform::TransLimits")
