#include "csv_reader.h"

#include <csv.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "errors.h"
#include "numbers.h"
#include "text.h"

namespace kestrel::cli {

namespace {

constexpr std::size_t kNotWanted = std::numeric_limits<std::size_t>::max();

/// Turns the fields and row ends of one file into a table and knows at which cell it stands.
class TableBuilder {
 public:
  TableBuilder(std::string path, const ChooseColumns& choose) : path_(std::move(path)), choose_(choose) {}

  void AddField(std::string_view text);

  /// `terminator` is the character that ended the row, or -1 at the end of the file.
  void EndRow(int terminator);

  Table Finish();

  /// Refuses the cell that is being read.
  [[noreturn]] void Refuse(const std::string& text) const { RefuseAt(fields_in_row_, text); }

 private:
  [[noreturn]] void RefuseAt(std::size_t column, const std::string& text) const;
  void AddName(std::string_view text);
  void AddCell(std::string_view text);
  double CheckedNumber(std::string_view text, CellRule rule) const;
  void EndHeader();

  std::string path_;
  const ChooseColumns& choose_;
  bool header_done_ = false;
  std::vector<std::string> header_;
  std::unordered_map<std::string, std::size_t> position_of_name_;
  std::vector<Column> columns_;       // in the order wanted
  std::vector<std::size_t> slot_of_;  // per column of the file: its place in columns_, or kNotWanted
  std::vector<double> row_values_;
  std::size_t row_ = 1;
  std::size_t fields_in_row_ = 0;
  int last_terminator_ = -1;
  Table table_;
};

void TableBuilder::RefuseAt(std::size_t column, const std::string& text) const {
  std::string place = path_ + ": row " + std::to_string(row_) + ", column " + std::to_string(column + 1);
  if (header_done_ && column < header_.size() && !header_[column].empty())
    place += " (" + Quoted(header_[column]) + ")";
  throw InputError(place + ": " + text);
}

void TableBuilder::AddField(std::string_view text) {
  if (text.size() > kMaxCellBytes) Refuse("The cell is longer than " + std::to_string(kMaxCellBytes) + " bytes.");
  if (header_done_) {
    AddCell(text);
  } else {
    AddName(text);
  }
  ++fields_in_row_;
}

void TableBuilder::AddName(std::string_view text) {
  if (header_.size() == kMaxColumns) Refuse("The file has more than " + std::to_string(kMaxColumns) + " columns.");
  if (text.size() > kMaxNameBytes) Refuse("The name is longer than " + std::to_string(kMaxNameBytes) + " bytes.");
  header_.emplace_back(Trimmed(text));
  const std::string& name = header_.back();
  if (name.empty()) return;  // a nameless column is refused where it is wanted
  const auto [place, is_new] = position_of_name_.emplace(name, fields_in_row_);
  if (!is_new) {
    Refuse("The name " + Quoted(name) + " stands in column " + std::to_string(place->second + 1) + " already.");
  }
}

void TableBuilder::AddCell(std::string_view text) {
  if (fields_in_row_ == header_.size()) {
    Refuse("The row has more cells than the header, which has " + std::to_string(header_.size()) + ".");
  }
  const std::size_t slot = slot_of_[fields_in_row_];
  if (slot != kNotWanted) row_values_[slot] = CheckedNumber(text, columns_[slot].rule);
}

double TableBuilder::CheckedNumber(std::string_view text, CellRule rule) const {
  const Number number = ReadNumber(text);
  switch (number.kind) {
    case NumberKind::kFinite: return number.value;
    case NumberKind::kMissing:
      if (rule == CellRule::kFinite && Trimmed(text).empty()) Refuse("The cell of an input is empty.");
      break;
    case NumberKind::kInfinite: break;
    case NumberKind::kOutOfRange: Refuse(Quoted(text) + " is outside the range of double precision.");
    case NumberKind::kNotANumber: Refuse(Quoted(text) + " is not a number.");
  }
  if (rule == CellRule::kFinite) Refuse(Quoted(text) + " is not a finite number, as an input has to be.");
  return number.value;
}

void TableBuilder::EndRow(int terminator) {
  // CRLF arrives as two ends of row, the second one of a row without fields.
  const bool second_half = terminator == CSV_LF && last_terminator_ == CSV_CR && fields_in_row_ == 0;
  last_terminator_ = second_half ? -1 : terminator;
  if (second_half) return;
  if (fields_in_row_ > 0) {
    if (!header_done_) {
      EndHeader();
    } else {
      if (fields_in_row_ < header_.size()) {
        Refuse("The row ends after " + std::to_string(fields_in_row_) + " of " + std::to_string(header_.size()) +
               " cells.");
      }
      if (table_.values.size() > kMaxNumbers - row_values_.size()) {
        throw InputError(path_ + ": The file holds more than " + std::to_string(kMaxNumbers) + " numbers.");
      }
      table_.values.insert(table_.values.end(), row_values_.begin(), row_values_.end());
      ++table_.rows;
    }
  }
  fields_in_row_ = 0;
  ++row_;
}

void TableBuilder::EndHeader() {
  if (header_.size() == 1 && header_.front().find_first_of(";\t") != std::string::npos) {
    RefuseAt(0, "One column " + Quoted(header_.front()) + " only; commas are expected between the cells.");
  }
  columns_ = choose_(header_);
  slot_of_.assign(header_.size(), kNotWanted);
  for (const Column& column : columns_) {
    slot_of_.at(column.position) = table_.names.size();
    table_.names.push_back(header_[column.position]);
  }
  row_values_.resize(columns_.size());
  header_done_ = true;
}

Table TableBuilder::Finish() {
  if (!header_done_) throw InputError(path_ + ": The file is empty, a header row is expected.");
  return std::move(table_);
}

/// The parser of libcsv over a builder. Exceptions must not pass through its C frames: the first one is kept, and what
/// still comes from the same block of bytes is ignored.
class Parser {
 public:
  explicit Parser(TableBuilder& builder) : builder_(builder) {
    // Quotes in the wrong place are errors; every line end is reported, so that rows can be counted.
    if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL) != 0) throw std::bad_alloc();
    csv_set_blk_size(&parser_, 4096);
  }
  ~Parser() { csv_free(&parser_); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;

  void Parse(std::string_view bytes) {
    const std::size_t done = csv_parse(&parser_, bytes.data(), bytes.size(), &OnField, &OnRow, this);
    if (failure_) std::rethrow_exception(failure_);
    if (done != bytes.size()) RaiseParserError("A double quote stands at the wrong place.");
    // A field without an end would otherwise fill the memory.
    if (parser_.entry_pos > kMaxCellBytes) {
      builder_.Refuse("The cell is longer than " + std::to_string(kMaxCellBytes) +
                      " bytes; is a closing quote missing?");
    }
  }

  void Finish() {
    const int status = csv_fini(&parser_, &OnField, &OnRow, this);
    if (failure_) std::rethrow_exception(failure_);
    if (status != 0) RaiseParserError("The closing quote is missing.");
  }

 private:
  template <class Work>
  void Keep(Work&& work) {
    if (failure_) return;
    try {
      work();
    } catch (...) {
      failure_ = std::current_exception();
    }
  }

  static void OnField(void* text, std::size_t size, void* self) {
    auto& parser = *static_cast<Parser*>(self);
    parser.Keep([&] { parser.builder_.AddField({static_cast<const char*>(text), size}); });
  }

  static void OnRow(int terminator, void* self) {
    auto& parser = *static_cast<Parser*>(self);
    parser.Keep([&] { parser.builder_.EndRow(terminator); });
  }

  [[noreturn]] void RaiseParserError(const std::string& quote_text) {
    if (csv_error(&parser_) == CSV_EPARSE) builder_.Refuse(quote_text);
    throw std::bad_alloc();  // the other two codes are those of memory
  }

  TableBuilder& builder_;
  csv_parser parser_{};
  std::exception_ptr failure_;
};

/// Takes a byte order mark off the first bytes of a file.
std::string_view WithoutByteOrderMark(std::string_view bytes, const std::string& path) {
  const auto starts_with = [&](std::string_view mark) { return bytes.substr(0, mark.size()) == mark; };
  if (starts_with("\xFF\xFE") || starts_with("\xFE\xFF")) {
    throw InputError(path + ": The file is UTF-16 text; save it as UTF-8.");
  }
  if (starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return bytes;
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File OpenFile(const std::string& path) {
  File file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (file == nullptr) throw InputError(path + ": " + std::strerror(errno) + ".");
  return file;
}

}  // namespace

Table ReadTable(const std::string& path, const ChooseColumns& choose) {
  const File file = OpenFile(path);
  TableBuilder builder(path, choose);
  Parser parser(builder);
  std::vector<char> block(65536);
  bool is_first = true;
  while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
    std::string_view bytes(block.data(), count);
    if (is_first) bytes = WithoutByteOrderMark(bytes, path);
    is_first = false;
    // Texts end at a zero byte in C; no CSV file of numbers has one.
    const std::size_t zero = bytes.find('\0');
    parser.Parse(bytes.substr(0, zero));
    if (zero != std::string_view::npos) builder.Refuse("A zero byte; this is no text file.");
  }
  if (std::ferror(file.get()) != 0) throw InputError(path + ": " + std::strerror(errno) + ".");
  parser.Finish();
  return builder.Finish();
}

}  // namespace kestrel::cli
