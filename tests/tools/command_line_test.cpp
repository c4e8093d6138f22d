#include "command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace kestrel::cli {
namespace {

template <class Arguments>
Arguments Read(std::vector<const char*> words) {
  words.insert(words.begin(), "zor");
  return std::get<Arguments>(ReadCommandLine(static_cast<int>(words.size()), words.data()));
}

TEST(CommandLine, KnowsFit) {
  const auto fit = Read<FitArguments>(
      {"fit",   "d.csv",       "--outputs", "y, z",    "--outputs", "w",         "--inputs",      "a",
       "--set", "use_mls=off", "--jobs",    "3",       "--predict", "p.csv",     "--extrapolate", "--output",
       "o.csv", "--cv",        "c.csv",     "--store", "m.zor",     "--monitor", "r.lyra",        "--report"});
  EXPECT_EQ(fit.designs, "d.csv");
  EXPECT_THAT(fit.outputs, testing::ElementsAre("y", "z", "w"));
  EXPECT_THAT(fit.inputs, testing::ElementsAre("a"));
  EXPECT_THAT(fit.settings, testing::ElementsAre("use_mls=off"));
  EXPECT_EQ(fit.jobs, 3U);
  EXPECT_EQ(fit.points, "p.csv");
  EXPECT_TRUE(fit.extrapolate);
  EXPECT_EQ(fit.predictions, "o.csv");
  EXPECT_EQ(fit.cross_validation, "c.csv");
  EXPECT_EQ(fit.stored_model, "m.zor");
  EXPECT_EQ(fit.monitoring, "r.lyra");
  EXPECT_TRUE(fit.build_report);
  EXPECT_FALSE(fit.json);
}

TEST(CommandLine, KnowsPredictAndInfo) {
  const auto predict = Read<PredictArguments>(
      {"predict", "m.zor", "--gradients", "g.csv", "--errors", "e.csv", "p.csv", "--extrapolate", "--output", "o.csv"});
  EXPECT_EQ(predict.model, "m.zor");
  EXPECT_EQ(predict.points, "p.csv");
  EXPECT_TRUE(predict.extrapolate);
  EXPECT_EQ(predict.predictions, "o.csv");
  EXPECT_EQ(predict.gradients, "g.csv");
  EXPECT_EQ(predict.errors, "e.csv");
  const auto info = Read<InfoArguments>({"info", "--json", "m.zor"});
  EXPECT_EQ(info.file, "m.zor");
  EXPECT_TRUE(info.json);
  EXPECT_FALSE(info.build);
  EXPECT_TRUE(Read<InfoArguments>({"info", "--build"}).build);
}

}  // namespace
}  // namespace kestrel::cli
