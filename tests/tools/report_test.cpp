#include "report.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "json.h"

namespace kestrel::cli {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Report TwoOutputs() {
  Report report;
  report.inputs = {"größe", "b", "c"};
  report.designs = 12;
  report.models = {{"y", "Linear Regression | 2", "polynomial", 0.98765, {0.25, kNan, 0.75}, {2, 0}},
                   {"kraft", "Linear Regression | 0", "polynomial", kNan, {kNan, kNan, kNan}, {}}};
  report.cross_validations = {{12, 5}, {7, 0}};
  return report;
}

TEST(Report, IsATableForPeople) {
  std::ostringstream text;
  PrintReport(text, TwoOutputs());
  EXPECT_EQ(text.str(),
            "output  model                  inputs  CoP     inputs by single CoP\n" + std::string(110, '-') +
                "\n"
                "y       Linear Regression | 2  2 of 3  0.9877  c 0.7500, größe 0.2500\n"
                "kraft   Linear Regression | 0  0 of 3  nan\n"
                "\n"
                "y: CoP by cross-validation in 5 groups, 12 designs.\n"
                "kraft: CoP by leaving out each design in turn, 7 of 12 designs (the others have no finite value).\n");
}

TEST(Report, IsOneObjectForPrograms) {
  std::ostringstream text;
  PrintJson(text, TwoOutputs(), {{"y", "kraft"}, 2, {1.5, kNan, 2.0, 0.1}});
  EXPECT_EQ(text.str(), std::string("{\n  \"version\": \"") + zor_get_version_str() + R"(",
  "designs": 12,
  "outputs": [
    {
      "name": "y",
      "model": "Linear Regression | 2",
      "model_type": "polynomial",
      "cop": 0.98765,
      "inputs_kept": ["c", "größe"],
      "single_cops": {"größe": 0.25, "b": null, "c": 0.75},
      "cross_validation": {"method": "cross_validation", "groups": 5, "designs": 12},
      "predictions": [1.5, 2]
    },
    {
      "name": "kraft",
      "model": "Linear Regression | 0",
      "model_type": "polynomial",
      "cop": null,
      "inputs_kept": [],
      "single_cops": {"größe": null, "b": null, "c": null},
      "cross_validation": {"method": "leave_one_out", "groups": null, "designs": 7},
      "predictions": [null, 0.1]
    }
  ]
}
)");
}

TEST(Json, EscapesWhatItMust) {
  using namespace std::string_literals;
  EXPECT_EQ(JsonText("a\"b\\c/ü\n\t\x01\x1f\x7f\0"s), "\"a\\\"b\\\\c/ü\\u000a\\u0009\\u0001\\u001f\x7f\\u0000\"");
  EXPECT_EQ(JsonText("a\xff\xc3(\xe2\x82"), "\"a\uFFFD\uFFFD(\uFFFD\uFFFD\"");
  EXPECT_EQ(JsonNumber(-1e-300), "-1e-300");
  EXPECT_EQ(JsonNumber(std::numeric_limits<double>::infinity()), "null");
}

}  // namespace
}  // namespace kestrel::cli
