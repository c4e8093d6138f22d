#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "support/stored.h"
#include "support/strings.h"
#include "values/variant_builders.h"

namespace kestrel::math::test {
namespace {

using testing::Load;
using testing::Store;

/// The bytes of a value without header and names, so that what a file says can be changed word by word.
std::string StorePlain(const Value& value) { return Store(value, boost::archive::no_header); }

void LoadPlain(const std::string& bytes) {
  std::istringstream stream(bytes);
  Value value;
  portable_binary_iarchive(stream, boost::archive::no_header) >> value;
}

/// The bytes with the last occurrence of `from` replaced.
std::string Replaced(std::string bytes, const std::string& from, const std::string& to) {
  const std::size_t position = bytes.rfind(from);
  EXPECT_NE(position, std::string::npos);
  return bytes.replace(position, from.size(), to);
}

std::string Words(std::initializer_list<char> words) {
  std::string bytes;
  for (const char word : words) bytes += {word, '\0'};
  return bytes;
}

TEST(VariantPersistence, KeepsEveryKind) {
  std::vector<Value> values = {Value(),
                               Boolean(true),
                               Scalar(2, 1),
                               Vector({}),
                               Vector({1, {2, -1}}),
                               Matrix2({}),
                               Matrix2({1, 2, 3, {4, 5}}),
                               Signal2({0, 1, 2}, {1, 2, 3, 4, 5, 6}),
                               Signal2({2, 1}, {1, 2, 3, 4}, Value::XYDATA)};
  values.back().SetOrdered(true);
  for (const Value& value : values) {
    Value read = Vector({7});
    Load(Store(value), read);
    EXPECT_EQ(Text(read), Text(value));
    EXPECT_TRUE(read == value);
    EXPECT_EQ(read.IsComplex(), value.IsComplex());
    EXPECT_EQ(read.IsOrdered(), value.IsOrdered());
  }
}

TEST(VariantPersistence, StoresItsFieldsInOrder) {
  EXPECT_EQ(testing::FirstNameOutOfOrder(Signal2({0, 1}, {1, 2, 3, 4}),
                                         {"kind_", "complex_", "ordered_", "timeline_", "size", "item", "matrix_",
                                          "size1", "size2", "data", "size", "item"}),
            "");
  EXPECT_EQ(testing::FirstNameOutOfOrder(Boolean(true), {"kind_", "complex_", "ordered_", "boolean_"}), "");
}

TEST(VariantPersistence, StoresTheKindAsASignedNumber) {
  EXPECT_EQ(StorePlain(Value()), Words({0, 6}) + "\xff\x7f" + Words({0, 0}));
  EXPECT_EQ(StorePlain(Boolean(true)), Words({0, 6, 0, 0, 0, 1}));
}

TEST(VariantPersistence, RefusesWhatContradictsItself) {
  const std::string boolean = StorePlain(Boolean(true));
  const std::string vector = StorePlain(Vector({1, 2}));
  const std::string matrix = StorePlain(Matrix2({1, 2, 3, 4, 5, 6}));
  const std::string signal = StorePlain(Signal2({0, 1, 2}, {1, 2, 3, 4, 5, 6}));
  const struct {
    const char* name;
    std::string bytes;
  } cases[] = {{"kind beyond the last", Words({0, 6, 6, 0, 0, 1})},
               {"kind below the first", Words({0, 6}) + "\xfe\x7f" + Words({0, 0})},
               {"a version of the past", Replaced(boolean, Words({0, 6}), Words({0, 5}))},
               {"rows times columns is not the cells", Replaced(matrix, Words({2, 3}), Words({3, 3}))},
               {"no rows but cells", Replaced(matrix, Words({2, 3}), Words({0, 3}))},
               {"samples without time", Replaced(signal, Words({2, 3}), Words({3, 2}))},
               {"cut short", vector.substr(0, vector.size() - 1)}};
  for (const auto& c : cases) EXPECT_THROW(LoadPlain(c.bytes), boost::archive::archive_exception) << c.name;
}

TEST(VariantPersistence, TakesNoMemoryThatAFileOnlyPromises) {
  const std::string vector = StorePlain(Vector({1, 2}));
  const std::string entries = vector.substr(vector.size() - 2 * 2 * sizeof(double));
  const std::string count = Words({2});
  // 2^45 - 1: three words of 15 bits, all but the last with the mark that another follows
  const std::string huge =
      "\xff\xff\xff\xff\xff"
      "\x7f";
  EXPECT_THROW(LoadPlain(Replaced(vector, count + entries.substr(0, 8), huge + entries.substr(0, 8))),
               boost::archive::archive_exception);
}

}  // namespace
}  // namespace kestrel::math::test
