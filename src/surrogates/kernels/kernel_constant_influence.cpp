#include "surrogates/kernels/kernel_constant_influence.h"

#include <algorithm>
#include <stdexcept>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"

namespace kestrel::math::metamodel {
namespace {

/// 1 / sqrt(-ln(0.001)): with it exp(-(r / (d c))^2) is 0.001 at r = d.
constexpr double kRadiusFactor = 0.3804797331016252;

template <class Concrete>
std::unique_ptr<KernelBase> CloneOf(const Vector& parameters) {
  if (parameters.size() == 0) return std::make_unique<Concrete>();
  return std::make_unique<Concrete>(parameters);
}

/// Refuses stored parameters by the checks that new ones pass.
template <class Concrete>
void RequireValidParameters(const Vector& parameters) {
  if (parameters.size() > 0) static_cast<void>(Concrete(parameters));
}

}  // namespace

double ExponentialTerm(double radius) { return -1.0 / (radius * radius * kRadiusFactor * kRadiusFactor); }

KernelConstInflExp::KernelConstInflExp(const VectorIn& parameters) { SetParameters(parameters); }

void KernelConstInflExp::EvaluatePoints(const MatrixIn& points, const MatrixIn& support_points,
                                        Eigen::Ref<Matrix> values) const {
  for (Index q = 0; q < points.rows(); ++q) {
    auto column = values.col(q).array();
    column.setZero();
    if (points.cols() == helper_term_.size()) {  // else the sum over no terms
      for (Index j = 0; j < points.cols(); ++j) {
        column += helper_term_[j] * (support_points.col(j).array() - points(q, j)).square();
      }
    }
    ReplaceExponents(values.col(q));
  }
}

double KernelConstInflExp::CalculateKernelFromDiffVec(const VectorIn& difference) const {
  if (difference.size() != helper_term_.size()) return 1.0;  // the sum over no terms
  return std::exp(helper_term_.dot(difference.cwiseAbs2()));
}

std::unique_ptr<KernelBase> KernelConstInflExp::clone() const { return CloneOf<KernelConstInflExp>(parameters_); }

void KernelConstInflExp::SetParameters(const VectorIn& parameters) {
  RequireParameters(parameters);
  if (!(parameters.minCoeff() > 0.0)) {
    throw std::domain_error("KernelConstInflExp: parameter must be greater zero");
  }
  // One radius per input: the first parameters set the count that later ones must keep.
  if (parameters_.size() == 0) parameters_ = parameters;
  KernelBase::SetParameters(parameters);
  helper_term_ = parameters.unaryExpr(&ExponentialTerm);
}

double KernelConstInflIso::CalculateKernelFromDiffVec(const VectorIn& difference) const {
  return CalculateKernelFromDistance(difference.squaredNorm());
}

double KernelConstInflIso::EvaluateDistance(double squared_distance) const {
  return CalculateKernelFromDistance(squared_distance);
}

KernelConstInflIsoExp::KernelConstInflIsoExp(const VectorIn& parameters) { SetParameters(parameters); }

void KernelConstInflIsoExp::ReplaceDistances(Eigen::Ref<Matrix> squared_distances) const {
  for (auto column : squared_distances.colwise()) {
    column *= helper_term_;
    ReplaceExponents(column);
  }
}

double KernelConstInflIsoExp::CalculateKernelFromDistance(double squared_distance) const {
  return std::exp(helper_term_ * squared_distance);
}

std::unique_ptr<KernelBase> KernelConstInflIsoExp::clone() const { return CloneOf<KernelConstInflIsoExp>(parameters_); }

void KernelConstInflIsoExp::SetParameters(const VectorIn& parameters) {
  RequireParameters(parameters);
  if (!(parameters[0] > 0.0)) throw std::domain_error("KernelConstInflIsoExp: parameter must be greater zero");
  KernelBase::SetParameters(parameters);
  helper_term_ = ExponentialTerm(parameters[0]);
}

KernelConstInflIsoReg::KernelConstInflIsoReg(const VectorIn& parameters) { SetParameters(parameters); }

void KernelConstInflIsoReg::ReplaceDistances(Eigen::Ref<Matrix> squared_distances) const {
  for (auto column : squared_distances.colwise()) {
    column.array() /= D_squared_;
    column.array() += epsilon_;
    if (m_ == 2.0) {
      column = column.array().square().inverse();  // what every kernel has but one that a file changed
    } else {
      column = column.array().pow(-m_);
    }
    column = (column.array() - helper_term_).max(0.0);
  }
}

double KernelConstInflIsoReg::CalculateKernelFromDistance(double squared_distance) const {
  return std::max(0.0, std::pow(squared_distance / D_squared_ + epsilon_, -m_) - helper_term_);
}

std::unique_ptr<KernelBase> KernelConstInflIsoReg::clone() const { return CloneOf<KernelConstInflIsoReg>(parameters_); }

void KernelConstInflIsoReg::SetParameters(const VectorIn& parameters) {
  RequireParameters(parameters);
  if (!(parameters[0] > 0.0)) throw std::domain_error("KernelConstInflIsoReg: parameter must be greater zero");
  KernelBase::SetParameters(parameters);
  epsilon_ = 1e-5;
  m_ = 2.0;
  D_squared_ = parameters[0] * parameters[0];
  helper_term_ = 0.9999800002999959;  // (1 + epsilon)^-m
}

template <class Archive>
void KernelConstInfl::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("KernelBase", boost::serialization::base_object<KernelBase>(*this));
}

template <class Archive>
void KernelConstInflExp::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("KernelConstInfl", boost::serialization::base_object<KernelConstInfl>(*this));
  archive& make_nvp("helper_term_", helper_term_);
  if constexpr (Archive::is_loading::value) {
    RequireValidParameters<KernelConstInflExp>(parameters_);
    persistence::RequireStored(helper_term_.size() == parameters_.size(),
                               L"Stored kernel: terms and radii do not match.");
  }
}

template <class Archive>
void KernelConstInflIso::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("KernelConstInfl", boost::serialization::base_object<KernelConstInfl>(*this));
}

template <class Archive>
void KernelConstInflIsoExp::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("KernelConstInflIso", boost::serialization::base_object<KernelConstInflIso>(*this));
  archive& make_nvp("helper_term_", helper_term_);
  if constexpr (Archive::is_loading::value) RequireValidParameters<KernelConstInflIsoExp>(parameters_);
}

template <class Archive>
void KernelConstInflIsoReg::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("KernelConstInflIso", boost::serialization::base_object<KernelConstInflIso>(*this));
  archive& make_nvp("epsilon_", epsilon_);
  archive& make_nvp("m_", m_);
  archive& make_nvp("D_squared_", D_squared_);
  archive& make_nvp("helper_term_", helper_term_);
  if constexpr (Archive::is_loading::value) RequireValidParameters<KernelConstInflIsoReg>(parameters_);
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelConstInfl)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelConstInfl)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelConstInflExp)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelConstInflExp)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelConstInflIso)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelConstInflIso)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelConstInflIsoExp)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelConstInflIsoExp)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::KernelConstInflIsoReg)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::KernelConstInflIsoReg)
