#include <boost/format.hpp>
#include <sstream>

#include "surrogates/linear_regression.h"

// The textual model function of a polynomial regression.

namespace kestrel::math::metamodel {
namespace {

using Names = std::vector<std::wstring>;

/// Given names if there is one for each input, else those of the settings, else X1, X2, ...
Names VariableNames(const Names& given, const Names& stored, std::uint64_t count) {
  if (given.size() == count) return given;
  if (stored.size() == count) return stored;
  Names names;
  for (std::uint64_t j = 1; j <= count; ++j) names.push_back((boost::wformat(L"X%1%") % j).str());
  return names;
}

/// Writes coefficients with the sign between them: " + c" or " -c".
class FunctionWriter {
 public:
  explicit FunctionWriter(const Vector& coefficients) : coefficients_(coefficients) { text_ << coefficients_[0]; }

  std::wostringstream& NextTerm() {
    const double coefficient = coefficients_[++position_];
    text_ << (coefficient >= 0.0 ? L" + " : L" ") << coefficient << L"*";
    return text_;
  }
  std::wstring Str() const { return text_.str(); }

 private:
  const Vector& coefficients_;
  Index position_ = 0;
  std::wostringstream text_;
};

}  // namespace

std::wstring LinearRegression::GetFunctionStr(const Names& input_names) const {
  if (settings_.HasBoxCoxExponent()) return L"No model function for Box-Cox transformation available";
  RequireSample();
  LinearRegressionSettings plain = settings_;
  plain.SetCoordTransformation(eTransformation::kNone);
  plain.SetValueTransformation(eTransformation::kNone);
  plain.SetLimitTransformation(eTransformation::kNone);
  LinearRegression regression(points_, values_, weights_);  // in the inputs' original units
  regression.Initialize(plain);
  if (!regression.Build()) return SurrogateBase::GetFunctionStr(input_names);

  const std::uint64_t n = settings_.GetNumInputs();
  const Names names = VariableNames(input_names, settings_.GetInputNames(), n);
  FunctionWriter writer(regression.coefficients_);
  const Selection& main_terms = plain.GetMainTermSelection();
  for (auto term = main_terms.find_first(); term != Selection::npos; term = main_terms.find_next(term)) {
    auto& text = writer.NextTerm();
    text << names[term % n];
    if (term >= n) text << L"^" << term / n + 1;
  }
  const Selection& interactions = plain.GetInteractionSelection();
  Selection::size_type pair = 0;
  for (std::uint64_t i = 0; i < n && !interactions.empty(); ++i) {
    for (std::uint64_t j = i + 1; j < n; ++j, ++pair) {
      if (interactions[pair]) writer.NextTerm() << names[i] << L"*" << names[j];
    }
  }
  return writer.Str();
}

}  // namespace kestrel::math::metamodel
