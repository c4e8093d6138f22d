#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "optimizer/optimizer_settings_base.h"
#include "support/linear_algebra.h"
#include "support/log.h"

namespace kestrel::algorithm::optimizer {

enum class eOptimizerState : std::int32_t {
  kNotInitialized = 0,
  kInitialized = 1,
  kDesignsHandedOut = 2,
  kAppraised = 3,
  kAdapted = 4,
  kTerminated = 5,
  kFinalized = 6,
};

/// An optimizer that never calls a model: it hands out designs, and the caller hands back the responses.
///
///   while (!optimizer.IsTerminated()) {
///     const Matrix designs = optimizer.GetNextDesigns();
///     ... evaluate each row ...
///     optimizer.SetInputs(designs);
///     optimizer.SetCriteriaSuccessInfo(flags);
///     optimizer.SetObjectives(objectives);  // and SetEqualities, SetInequalities where there are some
///     optimizer.Appraise();
///     optimizer.Adapt();
///   }
///   optimizer.Finalize();
///   optimizer.GetBestInputs();
///
/// Matrices have one row per design. A step out of order and data that do not fit are logged at error level and raise
/// utils::runtime_error. So do NaN and infinity in the responses of a design whose flag says that it succeeded; those
/// of a design that did not are never looked at.
template <class Real>
class OptimizerBase {
 public:
  using Matrix = Eigen::Matrix<Real, Eigen::Dynamic, Eigen::Dynamic>;
  using MatrixIn = Eigen::Ref<const Matrix>;

 protected:
  virtual void InitializeImpl(const OptimizerSettingsBase& settings) = 0;
  /// Takes the responses in.
  virtual void AppraiseImpl() = 0;
  /// Moves on and sets the next designs, by `SetAwaitingDesigns`.
  virtual void AdaptImpl() = 0;
  virtual void FinalizeImpl() = 0;
  virtual bool IsTerminatedImpl() const = 0;
  virtual bool IsConvergedImpl() const = 0;
  /// Takes note of designs that were evaluated elsewhere than where they were asked for.
  virtual void SetInputsImpl(const MatrixIn& designs) = 0;

 public:
  /// The best designs met, one per row, and what belongs to them. Usable at any time after the first `Appraise`.
  virtual Matrix GetBestInputs() const = 0;
  virtual Matrix GetBestObjectives() const = 0;
  virtual Matrix GetBestEqualities() const = 0;
  virtual Matrix GetBestInequalities() const = 0;
  /// Their numbers in the order in which the designs were handed out, from 0.
  virtual IndexVector GetBestDesignNumbers() const = 0;
  /// Ends the loop; only `Adapt` without effect and `Finalize` may follow.
  virtual void SetTerminated() { state_ = eOptimizerState::kTerminated; }
  virtual ~OptimizerBase() = default;
  /// A null pointer drops all messages.
  virtual void SetLog(std::shared_ptr<utils::log::LogBase> log);
  virtual std::unique_ptr<OptimizerBase> Clone() const = 0;

  /// Checks the settings and starts anew with them.
  void Initialize(const OptimizerSettingsBase& settings);
  /// The designs to evaluate; the same ones again until they were appraised.
  Matrix GetNextDesigns();
  /// The designs as they were evaluated, in the order handed out; they may differ a little from those.
  void SetInputs(const MatrixIn& designs);
  /// One flag per design: false where the evaluation failed. All succeeded if this is not called.
  void SetCriteriaSuccessInfo(const std::vector<bool>& flags);
  void SetObjectives(const MatrixIn& values);
  void SetEqualities(const MatrixIn& values);
  void SetInequalities(const MatrixIn& values);
  void Appraise();
  void Adapt();
  void Finalize();

  bool IsTerminated() const { return state_ >= eOptimizerState::kTerminated; }
  /// True if the run ended at a point that fulfils the conditions of an optimum.
  bool IsConverged() const { return IsConvergedImpl(); }
  eOptimizerState GetState() const { return state_; }
  std::uint64_t GetNumAwaitingDesigns() const { return static_cast<std::uint64_t>(awaiting_designs_.rows()); }
  /// Number of designs appraised so far.
  std::uint64_t GetNumEvaluations() const { return num_evaluations_; }
  void SetAwaitingDesigns(const MatrixIn& designs);

 protected:
  OptimizerBase();
  OptimizerBase(const OptimizerBase&) = default;
  OptimizerBase& operator=(const OptimizerBase&) = default;

  /// Logs at error level and raises utils::runtime_error.
  [[noreturn]] void Refuse(const std::wstring& message) const;

  Matrix awaiting_designs_;
  Matrix inputs_;
  Matrix objectives_;
  Matrix equalities_;
  Matrix inequalities_;
  std::vector<bool> success_;
  std::uint64_t num_evaluations_ = 0;
  std::shared_ptr<utils::log::LogBase> log_;

 private:
  template <class Step>
  void Guarded(Step step, const wchar_t* failure) const;
  void CheckAndInitialize(const OptimizerSettingsBase& settings);
  void RequireHandedOut(const wchar_t* operation) const;
  void RequireSets(const MatrixIn& values, Index dimension, const wchar_t* what) const;
  void CheckNumbersOfDesigns() const;
  void CheckDesignsFinite() const;
  void CheckResponsesFinite() const;
  void CheckFinite(const MatrixIn& values, const wchar_t* what) const;

  eOptimizerState state_ = eOptimizerState::kNotInitialized;
  Index num_inputs_ = 0;
  Index num_objectives_ = 0;
  Index num_equalities_ = 0;
  Index num_inequalities_ = 0;
};

extern template class OptimizerBase<double>;

}  // namespace kestrel::algorithm::optimizer
