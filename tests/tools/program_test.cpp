#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zor_api.h>

#include <cmath>
#include <string>
#include <vector>

#include "csv_reader.h"
#include "run_zor.h"
#include "support/temporary_folder.h"

namespace kestrel::cli {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const char kFit[] = "fit designs.csv --inputs a,b,c --outputs y,z ";

TEST(Program, TellsWhichLibraryRuns) {
  const TemporaryFolder folder;
  const Result result = RunZor(folder, "info --build");
  EXPECT_EQ(result.status, 0) << result.err;
  // This test program and `zor` get the library from the same place.
  EXPECT_EQ(result.out.find("version  " + std::string(zor_get_version_str()) + "\nbuild    " + zor_get_build_str()),
            0U);
  EXPECT_THAT(result.out, ContainsRegex("\nfile     /.*/libzor_api\\.so\\.[0-9]+\n"));
  EXPECT_THAT(RunZor(folder, "info --build --json").out, HasSubstr("\"kind\": \"library\""));
  EXPECT_EQ(RunZor(folder, "info --build m.zor").status, 2);
  EXPECT_EQ(RunZor(folder, "info").status, 2);
}

TEST(Program, ReportsTheModels) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  const Result result = RunZor(folder, kFit);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, ContainsRegex("\ny +[^\n]* 2 of 3 +1.0000 +[ab] [0-9.]+, [ab] [0-9.]+\n"));
  EXPECT_THAT(result.out, ContainsRegex("\nz +[^\n]* 1 of 3 +1.0000 +c 1.0000\n"));
  EXPECT_THAT(result.out, ContainsRegex("\ny: CoP by cross-validation in [0-9]+ groups, 48 designs\\.\n"));
  EXPECT_THAT(result.out, HasSubstr(", 40 of 48 designs (the others have no finite value)."));
}

TEST(Program, PredictsToStandardOutputOrFile) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  folder.Write("points.csv", "b,note,c,a\n0.5,text,4,1\n-1.25,,0.5,0.3\n");
  const Result piped = RunZor(folder, kFit + std::string("--predict points.csv"));
  EXPECT_EQ(piped.status, 0);
  EXPECT_THAT(piped.out, StartsWith("y,z\n"));
  EXPECT_THAT(piped.err, StartsWith("output "));

  const Result filed = RunZor(folder, kFit + std::string("--predict points.csv --output predictions.csv"));
  EXPECT_EQ(filed.status, 0);
  EXPECT_EQ(filed.err, "");
  EXPECT_EQ(filed.out, piped.err);
  EXPECT_EQ(folder.Read("predictions.csv"), piped.out);

  const Table predictions = ReadTable(folder.Path("predictions.csv"), [](const auto&) {
    return std::vector<Column>{{0, CellRule::kFinite}, {1, CellRule::kFinite}};
  });
  ASSERT_EQ(predictions.rows, 2U);
  EXPECT_NEAR(predictions.values[0], Y(1.0, 0.5), 1e-8);
  EXPECT_NEAR(predictions.values[1], 3.0, 1e-8);
  EXPECT_NEAR(predictions.values[2], Y(0.3, -1.25), 1e-8);
  EXPECT_NEAR(predictions.values[3], 6.5, 1e-8);
}

TEST(Program, RefusesPointsOutsideUnlessToldToExtrapolate) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  folder.Write("points.csv", "a,b,c\n1,0,2\n1,0,12.5\n");
  const Result refused = RunZor(folder, kFit + std::string("--predict points.csv"));
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.out, "");
  EXPECT_EQ(refused.err,
            "zor: Value 12.5 of Parameter c violates bounds: [0, 12] "
            "(--extrapolate predicts points outside the bounds)\n");
  const Result allowed = RunZor(folder, kFit + std::string("--predict points.csv --extrapolate --json"));
  EXPECT_EQ(allowed.status, 0);
  EXPECT_THAT(allowed.out, ContainsRegex("\"predictions\": \\[(5|4.99999)[0-9.]*, -5[0-9.]*\\]"));
}

TEST(Program, WritesCrossValidationValues) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  for (const std::string method : {"cross_validation", "leave_one_out"}) {
    SCOPED_TRACE(method);
    const Result result = RunZor(folder, kFit + ("--json --cv cv.csv --set testing_type=" + method));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\"method\": \"" + method + "\""));
    EXPECT_THAT(folder.Read("cv.csv"), StartsWith("y,y_cv,z,z_cv\n"));
    const Table pairs = ReadTable(folder.Path("cv.csv"), [](const auto&) {
      return std::vector<Column>{
          {0, CellRule::kFinite}, {1, CellRule::kFinite}, {2, CellRule::kAnyNumber}, {3, CellRule::kAnyNumber}};
    });
    ASSERT_EQ(pairs.rows, 48U);
    for (std::size_t row = 0; row < pairs.rows; ++row) {
      const double* const values = &pairs.values[4 * row];
      EXPECT_NEAR(values[1], values[0], 1e-8) << "row " << row;
      EXPECT_EQ(std::isnan(values[2]), row % 6 == 3) << "row " << row;
      EXPECT_TRUE(std::isnan(values[2]) ? std::isnan(values[3]) : std::abs(values[3] - values[2]) < 1e-8)
          << "row " << row;
    }
  }
}

