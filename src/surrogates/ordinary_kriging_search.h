#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <vector>

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
  /// number. A point that was tried before, as the start of a descent always was, is not built again. Each trial is a
  /// point where a stop takes effect.
  std::optional<double> Evaluate(const VectorIn& point);
  /// Its derivatives: those of the likelihood, or forward differences. NaN at a point that cannot be evaluated.
  Vector Gradient(const VectorIn& point);

  /// The best of all trials; of equal ones the first.
  const Trial& GetBest() const { return best_; }
  /// Builds the model at the best trial.
  bool BuildBest();

 private:
  struct Known {
    Vector point;
    std::optional<double> objective;
  };

  void SetParameters(const VectorIn& point);
  std::optional<double> BuildTrial(const VectorIn& point);
  /// R at the parameters that are set. While the radii stay only the diagonal changes.
  bool FillCorrelation();
  bool UsesLikelihood() const { return model_.settings_.GetUseLikelihood(); }

  OrdinaryKriging& model_;
  const Subsets& subsets_;
  const Matrix* distances_;
  std::unique_ptr<KernelBase> kernel_;
  std::vector<Known> known_;
  Vector evaluated_;     ///< the point that the model was built at last; empty if it could not be
  Vector filled_radii_;  ///< those of the correlations in R; empty if these do not stand
  Matrix gradient_scratch_;
  double total_sum_of_squares_;
  Trial best_;
};

}  // namespace kestrel::math::metamodel
