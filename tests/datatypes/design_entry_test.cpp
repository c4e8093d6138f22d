#include "datatypes/design_entry.h"

#include <gtest/gtest.h>

#include <functional>

#include <boost/lexical_cast/bad_lexical_cast.hpp>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/exceptions.h"
#include "support/strings.h"
#include "values/variant_builders.h"

namespace kestrel {
namespace {

using namespace enums::DesignEntry;
using math::test::Boolean;
using math::test::Scalar;
using math::test::Vector;
using VariantType = CDesignEntry::VariantType;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

std::string Text(const CDesignEntry& entry) {
  std::wostringstream stream;
  stream << entry.GetDomainType() << L" '" << entry << L"'";
  return string::narrow(stream.str());
}

/// Same type and same content; NaN is NaN.
void ExpectSame(const CDesignEntry& entry, const CDesignEntry& expected, const std::string& name) {
  EXPECT_EQ(Text(entry), Text(expected)) << name;
  EXPECT_TRUE(entry == expected || expected.IsNaN()) << name;
}

TEST(DesignEntry, CostsSixteenBytes) { EXPECT_EQ(sizeof(CDesignEntry), 16u); }

TEST(DesignEntry, AnswersByType) {
  struct Case {
    CDesignEntry entry;
    eType type;
    bool uninitialized, nan, infinite, scalar_type;
    std::string text;
  };
  const Case cases[] = {{{}, UNINITIALIZED, true, false, false, false, "0 ''"},
                        {2.5, REAL, false, false, false, true, "2 '2.5'"},
                        {kNaN, REAL, false, true, false, true, "2 'nan'"},
                        {-kInfinity, REAL, false, false, true, true, "2 '-inf'"},
                        {7, INTEGER, false, false, false, true, "3 '7'"},
                        {L"text", STRING, false, false, false, true, "4 'text'"},
                        {true, BOOL, false, false, false, true, "1 '1'"},
                        {VariantType(), VARIANT, true, false, false, false, "5 ''"},
                        {Boolean(false), VARIANT, false, false, false, true, "5 '0'"},
                        {Scalar(1, 2), VARIANT, false, false, false, true, "5 '(1,2)'"},
                        {Vector({kNaN}), VARIANT, false, true, false, false, "5 '[nan]'"},
                        {Vector({1, kInfinity}), VARIANT, false, false, true, false, "5 '[1, inf]'"}};
  for (const Case& c : cases) {
    EXPECT_EQ(c.entry.GetDomainType(), c.type) << c.text;
    EXPECT_EQ(c.entry.IsUninitialized(), c.uninitialized) << c.text;
    EXPECT_EQ(c.entry.IsNaN(), c.nan) << c.text;
    EXPECT_EQ(c.entry.IsInf(), c.infinite) << c.text;
    EXPECT_EQ(c.entry.IsScalarType(), c.scalar_type) << c.text;
    EXPECT_EQ(Text(c.entry), c.text);
  }
}

TEST(DesignEntry, MeasuresByValue) {
  EXPECT_EQ(CDesignEntry(L"long text").Size(), 1u);
  EXPECT_EQ(CDesignEntry(Vector({1, 2})).Size(), 2u);
  EXPECT_TRUE(CDesignEntry(Vector({1})).IsScalar());
  EXPECT_THROW(CDesignEntry().IsScalar(), std::invalid_argument);
  EXPECT_THROW(CDesignEntry(VariantType()).Size(), math::CTypeException);
}

TEST(DesignEntry, GivesScalarAndVariantWhereThereIsOne) {
  EXPECT_EQ(CDesignEntry(3).GetScalar(), std::complex<double>(3));
  EXPECT_EQ(CDesignEntry(Scalar(1, 2)).GetScalar(), std::complex<double>(1, 2));
  EXPECT_THROW(CDesignEntry(true).GetScalar(), std::invalid_argument);
  EXPECT_THROW(CDesignEntry(Vector({1})).GetScalar(), math::CTypeException);
  EXPECT_THROW(CDesignEntry(1.0).GetVariant(), std::invalid_argument);
}

TEST(DesignEntry, Converts) {
  struct Case {
    CDesignEntry entry;
    double real;
    std::int64_t integer;
    bool boolean;
    std::wstring text;
    VariantType variant;
  };
  const Case cases[] = {{{}, kNaN, 0, false, L"uninitialized", {}},
                        {-2.75, -2.75, -2, true, L"-2.75", Scalar(-2.75)},
                        {0.0, 0.0, 0, false, L"0", Scalar(0)},
                        {1e300, 1e300, kLargest, true, L"1.0000000000000001e+300", Scalar(1e300)},
                        {7, 7.0, 7, true, L"7", Scalar(7)},
                        {true, 1.0, 1, true, L"1", Boolean(true)},
                        {L"1", 1.0, 1, true, L"1", Scalar(1)},
                        {Scalar(-2.5, 3), -2.5, -2, true, L"-2.5", Scalar(-2.5, 3)}};
  for (const Case& c : cases) {
    const std::string name = Text(c.entry);
    ExpectSame(ConvertDesignpointEntry<double>(c.entry), c.real, name);
    EXPECT_EQ(ConvertDesignpointEntry<std::int64_t>(c.entry), c.integer) << name;
    EXPECT_EQ(ConvertDesignpointEntry<bool>(c.entry), c.boolean) << name;
    EXPECT_EQ(ConvertDesignpointEntry<std::wstring>(c.entry), c.text) << name;
    EXPECT_TRUE(ConvertDesignpointEntry<VariantType>(c.entry) == c.variant) << name;
  }
  EXPECT_TRUE(ConvertDesignpointEntry<bool>(kNaN));
  EXPECT_TRUE(ConvertDesignpointEntry<bool>(Boolean(true)));
  EXPECT_EQ(ConvertDesignpointEntry<double>(Boolean(true)), 1.0);
  EXPECT_EQ(ConvertDesignpointEntry<std::int64_t>(kNaN), 0);
}

TEST(DesignEntry, RefusesWhatDoesNotConvert) {
  EXPECT_THROW(ConvertDesignpointEntry<double>(L"word"), boost::bad_lexical_cast);
  EXPECT_THROW(ConvertDesignpointEntry<std::int64_t>(L"1.5"), boost::bad_lexical_cast);
  EXPECT_THROW(ConvertDesignpointEntry<bool>(L"true"), boost::bad_lexical_cast);
  EXPECT_EQ(ConvertDesignpointEntry<VariantType>(L"word").GetKind(), VariantType::UNINITIALIZED);
  const std::function<void()> conversions[] = {[] { ConvertDesignpointEntry<double>(Vector({1})); },
                                               [] { ConvertDesignpointEntry<std::wstring>(Boolean(true)); }};
  for (const auto& convert : conversions) {
    try {
      convert();
      ADD_FAILURE() << "converted";
    } catch (const utils::logic_error& error) {
      EXPECT_EQ(error.What(), L"Designpoint conversion failed: variant isn't scalar.");
    }
  }
}

TEST(DesignEntry, AssignsPreservingTheType) {
  struct Case {
    const char* name;
    CDesignEntry cell, value;
    bool parse;
    eType fallback;
    CDesignEntry expected;
  };
  const Case cases[] = {
      {"same type", 1.0, 2.0, false, UNINITIALIZED, 2.0},
      {"variants of any kind", Scalar(1), Vector({1, 2}), false, UNINITIALIZED, Vector({1, 2})},
      {"no type at all takes all", {}, Vector({1, 2}), false, UNINITIALIZED, Vector({1, 2})},
      {"no type takes the fallback", {}, 2.75, false, INTEGER, 2},
      {"vector of one onto a variant", Scalar(1), 5, false, UNINITIALIZED, Scalar(5)},
      {"real onto integer", 1, 2.75, false, UNINITIALIZED, 2},
      {"text onto text", L"a", 2.5, false, UNINITIALIZED, L"2.5"},
      {"text as real", 1.0, L"2.5", true, UNINITIALIZED, 2.5},
      {"text as integer", 1, L"25", true, UNINITIALIZED, 25},
      {"text as variant", Scalar(1), L"2.5", true, UNINITIALIZED, Scalar(2.5)},
      {"word onto a variant, not parsed", Boolean(true), L"word", false, UNINITIALIZED, VariantType()},
      {"TRUE", false, L"TRUE", true, UNINITIALIZED, true},
      {"False", true, L"False", true, UNINITIALIZED, false},
      {"0001", false, L"0001", true, UNINITIALIZED, true},
      {"+1", false, L"+1", true, UNINITIALIZED, true},
      {"-00", true, L"-00", true, UNINITIALIZED, false},
  };
  for (const Case& c : cases) {
    CDesignEntry cell = c.cell;
    cell.assignPreservingType(c.value, c.parse, c.fallback);
    ExpectSame(cell, c.expected, c.name);
  }
}

TEST(DesignEntry, KeepsTheCellWhenAnAssignmentIsRefused) {
  CDesignEntry real = 1.0;
  EXPECT_THROW(real.assignPreservingType(Vector({1, 2}), false), std::logic_error);
  EXPECT_THROW(real.assignPreservingType({}, false), std::invalid_argument);
  EXPECT_THROW(real.assignPreservingType(Vector({1}), false), utils::logic_error);
  EXPECT_THROW(real.assignPreservingType(L"word", true), boost::bad_lexical_cast);
  ExpectSame(real, 1.0, "real");
  CDesignEntry flag = true;
  for (const wchar_t* const text : {L"2", L"-1", L"", L"+", L"-", L"10", L"01x", L"yes"}) {
    EXPECT_THROW(flag.assignPreservingType(text, true), boost::bad_lexical_cast) << string::narrow(text);
  }
  CDesignEntry variant = Scalar(1);
  EXPECT_THROW(variant.assignPreservingType(L"word", true), boost::bad_lexical_cast);
}

TEST(DesignEntry, Subtracts) {
  struct Case {
    CDesignEntry left, right, expected;
  };
  const Case cases[] = {{true, true, false},
                        {true, 0.0, true},
                        {2.5, 1, 1.5},
                        {3, 1.75, 2},
                        {{}, 1.0, {}},
                        {{}, {}, {}},
                        {1.0, {}, kNaN},
                        {Scalar(3), 1, Scalar(2)},
                        {5.0, Vector({1, 2}), Vector({4, 3})},
                        {std::numeric_limits<std::int64_t>::min(), 1, kLargest}};
  for (const Case& c : cases) ExpectSame(c.left - c.right, c.expected, Text(c.left) + " - " + Text(c.right));
  EXPECT_THROW(CDesignEntry(L"a") - CDesignEntry(L"a"), std::logic_error);
  EXPECT_THROW(CDesignEntry(1.0) - CDesignEntry(L"a"), std::logic_error);
  EXPECT_THROW(CDesignEntry(1.0) - CDesignEntry(VariantType()), math::CTypeException);
}

TEST(DesignEntry, Compares) {
  struct Case {
    CDesignEntry left, right;
    bool same, equal, less;
  };
  const Case cases[] = {{{}, {}, true, true, true},
                        {kNaN, {}, false, true, false},
                        {kNaN, kNaN, false, true, false},
                        {VariantType(), {}, true, true, false},
                        {kInfinity, -kInfinity, false, true, false},
                        {kInfinity, 1.0, false, false, false},
                        {1.0, kInfinity, false, false, true},
                        {0.0, 1e-17, false, true, true},
                        {1e-300, 2e-300, false, false, true},
                        {-1.0, 1.0, false, false, true},
                        {3, 3.0, true, true, false},
                        {true, 2, false, false, true},
                        {L"3", 3.0, false, false, false},
                        {3.0, L"3", false, false, true},
                        {L"a", L"b", false, false, true},
                        {L"a", L"a", true, true, false},
                        {1, Vector({1}), false, false, true},
                        {Vector({1, 1e-17}), Vector({1, 0}), false, true, false},
                        {{}, 1.0, false, false, true}};
  for (const Case& c : cases) {
    const std::string name = Text(c.left) + " and " + Text(c.right);
    EXPECT_EQ(c.left == c.right, c.same) << name;
    EXPECT_EQ(Equal(c.left, c.right), c.equal) << name;
    EXPECT_EQ(c.left < c.right, c.less) << name;
  }
}

TEST(DesignEntry, IsNearToByRatio) {
  struct Case {
    CDesignEntry left, right;
    bool near;
  };
  const Case cases[] = {{1.0, 1.05, true},
                        {-1.0, -1.05, true},
                        {1.0, 1.2, false},
                        {1.0, -1.0, false},
                        {0.0, 0.001, false},
                        {0.001, 0.0, false},
                        {0.0, 1e-17, true},
                        {100, 101, false},
                        {100, 101.0, true},
                        {L"1.0", L"1.01", false},
                        {L"1.0", 1.0, false},
                        {kNaN, {}, true},
                        {kInfinity, 1.0, false},
                        {Vector({1, 2}), Vector({1.05, 2}), true},
                        {Vector({1, 2}), Vector({1.05, 3}), false}};
  for (const Case& c : cases) EXPECT_EQ(NearTo(c.left, c.right, 0.1), c.near) << Text(c.left) << " " << Text(c.right);
}

}  // namespace
}  // namespace kestrel
