#include "random_variables/parameter_checks.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "support/exceptions.h"

namespace kestrel::algorithm {
namespace {

[[noreturn]] void Refuse(const wchar_t* distribution, const std::wstring& text) {
  throw utils::runtime_error(std::wstring(distribution) + L" distribution: " + text);
}

}  // namespace

void RequireCount(const wchar_t* distribution, const std::vector<double>& params, std::size_t count) {
  if (params.size() != count) {
    Refuse(distribution,
           std::to_wstring(count) + L" parameter(s) expected, got " + std::to_wstring(params.size()) + L".");
  }
  RequireFinite(distribution, params);
}

void RequireGroups(const wchar_t* distribution, const std::vector<double>& params, std::size_t first,
                   std::size_t group) {
  if (params.size() < first + group || (params.size() - first) % group != 0) {
    Refuse(distribution, std::to_wstring(params.size()) + L" is not a possible number of parameters.");
  }
  RequireFinite(distribution, params);
}

void RequireFinite(const wchar_t* distribution, const std::vector<double>& params) {
  const bool finite = std::all_of(params.begin(), params.end(), [](double value) { return std::isfinite(value); });
  Require(finite, distribution, L"The parameters must be finite numbers.");
}

void RequirePositive(const wchar_t* distribution, const wchar_t* what, double value) {
  if (!(value > 0.0)) Refuse(distribution, std::wstring(L"The ") + what + L" must be positive.");
}

void RequireAscending(const wchar_t* distribution, const wchar_t* what, double low, double high) {
  if (!(low < high)) Refuse(distribution, std::wstring(L"The ") + what + L" must be in ascending order.");
}

void Require(bool condition, const wchar_t* distribution, const wchar_t* text) {
  if (!condition) Refuse(distribution, text);
}

}  // namespace kestrel::algorithm
