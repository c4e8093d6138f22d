#include "calculator/signals/option_arguments.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "calculator/functions/arguments.h"

namespace kestrel::calculator {
namespace {

struct Word {
  EOption option;
  const wchar_t* text;
};

/// Those that functions of signals take.
constexpr Word kWords[] = {
    {kNoOption, L"0"},
    {EOption::SPLINE, L"SPLINE"},
    {EOption::LINEAR, L"LINEAR"},
    {EOption::QUAD, L"QUAD"},
    {EOption::ZERO, L"ZERO"},
    {EOption::CONSTANT, L"CONSTANT"},
    {EOption::MIRROR, L"MIRROR"},
    {EOption::REVERSE_MIRROR, L"REVERSE_MIRROR"},
    {EOption::TANGENTIAL, L"TANGENTIAL"},
    {EOption::FORWARD, L"FORWARD"},
    {EOption::BACKWARD, L"BACKWARD"},
    {EOption::LOWPASS, L"LOWPASS"},
    {EOption::HIGHPASS, L"HIGHPASS"},
    {EOption::BANDPASS, L"BANDPASS"},
    {EOption::BANDSTOP, L"BANDSTOP"},
};

std::wstring TextOf(EOption option) {
  const auto* word =
      std::find_if(std::begin(kWords), std::end(kWords), [&](const Word& w) { return w.option == option; });
  return word->text;
}

}  // namespace

EOption GetOption(const Arguments& arguments, std::size_t index, const std::vector<EOption>& allowed) {
  const double number = GetReal(arguments, index);
  const auto found = std::find_if(allowed.begin(), allowed.end(),
                                  [&](EOption option) { return static_cast<double>(option) == number; });
  if (found != allowed.end()) return *found;
  std::wstring words;
  for (const EOption option : allowed) words += (words.empty() ? L"" : L", ") + TextOf(option);
  RefuseArgument(index, L"One of " + words + L" is expected.");
}

EOption GetOptionOr(const Arguments& arguments, std::size_t index, const std::vector<EOption>& allowed,
                    EOption absent) {
  return index < arguments.size() ? GetOption(arguments, index, allowed) : absent;
}

}  // namespace kestrel::calculator
