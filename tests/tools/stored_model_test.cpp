#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>
#include <string>
#include <vector>

#include "csv_reader.h"
#include "run_zor.h"
#include "support/temporary_folder.h"

namespace kestrel::cli {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// The first mixes of the example.
std::string ConcreteMixes(int count) {
  std::ifstream file(ZOR_EXAMPLES "/data/concrete_mix.csv");
  std::string csv;
  std::string line;
  for (int i = 0; i <= count && std::getline(file, line); ++i) csv += line + "\n";
  return csv;
}

Table ReadAll(const std::string& path) {
  return ReadTable(path, [](const std::vector<std::string>& header) {
    std::vector<Column> columns;
    for (std::size_t i = 0; i < header.size(); ++i) columns.push_back({i, CellRule::kAnyNumber});
    return columns;
  });
}

std::vector<std::string> Lines(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// A folder with the exact designs, the models of y and z of a, b and c and the record of their build.
class StoredModel : public testing::Test {
 protected:
  void SetUp() override {
    folder_.Write("designs.csv", ExactDesigns());
    fit_ = RunZor(folder_, "fit designs.csv --inputs a,b,c --outputs y,z --store m.zor --monitor r.lyra --json");
    ASSERT_EQ(fit_.status, 0) << fit_.err;
  }

  TemporaryFolder folder_;
  Result fit_;
};

TEST(StoredModels, PredictWhatTheBuildPredicted) {
  const TemporaryFolder folder;
  folder.Write("mixes.csv", ConcreteMixes(120));
  for (const std::string kind : {"polynomials", "mls", "kriging"}) {
    SCOPED_TRACE(kind);
    std::string fit = "fit mixes.csv --outputs strength_mpa --predict mixes.csv --output built.csv --store m.zor";
    for (const std::string other : {"polynomials", "mls", "kriging"}) {
      if (other != kind) fit += " --set use_" + other + "=off";
    }
    ASSERT_EQ(RunZor(folder, fit).status, 0) << folder.Read("err");
    const Result stored = RunZor(folder, "predict m.zor mixes.csv");
    EXPECT_EQ(stored.status, 0) << stored.err;
    EXPECT_TRUE(stored.out == folder.Read("built.csv"));  // 121 lines
  }
}

TEST_F(StoredModel, KnowsGradientsAndErrors) {
  folder_.Write("points.csv", "c,note,b,a\n4,text,0.5,1\n0.5,,-1.25,0.3\n");
  const Result result = RunZor(folder_, "predict m.zor points.csv --output p.csv --gradients g.csv --errors e.csv");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  const Table predictions = ReadAll(folder_.Path("p.csv"));
  EXPECT_NEAR(predictions.values.at(2), Y(0.3, -1.25), 1e-8);

  const Table gradients = ReadAll(folder_.Path("g.csv"));
  EXPECT_THAT(gradients.names, ElementsAre("dy/da", "dy/db", "dy/dc", "dz/da", "dz/db", "dz/dc"));
  const std::vector<double> exact = {4.0, 1.0, 0.0, 0.0, 0.0, -1.0, -3.0, -1.8, 0.0, 0.0, 0.0, -1.0};
  EXPECT_THAT(gradients.values, testing::Pointwise(testing::DoubleNear(1e-6), exact));

  const Table errors = ReadAll(folder_.Path("e.csv"));
  EXPECT_THAT(errors.names, ElementsAre("y_cop", "y_rmse", "y_mean", "y_mean_abs", "y_density", "z_cop", "z_rmse",
                                        "z_mean", "z_mean_abs", "z_density"));
  ASSERT_EQ(errors.rows, 2U);
  for (std::size_t i = 0; i < errors.values.size(); i += 5) {
    EXPECT_NEAR(errors.values[i], 1.0, 1e-6) << i;
    EXPECT_LT(errors.values[i + 1], 1e-6) << i;
    EXPECT_GT(errors.values[i + 4], 0.0) << i;
  }
}

TEST_F(StoredModel, PredictsNothingForNoPoints) {
  folder_.Write("points.csv", "a,b,c\n");
  const Result result = RunZor(folder_, "predict m.zor points.csv --errors e.csv");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "y,z\n");
  EXPECT_EQ(Lines(folder_.Read("e.csv")).size(), 1U);
}

TEST_F(StoredModel, IsTold) {
  const Result table = RunZor(folder_, "info m.zor");
  EXPECT_EQ(table.status, 0) << table.err;
  EXPECT_THAT(table.out, StartsWith("Stored model with 3 inputs and 2 outputs, built.\n"));
  EXPECT_THAT(table.out, ContainsRegex("\nb +-2 +3\n"));
  EXPECT_THAT(table.out, ContainsRegex("\nz +[^\n]* 1 of 3 +1.0000 +c 1.0000\n"));
  const Result json = RunZor(folder_, "info m.zor --json");
  EXPECT_THAT(json.out, AllOf(HasSubstr("\"kind\": \"stored_model\""),
                              HasSubstr("{\"name\": \"b\", \"lower\": -2, \"upper\": 3}")));
  // The fit told the same of its models, digit for digit.
  const std::vector<std::string> told = Lines(json.out);
  for (const std::string& line : Lines(fit_.out)) {
    if (line.find("\"cop\": ") != std::string::npos || line.find("\"model\": ") != std::string::npos) {
      EXPECT_THAT(told, Contains(line));
    }
  }
}

TEST_F(StoredModel, HasARecordOfItsBuild) {
  const Result table = RunZor(folder_, "info r.lyra");
  EXPECT_EQ(table.status, 0) << table.err;
  EXPECT_THAT(table.out, StartsWith("Monitoring file with 48 designs: 40 succeeded, 8 failed, 0 pending.\n"));
  EXPECT_THAT(table.out, ContainsRegex("\nfilename +r.lyra\n"));
  EXPECT_THAT(table.out, ContainsRegex("\nb +-[0-9.]+ +[0-9.]+\n"));
  EXPECT_THAT(table.out, ContainsRegex("\nz +[^\n]* 1.0000\n"));
  const Result json = RunZor(folder_, "info r.lyra --json");
  EXPECT_THAT(json.out, AllOf(HasSubstr("\"kind\": \"monitoring_file\""), HasSubstr("\"encoding\": \"UTF-8\"")));
}

TEST_F(StoredModel, AnswersEveryFaultWithOneLine) {
  folder_.Write("points.csv", "a,b,c\n1,0,2\n1,0,12.5\n");
  folder_.Write("other.csv", "a,b\n1,0\n");
  folder_.Write("empty", "");
  ASSERT_EQ(mkfifo(folder_.Path("pipe").c_str(), 0600), 0);
  const FaultyCall calls[] = {
      {"predict m.zor points.csv --output p.csv --gradients g.csv", 1,
       "Value 12.5 of Parameter c violates bounds: [0, 12] (--extrapolate predicts points outside the bounds)"},
      {"predict m.zor other.csv", 2, "other.csv: There is no column 'c'; the file has 'a', 'b'."},
      {"predict m.zor points.csv --errors m.zor", 2, "m.zor: Would overwrite a file that is read."},
      {"predict m.zor points.csv --output new.csv --errors new.csv", 2, "--output and --errors name the same file."},
      {"predict m.zor", 2, "points is required; see 'zor predict --help'"},
      {"predict m.zor points.csv --extrapolate --output /dev/full", 1,
       "/dev/full: Not all could be written: No space left on device."},
      {"predict none points.csv", 1, "none: No such file or directory."},
      {"predict r.lyra points.csv", 1,
       "r.lyra: Is a monitoring file; expected is a stored model, as 'zor fit --store' writes it."},
      {"predict designs.csv points.csv", 1, "designs.csv: Is not a stored model."},
      {"info none", 1, "none: No such file or directory."},
      {"info .", 1, ".: Is a directory."},
      {"info pipe", 1, "pipe: Is not a regular file."},
      {"info /dev/zero", 1, "/dev/zero: Is not a regular file."},
      {"info empty", 1, "empty: Is neither a stored model nor a monitoring file."},
      {"info designs.csv", 1, "designs.csv: Is neither a stored model nor a monitoring file."},
  };
  for (const FaultyCall& call : calls) ExpectRefusal(folder_, call);
  EXPECT_EQ(folder_.Read("p.csv") + folder_.Read("g.csv"), "");
}

TEST_F(StoredModel, IsRefusedIfDamaged) {
  for (const std::string name : {"m.zor", "r.lyra"}) {
    const std::string bytes = folder_.Read(name);
    std::string smeared = bytes;
    smeared.replace(bytes.size() / 3, 64, 64, '\xff');
    const std::string damaged[] = {smeared, bytes.substr(0, 4), bytes.substr(0, bytes.size() / 2),
                                   bytes.substr(0, 4) + std::string(1000, '\xff'), bytes.substr(0, 4) + "\n\x1b[2J"};
    for (const std::string& content : damaged) {
      folder_.Write("damaged", content);
      const Result result = RunZor(folder_, "info damaged");
      EXPECT_EQ(result.status, 1) << name << ", " << content.size() << " bytes";
      EXPECT_EQ(result.out, "");
      EXPECT_THAT(result.err, StartsWith("zor: damaged: Cannot be read as a "));
      EXPECT_EQ(Lines(result.err).size(), 1U) << result.err;
    }
  }
}

TEST_F(StoredModel, ComesWithTheReportOfTheLibrary) {
  folder_.Write("points.csv", "a,b,c\n1,0,2\n");
  const std::string fit = "fit designs.csv --inputs a,b,c --outputs y,z ";
  const Result report = RunZor(folder_, fit + "--report");
  EXPECT_EQ(report.status, 0) << report.err;
  EXPECT_GT(Lines(report.out).size(), 1U);
  EXPECT_THAT(report.out, testing::Not(HasSubstr("inputs by single CoP")));
  const Result beside = RunZor(folder_, fit + "--report --predict points.csv");
  EXPECT_THAT(beside.out, StartsWith("y,z\n"));
  EXPECT_EQ(Lines(beside.err).size(), Lines(report.out).size());
}

}  // namespace
}  // namespace kestrel::cli
