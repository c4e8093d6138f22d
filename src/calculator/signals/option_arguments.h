#pragma once

#include <cstddef>
#include <vector>

#include "calculator/functions/function_table.h"
#include "calculator/functions/option_words.h"

namespace kestrel::calculator {

/// The number 0 in the place of an option word.
inline constexpr EOption kNoOption{0};

/// The argument as one of the allowed option words; kNoOption among them allows the number 0. Refuses all else with
/// the list of the words.
EOption GetOption(const Arguments& arguments, std::size_t index, const std::vector<EOption>& allowed);
EOption GetOptionOr(const Arguments& arguments, std::size_t index, const std::vector<EOption>& allowed, EOption absent);

}  // namespace kestrel::calculator
