#pragma once

#include <memory>

#include "calculator/functions/function_table.h"

namespace kestrel::calculator {

/// All functions of the library, in one table for all calculators of the process.
const std::shared_ptr<const FunctionTable>& StandardFunctions();

}  // namespace kestrel::calculator
