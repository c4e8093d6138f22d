#include "support/component_name.h"

#include <limits>

namespace kestrel::string {

std::optional<ComponentName> splitComponentName(const std::wstring& text) {
  const std::size_t open = text.rfind(L'[');
  if (open == std::wstring::npos || open == 0 || text.back() != L']') return std::nullopt;
  const std::wstring digits = text.substr(open + 1, text.size() - open - 2);
  const bool is_number = !digits.empty() && digits.find_first_not_of(L"0123456789") == std::wstring::npos;
  constexpr std::size_t kMaxDigits = std::numeric_limits<std::uint64_t>::digits10;
  if (!is_number || digits.size() > kMaxDigits) return std::nullopt;
  return ComponentName{text.substr(0, open), std::stoull(digits)};
}

}  // namespace kestrel::string
