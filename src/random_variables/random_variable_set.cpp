#include "random_variables/random_variable_set.h"

#include <Eigen/Cholesky>
#include <algorithm>
#include <boost/random/normal_distribution.hpp>
#include <cmath>
#include <string>

#include "persistence/archive/archives.h"
#include "random_variables/find_root.h"
#include "support/exceptions.h"

namespace kestrel::algorithm {
namespace {

using math::Index;
using math::Matrix;
using math::Vector;

/// Orders of the Hermite expansion. A smooth map from the normal variable needs a few of them; the last ones serve the
/// jumps of discrete variables.
constexpr int kHermiteOrders = 40;

/// The coefficients a_k = E[h(Z) He_k(Z)] / sqrt(k!), k = 1 .. kHermiteOrders, of the standardised variable
/// h(z) = (x(z) - mean) / stddev. The trapezoidal rule is exact to rounding for smooth integrands that die away on both
/// sides, as the normal density makes them.
Vector HermiteCoefficients(const RV_Base& variable) {
  constexpr int kSteps = 640;
  constexpr double kRange = 10.0;
  constexpr double kStep = 2.0 * kRange / kSteps;
  const RVMoments moments = variable.Moments();
  if (!std::isfinite(moments.stddev) || !(moments.stddev > 0.0)) {
    throw utils::runtime_error(L"A correlated random variable needs a positive finite standard deviation.");
  }
  Vector coefficients = Vector::Zero(kHermiteOrders);
  for (int i = 0; i <= kSteps; ++i) {
    const double z = -kRange + i * kStep;
    const double density = std::exp(-0.5 * z * z) / std::sqrt(2.0 * M_PI);
    const double weighted = kStep * density * (variable.FromStandardNormal(z) - moments.mean) / moments.stddev;
    double previous = 0.0;  // He_k / sqrt(k!) by its three-term recurrence
    double current = 1.0;
    for (int k = 1; k <= kHermiteOrders; ++k) {
      const double next = (z * current - std::sqrt(k - 1.0) * previous) / std::sqrt(static_cast<double>(k));
      previous = current;
      current = next;
      coefficients(k - 1) += weighted * current;
    }
  }
  return coefficients;
}

/// The correlation of the normal variables under which the variables have the given one. By Mehler's formula normal
/// variables of correlation r give them the correlation sum_k a_k b_k r^k, which ascends with r.
double NormalCorrelationOf(double correlation, const Vector& a, const Vector& b) {
  const Vector products = a.cwiseProduct(b);
  const auto excess = [&](double r) {
    double value = 0.0;
    for (Index k = products.size() - 1; k >= 0; --k) value = (value + products(k)) * r;
    return value - correlation;
  };
  constexpr double kRounding = 1e-12;
  if (excess(-1.0) > kRounding || excess(1.0) < -kRounding) {
    throw utils::runtime_error(L"The distributions cannot have the correlation " + std::to_wstring(correlation) + L".");
  }
  return FindRoot(excess, -1.0, 1.0);
}

void CheckCorrelation(const Matrix& correlation, Index size) {
  if (correlation.rows() != size || correlation.cols() != size) {
    throw utils::runtime_error(L"The correlation matrix must have one row and one column for each random variable.");
  }
  const bool unit_diagonal = (correlation.diagonal().array() == 1.0).all();
  const bool symmetric = (correlation.array() == correlation.transpose().array()).all();
  if (!unit_diagonal || !symmetric) {
    throw utils::runtime_error(L"A correlation matrix must be symmetric with ones on its diagonal.");
  }
  const Matrix off_diagonal = correlation - Matrix::Identity(size, size);
  if (!(off_diagonal.array().abs() < 1.0).all()) {
    throw utils::runtime_error(L"The correlation of two random variables must lie between -1 and 1.");
  }
}

void RequireLength(Index length, Index expected) {
  if (length != expected) {
    throw utils::runtime_error(L"The point must have one value for each of the " + std::to_wstring(expected) +
                               L" random variables.");
  }
}

}  // namespace

RVSet_Base::RVSet_Base(Variables variables) : variables_(std::move(variables)) { CheckVariables(); }

void RVSet_Base::CheckVariables() const {
  if (std::find(variables_.begin(), variables_.end(), nullptr) != variables_.end()) {
    throw utils::runtime_error(L"A random variable of the set is missing.");
  }
}

const RV_Base& RVSet_Base::Variable(Index index) const { return *variables_.at(static_cast<std::size_t>(index)); }

Vector RVSet_Base::ToStandardNormal(const math::VectorIn& x) const {
  RequireLength(x.size(), Size());
  Vector z(Size());
  for (Index i = 0; i < Size(); ++i) z(i) = Variable(i).ToStandardNormal(x(i));
  return Decorrelate(std::move(z));
}

Vector RVSet_Base::FromStandardNormal(const math::VectorIn& u) const {
  RequireLength(u.size(), Size());
  Vector x = Correlate(u);
  for (Index i = 0; i < Size(); ++i) x(i) = Variable(i).FromStandardNormal(x(i));
  return x;
}

Matrix RVSet_Base::Sample(Index count, math::random::Generator& generator) const {
  boost::random::normal_distribution<double> normal;
  Matrix points(count, Size());
  Vector u(Size());
  for (Index row = 0; row < count; ++row) {
    for (double& value : u) value = normal(generator);
    points.row(row) = FromStandardNormal(u).transpose();
  }
  return points;
}

Matrix RVSet_Independent::Correlation() const { return Matrix::Identity(Size(), Size()); }

RVSet_Nataf::RVSet_Nataf(Variables variables, Matrix correlation)
    : RVSet_Base(std::move(variables)), correlation_(std::move(correlation)) {
  Prepare();
}

void RVSet_Nataf::Prepare() {
  CheckCorrelation(correlation_, Size());
  std::vector<Vector> coefficients;
  for (Index i = 0; i < Size(); ++i) coefficients.push_back(HermiteCoefficients(Variable(i)));
  normal_correlation_ = Matrix::Identity(Size(), Size());
  for (Index j = 0; j < Size(); ++j) {
    for (Index i = 0; i < j; ++i) {
      if (correlation_(i, j) == 0.0) continue;
      normal_correlation_(i, j) = NormalCorrelationOf(correlation_(i, j), coefficients[static_cast<std::size_t>(i)],
                                                      coefficients[static_cast<std::size_t>(j)]);
      normal_correlation_(j, i) = normal_correlation_(i, j);
    }
  }
  const Eigen::LLT<Matrix> cholesky(normal_correlation_);
  if (cholesky.info() != Eigen::Success) {
    throw utils::runtime_error(L"The correlation matrix of the random variables must be positive definite.");
  }
  factor_ = cholesky.matrixL();
}

Vector RVSet_Nataf::Decorrelate(Vector z) const { return factor_.triangularView<Eigen::Lower>().solve(z); }

Vector RVSet_Nataf::Correlate(Vector u) const { return factor_.triangularView<Eigen::Lower>() * u; }

template <class Archive>
void RVSet_Base::serialize(Archive& archive, unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("variables_", variables_);
  if constexpr (Archive::is_loading::value) CheckVariables();
}

template <class Archive>
void RVSet_Independent::serialize(Archive& archive, unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("RVSet_Base", boost::serialization::base_object<RVSet_Base>(*this));
}

template <class Archive>
void RVSet_Nataf::serialize(Archive& archive, unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("RVSet_Base", boost::serialization::base_object<RVSet_Base>(*this));
  archive& boost::serialization::make_nvp("correlation_", correlation_);
  if constexpr (Archive::is_loading::value) Prepare();
}

}  // namespace kestrel::algorithm

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::RVSet_Base)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::RVSet_Independent)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::RVSet_Nataf)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RVSet_Independent)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RVSet_Nataf)
