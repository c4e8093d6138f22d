#include "support/exceptions.h"

#include <gtest/gtest.h>

namespace kestrel::utils {
namespace {

constexpr const wchar_t* kWide = L"Gr\u00F6\u00DFe \U0001F600";
constexpr const char* kUtf8 =
    "Gr\xC3\xB6\xC3\x9F"
    "e \xF0\x9F\x98\x80";

template <class Error>
class ExceptionFamily : public ::testing::Test {};
using Errors = ::testing::Types<runtime_error, logic_error, out_of_range>;
TYPED_TEST_SUITE(ExceptionFamily, Errors);

TYPED_TEST(ExceptionFamily, CarriesWideAndNarrowText) {
  try {
    throw TypeParam(kWide);
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), kUtf8);
    EXPECT_EQ(exception_what(error), kWide);
  }
  EXPECT_THROW(throw TypeParam(kWide), exception);  // also by the family's own base
}

TEST(ExceptionFamily, WidensTheTextOfOtherErrors) {
  EXPECT_EQ(exception_what(std::invalid_argument(kUtf8)), kWide);
  EXPECT_EQ(exception_what(std::invalid_argument("a\xFF")), L"a\uFFFD");
}

}  // namespace
}  // namespace kestrel::utils
