#pragma once

#include "support/exceptions.h"

namespace kestrel::persistence {

/// Refuses a record that was read and whose parts contradict each other. It raises whatever the report mechanism is set
/// to, because nothing of such a record may be evaluated.
inline void RequireStored(bool holds, const wchar_t* fault) {
  if (!holds) throw utils::runtime_error(fault);
}

/// The same for a number that stands for an enumerator, from 0 to `last`.
template <class Enumeration>
void RequireEnumerator(Enumeration value, Enumeration last, const wchar_t* fault) {
  RequireStored(static_cast<long>(value) >= 0 && static_cast<long>(value) <= static_cast<long>(last), fault);
}

}  // namespace kestrel::persistence
