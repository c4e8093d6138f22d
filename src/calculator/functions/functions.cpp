#include "calculator/functions/functions.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "calculator/functions/function_groups.h"

namespace kestrel::calculator {

void Append(FunctionTable& table, std::initializer_list<NewFunction> functions) {
  for (const NewFunction& f : functions) {
    const auto required = std::count_if(f.arguments.begin(), f.arguments.end(),
                                        [](const CCalculatorArgumentInfoObject& a) { return !a.optional; });
    FunctionEntry entry;
    entry.info = {f.name, f.description, f.arguments, f.usage};
    entry.function = f.function;
    entry.minimal_arguments = static_cast<std::size_t>(required);
    entry.maximal_arguments = f.repeats ? SIZE_MAX : f.arguments.size();
    table.insert_or_assign(f.name, std::move(entry));
  }
}

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
