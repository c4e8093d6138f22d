#pragma once

#include <cstddef>
#include <string>

#include "calculator/functions/function_table.h"

/// What functions read their arguments with. `index` counts from 0, texts count from 1. All raise CCalculatorException
/// "Argument 2: ..." if the argument is missing or is not what is asked for.
namespace kestrel::calculator {

/// The argument as a value of any kind; a text in double quotes is refused.
const Value& GetValue(const Arguments& arguments, std::size_t index);
/// The argument as a text; a value is refused.
const std::wstring& GetText(const Arguments& arguments, std::size_t index);

/// A boolean (0 or 1) or a scalar without an imaginary part.
double GetReal(const Arguments& arguments, std::size_t index);
double GetRealOr(const Arguments& arguments, std::size_t index, double absent);
/// A whole number from `least` to `most`.
long GetInteger(const Arguments& arguments, std::size_t index, long least, long most);
long GetIntegerOr(const Arguments& arguments, std::size_t index, long least, long most, long absent);
/// A count of entries or rows: a whole number, refused as RequireEntries does if it exceeds kMaximalEntries.
std::size_t GetCount(const Arguments& arguments, std::size_t index);
/// A boolean, or a real scalar that is true if it is not 0.
bool GetFlag(const Arguments& arguments, std::size_t index);
bool GetFlagOr(const Arguments& arguments, std::size_t index, bool absent);

/// A finite real vector, a scalar counting as a vector of one entry.
std::vector<double> GetReals(const Arguments& arguments, std::size_t index);

/// Raises CCalculatorException if a result of rows x columns entries would exceed kMaximalEntries.
void RequireEntries(std::size_t rows, std::size_t columns = 1);

/// Raises CCalculatorException if a function would take more than a billion multiplications, half a second or more.
/// @param a, b, c  whose product is their number, such as the sizes of a product of matrices.
void RequireOperations(std::size_t a, std::size_t b, std::size_t c);

/// "Argument 2: " and the text.
[[noreturn]] void RefuseArgument(std::size_t index, const std::wstring& text);

}  // namespace kestrel::calculator
