#pragma once

#include <memory>
#include <vector>

#include "persistence/archive/persistent.h"
#include "random_variables/random_variable.h"
#include "support/linear_algebra.h"

namespace kestrel::algorithm {

/// Random variables that are drawn together. Points are rows in the order of the variables.
class RVSet_Base {
 public:
  using Variables = std::vector<std::shared_ptr<RV_Base>>;

  virtual ~RVSet_Base() = default;

  math::Index Size() const { return static_cast<math::Index>(variables_.size()); }
  const RV_Base& Variable(math::Index index) const;

  /// Between points x of the variables and independent standard normal points u. Both raise utils::runtime_error for a
  /// point of another length.
  math::Vector ToStandardNormal(const math::VectorIn& x) const;
  math::Vector FromStandardNormal(const math::VectorIn& u) const;
  /// count x Size() random points, one a row.
  math::Matrix Sample(math::Index count, math::random::Generator& generator) const;
  /// Correlation of the variables.
  virtual math::Matrix Correlation() const = 0;

 protected:
  RVSet_Base() = default;
  explicit RVSet_Base(Variables variables);
  RVSet_Base(const RVSet_Base&) = default;
  RVSet_Base& operator=(const RVSet_Base&) = default;
  const Variables& GetVariables() const { return variables_; }
  void CheckVariables() const;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  /// Between correlated standard normal points z, of which each belongs to one variable, and independent ones u.
  virtual math::Vector Decorrelate(math::Vector z) const = 0;
  virtual math::Vector Correlate(math::Vector u) const = 0;

  Variables variables_;
};

/// Variables without any dependence.
class RVSet_Independent final : public RVSet_Base {
 public:
  RVSet_Independent() = default;
  explicit RVSet_Independent(Variables variables) : RVSet_Base(std::move(variables)) {}
  math::Matrix Correlation() const override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  math::Vector Decorrelate(math::Vector z) const override { return z; }
  math::Vector Correlate(math::Vector u) const override { return u; }
};

/// The Nataf model (Liu and Der Kiureghian 1986, "Multivariate distribution models with prescribed marginals and
/// covariances"): the variables are images of jointly normal ones, whose correlation is such that the variables have
/// the prescribed one.
class RVSet_Nataf final : public RVSet_Base {
 public:
  RVSet_Nataf() = default;
  /// @param correlation  of the variables: symmetric, unit diagonal, coefficients inside (-1, 1).
  /// Raises utils::runtime_error if the matrix is not such a one, if a pair of distributions cannot have its
  /// coefficient, or if the normal correlations are not positive definite.
  RVSet_Nataf(Variables variables, math::Matrix correlation);
  math::Matrix Correlation() const override { return correlation_; }
  /// Correlation of the underlying normal variables.
  const math::Matrix& NormalCorrelation() const { return normal_correlation_; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  math::Vector Decorrelate(math::Vector z) const override;
  math::Vector Correlate(math::Vector u) const override;
  /// Checks the correlation and solves for the normal one and its factor.
  void Prepare();

  math::Matrix correlation_;
  math::Matrix normal_correlation_;
  math::Matrix factor_;  // lower Cholesky factor of the normal correlation: z = L u
};

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RVSet_Independent, "kestrel::algorithm::RVSet_Independent")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RVSet_Nataf, "kestrel::algorithm::RVSet_Nataf")
