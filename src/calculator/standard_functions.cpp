#include "calculator/standard_functions.h"

#include "calculator/functions/functions.h"
#include "calculator/signals/signal_functions.h"

namespace kestrel::calculator {

const std::shared_ptr<const FunctionTable>& StandardFunctions() {
  static const std::shared_ptr<const FunctionTable> functions = [] {
    FunctionTable table;
    AppendFunctions(table);
    AppendSignalFunctions(table);
    return std::make_shared<const FunctionTable>(std::move(table));
  }();
  return functions;
}

}  // namespace kestrel::calculator
