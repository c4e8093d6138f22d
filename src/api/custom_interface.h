#pragma once

#include <string>
#include <vector>

/// Surrogates from outside the library. The interface has room for them; this build does not load any.
namespace kestrel::zor {

bool CustomInterfaceEnabled();

/// The names of the surrogates found.
std::vector<std::wstring> GetAvailableCustomSurrogates();

/// Raises utils::logic_error "Unable to initialize custom interface. - Custom interface was not enabled.".
/// @param paths  where to look.  @param log_path  file for messages.
void InitCustom(const std::vector<std::wstring>& paths, const std::wstring& log_path);

}  // namespace kestrel::zor
