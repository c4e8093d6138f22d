#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "support/linear_algebra.h"
#include "support/log.h"

namespace kestrel::algorithm::optimizer {

using math::Index;
using math::IndexVector;
using math::Matrix;
using math::MatrixIn;
using math::Vector;
using math::VectorIn;

enum class eParameterType : std::int32_t { kContinuous = 0, kDiscrete = 1 };

/// The problem that an optimizer works on:
///
///   minimise f(x)  subject to  c_j(x) = 0 (equalities),  c_j(x) >= 0 (inequalities),  lower <= x <= upper.
///
/// Bounds and steps are in the units of the inputs. Matrices of designs have one row per design.
class OptimizerSettingsBase {
 public:
  virtual ~OptimizerSettingsBase() = default;

  /// Restores everything but the four counts.
  virtual void SetDefaults();
  /// Writes a line at error level for each reason why the problem cannot be solved, and one at warning level for each
  /// doubtful value. False if there was an error.
  virtual bool CheckSettings(utils::log::LogBase& log) const;
  /// Largest number of designs that a run may evaluate.
  virtual std::uint64_t GetMaxEvaluations() const { return std::numeric_limits<std::uint64_t>::max(); }
  /// A new number of inputs restores the defaults of all that has one entry per input.
  virtual void SetNumInputs(std::uint64_t count);
  virtual void SetNumObjectives(std::uint64_t count) { num_objectives_ = count; }
  virtual void SetNumEqualities(std::uint64_t count) { num_equalities_ = count; }
  virtual void SetNumInequalities(std::uint64_t count) { num_inequalities_ = count; }
  virtual void SetLowerBounds(const VectorIn& bounds) { lower_bounds_ = bounds; }
  /// The lowest finite number for every input: no bound.
  virtual void SetLowerBounds();
  virtual void SetUpperBounds(const VectorIn& bounds) { upper_bounds_ = bounds; }
  /// The largest finite number for every input: no bound.
  virtual void SetUpperBounds();
  virtual void SetParameterTypes(const std::vector<eParameterType>& types) { parameter_types_ = types; }
  /// All inputs are continuous.
  virtual void SetParameterTypes();
  /// The values that a discrete input may take. Raises utils::out_of_range if there is no such input.
  virtual void SetDiscreteStates(std::uint64_t index, const VectorIn& states);
  /// No input has a list of values.
  virtual void SetDiscreteStates();
  /// One start design per row.
  virtual void SetStartDesigns(const MatrixIn& designs) { start_designs_ = designs; }
  /// No start design.
  virtual void SetStartDesigns();
  /// Same class and same values in all fields; NaN equals NaN.
  virtual bool operator==(const OptimizerSettingsBase& other) const;
  virtual std::unique_ptr<OptimizerSettingsBase> Clone() const = 0;

  std::uint64_t GetNumInputs() const { return num_inputs_; }
  std::uint64_t GetNumObjectives() const { return num_objectives_; }
  std::uint64_t GetNumEqualities() const { return num_equalities_; }
  std::uint64_t GetNumInequalities() const { return num_inequalities_; }
  const Vector& GetLowerBounds() const { return lower_bounds_; }
  const Vector& GetUpperBounds() const { return upper_bounds_; }
  const std::vector<eParameterType>& GetParameterTypes() const { return parameter_types_; }
  const std::vector<Vector>& GetDiscreteStates() const { return discrete_states_; }
  const Matrix& GetStartDesigns() const { return start_designs_; }

 protected:
  OptimizerSettingsBase(std::uint64_t inputs, std::uint64_t objectives, std::uint64_t equalities,
                        std::uint64_t inequalities);
  OptimizerSettingsBase(const OptimizerSettingsBase&) = default;
  OptimizerSettingsBase& operator=(const OptimizerSettingsBase&) = default;

  std::uint64_t num_inputs_;
  std::uint64_t num_objectives_;
  std::uint64_t num_equalities_;
  std::uint64_t num_inequalities_;
  Vector lower_bounds_;
  Vector upper_bounds_;
  std::vector<eParameterType> parameter_types_;
  std::vector<Vector> discrete_states_;  ///< one list per input, empty where it has none
  Matrix start_designs_;

 private:
  void SetDefaultsOfLocalMembers();
  bool CheckCounts(utils::log::LogBase& log) const;
  bool CheckBounds(utils::log::LogBase& log) const;
  bool CheckStartDesigns(utils::log::LogBase& log) const;
};

/// What every optimizer that follows gradients needs besides: a start, an accuracy, a limit.
template <class Real>
class OptimizerSettingsGradientBase : public OptimizerSettingsBase {
 public:
  void SetDefaults() override;
  bool CheckSettings(utils::log::LogBase& log) const override;
  std::uint64_t GetMaxEvaluations() const override;
  bool operator==(const OptimizerSettingsBase& other) const override;

  /// Largest number of designs that a run may evaluate, those for gradients included; default 10000.
  virtual void SetMaxNumFunctionCalls(std::int64_t count) { max_num_function_calls_ = count; }
  /// The run has converged when the Karush-Kuhn-Tucker conditions hold within this value; default 1e-7.
  virtual void SetAccuracy(Real value) { accuracy_ = value; }

  std::int64_t GetMaxNumFunctionCalls() const { return max_num_function_calls_; }
  Real GetAccuracy() const { return accuracy_; }

 protected:
  using OptimizerSettingsBase::OptimizerSettingsBase;

 private:
  bool CheckStart(utils::log::LogBase& log) const;

  std::int64_t max_num_function_calls_ = 10000;
  Real accuracy_ = Real(1e-7);
};

extern template class OptimizerSettingsGradientBase<double>;

}  // namespace kestrel::algorithm::optimizer
