#pragma once

#include <string>

#include "handle.h"

namespace kestrel::cli {

/// Sets one option of the handle from "name=value". Throws InputError if there is no such option or no such value;
/// whether a number lies in its range is seen at the build.
void SetOption(const Handle& handle, const std::string& assignment);

/// One line per option with its name, the values it takes and its default, which is that of a new handle.
std::string OptionList();

}  // namespace kestrel::cli
