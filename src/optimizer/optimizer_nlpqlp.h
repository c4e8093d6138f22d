#pragma once

#include <cstdint>
#include <memory>
#include <vector>

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

  /// 1 x n: of the designs evaluated that fulfil the constraints within the accuracy the one with the lowest objective,
  /// or else the one that comes closest to it; the point of convergence if there are constraints. Before the first
  /// success it is the start design, its responses are NaN.
  Matrix GetBestInputs() const override;
  Matrix GetBestObjectives() const override;
  Matrix GetBestEqualities() const override;
  Matrix GetBestInequalities() const override;
  IndexVector GetBestDesignNumbers() const override;
  std::unique_ptr<OptimizerBase<Real>> Clone() const override;

  /// Starts the solver anew at the best design, with B = diagonal * I; the designs to evaluate are then new ones.
  /// Without effect behind the end. Refused between `Appraise` and `Adapt`, and with a diagonal that is not above 0.
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
  /// A design with its responses.
  struct Record {
    Vector inputs;
    double objective;
    Vector constraints;  ///< equalities first
    std::uint64_t number;
  };
  /// What the designs handed out are for.
  enum class eRequest { kStart, kTrials, kGradient };

  Record RecordOf(Index row) const;
  bool IsBetter(const Record& a, const Record& b) const;
  double ViolationOf(const Record& record) const;
  void TakeValues(Index count);
  void TakeGradient(const Record& centre);
  /// n x (1 + m) from those of the extra designs that can be used: least squares through the centre.
  Matrix ProvideGradientFromRegression(const Record& centre, const MatrixIn& designs, const MatrixIn& responses,
                                       const std::vector<bool>& usable);
  Matrix ResponsesOfExtraDesigns() const;
  void StartRun(const Vector& design);
  void Ask(const MatrixIn& designs, eRequest request);
  void FollowIterate();
  void EndRun();
  void End(const wchar_t* reason);
  double Accuracy() const { return settings_->GetAccuracy(); }

  std::shared_ptr<const OptimizerSettingsNLPQLP<Real>> settings_;
  std::shared_ptr<const Differences> differences_;
  NLPQLP solver_{1, 0, 0, 1};
  eRequest request_ = eRequest::kStart;
  bool designs_as_asked_ = true;   ///< the designs were evaluated where they were asked for
  bool gradient_known_ = false;    ///< the solver has the gradients of the point it will ask them for
  bool gradient_complete_ = true;  ///< the last gradient has information on each input
  std::vector<Record> trials_;     ///< the points of the last line search that succeeded
  Record iterate_;
  Record best_;
  Record best_of_earlier_runs_;
  std::uint64_t runs_ = 0;
  bool terminated_ = false;
  bool converged_ = false;
};

extern template class OptimizerNLPQLP<double>;

}  // namespace kestrel::algorithm::optimizer
