#pragma once

#include "statistics/transform/transform_base.h"

namespace kestrel::math::transform {

/// Scales each column to [min_scaled, max_scaled]: x s_j + f_j forward, y / s_j + b_j backward. A column whose range
/// is at or below (|max| + |min|) x 1e-12 counts as constant and keeps the factor 1.
class TransMinMax final : public Transform {
 public:
  TransMinMax() = default;
  TransMinMax(double min_scaled, double max_scaled) : min_scaled_(min_scaled), max_scaled_(max_scaled) {}

  /// Raises std::runtime_error "At least two points are required." below two rows or one column.
  bool Build(const MatrixIn& data) override;
  Matrix ScaleForward(const MatrixIn& data) const override;
  Matrix ScaleBackward(const MatrixIn& data) const override;
  std::vector<double> GetParameters() const override { return {min_scaled_, max_scaled_}; }
  std::wstring Str() const override;
  bool operator==(const Transform& other) const override;
  std::unique_ptr<Transform> Clone() const override;

  /// Columns of the fit; 0 before it.
  Index GetNumberColumns() const { return scaling_.size(); }

  /// The fitted vectors that have exactly one element: "s , f , b " in the formats "%1% " and ", %1% ".
  std::wstring ParameterStr() const;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  /// What a file may contradict: one factor and two offsets for each column.
  void RequireConsistent() const;

  double min_scaled_ = 0.0;
  double max_scaled_ = 1.0;
  Vector scaling_;
  Vector offset_forward_;
  Vector offset_backward_;
};

}  // namespace kestrel::math::transform

BOOST_CLASS_EXPORT_KEY2(kestrel::math::transform::TransMinMax, "kestrel::math::transform::TransMinMax")
