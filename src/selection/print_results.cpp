#include "selection/print_results.h"

#include <boost/format.hpp>
#include <iomanip>

namespace kestrel::math::metamodel {
namespace {

using utils::log::LogLevel;

constexpr std::size_t kNameWidth = 20;
constexpr std::size_t kModelWidth = 61;
constexpr int kCoPDigits = 13;

// The blanks that fill a text up to a width.
std::wstring Padding(const std::wstring& text, std::size_t width) {
  return std::wstring(text.size() < width ? width - text.size() : 0, L' ');
}

std::wstring ResultLine(const SubspaceResults& result, const std::wstring& name) {
  const std::wstring model = result.GetModelString();
  return (boost::wformat(L"%1%%2%%3% %4% %5% %6% %7%") % name % Padding(name, kNameWidth) %
          (model + Padding(model, kModelWidth)) % result.GetNumberVariables() %
          result.settings->GetNumberCoefficients() % result.measures.CoDadj %
          boost::io::group(std::setprecision(kCoPDigits), result.measures.CoP))
      .str();
}

std::wstring UnknownLine(const std::wstring& name) {
  return (boost::wformat(L"%1%%2%Unknown metamodel type.") % name % Padding(name, kNameWidth)).str();
}

}  // namespace

void PrintResults(const SubspaceResults& result, const std::wstring& name, utils::log::LogBase& log, LogLevel level) {
  if (!log.Accepts(level)) return;
  const bool has_model = result.model_type != ModelType::kNone && result.settings;
  log.add(level, has_model ? ResultLine(result, name) : UnknownLine(name));
}

void PrintNoModelFound(const std::wstring& name, utils::log::LogBase& log) {
  if (!log.Accepts(LogLevel::kInformation)) return;
  log.add(LogLevel::kInformation, (boost::wformat(L"%1%%2%no model found") % name % Padding(name, kNameWidth)).str());
}

}  // namespace kestrel::math::metamodel
