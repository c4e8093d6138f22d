#include "calculator/functions/number_file.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "calculator/functions/arguments.h"
#include "calculator/functions/calculator_exceptions.h"
#include "support/strings.h"

namespace kestrel::calculator {
namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

bool IsSeparator(char character) { return character == ',' || character == ';'; }

[[noreturn]] void RefuseFile(const std::wstring& path, const std::wstring& text) {
  throw CCalculatorException(L"File \"" + path + L"\": " + text);
}

[[noreturn]] void RefuseLine(std::size_t line, const std::wstring& text) {
  throw CCalculatorException(L"Line " + std::to_wstring(line) + L": " + text);
}

/// The content of a regular file of an acceptable size. No more than the size that was checked is read.
std::string ReadContent(const std::wstring& name) {
  const std::filesystem::path path(string::narrow(name));
  std::error_code error;
  if (!std::filesystem::exists(path, error)) RefuseFile(name, L"It does not exist.");
  if (!std::filesystem::is_regular_file(path, error)) RefuseFile(name, L"It is not a regular file.");
  const std::uintmax_t bytes = std::filesystem::file_size(path, error);
  if (error || bytes > kMaximalFileBytes) {
    RefuseFile(name, L"It is larger than " + std::to_wstring(kMaximalFileBytes) + L" bytes.");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) RefuseFile(name, L"It cannot be opened.");
  std::string content(bytes, '\0');
  file.read(content.data(), static_cast<std::streamsize>(bytes));
  content.resize(static_cast<std::size_t>(file.gcount()));
  return content;
}

std::string_view SkipBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

/// Cuts a number from the front of the text.
double CutNumber(std::string_view& text, std::size_t line) {
  if (text.front() == '+' && text.substr(0, 2) != "+-") text.remove_prefix(1);
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::result_out_of_range) RefuseLine(line, L"A number is out of range.");
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  const bool is_whole = text.empty() || kBlanks.find(text.front()) != kBlanks.npos || IsSeparator(text.front());
  if (error != std::errc() || !is_whole) RefuseLine(line, L"It has something that is not a number.");
  return number;
}

/// The numbers of a line; a separator may stand at its end.
void ParseLine(std::string_view text, std::size_t line, std::vector<double>& numbers) {
  numbers.clear();
  text = SkipBlanks(text.substr(0, text.find('#')));
  while (!text.empty()) {
    numbers.push_back(CutNumber(text, line));
    RequireEntries(numbers.size());
    text = SkipBlanks(text);
    if (!text.empty() && IsSeparator(text.front())) text = SkipBlanks(text.substr(1));
  }
}

/// Keeps the columns asked for of one row after the other.
class RowCollector {
 public:
  explicit RowCollector(const std::vector<std::size_t>& columns) : columns_(columns) {}

  void Add(const std::vector<double>& row, std::size_t line) {
    if (rows_ == 0) SetWidth(row.size(), line);
    if (row.size() != width_) {
      RefuseLine(line, L"It has " + std::to_wstring(row.size()) + L" numbers, the lines above have " +
                           std::to_wstring(width_) + L".");
    }
    RequireEntries(++rows_, columns_.empty() ? width_ : columns_.size());
    if (columns_.empty()) result_.cells.insert(result_.cells.end(), row.begin(), row.end());
    for (const std::size_t column : columns_) result_.cells.push_back(row[column]);
  }

  std::size_t Rows() const { return rows_; }
  NumberRows Take() { return std::move(result_); }

 private:
  void SetWidth(std::size_t width, std::size_t line) {
    width_ = width;
    result_.columns = columns_.empty() ? width : columns_.size();
    for (const std::size_t column : columns_) {
      if (column >= width) RefuseLine(line, L"It has no column " + std::to_wstring(column) + L" (counted from 0).");
    }
  }

  const std::vector<std::size_t>& columns_;
  NumberRows result_;
  std::size_t width_ = 0;
  std::size_t rows_ = 0;
};

}  // namespace

NumberRows ReadNumberFile(const std::wstring& path, const std::vector<std::size_t>& columns) {
  const std::string content = ReadContent(path);
  RowCollector rows(columns);
  std::vector<double> numbers;
  std::string_view rest(content);
  for (std::size_t line = 1; !rest.empty(); ++line) {
    const std::string_view text = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    ParseLine(text, line, numbers);
    if (!numbers.empty()) rows.Add(numbers, line);
  }
  if (rows.Rows() == 0) RefuseFile(path, L"It has no numbers.");
  return rows.Take();
}

}  // namespace kestrel::calculator
