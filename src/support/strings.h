#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

/// Conversions between the wide texts inside the library and the UTF-8 outside, and small string services.
namespace kestrel::string {

/// What a conversion does with a sequence that is not valid: drop it, put the replacement in the place of a run of bad
/// bytes, or raise `std::domain_error` "invalid input character".
enum class EUTF8ConversionErrorMode : int { kSkip = 0, kReplace = 1, kThrow = 2 };

constexpr wchar_t kReplacementCharacter = L'\uFFFD';

/// UTF-8 to wide. Stops quietly at a zero character. Overlong forms, surrogates and values above U+10FFFF are bad.
std::wstring from_utf8(std::string_view text, EUTF8ConversionErrorMode mode,
                       wchar_t replacement = kReplacementCharacter);

/// Wide to UTF-8. Stops quietly at a zero character. Surrogates and values above U+10FFFF are bad.
std::string to_utf8(std::wstring_view text, EUTF8ConversionErrorMode mode, wchar_t replacement = kReplacementCharacter);

/// UTF-8 to wide and back with replacement, whatever the process locale.
std::wstring widen(std::string_view text);
std::string narrow(std::wstring_view text);

/// An output stream bound to a caller's string: what is streamed is appended to it at once.
template <class Char>
class basic_ostringstream : private std::basic_streambuf<Char>, public std::basic_ostream<Char> {
  using Traits = std::char_traits<Char>;

 public:
  explicit basic_ostringstream(std::basic_string<Char>& target)
      : std::basic_ostream<Char>(static_cast<std::basic_streambuf<Char>*>(this)), target_(target) {}

 private:
  typename Traits::int_type overflow(typename Traits::int_type c) override {
    if (!Traits::eq_int_type(c, Traits::eof())) target_.push_back(Traits::to_char_type(c));
    return Traits::not_eof(c);
  }
  std::streamsize xsputn(const Char* text, std::streamsize count) override {
    target_.append(text, static_cast<std::size_t>(count));
    return count;
  }

  std::basic_string<Char>& target_;
};

namespace detail {

/// True if the name may be given to an input or an output: a letter or '_', then letters, digits, '_', ''' or '.',
/// and not the word "if" in any case. Letters and digits are those of the process locale's `iswalpha` and `iswalnum`:
/// in the C locale, in which a program starts, only the ASCII ones count. Never throws. This is the rule for objects of
/// the expression language, `CCalculator::IsObjectIdValid`, which needs a calculator and takes longer.
/// @param strict  also refuses the reserved words of the expression language (`PI`, `LINEAR`, ...), in this case only:
///                the names of its constants but `E` and `I`.
bool CheckVariableNameDefault(std::wstring_view name, bool strict) noexcept;

}  // namespace detail
}  // namespace kestrel::string
