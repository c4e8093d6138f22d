#pragma once

#include <limits>
#include <memory>
#include <optional>

#include "surrogates/ordinary_kriging.h"

namespace kestrel::math::metamodel {

/// The trials of a search for nugget and radii. A point of the search holds log10 of the nugget and then of each
/// radius; what is minimised there is the negative log likelihood, or 1000 times the share of the variance that the
/// cross validation leaves unexplained.
class OrdinaryKriging::HyperparameterSearch {
 public:
  struct Trial {
    Vector point;
    double objective = std::numeric_limits<double>::infinity();
  };

  /// The model, its sample prepared, is built anew at each trial.
  /// @param distances  squared distances of the samples, for a kernel of the distance alone; null for others.
  HyperparameterSearch(OrdinaryKriging& model, const Subsets& subsets, const Matrix* distances);

  /// The objective at a point; nothing where the correlation matrix is not positive definite or the objective is no
  /// number. Each trial is a point where a stop takes effect.
  std::optional<double> Evaluate(const VectorIn& point);
  /// Its derivatives: those of the likelihood, or forward differences. NaN at a point that cannot be evaluated.
  Vector Gradient(const VectorIn& point);

  /// The best of all trials; of equal ones the first.
  const Trial& GetBest() const { return best_; }
  /// Builds the model at the best trial.
  bool BuildBest();

 private:
  void SetParameters(const VectorIn& point);
  bool UsesLikelihood() const { return model_.settings_.GetUseLikelihood(); }

  OrdinaryKriging& model_;
  const Subsets& subsets_;
  const Matrix* distances_;
  std::unique_ptr<KernelBase> kernel_;
  Vector evaluated_;  ///< the point that the model was built at last; empty if it could not be
  double total_sum_of_squares_;
  Trial best_;
};

}  // namespace kestrel::math::metamodel
