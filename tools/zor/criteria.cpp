#include "criteria.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "errors.h"
#include "numbers.h"
#include "text.h"

namespace kestrel::cli {

namespace {

struct Comparison {
  std::string_view sign;
  zor_criterion_type type;
};

constexpr std::array<Comparison, 3> kComparisons = {
    {{"<=", zor_limit_state_less}, {">=", zor_limit_state_greater}, {"==", zor_constraint_equal}}};

bool StartsAt(std::string_view text, std::size_t position, std::string_view sign) {
  return text.substr(position, sign.size()) == sign;
}

/// Where the only comparison outside of brackets and quotes stands; null if there is none, or several, or one of them
/// in an "and" or an "or": the text is an expression then that is true or false.
std::pair<std::size_t, const Comparison*> FindComparison(std::string_view text) {
  std::pair<std::size_t, const Comparison*> found = {text.size(), nullptr};
  int depth = 0;
  bool is_quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') is_quoted = !is_quoted;
    if (is_quoted) continue;
    if (c == '(' || c == '[') ++depth;
    if (c == ')' || c == ']') --depth;
    if (depth != 0) continue;
    if (StartsAt(text, i, "&&") || StartsAt(text, i, "||")) return {text.size(), nullptr};
    for (const Comparison& comparison : kComparisons) {
      if (!StartsAt(text, i, comparison.sign)) continue;
      if (found.second != nullptr) return {text.size(), nullptr};
      found = {i, &comparison};
    }
  }
  return found;
}

}  // namespace

std::pair<std::string, std::string> SplitAtEquals(const std::string& option, const std::string& text) {
  const std::size_t equals = text.find('=');
  const std::string name(Trimmed(text.substr(0, equals)));
  const std::string rest(equals == std::string::npos ? "" : Trimmed(text.substr(equals + 1)));
  if (name.empty() || rest.empty()) throw InputError(option + ": " + Quoted(text) + " is not NAME=EXPRESSION.");
  return {name, rest};
}

CriterionText ReadCriterion(const std::string& text) {
  const auto [name, expression] = SplitAtEquals("--criterion", text);
  const auto [position, comparison] = FindComparison(expression);
  if (comparison == nullptr) return {name, zor_objective_min, expression, ""};
  return {name, comparison->type, expression.substr(0, position),
          expression.substr(position + comparison->sign.size())};
}

void AddCriteria(const Handle& handle, const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    const CriterionText criterion = ReadCriterion(text);
    const std::uint32_t code = zor_add_criterion(handle.get(), criterion.name.c_str(), criterion.type,
                                                 criterion.left.c_str(), criterion.right.c_str());
    if (code != zor_success) throw InputError("--criterion " + Quoted(text) + ": " + handle.ErrorText(code));
  }
}

std::vector<std::string> CriterionNames(const Handle& handle) {
  std::uint32_t count = 0;
  handle.Check(zor_get_criterion_count(handle.get(), &count));
  std::vector<std::string> names;
  for (std::uint32_t i = 0; i < count; ++i) {
    char* name = nullptr;
    std::size_t length = 0;
    handle.Check(zor_get_criterion_name(handle.get(), i, &name, &length));
    names.push_back(TakeText(name, length));
  }
  return names;
}

}  // namespace kestrel::cli
