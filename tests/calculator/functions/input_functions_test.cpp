#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "calculator/functions/calculator_exceptions.h"
#include "calculator/functions/call.h"
#include "support/temporary_folder.h"

namespace kestrel::calculator::test {
namespace {

Value Read(const std::string& path, const Arguments& columns = {}) {
  math::random::Generator generator(1);
  FunctionContext context{generator, true, nullptr};
  Arguments arguments = {string::widen(path)};
  arguments.insert(arguments.end(), columns.begin(), columns.end());
  return Call(L"read", arguments, context);
}

std::string Refusal(const std::string& path, const Arguments& columns = {}) {
  try {
    Read(path, columns);
  } catch (const CCalculatorException& refusal) {
    return refusal.what();
  }
  return "nothing";
}

TEST(InputFunctions, ReadNumbers) {
  const TemporaryFolder folder;
  struct Text {
    std::string content;
    Value expected;
  };
  const Text texts[] = {
      {"1 2\n3 4\n", Matrix2({1, 2, 3, 4})},
      {"# t, x\n\n 1,\t2 # first\r\n+3e1;-.5;\r\n", Matrix2({1, 2, 30, -0.5})},
      {"nan;1\n-inf;1", Matrix2({kNaN, 1, -kInfinity, 1})},
      {"7", Value(MakeMatrix(1, 1, {7}))},
  };
  for (const Text& text : texts) {
    EXPECT_TRUE(IsSame(Read(folder.Write("numbers.txt", text.content)), text.expected)) << text.content;
  }
  const std::string path = folder.Write("numbers.txt", "0 10 20\n1 11 21\n");
  EXPECT_TRUE(IsSame(Read(path, {Scalar(1)}), Vector({10, 11})));
  EXPECT_TRUE(IsSame(Read(path, {Scalar(2), Scalar(0)}), Matrix2({20, 0, 21, 1})));
  EXPECT_TRUE(IsSame(Read(path, {Vector({0, 2})}), Matrix2({0, 20, 1, 21})));
}

TEST(InputFunctions, RefuseFiles) {
  const TemporaryFolder folder;
  struct Text {
    std::string content;
    Arguments columns;
    std::string refusal;
  };
  const Text texts[] = {
      {"", {}, "It has no numbers."},
      {"# only\n", {}, "It has no numbers."},
      {"1 2\n3\n", {}, "Line 2: It has 1 numbers, the lines above have 2."},
      {"1 2\n\n3 x\n", {}, "Line 3: It has something that is not a number."},
      {"1,,2\n", {}, "Line 1: It has something that is not a number."},
      {"+-1\n", {}, "Line 1: It has something that is not a number."},
      {"0x10\n", {}, "Line 1: It has something that is not a number."},
      {"1 1e999\n", {}, "Line 1: A number is out of range."},
      {"1 2\n", {Scalar(2)}, "Line 1: It has no column 2 (counted from 0)."},
      {"1 2\n", {Scalar(-1)}, "Argument 2: Columns are whole numbers from 0."},
      {"1 2\n", {Scalar(0), Vector({1, 0.5})}, "Argument 3: Columns are whole numbers from 0."},
  };
  for (const Text& text : texts) {
    EXPECT_THAT(Refusal(folder.Write("numbers.txt", text.content), text.columns), testing::HasSubstr(text.refusal));
  }
  EXPECT_THAT(Refusal(folder.Path("none.txt")), testing::HasSubstr("It does not exist."));
  EXPECT_THAT(Refusal("/dev/zero"), testing::HasSubstr("It is not a regular file."));
  std::filesystem::resize_file(folder.Write("large.txt", "1"), std::uintmax_t{1} << 40u);  // no byte of it is stored
  EXPECT_THAT(Refusal(folder.Path("large.txt")), testing::HasSubstr("It is larger than 268435456 bytes."));
}

TEST(InputFunctions, AskTheContext) {
  const TemporaryFolder folder;
  const std::wstring path = string::widen(folder.Write("numbers.txt", "1"));
  EXPECT_THROW(Call(L"read", {path}), CCalculatorException);
  EXPECT_THROW(Call(L"calculate", {L"1+1"}), CCalculatorException);

  math::random::Generator generator(1);
  FunctionContext context{generator, false, [](const std::wstring& text) { return Scalar(text == L"1+1" ? 2 : 0); }};
  EXPECT_TRUE(IsSame(Call(L"calculate", {L"1+1"}, context), Scalar(2)));
}

}  // namespace
}  // namespace kestrel::calculator::test
