#include "datatypes/parse_bool.h"

#include <algorithm>
#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <locale>

namespace kestrel {
namespace {

std::wstring Lowered(std::wstring text) {
  const std::locale locale;
  std::use_facet<std::ctype<wchar_t>>(locale).tolower(text.data(), text.data() + text.size());
  return text;
}

bool SpellsZeroOrOne(const std::wstring& text) {
  if (text.empty()) return false;
  const wchar_t last = text.back();
  const bool has_sign = text.front() == L'+' || (text.front() == L'-' && last == L'0');
  const auto leading = text.begin() + (has_sign ? 1 : 0);
  if (leading == text.end() || (last != L'0' && last != L'1')) return false;
  return std::all_of(leading, text.end() - 1, [](wchar_t digit) { return digit == L'0'; });
}

}  // namespace

bool ParseBool(const std::wstring& text) {
  const std::wstring word = Lowered(text);
  if (word == L"false") return false;
  if (word == L"true") return true;
  if (!SpellsZeroOrOne(text)) throw boost::bad_lexical_cast(typeid(std::wstring), typeid(bool));
  return text.back() == L'1';
}

}  // namespace kestrel
