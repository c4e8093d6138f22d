#include "calculator/constants.h"

#include <boost/math/constants/constants.hpp>

#include "calculator/functions/option_words.h"

namespace kestrel::calculator {
namespace {

using ConstantTable = std::map<std::wstring, Constant, std::less<>>;

Constant OptionWord(EOption option) { return {Value(static_cast<double>(option), 0.0)}; }

ConstantTable MakeConstants() {
  using boost::math::double_constants::e;
  using boost::math::double_constants::pi;
  return {
      {L"@PI", {Value(pi, 0.0)}},
      {L"@E", {Value(e, 0.0), false}},
      {L"@TRUE", {Value(true)}},
      {L"@FALSE", {Value(false)}},
      {L"@I", {Value(0.0, 1.0), false}},
      {L"@SPLINE", OptionWord(EOption::SPLINE)},
      {L"@LINEAR", OptionWord(EOption::LINEAR)},
      {L"@QUAD", OptionWord(EOption::QUAD)},
      {L"@ZERO", OptionWord(EOption::ZERO)},
      {L"@CONSTANT", OptionWord(EOption::CONSTANT)},
      {L"@MIRROR", OptionWord(EOption::MIRROR)},
      {L"@REVERSE_MIRROR", OptionWord(EOption::REVERSE_MIRROR)},
      {L"@TANGENTIAL", OptionWord(EOption::TANGENTIAL)},
      {L"@FORWARD", OptionWord(EOption::FORWARD)},
      {L"@BACKWARD", OptionWord(EOption::BACKWARD)},
      {L"@UNIFORM", OptionWord(EOption::UNIFORM)},
      {L"@NORMAL", OptionWord(EOption::NORMAL)},
      {L"@LOGNORMAL", OptionWord(EOption::LOGNORMAL)},
      {L"@TRIANGLE", OptionWord(EOption::TRIANGLE)},
      {L"@CAUCHY", OptionWord(EOption::CAUCHY)},
      {L"@EXPONENTIAL", OptionWord(EOption::EXPONENTIAL)},
      {L"@LOWPASS", OptionWord(EOption::LOWPASS)},
      {L"@HIGHPASS", OptionWord(EOption::HIGHPASS)},
      {L"@BANDPASS", OptionWord(EOption::BANDPASS)},
      {L"@BANDSTOP", OptionWord(EOption::BANDSTOP)},
  };
}

}  // namespace

const ConstantTable& Constants() {
  static const ConstantTable constants = MakeConstants();
  return constants;
}

const Constant* FindConstant(std::wstring_view bare_word) {
  const auto found = Constants().find(L"@" + std::wstring(bare_word));
  return found == Constants().end() ? nullptr : &found->second;
}

}  // namespace kestrel::calculator
