#include "surrogates/linear_regression_settings.h"

#include <algorithm>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/error_report.h"

namespace kestrel::math::metamodel {
namespace {

/// Calls visit(pair, i, j) for every pair i < j of n inputs, in the order of the interaction selection.
template <class Visit>
void ForEachPair(std::uint64_t n, Visit visit) {
  Selection::size_type pair = 0;
  for (std::uint64_t i = 0; i < n; ++i) {
    for (std::uint64_t j = i + 1; j < n; ++j) visit(pair++, i, j);
  }
}

/// The position of the pair i < j of n inputs in that order.
Selection::size_type PairOf(std::uint64_t n, std::uint64_t i, std::uint64_t j) {
  return i * (2 * n - i - 1) / 2 + (j - i - 1);
}

}  // namespace

LinearRegressionSettings::LinearRegressionSettings(std::uint64_t num_inputs) : SurrogateSettingsBase(num_inputs) {
  SetDefaultsOfLocalMembers();
}

LinearRegressionSettings::LinearRegressionSettings(std::uint64_t num_inputs, std::uint64_t order, Selection main_terms,
                                                   Selection interactions)
    : SurrogateSettingsBase(num_inputs),
      order_(order),
      main_term_selection_(std::move(main_terms)),
      interaction_selection_(std::move(interactions)) {}

void LinearRegressionSettings::SetDefaults() {
  SurrogateSettingsBase::SetDefaults();
  SetDefaultsOfLocalMembers();
}

void LinearRegressionSettings::SetDefaultsOfLocalMembers() { SetOrder(1); }

void LinearRegressionSettings::SetNumInputs(std::uint64_t count) {
  SurrogateSettingsBase::SetNumInputs(count);
  SetDefaultsOfLocalMembers();
}

void LinearRegressionSettings::SetOrder(std::uint64_t order) {
  order_ = order;
  main_term_selection_ = BuildMainTermSelection(ninputs_, order, true);
  SetInteraction(order > 1);
}

void LinearRegressionSettings::SetInteraction(bool flag) {
  interaction_selection_ = flag ? BuildInteractionSelection(ninputs_, true) : Selection();
}

void LinearRegressionSettings::SetVariableSelection(const Selection& variables) {
  for (std::uint64_t input = 0; input < ninputs_; ++input) {
    if (input < variables.size() && variables[input]) continue;
    DeselectInputMainTerms(input);
    DeselectInputInteractionTerms(input);
  }
}

void LinearRegressionSettings::DeselectInputMainTerms(std::uint64_t input) {
  RequireInput(input);
  if (input >= ninputs_) return;
  for (Selection::size_type bit = input; bit < main_term_selection_.size(); bit += ninputs_) {
    main_term_selection_.reset(bit);
  }
}

void LinearRegressionSettings::DeselectInputInteractionTerms(std::uint64_t input) {
  RequireInput(input);
  if (interaction_selection_.empty() || input >= ninputs_) return;
  for (std::uint64_t other = 0; other < ninputs_; ++other) {
    if (other == input) continue;
    interaction_selection_.reset(PairOf(ninputs_, std::min(input, other), std::max(input, other)));
  }
}

Selection LinearRegressionSettings::GetVariableMainTermSelection() const {
  Selection variables(ninputs_);
  for (auto bit = main_term_selection_.find_first(); bit != Selection::npos;
       bit = main_term_selection_.find_next(bit)) {
    variables.set(bit % ninputs_);
  }
  return variables;
}

Selection LinearRegressionSettings::GetVariableInteractionSelection() const {
  Selection variables(ninputs_);
  if (interaction_selection_.none()) return variables;
  ForEachPair(ninputs_, [&](auto pair, std::uint64_t i, std::uint64_t j) {
    if (!interaction_selection_[pair]) return;
    variables.set(i);
    variables.set(j);
  });
  return variables;
}

Selection LinearRegressionSettings::GetVariableSelection() const {
  return GetVariableMainTermSelection() | GetVariableInteractionSelection();
}

std::uint64_t LinearRegressionSettings::GetNumberCoefficients() const {
  return 1 + main_term_selection_.count() + interaction_selection_.count();
}

std::uint64_t LinearRegressionSettings::GetNumberParameter() const {
  return GetNumberCoefficients() + (HasBoxCoxExponent() ? 1 : 0);
}

std::uint64_t LinearRegressionSettings::GetComplexity() const {
  if (order_ != 1) return order_;
  return interaction_selection_.any() || HasBoxCoxExponent() ? 1 : 0;
}

void LinearRegressionSettings::CheckSettings(utils::log::LogBase& log) const {
  SurrogateSettingsBase::CheckSettings(log);
  if (main_term_selection_.size() != NumberMainTerms(ninputs_, order_)) {
    error::Report(L"size of main term selection vector is not consistent to regression order");
  }
  if (!interaction_selection_.empty() && interaction_selection_.size() != NumberInteractionTerms(ninputs_)) {
    error::Report(L"size of interaction selection vector is not consistent to regression dimension");
  }
}

bool LinearRegressionSettings::operator==(const SurrogateSettingsBase& other) const {
  const auto* same_kind = dynamic_cast<const LinearRegressionSettings*>(&other);
  return same_kind != nullptr && SurrogateSettingsBase::operator==(other) && SameTerms(*same_kind);
}

std::unique_ptr<SurrogateSettingsBase> LinearRegressionSettings::Clone() const {
  return std::make_unique<LinearRegressionSettings>(*this);
}

bool LinearRegressionSettings::SameTerms(const LinearRegressionSettings& other) const {
  return order_ == other.order_ && main_term_selection_ == other.main_term_selection_ &&
         interaction_selection_ == other.interaction_selection_;
}

void LinearRegressionSettings::RequireConsistent() const {
  // More inputs than any sample has; products of the counts below stay within 64 bits.
  constexpr std::uint64_t kMaxInputs = std::uint64_t{1} << 24U;
  const std::uint64_t bits = main_term_selection_.size();
  const bool main_terms_fit =
      ninputs_ == 0 ? bits == 0 : bits % ninputs_ == 0 && bits / ninputs_ == order_;  // the product could overflow
  const std::uint64_t pairs = interaction_selection_.size();
  persistence::RequireStored(
      ninputs_ <= kMaxInputs && main_terms_fit && (pairs == 0 || pairs == NumberInteractionTerms(ninputs_)),
      L"Stored settings: the selected terms do not match the number of inputs and the order.");
}

void LinearRegressionSettings::RequireInput(std::uint64_t input) const {
  if (input >= ninputs_) error::Report(L"deselection input number can only between 0 and num_inputs - 1");
}

template <class Archive>
void LinearRegressionSettings::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("SurrogateSettingsBase", boost::serialization::base_object<SurrogateSettingsBase>(*this));
  archive& make_nvp("order_", order_);
  archive& make_nvp("main_term_selection_", main_term_selection_);
  archive& make_nvp("interaction_selection_", interaction_selection_);
  if constexpr (Archive::is_loading::value) RequireConsistent();
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::LinearRegressionSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::LinearRegressionSettings)
