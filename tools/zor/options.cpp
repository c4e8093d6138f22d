#include "options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "errors.h"
#include "numbers.h"
#include "text.h"

namespace kestrel::cli {

namespace {

/// The four kinds of values: what they are called in the help, how they are read and written.
struct Flag {
  using Wire = std::uint32_t;
  static constexpr const char* kValues = "true or false";

  static std::optional<Wire> Read(const std::string& text) {
    if (text == "true" || text == "on" || text == "yes" || text == "1") return zor_true;
    if (text == "false" || text == "off" || text == "no" || text == "0") return zor_false;
    return std::nullopt;
  }
  static std::string Write(Wire value) { return value == zor_true ? "true" : "false"; }
};

struct Testing {
  using Wire = std::uint32_t;
  static constexpr const char* kValues = "cross_validation or leave_one_out";

  static std::optional<Wire> Read(const std::string& text) {
    if (text == "cross_validation") return zor_cross_validation;
    if (text == "leave_one_out") return zor_leave_one_out;
    return std::nullopt;
  }
  static std::string Write(Wire value) { return value == zor_leave_one_out ? "leave_one_out" : "cross_validation"; }
};

struct Count {
  using Wire = std::uint32_t;
  static constexpr const char* kValues = "a whole number from 0";

  static std::optional<Wire> Read(const std::string& text) {
    Wire value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
  }
  static std::string Write(Wire value) { return std::to_string(value); }
};

struct Real {
  using Wire = double;
  static constexpr const char* kValues = "a number";

  static std::optional<Wire> Read(const std::string& text) {
    const Number number = ReadNumber(text);
    if (number.kind != NumberKind::kFinite) return std::nullopt;
    return number.value;
  }
  static std::string Write(Wire value) { return ExactText(value); }
};

template <class Kind>
using Setter = std::uint32_t (*)(zor_handle_t, typename Kind::Wire);
template <class Kind>
using Getter = std::uint32_t (*)(zor_handle_t, typename Kind::Wire*);

/// One option: `set` answers false if the text is no value of its kind.
struct Option {
  const char* name;
  const char* values;
  bool (*set)(const Handle& handle, const std::string& text);
  std::string (*get)(const Handle& handle);
};

template <class Kind, Setter<Kind> kSet>
bool SetValue(const Handle& handle, const std::string& text) {
  const auto value = Kind::Read(text);
  if (value) handle.Check(kSet(handle.get(), *value));
  return value.has_value();
}

template <class Kind, Getter<Kind> kGet>
std::string GetValue(const Handle& handle) {
  typename Kind::Wire value{};
  handle.Check(kGet(handle.get(), &value));
  return Kind::Write(value);
}

#define ZOR_OPTION(name, Kind, SetterOfLibrary, member) \
  Option{#name, Kind::kValues, &SetValue<Kind, &zor_set_##name>, &GetValue<Kind, &zor_get_##name>},
constexpr std::array kOptions = {
#include "api/option_list.inc"
};
#undef ZOR_OPTION

}  // namespace

void SetOption(const Handle& handle, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string::npos) throw InputError("--set " + Quoted(assignment) + ": expected option=value.");
  const std::string name(Trimmed(std::string_view(assignment).substr(0, equals)));
  const std::string value(Trimmed(std::string_view(assignment).substr(equals + 1)));
  const auto* const option =
      std::find_if(kOptions.begin(), kOptions.end(), [&](const Option& candidate) { return candidate.name == name; });
  if (option == kOptions.end()) {
    throw InputError("--set: there is no option " + Quoted(name) + "; 'zor fit --help' lists the options.");
  }
  if (!option->set(handle, value)) {
    throw InputError("--set " + name + ": " + Quoted(value) + " is not accepted, expected is " + option->values + ".");
  }
}

std::string OptionList() {
  constexpr std::size_t kNameWidth = 25;
  constexpr std::size_t kValuesWidth = 34;
  const Handle fresh;
  std::ostringstream out;
  for (const Option& option : kOptions) {
    out << "  " << PadRight(option.name, kNameWidth) << PadRight(option.values, kValuesWidth) << " ["
        << option.get(fresh) << "]\n";
  }
  return out.str();
}

}  // namespace kestrel::cli
