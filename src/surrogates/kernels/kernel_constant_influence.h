#pragma once

#include "surrogates/kernels/kernel_base.h"

namespace kestrel::math::metamodel {

/// Kernels whose influence does not depend on where the support points lie.
class KernelConstInfl : public KernelBase {
 public:
  /// @param difference  query point minus support point.
  virtual double CalculateKernelFromDiffVec(const VectorIn& difference) const = 0;
  bool IsConstantInfluence() const override { return true; }
  std::vector<std::wstring> GetParameterNames() const override { return {L"Influence radius"}; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// h = ln(0.001) / d^2, the factor of a squared distance in the exponent of a kernel with radius d.
double ExponentialTerm(double radius);

/// exp(sum_j h_j v_j^2) with one radius d_j per input, h_j = ln(0.001) / d_j^2.
class KernelConstInflExp final : public KernelConstInfl {
 public:
  KernelConstInflExp() = default;
  explicit KernelConstInflExp(const VectorIn& parameters);

  void EvaluatePoints(const MatrixIn& points, const MatrixIn& support_points, Eigen::Ref<Matrix> values) const override;
  double CalculateKernelFromDiffVec(const VectorIn& difference) const override;
  std::unique_ptr<KernelBase> clone() const override;
  bool IsCorrelation() const override { return true; }
  bool IsWeight() const override { return true; }
  std::uint64_t GetNumParameters() const override { return static_cast<std::uint64_t>(parameters_.size()); }
  void SetParameters(const VectorIn& parameters) override;
  std::wstring Str() const override { return L"Constant influence, anisotropic, exponential"; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  Vector helper_term_;
};

/// Kernels of the distance alone, with one radius.
class KernelConstInflIso : public KernelConstInfl {
 public:
  double CalculateKernelFromDiffVec(const VectorIn& difference) const override;
  virtual double CalculateKernelFromDistance(double squared_distance) const = 0;
  double EvaluateDistance(double squared_distance) const override;
  bool IsWeight() const override { return true; }
  bool IsIsotropic() const override { return true; }
  std::uint64_t GetNumParameters() const override { return 1; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// exp(h r^2), h = ln(0.001) / d^2.
class KernelConstInflIsoExp final : public KernelConstInflIso {
 public:
  KernelConstInflIsoExp() = default;
  explicit KernelConstInflIsoExp(const VectorIn& parameters);

  void ReplaceDistances(Eigen::Ref<Matrix> squared_distances) const override;
  double CalculateKernelFromDistance(double squared_distance) const override;
  std::unique_ptr<KernelBase> clone() const override;
  bool IsCorrelation() const override { return true; }
  void SetParameters(const VectorIn& parameters) override;
  std::wstring Str() const override { return L"Constant influence, isotropic, exponential"; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  double helper_term_ = 0.0;
};

/// max(0, (r^2 / d^2 + eps)^-m - (1 + eps)^-m): about 1e10 at a support point, so that the fit all but interpolates,
/// and exactly 0 at and beyond the radius.
class KernelConstInflIsoReg final : public KernelConstInflIso {
 public:
  KernelConstInflIsoReg() = default;
  explicit KernelConstInflIsoReg(const VectorIn& parameters);

  void ReplaceDistances(Eigen::Ref<Matrix> squared_distances) const override;
  double CalculateKernelFromDistance(double squared_distance) const override;
  std::unique_ptr<KernelBase> clone() const override;
  void SetParameters(const VectorIn& parameters) override;
  std::wstring Str() const override { return L"Constant influence, isotropic, regularized"; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  double epsilon_ = 0.0;
  double m_ = 0.0;
  double D_squared_ = 0.0;
  double helper_term_ = 0.0;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelConstInfl, "kestrel::math::metamodel::KernelConstInfl")
BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelConstInflExp, "kestrel::math::metamodel::KernelConstInflExp")
BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelConstInflIso, "kestrel::math::metamodel::KernelConstInflIso")
BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelConstInflIsoExp,
                        "kestrel::math::metamodel::KernelConstInflIsoExp")
BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelConstInflIsoReg,
                        "kestrel::math::metamodel::KernelConstInflIsoReg")
