#include "api/custom_interface.h"

#include "support/exceptions.h"

namespace kestrel::zor {

bool CustomInterfaceEnabled() { return false; }

std::vector<std::wstring> GetAvailableCustomSurrogates() { return {}; }

void InitCustom(const std::vector<std::wstring>& /*paths*/, const std::wstring& /*log_path*/) {
  throw utils::logic_error(L"Unable to initialize custom interface. - Custom interface was not enabled.");
}

}  // namespace kestrel::zor
