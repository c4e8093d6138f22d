#pragma once

#include <string>

namespace kestrel {

/// The bool that a text spells: "false" or "true" in any case, or digits that are all 0 but the last, which is 0 or 1,
/// with an optional "+", or a "-" ahead of a zero. Raises boost::bad_lexical_cast for everything else.
bool ParseBool(const std::wstring& text);

}  // namespace kestrel
