#include "surrogates/kernels/kernel_base.h"

#include <stdexcept>

#include "persistence/archive/archives.h"
#include "statistics/distances.h"
#include "surrogates/dense_operations.h"
#include "surrogates/kernels/kernel_constant_influence.h"
#include "surrogates/kernels/kernel_nodal_influence.h"

namespace kestrel::math::metamodel {
namespace {

template <class Concrete>
std::unique_ptr<KernelBase> Make(const VectorIn& parameters) {
  if (parameters.size() == 0) return std::make_unique<Concrete>();
  return std::make_unique<Concrete>(parameters);
}

}  // namespace

Vector KernelBase::EvaluatePoint(const VectorIn& point, const MatrixIn& support_points) const {
  Matrix values(support_points.rows(), 1);
  EvaluatePoints(point.transpose(), support_points, values);
  return values.col(0);
}

void KernelBase::EvaluatePoints(const MatrixIn& points, const MatrixIn& support_points,
                                Eigen::Ref<Matrix> values) const {
  for (Index q = 0; q < points.rows(); ++q) {
    statistics::CalcSquaredDistances(support_points, points.row(q), values.col(q));
  }
  ReplaceDistances(values);
}

Vector KernelBase::EvaluateDistances(const VectorIn& squared_distances) const {
  Matrix values = squared_distances;
  ReplaceDistances(values);
  return values.col(0);
}

void KernelBase::ReplaceDistances(Eigen::Ref<Matrix> /*squared_distances*/) const {
  throw std::domain_error("EvaluateDistances works only for isotropic kernels");
}

double KernelBase::EvaluateDistance(double /*squared_distance*/) const {
  throw std::domain_error("EvaluateDistance works only for isotropic kernels");
}

void KernelBase::SetParameters(const VectorIn& parameters) {
  if (IsWeight() && static_cast<std::uint64_t>(parameters.size()) != GetNumParameters()) {
    throw std::domain_error("Kernel: Invalid size of parameter vector");
  }
  parameters_ = parameters;
}

void KernelBase::RequireParameters(const VectorIn& parameters) {
  if (parameters.size() == 0) throw std::domain_error("KernelConstInflExp: undefined parameter");
}

void KernelBase::ReplaceExponents(Eigen::Ref<Vector> exponents) {
  // The vectorised exponential does not fall below some 1e-308, where far points would all weigh the same.
  constexpr double kSmallest = 3.4e-308;
  ReplaceByExponentials(exponents, kSmallest);
}

std::unique_ptr<KernelBase> CreateKernel(Kernel::eType type, const VectorIn& parameters) {
  switch (type) {
    case Kernel::kConstInflExp: return Make<KernelConstInflExp>(parameters);
    case Kernel::kConstInflIsoExp: return Make<KernelConstInflIsoExp>(parameters);
    case Kernel::kConstInflIsoReg: return Make<KernelConstInflIsoReg>(parameters);
    case Kernel::kNodalInflExp: return Make<KernelNodalInflExp>(parameters);
  }
  throw std::logic_error("Unknown kernel type.");
}

template <class Archive>
void KernelBase::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("parameters_", parameters_);
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelBase)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelBase)
