#include "selection/zor2_stepwise_polynomial.h"

#include <algorithm>

#include "selection/coi_uncorrelated.h"
#include "selection/input_dependence.h"
#include "selection/polynomial_importance.h"
#include "statistics/basic_statistics.h"
#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {
namespace {

constexpr double kLeastGain = 0.01;
constexpr double kNoGain = -1.0;
constexpr double kTooDependent = 2.0;

// A term that may enter: what it adds to the adjusted R2, and how far its input depends on those already selected.
struct CandidateTerm {
  double Score() const { return gain - dependence; }

  Selection::size_type index = 0;  // input of a main term, bit of an interaction
  double gain = kNoGain;
  double dependence = 0.0;
};

class GrowingPolynomial {
 public:
  explicit GrowingPolynomial(const SearchContext& context);

  const LinearRegressionSettings& Settings() const { return settings_; }
  void GrowMainTerms(Selection::size_type power);
  void GrowInteractions();
  void Reduce();
  void LogState(const wchar_t* stage, const wchar_t* quality);

 private:
  bool AllowsFurtherTerm() const;
  CandidateTerm BestMainTerm(Selection::size_type power);
  CandidateTerm BestInteraction();
  double GainOf(const LinearRegressionSettings& candidate);
  double DependenceOf(Index input);
  double AdjustedR2(const LinearRegressionSettings& settings);

