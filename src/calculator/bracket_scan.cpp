#include "calculator/bracket_scan.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <vector>

namespace kestrel::calculator {
namespace {

constexpr std::array<std::wstring_view, 6> kKeywords{L"#if", L"#then", L"#else", L"#switch", L"#case", L"#default"};
constexpr std::array<std::wstring_view, 2> kOperandKeywords{L"#if", L"#switch"};

bool IsSpace(wchar_t c) { return std::iswspace(static_cast<std::wint_t>(c)) != 0; }
bool IsLetterOrDigit(wchar_t c) { return std::iswalnum(static_cast<std::wint_t>(c)) != 0; }

/// A word in lower case begins the text, whatever the case there.
bool BeginsWith(std::wstring_view text, std::wstring_view word) {
  const auto same = [](wchar_t a, wchar_t b) {
    return a == static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(b)));
  };
  return text.size() >= word.size() && std::equal(word.begin(), word.end(), text.begin(), same);
}

/// An operand or the operator "!" stands at the front of the text. "-" does not count: it continues what is before it.
bool BeginsExpression(std::wstring_view text) {
  const wchar_t c = text.front();
  if (c == L'!') return text.size() < 2 || text[1] != L'=';
  if (c == L'#') {
    return std::any_of(kOperandKeywords.begin(), kOperandKeywords.end(),
                       [text](std::wstring_view word) { return BeginsWith(text, word); });
  }
  return std::wstring_view(L"([@$_.").find(c) != std::wstring_view::npos || IsLetterOrDigit(c);
}

/// What was seen of the current element of a literal.
enum class EElement { kNothing, kVector, kMatrix, kOther };

enum class EBracket { kParenthesis, kIndex, kLiteral };

struct OpenBracket {
  EBracket kind = EBracket::kParenthesis;
  std::size_t position = 0;
  bool begins_element = false;            // a literal at the beginning of an element of another literal
  bool rows_only = true;                  // every element so far fits a matrix
  bool any_element = false;               // an element was finished
  EElement leading = EElement::kNothing;  // the literal before the current element
  EElement element = EElement::kNothing;  // the current element
};

class Scan {
 public:
  explicit Scan(std::wstring_view text) : text_(text), marked_(text) {}

  std::wstring Run() {
    while (intact_ && at_ < text_.size()) Step();
    return std::move(marked_);
  }

 private:
  void Step() {
    const wchar_t c = text_[at_];
    if (IsSpace(c)) {
      ++at_;
    } else if (c == L'[') {
      OpenSquare();
    } else if (c == L'(') {
      Touch();
      Open({EBracket::kParenthesis, at_});
    } else if (c == L')' || c == L']') {
      Close(c);
    } else if (c == L',') {
      FinishElement();
      SkipOver(1, false);
    } else {
      Touch();
      SkipToken(c);
    }
  }

  void SkipToken(wchar_t c) {
    if (c == L'"') {
      const std::size_t end = text_.find(L'"', at_ + 1);
      intact_ = end != std::wstring_view::npos;
      SkipOver(intact_ ? end + 1 - at_ : 0, true);
    } else if (c == L'#') {
      SkipOver(KeywordLength(), false);
    } else {
      SkipOver(1, IsLetterOrDigit(c) || c == L'_' || c == L'\'' || c == L'.');
    }
  }

  std::size_t KeywordLength() const {
    const auto found = std::find_if(kKeywords.begin(), kKeywords.end(),
                                    [this](std::wstring_view word) { return BeginsWith(text_.substr(at_), word); });
    return found == kKeywords.end() ? 1 : found->size();
  }

  void SkipOver(std::size_t count, bool ends_operand) {
    at_ += count;
    after_operand_ = ends_operand;
  }

  void Open(OpenBracket bracket) {
    open_.push_back(bracket);
    SkipOver(1, false);
  }

  void OpenSquare() {
    if (after_operand_) {
      Touch();
      marked_[at_] = kIndexOpen;
      Open({EBracket::kIndex, at_});
      return;
    }
    OpenBracket literal{EBracket::kLiteral, at_};
    literal.begins_element = InLiteral() && open_.back().element == EElement::kNothing;
    if (!literal.begins_element) Touch();
    Open(literal);
  }

  void Close(wchar_t c) {
    const bool fits = !open_.empty() && (c == L')') == (open_.back().kind == EBracket::kParenthesis);
    if (!fits) {
      intact_ = false;
      return;
    }
    if (InLiteral()) FinishElement();
    const OpenBracket closed = open_.back();
    open_.pop_back();
    SkipOver(1, true);
    if (closed.kind == EBracket::kLiteral) Classify(closed);
  }

  /// Marks a literal and tells the literal around it what its element looks like now.
  void Classify(const OpenBracket& closed) {
    const EElement kind = closed.rows_only && closed.any_element ? EElement::kMatrix : EElement::kVector;
    const bool is_matrix = kind == EElement::kMatrix;
    marked_[closed.position] = is_matrix ? kMatrixOpen : kVectorOpen;
    if (!closed.begins_element) return;

    while (at_ < text_.size() && IsSpace(text_[at_])) ++at_;
    OpenBracket& around = open_.back();
    const bool can_lead = around.leading == EElement::kNothing;
    if (can_lead && at_ < text_.size() && BeginsExpression(text_.substr(at_))) {
      marked_[closed.position] = is_matrix ? kLeadingMatrixOpen : kLeadingVectorOpen;
      around.leading = kind;
      after_operand_ = false;
    } else {
      around.element = kind;
    }
  }

  /// Something that is no literal of its own belongs to the current element.
  void Touch() {
    if (InLiteral()) open_.back().element = EElement::kOther;
  }

  void FinishElement() {
    if (!InLiteral()) return;
    OpenBracket& literal = open_.back();
    const bool is_row = literal.element == EElement::kVector && literal.leading != EElement::kVector;
    literal.rows_only = literal.rows_only && is_row;
    literal.any_element = true;
    literal.leading = literal.element = EElement::kNothing;
  }

  bool InLiteral() const { return !open_.empty() && open_.back().kind == EBracket::kLiteral; }

  std::wstring_view text_;
  std::wstring marked_;
  std::vector<OpenBracket> open_;
  std::size_t at_ = 0;
  bool after_operand_ = false;  // what stands before `at_` ends an operand
  bool intact_ = true;          // brackets match so far
};

}  // namespace

std::wstring MarkBrackets(std::wstring_view text) { return Scan(text).Run(); }

}  // namespace kestrel::calculator
