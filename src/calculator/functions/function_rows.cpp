#include "calculator/functions/function_rows.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kestrel::calculator {

void AppendRows(FunctionTable& table, const std::vector<FunctionRow>& rows) {
  for (const FunctionRow& row : rows) {
    const auto needed = std::count_if(row.arguments.begin(), row.arguments.end(),
                                      [](const CCalculatorArgumentInfoObject& argument) { return !argument.optional; });
    FunctionEntry entry;
    entry.info = {row.name, row.description, row.arguments, row.usage};
    entry.function = row.function;
    entry.minimal_arguments = static_cast<std::size_t>(needed);
    entry.maximal_arguments = row.last_repeats ? SIZE_MAX : row.arguments.size();
    table.insert_or_assign(row.name, std::move(entry));
  }
}

}  // namespace kestrel::calculator