TEST(Program, AnswersHelpAndVersion) {
  const TemporaryFolder folder;
  const Result version = RunZor(folder, "--version");
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.out, MatchesRegex("zor [0-9]+\\.[0-9]+\\.[0-9]+[^\n]*\n"));
  const Result help = RunZor(folder, "fit --help");
  EXPECT_EQ(help.status, 0);
  EXPECT_THAT(help.out, AllOf(HasSubstr("--predict"), ContainsRegex("max_order_polynomial +[^\n]+\\[2\\]\n")));
}

TEST(Program, AnswersEveryFaultWithOneLine) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  folder.Write("points.csv", "a,b,c\n1,zero,2\n");
  folder.Write("header.csv", "a,b\n");
  folder.Write("names.csv", "größe,y,PI\n1,2,3\n");
  folder.Write("missing.csv", "a,y\n1,\n2,nan\n3,inf\n");
  folder.Write("nameless.csv", "a,y,\n1,2,3\n");
  const FaultyCall calls[] = {
      {"", 2, "A subcommand is required; see 'zor --help'"},
      {"fit --outputs y", 2, "designs is required; see 'zor fit --help'"},
      {"fit designs.csv --outputs y --jobs many", 2, "Could not convert: --jobs = many; see 'zor fit --help'"},
      {"fit designs.csv --outputs y --extrapolate", 2, "--extrapolate requires --predict; see 'zor fit --help'"},
      {"fit designs.csv --outputs y --bogus", 2,
       "The following argument was not expected: --bogus; see 'zor fit --help'"},
      {"fit header.csv --outputs b", 2, "header.csv: The file has no designs below its header row."},
      {"fit header.csv --outputs a,b", 2, "header.csv: No column is left as input."},
      {"fit missing.csv --outputs y", 2, "missing.csv: The output 'y' has no finite value."},
      {"fit designs.csv --outputs q", 2,
       "designs.csv: There is no column 'q'; the file has 'id', 'a', 'b', 'c', 'y', 'z'."},
      {"fit designs.csv --inputs a,y --outputs y", 2, "The column 'y' is named twice as input or output."},
      {"fit designs.csv --outputs 'y, '", 2, "--outputs: a name is empty."},
      {"fit designs.csv --outputs y", 2, "designs.csv: row 2, column 1 ('id'): 'run 0' is not a number."},
      {"fit names.csv --inputs größe,y --outputs PI", 2,
       "names.csv: row 1, column 3: 'PI' is not a valid name: a name is a letter or '_', then letters, "
       "digits, '_', '.' or an apostrophe, and not a reserved word such as PI or TRUE."},
      {"fit nameless.csv --outputs y", 2, "nameless.csv: row 1, column 3: The column has no name."},
      {"fit designs.csv --inputs a,b,c --outputs y --predict points.csv", 2,
       "points.csv: row 2, column 2 ('b'): 'zero' is not a number."},
      {"fit designs.csv --inputs a --outputs y --cv designs.csv", 2,
       "designs.csv: Would overwrite a file that is read."},
      {"fit designs.csv --inputs a --outputs y --cv none/cv.csv", 2,
       "none/cv.csv: Cannot be written: No such file or directory."},
      {"fit designs.csv --inputs a --outputs y --cv new.csv --store ./new.csv", 2,
       "--cv and --store name the same file."},
      {"fit designs.csv --inputs a --outputs y --store ''", 2,
       "--store: The name of the file is empty; see 'zor fit --help'"},
      {"fit designs.csv --inputs a --outputs y --monitor .", 2, ".: Is a directory."},
      {"fit designs.csv --inputs a --outputs y --report --json", 2, "--report excludes --json; see 'zor fit --help'"},
      {"fit designs.csv --inputs a --outputs y --set max_coi=2", 1, "ERROR: Importance limit must be between 0 and 1."},
      {"fit designs.csv --inputs a,b,c --outputs y --cv /dev/full", 1,
       "/dev/full: Not all could be written: No space left on device."},
  };
  for (const FaultyCall& call : calls) ExpectRefusal(folder, call);
  EXPECT_EQ(folder.Read("designs.csv"), ExactDesigns());
}

}  // namespace
}  // namespace kestrel::cli
