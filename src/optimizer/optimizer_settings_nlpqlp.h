#pragma once

#include <cstdint>
#include <memory>

#include "optimizer/optimizer_differences.h"
#include "optimizer/optimizer_settings_base.h"

namespace kestrel::algorithm::optimizer {

/// Settings of `OptimizerNLPQLP`; the accuracy is 5e-6 by default. Inputs are taken as continuous whatever their type.
/// Steps are in the units of the inputs; the forms with one number give it to all inputs.
template <class Real>
class OptimizerSettingsNLPQLP : public OptimizerSettingsGradientBase<Real> {
 public:
  explicit OptimizerSettingsNLPQLP(std::uint64_t inputs = 0, std::uint64_t objectives = 1, std::uint64_t equalities = 0,
                                   std::uint64_t inequalities = 0);

  void SetDefaults() override;
  bool CheckSettings(utils::log::LogBase& log) const override;
  void SetNumInputs(std::uint64_t count) override;
  bool operator==(const OptimizerSettingsBase& other) const override;
  std::unique_ptr<OptimizerSettingsBase> Clone() const override;

  /// How many trial steps of a line search are evaluated together; default 1.
  virtual void SetNumberOfParallelLineSearches(std::uint64_t count) { num_parallel_line_searches_ = count; }
  /// How many merit values the non-monotone line search looks back to; default 10, 0 is monotone.
  virtual void SetLineSearchStackSize(std::int64_t count) { line_search_stack_size_ = count; }
  virtual void SetNumericalDifferences(eDiffType type) { diff_type_ = type; }
  /// Whether the first step from a start design is limited by the maximum step size; default off.
  virtual void SetUseInitialStepsizeLimit(bool flag) { use_initial_stepsize_limit_ = flag; }
  virtual void SetMaxStepsize(const VectorIn& sizes) { max_stepsize_ = sizes; }
  virtual void SetMaxStepsize(double size);
  /// Share of the step to the solution of the quadratic program below which a line search gives up; default 0.
  virtual void SetMinLineSearchStepsize(Real value) { min_line_search_stepsize_ = value; }

  /// Steps of the numerical differences; default 1e-6.
  void SetGradientDx(const VectorIn& steps) { gradient_dx_ = steps; }
  void SetGradientDx(double step);

  std::uint64_t GetNumberOfParallelLineSearches() const { return num_parallel_line_searches_; }
  std::int64_t GetLineSearchStackSize() const { return line_search_stack_size_; }
  eDiffType GetNumericalDifferences() const { return diff_type_; }
  bool GetUseInitialStepsizeLimit() const { return use_initial_stepsize_limit_; }
  const Vector& GetMaxStepsize() const { return max_stepsize_; }
  Real GetMinLineSearchStepsize() const { return min_line_search_stepsize_; }
  const Vector& GetGradientDx() const { return gradient_dx_; }
  /// How often a run may begin anew at the best design.
  virtual std::uint64_t GetMaxRestarts() const { return 0; }

 private:
  void SetDefaultsOfLocalMembers();
  bool CheckSearch(utils::log::LogBase& log) const;
  bool CheckGradientDx(utils::log::LogBase& log) const;
  bool CheckMaxStepsize(utils::log::LogBase& log) const;

  std::uint64_t num_parallel_line_searches_ = 1;
  std::int64_t line_search_stack_size_ = 10;
  eDiffType diff_type_ = eDiffType::kForward;
  bool use_initial_stepsize_limit_ = false;
  Vector max_stepsize_;
  Real min_line_search_stepsize_ = Real(0);
  Vector gradient_dx_;
};

/// The variant with restarts: when the run has ended it begins anew at the best design, with a fresh quasi-Newton
/// matrix, as long as that lowers the objective by more than the accuracy and at most `SetMaxRestarts` times.
template <class Real>
class OptimizerSettingsNLPQLPRestart : public OptimizerSettingsNLPQLP<Real> {
 public:
  using OptimizerSettingsNLPQLP<Real>::OptimizerSettingsNLPQLP;

  void SetDefaults() override;
  bool operator==(const OptimizerSettingsBase& other) const override;
  std::unique_ptr<OptimizerSettingsBase> Clone() const override;
  std::uint64_t GetMaxRestarts() const override { return max_restarts_; }

  /// Default 3.
  void SetMaxRestarts(std::uint64_t count) { max_restarts_ = count; }

 private:
  std::uint64_t max_restarts_ = 3;
};

extern template class OptimizerSettingsNLPQLP<double>;
extern template class OptimizerSettingsNLPQLPRestart<double>;

}  // namespace kestrel::algorithm::optimizer
