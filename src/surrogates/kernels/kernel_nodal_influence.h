#pragma once

#include "surrogates/kernels/kernel_base.h"

namespace kestrel::math::metamodel {

/// Kernels whose radius follows the density of the support points around the query point.
class KernelNodalInfl : public KernelBase {
 public:
  std::vector<std::wstring> GetParameterNames() const override { return {L"Influence radius"}; }
  std::uint64_t GetNumParameters() const override { return 1; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// exp(ln(0.001) d_i^2 / D^2) with D the distance of the k-th nearest support point, k the parameter (at least 1, at
/// most the number of points). Where D is 0 the value is NaN at distance 0.
class KernelNodalInflExp final : public KernelNodalInfl {
 public:
  KernelNodalInflExp() = default;
  explicit KernelNodalInflExp(const VectorIn& parameters);

  void ReplaceDistances(Eigen::Ref<Matrix> squared_distances) const override;
  std::unique_ptr<KernelBase> clone() const override;
  bool IsCorrelation() const override { return true; }
  bool IsWeight() const override { return true; }
  void SetParameters(const VectorIn& parameters) override;
  std::wstring Str() const override { return L"Nodal influence, exponential"; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  double helper_term_ = 0.0;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelNodalInfl, "kestrel::math::metamodel::KernelNodalInfl")
BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelNodalInflExp, "kestrel::math::metamodel::KernelNodalInflExp")
