#pragma once

#include <cstdint>

#include "statistics/transform/transform_minmax.h"

namespace kestrel::math::transform {

/// Box-Cox transformation (Box and Cox 1964) of one column: the data are scaled to [min_scaled, max_scaled], then
/// y -> (y^lambda - 1) / lambda with lambda = 1 / lambda_inv a whole-number reciprocal; lambda_inv 0 is the logarithm.
class TransBoxCox final : public Transform {
 public:
  TransBoxCox() = default;
  TransBoxCox(std::int64_t lambda_inv, double min_scaled, double max_scaled);

  /// lambda_inv of an exponent p: floor(1 / p + 0.1), and 0 for p of exactly 0.
  static std::int64_t InverseExponent(double p);

  /// Raises std::runtime_error for an exponent outside [-1, 1], a scaled bound that is not positive, fewer than two
  /// rows, or other than one column.
  bool Build(const MatrixIn& data) override;
  /// Both raise std::logic_error "TransBoxCox works only for scalar data" for two or more columns.
  Matrix ScaleForward(const MatrixIn& data) const override;
  Matrix ScaleBackward(const MatrixIn& data) const override;
  std::vector<double> GetParameters() const override { return {lambda_, min_scaled_, max_scaled_}; }
  std::wstring Str() const override;
  bool operator==(const Transform& other) const override;
  std::unique_ptr<Transform> Clone() const override;

  /// The two maps between scaled values y and transformed values z, for a search over many exponents: the scaling and
  /// the logarithm of y are then taken once. Columns are independent.
  static Eigen::ArrayXXd ForwardScaled(const Eigen::Ref<const Eigen::ArrayXXd>& y,
                                       const Eigen::Ref<const Eigen::ArrayXXd>& log_y, std::int64_t lambda_inv);
  static Eigen::ArrayXXd BackwardScaled(const Eigen::Ref<const Eigen::ArrayXXd>& z, std::int64_t lambda_inv);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  /// Settles what a file says of the exponent, and refuses a scaling that is not that of one column.
  void RepairAndCheck();

  void RequireBuiltScalar(const MatrixIn& data) const;

  double lambda_ = 1.0;
  std::int64_t lambda_inv_ = 1;
  double min_scaled_ = 0.1;
  double max_scaled_ = 10.1;
  TransMinMax trans_minmax_{0.1, 10.1};
};

}  // namespace kestrel::math::transform

BOOST_CLASS_EXPORT_KEY2(kestrel::math::transform::TransBoxCox, "kestrel::math::transform::TransBoxCox")
