#include "support/version.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrel {
namespace {

TEST(Version, TextIsMadeOfTheParts) {
  const auto number = [](unsigned value) { return std::to_string(value); };
  EXPECT_EQ(kVersion.text, number(kVersion.major_number) + "." + number(kVersion.minor_number) + "." +
                               number(kVersion.patch_number) + kVersion.tag + " (" + number(kVersion.build_number) +
                               ")");
  EXPECT_STREQ(kVersion.text, "21.2.0dev (1791)");
}

}  // namespace
}  // namespace kestrel
