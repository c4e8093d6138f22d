#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "persistence/archive/persistent.h"
#include "support/linear_algebra.h"

namespace kestrel::math::metamodel {

namespace Kernel {
enum eType : std::int32_t {
  kConstInflExp = 1,       ///< one radius per input, exponential
  kConstInflIsoExp = 101,  ///< one radius, exponential
  kConstInflIsoReg = 102,  ///< one radius, regularized
  kNodalInflExp = 201,     ///< a neighbour count: the radius follows the local density
};
}  // namespace Kernel

/// Turns distances between a query point and the support points into weights or correlations. Distances are squared:
/// no kernel takes a root. All exponential kernels fall to 0.001 at their radius.
class KernelBase {
 public:
  virtual ~KernelBase() = default;

  /// One value per support point. @param point  length n.  @param support_points  N x n, one row per point.
  virtual Vector EvaluatePoint(const VectorIn& point, const MatrixIn& support_points) const;
  /// The same for many points, B x n, at once: column q of `values`, N x B, belongs to row q of `points`.
  virtual void EvaluatePoints(const MatrixIn& points, const MatrixIn& support_points, Eigen::Ref<Matrix> values) const;
  /// Values at squared distances; std::domain_error for kernels of more than the distances from one point.
  virtual Vector EvaluateDistances(const VectorIn& squared_distances) const;
  /// The same in place; each column holds the squared distances of one point from all support points.
  virtual void ReplaceDistances(Eigen::Ref<Matrix> squared_distances) const;
  virtual double EvaluateDistance(double squared_distance) const;
  virtual std::unique_ptr<KernelBase> clone() const = 0;
  virtual bool IsCorrelation() const { return false; }
  virtual bool IsWeight() const { return false; }
  virtual bool IsConstantInfluence() const { return false; }
  virtual bool IsIsotropic() const { return false; }
  virtual std::vector<std::wstring> GetParameterNames() const = 0;
  virtual std::uint64_t GetNumParameters() const = 0;
  /// std::domain_error for a wrong number of parameters and for values out of range.
  virtual void SetParameters(const VectorIn& parameters);

  const Vector& GetParameters() const { return parameters_; }
  /// What the kernel is, for reports.
  virtual std::wstring Str() const = 0;

 protected:
  KernelBase() = default;
  KernelBase(const KernelBase&) = default;
  KernelBase& operator=(const KernelBase&) = default;

  /// std::domain_error for an empty vector, with the one text that all kernels use.
  static void RequireParameters(const VectorIn& parameters);
  /// The exponential of every entry, in place; 0 where it is too small for a normal number.
  static void ReplaceExponents(Eigen::Ref<Vector> exponents);

  Vector parameters_;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// The kernel of a type. An empty vector gives a kernel without parameters, which must be set before use. Raises
/// std::logic_error "Unknown kernel type.".
std::unique_ptr<KernelBase> CreateKernel(Kernel::eType type, const VectorIn& parameters);

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::KernelBase, "kestrel::math::metamodel::KernelBase")
