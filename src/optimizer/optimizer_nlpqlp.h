#pragma once

#include <memory>

#include "optimizer/nlpqlp.h"
#include "optimizer/optimizer_base.h"
#include "optimizer/optimizer_differences.h"
#include "optimizer/optimizer_settings_nlpqlp.h"

namespace kestrel::algorithm::optimizer {

/// Sequential quadratic programming with numerical gradients. An iteration hands out the points of a line search, then
/// the extra designs of the gradient at the point that was accepted; the first hands out both for the start.
///
/// A point of the line search that failed counts as a step that is too long. Extra designs that failed, or that were
/// evaluated elsewhere, leave the gradient to a regression over those that can be used. A start that failed ends the
/// run.
template <class Real>
class OptimizerNLPQLP : public OptimizerBase<Real> {
 public:
  using typename OptimizerBase<Real>::Matrix;
  using typename OptimizerBase<Real>::MatrixIn;
  using Differences = optimizer::Differences;

  /// Calls `Initialize(settings)`. @param settings  OptimizerSettingsNLPQLP<Real> or its variant with restarts.
  explicit OptimizerNLPQLP(const OptimizerSettingsBase& settings, std::shared_ptr<utils::log::LogBase> log = nullptr);
  OptimizerNLPQLP(const OptimizerNLPQLP& other);
  OptimizerNLPQLP& operator=(const OptimizerNLPQLP&) = delete;

  /// 1 x n: of the designs evaluated that fulfil the constraints within the accuracy the one with the lowest objective,
  /// or else the one that comes closest to it; the point of convergence if there are constraints. Before the first
  /// success it is the start design, its responses are NaN.
  Matrix GetBestInputs() const override;
  Matrix GetBestObjectives() const override;
  Matrix GetBestEqualities() const override;
  Matrix GetBestInequalities() const override;
  IndexVector GetBestDesignNumbers() const override;
  std::unique_ptr<OptimizerBase<Real>> Clone() const override;

  /// Starts the solver anew at the best design, with B = diagonal * I.
  void ResetBFGS(double diagonal = 1.0);
  /// The options of the solver from the settings, the rest at the solver's defaults.
  void SetDefaultParameters();

 protected:
  void InitializeImpl(const OptimizerSettingsBase& settings) override;
  void AppraiseImpl() override;
  void AdaptImpl() override;
  void FinalizeImpl() override;
  bool IsTerminatedImpl() const override { return terminated_; }
  bool IsConvergedImpl() const override { return converged_; }
  void SetInputsImpl(const MatrixIn& designs) override;

 private:
  bool terminated_ = false;
  bool converged_ = false;
};

extern template class OptimizerNLPQLP<double>;

}  // namespace kestrel::algorithm::optimizer
