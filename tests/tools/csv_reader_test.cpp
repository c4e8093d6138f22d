#include "csv_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>

#include "errors.h"
#include "support/temporary_folder.h"

namespace kestrel::cli {
namespace {

using testing::ElementsAre;

/// All columns; the one called `y` may hold any number, a column `note` anything.
std::vector<Column> ChooseByName(const std::vector<std::string>& header) {
  std::vector<Column> columns;
  for (std::size_t i = 0; i < header.size(); ++i) {
    if (header[i] != "note") columns.push_back({i, header[i] == "y" ? CellRule::kAnyNumber : CellRule::kFinite});
  }
  return columns;
}

Table Read(const std::string& content) {
  const TemporaryFolder folder;
  return ReadTable(folder.Write("designs.csv", content), &ChooseByName);
}

/// The message of the refusal, without the path in front; empty if the file is accepted.
std::string RefusalOfPath(const std::string& path) {
  try {
    ReadTable(path, &ChooseByName);
  } catch (const InputError& error) {
    const std::string text = error.what();
    EXPECT_EQ(text.substr(0, path.size()), path);
    return text.substr(path.size());
  }
  return "";
}

std::string Refusal(const std::string& content) {
  const TemporaryFolder folder;
  return RefusalOfPath(folder.Write("designs.csv", content));
}

using namespace std::string_literals;  // zero bytes inside literals

std::string ManyNames(std::size_t count) {
  std::string header;
  for (std::size_t i = 0; i < count; ++i) header += "x" + std::to_string(i) + ",";
  return header;
}

TEST(ReadTable, RefusesHostileFilesWithTheirPlace) {
  const std::tuple<const char*, std::string, const char*> files[] = {
      {"Empty", "", ": The file is empty, a header row is expected."},
      {"BlankLinesOnly", "\n\r\n \t\n", ": The file is empty, a header row is expected."},
      {"Text", "a,y\n1,2\none,2\n", ": row 3, column 1 ('a'): 'one' is not a number."},
      {"NumberAndUnit", "a,y\n1 mm,2\n", ": row 2, column 1 ('a'): '1 mm' is not a number."},
      {"Hexadecimal", "a,y\n0x10,2\n", ": row 2, column 1 ('a'): '0x10' is not a number."},
      {"DecimalComma", "a,y\n\"1,5\",2\n", ": row 2, column 1 ('a'): '1,5' is not a number."},
      {"PlusAndMinus", "a,y\n+-1,2\n", ": row 2, column 1 ('a'): '+-1' is not a number."},
      {"TooLarge", "a,y\n1,1e999\n", ": row 2, column 2 ('y'): '1e999' is outside the range of double precision."},
      {"TooSmall", "a,y\n1e-999,1\n", ": row 2, column 1 ('a'): '1e-999' is outside the range of double precision."},
      {"EmptyInput", "a,y\n 	,2\n", ": row 2, column 1 ('a'): The cell of an input is empty."},
      {"NanInput", "a,y\nNaN,2\n", ": row 2, column 1 ('a'): 'NaN' is not a finite number, as an input has to be."},
      {"InfiniteInput", "a,y\n-inf,2\n",
       ": row 2, column 1 ('a'): '-inf' is not a finite number, as an input has to be."},
      {"ShortRow", "a,b,y\n1,2,3\n1,2\n", ": row 3, column 3 ('y'): The row ends after 2 of 3 cells."},
      {"LongRow", "a,y\n1,2,3\n", ": row 2, column 3: The row has more cells than the header, which has 2."},
      {"CarriageReturnsCountOnce", "a,y\r\n\r\n1,2\r\nx,2", ": row 4, column 1 ('a'): 'x' is not a number."},
      {"CarriageReturnsAlone", "a,y\r1,2\rx,2\r", ": row 3, column 1 ('a'): 'x' is not a number."},
      {"QuotedLineEndIsNoRow", "a,note\n1,\"two\nlines\"\nx,\n", ": row 3, column 1 ('a'): 'x' is not a number."},
      {"NoClosingQuote", "a,y\n1,\"2\n3,4\n", ": row 2, column 2 ('y'): The closing quote is missing."},
      {"QuoteInsideCell", "a,y\n1,2\"\n", ": row 2, column 2 ('y'): A double quote stands at the wrong place."},
      {"TextBehindQuote", "a,y\n1,\"2\"3\n", ": row 2, column 2 ('y'): A double quote stands at the wrong place."},
      {"ZeroByte", "a,y\n1,2\0\n"s, ": row 2, column 2 ('y'): A zero byte; this is no text file."},
      {"Utf16",
       "\xFF\xFE"
       "a\0,\0y\0"s,
       ": The file is UTF-16 text; save it as UTF-8."},
      {"Semicolons", "a;y\n1;2\n", ": row 1, column 1: One column 'a;y' only; commas are expected between the cells."},
      {"SameNameTwice", "a,b, a\n1,2,3\n", ": row 1, column 3: The name 'a' stands in column 1 already."},
      {"SameNameBehindMark",
       "\xEF\xBB\xBF"
       "a,\"a\"\n",
       ": row 1, column 2: The name 'a' stands in column 1 already."},
      {"LongName", std::string(1001, 'n') + ",y\n", ": row 1, column 1: The name is longer than 1000 bytes."},
      {"LongCell", "a,note\n1," + std::string(32768, 'n') + "\n",
       ": row 2, column 2 ('note'): The cell is longer than 32767 bytes."},
      {"EndlessCell", "a,note\n1,\"" + std::string(1000000, 'n'),
       ": row 2, column 2 ('note'): The cell is longer than 32767 bytes; is a closing quote missing?"},
      {"ManyColumns", ManyNames(1000000), ": row 1, column 100001: The file has more than 100000 columns."},
      {"Escapes", "a\n\x1b[2J\x7f\xc2\x9b", ": row 2, column 1 ('a'): '\\x1b[2J\\x7f\\xc2\\x9b' is not a number."},
      {"NoUtf8", "a\nx\xff\xc3", ": row 2, column 1 ('a'): 'x\\xff\\xc3' is not a number."},
      {"LongText", "a\n" + std::string(70, 'x'),
       ": row 2, column 1 ('a'): 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...' is not a number."},
  };
  for (const auto& [name, content, refusal] : files) EXPECT_EQ(Refusal(content), refusal) << name;
}

TEST(ReadTable, AcceptsWhatSpreadsheetsWrite) {
  const Table table =
      Read("\xEF\xBB\xBF\"a\" , b,note,y\r\n\r\n +1.5 ,\"-2e-3\",\"text, \"\"quoted\"\"\",.5\r\n0,1E2,,4");
  EXPECT_THAT(table.names, ElementsAre("a", "b", "y"));
  EXPECT_EQ(table.rows, 2U);
  EXPECT_THAT(table.values, ElementsAre(1.5, -2e-3, 0.5, 0.0, 100.0, 4.0));
}

TEST(ReadTable, TakesOutputsWithoutValueAsNotFinite) {
  const Table table = Read("y,a\n,1\nnan,2\n\"\",3\n inf,4\n-Infinity,5\n");
  ASSERT_EQ(table.rows, 5U);
  for (std::size_t row = 0; row < 3; ++row) EXPECT_TRUE(std::isnan(table.values[2 * row])) << row;
  EXPECT_EQ(table.values[6], std::numeric_limits<double>::infinity());
  EXPECT_EQ(table.values[8], -std::numeric_limits<double>::infinity());
}

TEST(ReadTable, GivesColumnsInWantedOrder) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("designs.csv", "a,b,c\n1,2,3\n4,5,6\n");
  const Table table = ReadTable(path, [](const auto&) {
    return std::vector<Column>{{2, CellRule::kFinite}, {0, CellRule::kFinite}};
  });
  EXPECT_THAT(table.names, ElementsAre("c", "a"));
  EXPECT_THAT(table.values, ElementsAre(3.0, 1.0, 6.0, 4.0));
}

TEST(ReadTable, ReadsAcrossBlocks) {
  std::string content = "a,y\n";
  for (int row = 0; row < 50000; ++row) content += std::to_string(row) + ",\"" + std::to_string(2 * row) + "\"\r\n";
  const Table table = Read(content);
  ASSERT_EQ(table.rows, 50000U);
  for (std::size_t row = 0; row < table.rows; ++row) {
    ASSERT_EQ(table.values[2 * row], static_cast<double>(row));
    ASSERT_EQ(table.values[2 * row + 1], 2.0 * static_cast<double>(row));
  }
}

TEST(ReadTable, NamesAFileThatCannotBeRead) {
  const TemporaryFolder folder;
  EXPECT_EQ(RefusalOfPath(folder.Path("none.csv")), ": No such file or directory.");
  EXPECT_EQ(RefusalOfPath(folder.Path("")), ": Is a directory.");
}

}  // namespace
}  // namespace kestrel::cli
