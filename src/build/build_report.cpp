#include "build/build_report.h"

#include <algorithm>
#include <boost/format.hpp>
#include <cmath>
#include <cstdio>
#include <limits>

#include "datatypes/parameter_bounds.h"
#include "datatypes/type_names.h"

namespace kestrel::zor {
namespace {

using algorithm::datatypes::Parameter;
using math::metamodel::Selection;
using math::metamodel::SubspaceResults;
using utils::log::LogBase;
using utils::log::LogLevel;

// Widths of the columns. A longer text shifts what follows it.
constexpr std::size_t kNameWidth = 20;
constexpr std::size_t kRangeWidth = 32;
constexpr std::size_t kModelWidth = 60;
constexpr std::size_t kCountWidth = 16;
constexpr std::size_t kNumberWidth = 12;

constexpr int kDigits = 6;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

std::wstring Padding(std::size_t used, std::size_t width) {
  return std::wstring(used < width ? width - used : 0, L' ');
}

std::wstring Padded(const std::wstring& text, std::size_t width) { return text + Padding(text.size(), width); }

std::wstring FormatNumber(double value) {
  if (std::isnan(value)) return L"nan";
  if (std::isinf(value)) return value > 0.0 ? L"infinity" : L"-infinity";
  char text[32];
  const int length = std::snprintf(text, sizeof text, "%.*g", kDigits, value);
  return std::wstring(text, text + length);
}

std::wstring FormatRange(const std::pair<double, double>& range) {
  return (boost::wformat(L"[%1% / %2%]") % FormatNumber(range.first) % FormatNumber(range.second)).str();
}

/// "a, b)": the end of a line that opened the bracket.
std::wstring JoinNumbers(const std::vector<double>& values) {
  std::wstring text;
  for (const double value : values) text += (text.empty() ? L"" : L", ") + FormatNumber(value);
  return text + L")";
}

std::wstring TableLine(const std::wstring& name, std::size_t width, const std::wstring& model,
                       const std::wstring& parameters, const std::wstring& coefficients, const std::wstring& cod,
                       const std::wstring& quality) {
  const std::size_t name_width = std::max(width, std::size_t{8});  // no narrower than its head
  return (boost::wformat(L"%1% %2% %3% %4% %5% %6% %7%") % name % Padding(name.size(), name_width) %
          Padded(model, kModelWidth) % Padded(parameters, kCountWidth) % Padded(coefficients, kCountWidth) %
          Padded(cod, kNumberWidth) % quality)
      .str();
}

std::wstring ModelLine(const ReportedModel& model, std::size_t width) {
  const SubspaceResults& result = model.result;
  const std::uint64_t coefficients = result.settings ? result.settings->GetNumberCoefficients() : 0;
  return TableLine(model.response, width, result.GetModelString(), std::to_wstring(result.GetNumberVariables()),
                   std::to_wstring(coefficients), FormatNumber(result.measures.CoDadj),
                   FormatNumber(result.measures.CoP));
}

/// The first input, or pair of inputs, comes first.
std::wstring SelectionText(const Selection& selection) {
  std::wstring text;
  for (Selection::size_type i = 0; i < selection.size(); ++i) text += selection[i] ? L'1' : L'0';
  return text;
}

std::wstring PolynomialLine(const ReportedModel& model) {
  const auto& settings = *model.result.settings;
  std::wstring line = Padded(model.response, 16) + L"| " + Padded(std::to_wstring(settings.GetOrder()), 6) + L"| ";
  line += std::to_wstring(settings.GetNumberCoefficients());
  const std::vector<double>& transformation = settings.GetValueTransformationParameter();
  if (!transformation.empty()) line += L" (" + JoinNumbers(transformation);
  line += L" | " + SelectionText(settings.GetMainTermSelection());
  line += L" | " + SelectionText(settings.GetInteractionSelection());
  line += L" | " + FormatNumber(model.result.measures.CoP);
  line += L" | " + FormatNumber(1.0 - model.result.measures.predError);
  return line;
}

void PrintDistributions(const algorithm::datatypes::ParameterManager& parameters,
                        const std::vector<std::pair<double, double>>& sampling_bounds, LogBase& log) {
  std::size_t position = 0;
  for (const Parameter& parameter : parameters.GetParameters()) {
    const std::pair<double, double>& bounds = sampling_bounds.at(position++);
    if (!parameter.IsStochastic()) continue;
    const auto& random = parameter.GetRandomProperties();
    log.Information() << L"Parameter distribution type";
    log.Information() << Padded(parameter.GetName(), kNameWidth) << L"sampling bounds: [" << FormatNumber(bounds.first)
                      << L" / " << FormatNumber(bounds.second) << L"]";
    log.Information() << Padding(0, kNameWidth) << L"distribution: "
                      << ERandomVariable::TypeMap().right.at(random.GetType());
    log.Information() << Padding(0, kNameWidth) << L"distribution parameter: (" << JoinNumbers(random.GetParams());
    log.Information() << Padding(0, kNameWidth) << L"statistical moments: (" << JoinNumbers(random.GetMoments());
  }
}

}  // namespace

void SaveSamplingInformation(const algorithm::datatypes::ParameterManager& parameters, std::size_t number_of_samples,
                             const std::vector<std::pair<double, double>>& sampling_bounds, LogBase& log) {
  if (!log.Accepts(LogLevel::kInformation)) return;
  log.Information() << L"Number of samples:   " << number_of_samples;
  log.Information() << L"Parameter name      Parameter range                 Sampling bounds";
  std::size_t position = 0;
  for (const Parameter& parameter : parameters.GetParameters()) {
    log.Information() << Padded(parameter.GetName(), kNameWidth)
                      << Padded(FormatRange(NumberBoundsOf(parameter).value_or(std::pair(kNan, kNan))), kRangeWidth)
                      << FormatRange(sampling_bounds.at(position++));
  }
  PrintDistributions(parameters, sampling_bounds, log);
}

void PrintHeadline(std::size_t width, LogBase& log, bool is_cv) {
  if (!log.Accepts(LogLevel::kInformation)) return;
  const std::wstring headline = TableLine(L"Response", width, L"Model", L"No. parameter", L"No. coefficients",
                                          L"CoD adjusted", is_cv ? L"CoP" : L"pred. CoD");
  log.add(LogLevel::kInformation, headline);
  log.add(LogLevel::kInformation, std::wstring(headline.size(), L'-'));
}

std::size_t LongestName(const std::vector<std::wstring>& names) {
  std::size_t longest = 0;
  for (const std::wstring& name : names) longest = std::max(longest, name.size());
  return longest;
}

void PrintModel(const ReportedModel& model, std::size_t width, LogBase& log) {
  if (log.Accepts(LogLevel::kInformation)) log.add(LogLevel::kInformation, ModelLine(model, width));
}

void PrintBestMetamodels(const ReportedModels& models, bool is_cv, LogBase& log) {
  if (!log.Accepts(LogLevel::kInformation)) return;
  log.add(LogLevel::kInformation,
          L"----------------------------------- Best Metamodels ----------------------------------- ");
  std::vector<std::wstring> names;
  for (const ReportedModel& model : models) names.push_back(model.response);
  const std::size_t width = LongestName(names);
  PrintHeadline(width, log, is_cv);
  for (const ReportedModel& model : models) PrintModel(model, width, log);
}

void PrintPolynomialInfo(const ReportedModels& models, LogBase& log) {
  if (!log.Accepts(LogLevel::kInformation)) return;
  log.add(LogLevel::kInformation,
          L"---------------------------- Info String for Polynomials ---------------------------------- ");
  log.Information() << L"Model           | Order | Coefficients and transformation parameter"
                    << L"| Mainterm selection " << L"| Interaction selection " << L"| CoP" << L"| pred. CoD";
  for (const ReportedModel& model : models) {
    if (model.result.model_type != math::metamodel::ModelType::kPolynomial || !model.result.settings) continue;
    log.add(LogLevel::kInformation, PolynomialLine(model));
  }
}

std::vector<std::pair<std::wstring, double>> RelativeFrequencyOfImportance(const ReportedModels& models,
                                                                           const std::vector<std::wstring>& names) {
  std::vector<std::pair<std::wstring, double>> frequencies;
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::size_t uses = 0;
    for (const ReportedModel& model : models) {
      if (!model.result.settings) continue;
      const Selection selection = model.result.settings->GetVariableSelection();
      if (i < selection.size() && selection[i]) ++uses;
    }
    const auto share = models.empty() ? 0.0 : static_cast<double>(uses) / static_cast<double>(models.size());
    frequencies.emplace_back(names[i], share);
  }
  return frequencies;
}

void PrintRelativeFrequencyOfImportance(const std::vector<std::pair<std::wstring, double>>& frequencies, LogBase& log) {
  if (!log.Accepts(LogLevel::kInformation)) return;
  log.add(LogLevel::kInformation,
          L"---------------------------- Relative frequency of importance ----------------------------- ");
  const auto is_used = [](const auto& entry) { return entry.second > 0.0; };
  if (std::none_of(frequencies.begin(), frequencies.end(), is_used)) {
    log.Information() << L"Every parameter is set as unimportant.";
    return;
  }
  std::size_t width = 0;
  for (const auto& [name, share] : frequencies) width = std::max(width, name.size());
  for (const auto& [name, share] : frequencies) {
    log.Information() << boost::wformat(L"%1$s: %2$s%3$.0f %%") % name % Padding(name.size(), width) % (100.0 * share);
  }
}

void PrintRegressionFunctions(const std::map<std::wstring, std::wstring>& functions, LogBase& log) {
  if (!log.Accepts(LogLevel::kInformation)) return;
  log.add(LogLevel::kInformation,
          L"------------------------- Polynomial regression functions ----------------------------- ");
  for (const auto& [response, function] : functions) log.Information() << response << L" = " << function;
}

}  // namespace kestrel::zor
