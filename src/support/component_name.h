#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrel::string {

/// One entry of a vector response: the name of the response and the position, from 0.
struct ComponentName {
  std::wstring name;
  std::uint64_t index;
};

/// Takes "name[index]" apart at its last bracket, so that entries of "v[1]" are "v[1][0]", "v[1][1]". Nothing for a
/// text without an index, without a name before it, or with an index beyond 64 bits.
std::optional<ComponentName> splitComponentName(const std::wstring& text);

}  // namespace kestrel::string