  const SearchContext& context_;
  Selection::size_type num_inputs_;
  LinearRegression regression_;  // serves all candidates
  LinearRegressionSettings settings_;
  InputDependence dependence_;
  double r2_adjusted_ = 0.0;  // adjusted R2 of the last reduction plus the gains since; the mandatory inputs start at 0
};

GrowingPolynomial::GrowingPolynomial(const SearchContext& context)
    : context_(context),
      num_inputs_(static_cast<Selection::size_type>(context.inputs.cols())),
      regression_(context.inputs, context.response),
      settings_(num_inputs_),
      dependence_(context.inputs, context.settings.max_input_corr_ * context.settings.max_input_corr_) {
  Selection terms = BuildMainTermSelection(num_inputs_, 2, false);
  for (Selection::size_type j = 0; j < num_inputs_; ++j) terms[j] = context.importance(static_cast<Index>(j)) == 2;
  settings_.SetOrder(2);
  settings_.SetInteraction(false);
  settings_.SetMainTermSelection(terms);
}

// power 0: linear terms, power 1: quadratic terms.
void GrowingPolynomial::GrowMainTerms(Selection::size_type power) {
  while (AllowsFurtherTerm()) {
    const CandidateTerm best = BestMainTerm(power);
    if (best.gain <= kNoGain) break;
    Selection terms = settings_.GetMainTermSelection();
    terms.set(power * num_inputs_ + best.index);
    settings_.SetMainTermSelection(std::move(terms));
    r2_adjusted_ += best.gain;
    context_.log->Debug() << L"R2adj " << r2_adjusted_ << L" improvement " << best.gain << L" main_term " << best.index
                          << L" dependence " << best.dependence;
  }
}

// The first input with the highest score. An input that has the term already, or may not have it, scores like one
// that gains nothing.
CandidateTerm GrowingPolynomial::BestMainTerm(Selection::size_type power) {
  CandidateTerm best;
  LinearRegressionSettings with_term = settings_;
  Selection terms = settings_.GetMainTermSelection();
  for (Selection::size_type j = 0; j < num_inputs_; ++j) {
    context_.CheckInterrupted();
    const auto input = static_cast<Index>(j);
    const Selection::size_type bit = power * num_inputs_ + j;
    CandidateTerm candidate;
    candidate.index = j;
    if (context_.importance(input) != 0 && !terms[bit]) {
      terms.set(bit);
      with_term.SetMainTermSelection(terms);
      terms.reset(bit);
      candidate.gain = GainOf(with_term);
      candidate.dependence = DependenceOf(input);
    }
    if (j == 0 || candidate.Score() > best.Score()) best = candidate;
  }
  return best;
}

void GrowingPolynomial::GrowInteractions() {
  settings_.SetInteractionSelection(BuildInteractionSelection(num_inputs_, false));
  while (AllowsFurtherTerm()) {
    const CandidateTerm best = BestInteraction();
    if (best.gain <= kNoGain) break;
    Selection terms = settings_.GetInteractionSelection();
    terms.set(best.index);
    settings_.SetInteractionSelection(std::move(terms));
    r2_adjusted_ += best.gain;
    context_.log->Debug() << L"R2adj " << r2_adjusted_ << L" improvement " << best.gain << L" interaction "
                          << best.index;
  }
}

// The first pair of selected inputs with the highest gain.
CandidateTerm GrowingPolynomial::BestInteraction() {
  CandidateTerm best;
  LinearRegressionSettings with_term = settings_;
  const Selection selected = settings_.GetVariableSelection();
  Selection terms = settings_.GetInteractionSelection();
  for (auto i = selected.find_first(); i != Selection::npos; i = selected.find_next(i)) {
    for (auto j = selected.find_next(i); j != Selection::npos; j = selected.find_next(j)) {
      context_.CheckInterrupted();
      CandidateTerm candidate;
      candidate.index = InteractionBit(i, j, num_inputs_);
      if (terms[candidate.index]) continue;
      terms.set(candidate.index);
      with_term.SetInteractionSelection(terms);
      terms.reset(candidate.index);
      candidate.gain = GainOf(with_term);
      if (candidate.gain > best.gain) best = candidate;
    }
  }
  return best;
}

void GrowingPolynomial::Reduce() {
  const double tolerance = std::max(kLeastGain, context_.settings.toleranceCoP_variables_);
  settings_ = StepwisePolynomialRemove(context_, settings_, false, tolerance);
  r2_adjusted_ = AdjustedR2(settings_);
}

void GrowingPolynomial::LogState(const wchar_t* stage, const wchar_t* quality) {
  if (!context_.log->Accepts(utils::log::LogLevel::kDebug)) return;
  context_.log->Debug() << stage << L"NumCoeffs " << settings_.GetNumberCoefficients() << L" NumVar "
                        << settings_.GetVariableSelection().count() << quality << AdjustedR2(settings_);
}

bool GrowingPolynomial::AllowsFurtherTerm() const {
  const auto terms = settings_.GetMainTermSelection().count() + settings_.GetInteractionSelection().count();
  const double demanded = static_cast<double>(terms + 1) * context_.settings.coeff_factor_poly_;
  return !(demanded > static_cast<double>(context_.inputs.rows()));
}

double GrowingPolynomial::GainOf(const LinearRegressionSettings& candidate) {
  const double gain = AdjustedR2(candidate) - r2_adjusted_;
  return gain >= kLeastGain ? gain : kNoGain;
}

double GrowingPolynomial::DependenceOf(Index input) {
  const Selection selected = settings_.GetVariableSelection();
  if (selected.none() || selected[static_cast<Selection::size_type>(input)]) return 0.0;
  const double low_limit = context_.settings.min_input_corr_ * context_.settings.min_input_corr_;
  const double high_limit = context_.settings.max_input_corr_ * context_.settings.max_input_corr_;
  const double explained = dependence_.ExplainedBy(selected, input);
  if (explained > high_limit) return kTooDependent;
  return explained >= low_limit ? explained : 0.0;
}

// 0.0 where there are more coefficients than samples.
double GrowingPolynomial::AdjustedR2(const LinearRegressionSettings& settings) {
  regression_.Initialize(settings);
  if (!regression_.Build()) return 0.0;
  return statistics::R2adj(context_.response, regression_.Approximate(), regression_.GetNumberCoefficients());
}

// A regression that cannot be built is refused by `CoiUncorrelated`.
Vector Importance(LinearRegression& regression, bool use_loo) {
  if (regression.Build() && !use_loo) return ImportanceByR2adj(regression);
  return statistics::CoiUncorrelated(regression,
                                     use_loo ? statistics::RSquared::kR2LeaveOneOut : statistics::RSquared::kR2adj);
}

// The selectable input of the regression with the lowest importance below 100, the first of equal ones; npos if there
// is none.
Selection::size_type LeastImportantInput(const SearchContext& context, const Selection& selected,
                                         const Vector& importance) {
  Selection::size_type least = Selection::npos;
  double lowest = 100.0;
  for (auto j = selected.find_first(); j != Selection::npos; j = selected.find_next(j)) {
    const auto input = static_cast<Index>(j);
    if (context.importance(input) != 1 || !(importance(input) < lowest)) continue;
    lowest = importance(input);
    least = j;
  }
  return least;
}

}  // namespace

LinearRegressionSettings StepwisePolynomialBottomUp(const SearchContext& context) {
  GrowingPolynomial polynomial(context);
  polynomial.GrowMainTerms(0);
  polynomial.GrowMainTerms(1);
  polynomial.LogState(L"MainTerms:   ", L" R2adj ");
  polynomial.Reduce();
  polynomial.LogState(L"Reduction:   ", L" Radj ");
  polynomial.GrowInteractions();
  polynomial.LogState(L"Interaction: ", L" R2adj ");
  polynomial.Reduce();
  return polynomial.Settings();
}

LinearRegressionSettings StepwisePolynomialRemove(const SearchContext& context, LinearRegressionSettings settings,
                                                  bool use_loo, double tolerance) {
  Selection selected = settings.GetVariableSelection();
  LinearRegression regression(context.inputs, context.response);
  for (auto rounds = selected.count(); rounds > 0; --rounds) {
    context.CheckInterrupted();
    settings.SetVariableSelection(selected);
    regression.Initialize(settings);
    const Vector importance = Importance(regression, use_loo);
    const Selection::size_type least = LeastImportantInput(context, selected, importance);
    if (least == Selection::npos || importance(static_cast<Index>(least)) > tolerance) break;
    selected.reset(least);
  }
  return settings;
}

}  // namespace kestrel::math::metamodel
