#pragma once

#include <string>
#include <string_view>

/// What each "[" of an expression begins. The rules alone find this out by trying one alternative after the other
/// (matrix, vector, with and without a literal before the element, index), and each try parses all that is nested
/// inside again: exponential time in the depth. One pass over the text settles it, because a "[" is told by what stands
/// before it and by what stands between it and its "]".
namespace kestrel::calculator {

/// What stands in the place of "[" after the scan; values that no character has.
enum EBracketMark : wchar_t {
  kIndexOpen = 0x110001,  ///< x[, f(x)[, (x)[
  kVectorOpen,
  kMatrixOpen,
  kLeadingVectorOpen,  ///< of a literal that stands before an element of a vector or a row of a matrix
  kLeadingMatrixOpen
};

/// The text with every "[" replaced by its mark. A "[" that is not closed, or is closed by something else, stays as it
/// is, and so do those after it: no rule accepts it. The characters of the text are to be below 0x110000.
///
/// - After what ends an operand a "[" begins an index.
/// - A literal is a matrix if each of its elements is nothing but a vector literal, each of which may come after a
///   matrix literal; else it is a vector.
/// - A literal at the beginning of an element, directly followed by the beginning of another expression, is a leading
///   one: [[1,2] 3] and [[1,2] [3]]. If an operator follows, it is an operand: [[1,2] - 1].
std::wstring MarkBrackets(std::wstring_view text);

}  // namespace kestrel::calculator
