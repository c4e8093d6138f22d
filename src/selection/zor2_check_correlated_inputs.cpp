#include "selection/zor2_check_correlated_inputs.h"

#include "selection/input_dependence.h"
#include "selection/log_text.h"
#include "selection/zor2_stepwise_polynomial.h"

namespace kestrel::math::metamodel {
namespace {

struct LeastDependentInput {
  Selection::size_type index = Selection::npos;
  double dependence = 2.0;  // above every dependence
};

// The first selectable input outside the selection that the selection explains least.
LeastDependentInput FindLeastDependentInput(const SearchContext& context, const Selection& selected,
                                            InputDependence& dependence) {
  LeastDependentInput least;
  for (Selection::size_type j = 0; j < selected.size(); ++j) {
    context.CheckInterrupted();
    const auto input = static_cast<Index>(j);
    if (context.importance(input) != 1 || selected[j]) continue;
    const double explained = dependence.ExplainedBy(selected, input);
    if (explained < least.dependence) least = {j, explained};
  }
  return least;
}

}  // namespace

IndexVector CheckCorrelatedInputs(const SearchContext& context) {
  context.log->Debug() << L" ********** CheckCorrelatedInputs *************** ";
  Selection selected = StepwisePolynomialBottomUp(context).GetVariableSelection();
  context.log->Debug() << L"Best stepwise selection " << AsText(selected);

  const double high_limit = context.settings.max_input_corr_ * context.settings.max_input_corr_;
  InputDependence dependence(context.inputs, high_limit);
  for (;;) {
    const LeastDependentInput least = FindLeastDependentInput(context, selected, dependence);
    if (least.index == Selection::npos || least.dependence > high_limit) break;
    context.log->Debug() << L"numCoeff " << selected.count() + 1 << L" min_dependence " << least.dependence
                         << L" variable " << least.index;
    selected.set(least.index);
  }

  IndexVector importance = context.importance;
  for (Selection::size_type j = 0; j < selected.size(); ++j) {
    if (!selected[j]) importance(static_cast<Index>(j)) = 0;
  }
  context.log->Debug() << L"uncorrelated selection " << AsText(importance);
  return importance;
}

}  // namespace kestrel::math::metamodel
