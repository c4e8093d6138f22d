#include "calculator/signals/signal_functions.h"

#include "calculator/signals/function_groups.h"

namespace kestrel::calculator {

void AppendSignalFunctions(FunctionTable& table) {
  AppendConstruction(table);
  AppendExtraction(table);
  AppendPeaks(table);
  AppendCalculus(table);
  AppendInterpolation(table);
  AppendFourier(table);
  AppendFilters(table);
  AppendSmoothing(table);
}

}  // namespace kestrel::calculator
