#include "calculator/functions/functions.h"

#include "calculator/functions/function_groups.h"

namespace kestrel::calculator {

void AppendFunctions(FunctionTable& table) {
  AppendTrigonometricFunctions(table);
  AppendElementaryFunctions(table);
  AppendComplexFunctions(table);
  AppendStatisticalFunctions(table);
  AppendExtremaFunctions(table);
  AppendSequenceFunctions(table);
  AppendMatrixFunctions(table);
  AppendModalFunctions(table);
  AppendQueryFunctions(table);
  AppendRandomFunctions(table);
  AppendInputFunctions(table);
}

}  // namespace kestrel::calculator
