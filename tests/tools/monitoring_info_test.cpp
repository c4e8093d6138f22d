#include "monitoring_info.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "errors.h"

namespace kestrel::cli {
namespace {

using testing::HasSubstr;

const char kDescription[] = R"({
  "header": {"encoding": "UTF-8", "version": {"file": 1, "suffix": ""}, "odd": [1, -2.5, true, "x"]},
  "parameters": [{"name": "größe", "lower": 0.1, "upper": 1e300}, {"name": "b", "lower": null, "upper": 2}],
  "responses": ["y", "z"],
  "designs": {"total": 48, "succeeded": 40, "failed": 7, "pending": 1},
  "models": [{"response": "y", "model": "Linear Regression | 2", "cop": 0.98765},
             {"response": "z", "model": "", "cop": null}]})";

std::string Printed(void (*print)(std::ostream&, const std::string&), const std::string& description) {
  std::ostringstream stream;
  print(stream, description);
  return stream.str();
}

TEST(MonitoringInfo, IsTablesForPeople) {
  const std::string rule = std::string(110, '-') + "\n";
  EXPECT_EQ(Printed(&PrintMonitoringInfo, kDescription),
            "Monitoring file with 48 designs: 40 succeeded, 7 failed, 1 pending.\n"
            "Responses: y, z.\n"
            "\n"
            "header          value\n" +
                rule +
                "encoding        UTF-8\n"
                "odd             [1, -2.5, true, \"x\"]\n"
                "version.file    1\n"
                "version.suffix\n"
                "\n"
                "parameter  lower bound  upper bound\n" +
                rule +
                "größe      0.1          1e+300\n"
                "b          nan          2\n"
                "\n"
                "response  model                  CoP\n" +
                rule +
                "y         Linear Regression | 2  0.9877\n"
                "z                                nan\n");
}

TEST(MonitoringInfo, IsOneObjectForPrograms) {
  EXPECT_EQ(Printed(&PrintMonitoringInfoJson, kDescription), R"({
  "kind": "monitoring_file",
  "designs": {"failed": 7, "pending": 1, "succeeded": 40, "total": 48},
  "header": {"encoding": "UTF-8", "odd": [1, -2.5, true, "x"], "version": {"file": 1, "suffix": ""}},
  "models": [
    {"cop": 0.98765, "model": "Linear Regression | 2", "response": "y"},
    {"cop": null, "model": "", "response": "z"}
  ],
  "parameters": [
    {"lower": 0.1, "name": "größe", "upper": 1e+300},
    {"lower": null, "name": "b", "upper": 2}
  ],
  "responses": [
    "y",
    "z"
  ]
}
)");
}

TEST(MonitoringInfo, BearsValuesOfOtherTypes) {
  const char* const descriptions[] = {
      "{}",
      R"({"header": "a", "parameters": 1, "responses": {"y": 1}, "designs": [], "models": "m"})",
      R"({"header": [{}], "parameters": [1, [], {"name": {}, "lower": "x"}], "responses": [1, null], "designs": 2,
          "models": [null]})",
      R"({"designs": {"total": -1, "failed": 1e99, "pending": "3"}})",
  };
  for (const char* const description : descriptions) {
    EXPECT_THAT(Printed(&PrintMonitoringInfo, description), HasSubstr("Monitoring file with ? designs")) << description;
  }
  EXPECT_THAT(Printed(&PrintMonitoringInfo, R"({"header": {"k\u001b[2J": "v\n\u009b"}})"),
              HasSubstr("\nk\\x1b[2J  v\\x0a\\xc2\\x9b\n"));
}

TEST(MonitoringInfo, RefusesWhatIsNoObject) {
  for (const std::string description : {"", "[]", "{\"a\": ", "null"}) {
    EXPECT_THROW(Printed(&PrintMonitoringInfo, description), WorkError) << description;
  }
  EXPECT_ANY_THROW(Printed(&PrintMonitoringInfoJson, "{\"a\":" + std::string(100000, '[')));
}

}  // namespace
}  // namespace kestrel::cli
