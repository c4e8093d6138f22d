#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "datatypes/criterion.h"
#include "datatypes/design_entry.h"
#include "datatypes/design_enums.h"
#include "datatypes/hierarchical_id.h"
#include "datatypes/nvp_sequence.h"
#include "datatypes/run_info.h"
#include "persistence/archive/persistent.h"

namespace kestrel::algorithm::datatypes {

/// True for a value that no computation can use: uninitialized, NaN or infinite.
bool IsBad(const CDesignEntry& entry);

/// One evaluated point: parameter values, response values, criteria, run messages and an id. Moving a design allocates
/// nothing. A failure leaves the design as it was.
class Design {
 public:
  using eType = enums::DesignTypes::eType;
  using eAlgorithm = enums::SupportedAlgorithms::eKind;

  Design() = default;
  explicit Design(CHierachicalId id) : id_(std::move(id)) {}
  /// With uninitialized values under the names "p0", "p1", ... and "r0", "r1", ...
  Design(std::size_t parameter_count, std::size_t response_count, CHierachicalId id);
  Design(CDesignEntrySequence parameters, CHierachicalId id) : parameters_(std::move(parameters)), id_(std::move(id)) {}

  /// Replaces the values together with the header. Sizes that differ are refused with utils::logic_error
  /// "SetParameters: Wrong dimension of parameters (%1% / %2%)." and "SetResponses: Wrong dimension of responses (%1% /
  /// %2%)." (new, old) unless there were no values.
  void SetParameters(CDesignEntrySequence parameters);
  void SetResponses(CDesignEntrySequence responses);
  /// Replace without a check.
  void SetParametersUnsafe(CDesignEntrySequence parameters) { parameters_ = std::move(parameters); }
  void OverrideResponses(CDesignEntrySequence responses) { responses_ = std::move(responses); }
  /// Sets the response, which is appended if it is new.
  void OverrideResponse(const std::wstring& key, CDesignEntry value);
  /// Raises utils::logic_error "Response \"%1%\" already exists." when it is there.
  void AddResponse(const std::wstring& key, CDesignEntry value);

  void SetCriteria(CriterionSequence criteria) { criteria_ = std::move(criteria); }
  void ClearCriteria() { criteria_.ClearAll(); }
  /// Also drops the run messages; the run has then not started.
  void ClearResponses();
  /// Keeps the criteria and drops their values.
  void ResetCriteriaValues();

  void AddStatus(RunInfoMeta run_info) { status_.push_back(std::move(run_info)); }
  const RunInfoContainer& GetStatus() const { return status_; }

  void SetRunStatus(eRunState state) { runstate_ = state; }
  eRunState GetRunStatus() const { return runstate_; }
  void SetId(CHierachicalId id) { id_ = std::move(id); }
  const CHierachicalId& GetId() const { return id_; }
  /// The id of the design that this one duplicates.
  void SetDuplicates(CHierachicalId id) { duplicates_ = std::move(id); }
  const CHierachicalId& GetDuplicates() const { return duplicates_; }
  void SetDesignType(eType type) { type_ = type; }
  eType GetDesignType() const { return type_; }
  void SetActivationState(eActivationStatus state) { activation_state_ = state; }
  eActivationStatus GetActivationState() const { return activation_state_; }
  bool IsActive() const { return activation_state_ == eActivationStatus::kActive; }
  /// The values stem from a metamodel.
  void SetApproximated(bool approximated) { isapproximated_ = approximated; }
  bool IsApproximated() const { return isapproximated_; }
  /// The iteration of the algorithm, as a chain and as a plain count.
  void SetIteration(CHierachicalId iteration) { iteration_ = std::move(iteration); }
  const CHierachicalId& GetIteration() const { return iteration_; }
  void SetAlgorithmIteration(std::uint64_t iteration) { algo_iteration_ = iteration; }
  std::uint64_t GetAlgorithmIteration() const { return algo_iteration_; }
  /// The algorithm that made the design.
  void SetWorkflowId(eAlgorithm algorithm) { workflow_id_ = algorithm; }
  eAlgorithm GetWorkflowId() const { return workflow_id_; }

  const CDesignEntrySequence& GetParameters() const { return parameters_; }
  const CDesignEntrySequence& GetResponses() const { return responses_; }
  const CriterionSequence& GetCriteria() const { return criteria_; }
  std::size_t GetNumParameters() const { return parameters_.size(); }
  std::size_t GetNumResponses() const { return responses_.size(); }
  /// Neither parameters nor responses.
  bool IsEmpty() const { return parameters_.empty() && responses_.empty(); }

  /// The run has not started.
  bool NeedsReevaluation() const { return runstate_ == eRunState::kNotStarted; }
  /// The run has come to its end, with or without success.
  bool IsDone() const { return runstate_ == eRunState::kDone; }

  bool HasFailedParameters() const;
  bool HasFailedResponses() const;
  /// A limit-state criterion is violated.
  bool HasUnsafeLimitState() const;

  /// The three tests are false unless the run is done, and at most one of them is true.
  /// Succeeded: no bad parameter or response, no message of a failure, no failed criterion.
  bool IsSucceeded() const;
  /// Failed: a bad parameter; or a message of a failure while every response is bad and every criterion has failed,
  /// where a design without responses and criteria has lost them all.
  bool IsFailed() const;
  /// Incomplete: something failed, but the design as a whole is not failed.
  bool IsIncomplete() const;

  /// Appends the parameters that only `other` has, with its values.
  void AddMissingParameters(const Design& other);
  /// Drops the parameters that `other` does not have.
  void RemoveUnusedParameters(const Design& other);

  /// Parameters, responses, run infos (their numbers only), activation, criteria, approximation and id; neither the run
  /// state nor the iterations count.
  bool operator==(const Design& other) const;
  bool operator!=(const Design& other) const { return !(*this == other); }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  CDesignEntrySequence parameters_;
  CDesignEntrySequence responses_;
  RunInfoContainer status_;
  CHierachicalId duplicates_;
  CriterionSequence criteria_;
  CHierachicalId id_;
  CHierachicalId iteration_;
  std::uint64_t algo_iteration_ = 0;
  eRunState runstate_ = eRunState::kNotStarted;
  eActivationStatus activation_state_ = eActivationStatus::kActive;
  eAlgorithm workflow_id_ = eAlgorithm::kNone;
  eType type_ = eType::kDefault;
  bool isapproximated_ = false;
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::Design, 6)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::Design, boost::serialization::track_always)
