#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "csv_reader.h"
#include "numbers.h"
#include "tools/temporary_folder.h"

namespace kestrel::cli {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

struct Result {
  int status;
  std::string out;
  std::string err;
};

/// Runs `zor` with arguments for the shell, in the folder.
Result RunZor(const TemporaryFolder& folder, const std::string& arguments) {
  const std::string command = "cd '" + folder.Path("") + "' && '" ZOR_PROGRAM "' " + arguments + " >out 2>err";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status)) << "killed by a signal: zor " << arguments;
  return {WEXITSTATUS(status), folder.Read("out"), folder.Read("err")};
}

/// y = 1 + 2 a - 3 b + 4 a b without noise and z = 7 - c, of 48 designs; z is missing in every sixth.
double Y(double a, double b) { return 1.0 + 2.0 * a - 3.0 * b + 4.0 * a * b; }

std::string ExactDesigns() {
  std::ostringstream csv;
  csv << "id,a,b,c,y,z\n";
  for (int i = 0; i < 48; ++i) {
    const double a = 0.25 * (i % 7);
    const double b = 0.5 * ((5 * i) % 11) - 2.0;
    const double c = (3 * i) % 13;
    csv << "run " << i << ',' << a << ',' << b << ',' << c << ',' << ExactText(Y(a, b)) << ',';
    if (i % 6 != 3) csv << 7.0 - c;
    csv << '\n';
  }
  return csv.str();
}

/// Two outputs with a share that no model explains; y is infinite or missing in some designs.
std::string NoisyDesigns() {
  std::ostringstream csv;
  csv << "a,b,y,z\n";
  for (int i = 0; i < 60; ++i) {
    const double a = 0.1 * ((7 * i) % 60);
    const double b = 0.2 * ((11 * i) % 30);
    const std::string y = i % 10 == 4 ? "" : i % 10 == 7 ? "inf" : ExactText(a * a + std::sin(40.0 * i) - b);
    csv << ExactText(a) << ',' << ExactText(b) << ',' << y << ',' << ExactText(5.0 + b * a + 2.0 * std::cos(31.0 * i))
        << '\n';
  }
  return csv.str();
}

const char kFit[] = "fit designs.csv --inputs a,b,c --outputs y,z ";

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
  const Result allowed = RunZor(folder, kFit + std::string("--predict points.csv --extrapolate"));
  EXPECT_EQ(allowed.status, 0);
  EXPECT_THAT(allowed.out, StartsWith("y,z\n"));
}

/// The number behind the n-th `"cop": ` of a JSON report.
double CopOfOutput(const std::string& json, int output) {
  std::size_t position = 0;
  for (int i = 0; i <= output; ++i) position = json.find("\"cop\": ", position) + 7;
  return ReadNumber(json.substr(position, json.find(',', position) - position)).value;
}

/// 1 - SSE / SST of the pair of columns that starts at `column`, over the rows that have it.
double CopOfColumns(const Table& pairs, std::size_t column) {
  double count = 0.0;
  double sum = 0.0;
  double sum_of_errors = 0.0;
  for (std::size_t row = 0; row < pairs.rows; ++row) {
    const double* const pair = &pairs.values[row * pairs.names.size() + column];
    EXPECT_EQ(std::isnan(pair[0]), std::isnan(pair[1])) << "row " << row;
    if (std::isnan(pair[0])) continue;
    count += 1.0;
    sum += pair[0];
    sum_of_errors += (pair[0] - pair[1]) * (pair[0] - pair[1]);
  }
  double sum_of_squares = 0.0;
  for (std::size_t row = 0; row < pairs.rows; ++row) {
    const double deviation = pairs.values[row * pairs.names.size() + column] - sum / count;
    if (!std::isnan(deviation)) sum_of_squares += deviation * deviation;
  }
  return 1.0 - sum_of_errors / sum_of_squares;
}

class CrossValidationFileTest : public testing::TestWithParam<const char*> {};

TEST_P(CrossValidationFileTest, ReproducesTheCop) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", NoisyDesigns());
  const Result result =
      RunZor(folder, std::string("fit designs.csv --outputs y,z --json --cv cv.csv --set testing_type=") + GetParam());
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr(std::string("\"method\": \"") + GetParam() + "\""));
  EXPECT_THAT(folder.Read("cv.csv"), StartsWith("y,y_cv,z,z_cv\n"));
  const Table pairs = ReadTable(folder.Path("cv.csv"), [](const auto&) {
    return std::vector<Column>{
        {0, CellRule::kAnyNumber}, {1, CellRule::kAnyNumber}, {2, CellRule::kFinite}, {3, CellRule::kFinite}};
  });
  ASSERT_EQ(pairs.rows, 60U);
  for (std::size_t row = 0; row < pairs.rows; ++row) {
    EXPECT_EQ(std::isnan(pairs.values[4 * row]), row % 10 == 4 || row % 10 == 7) << "row " << row;
  }
  EXPECT_NEAR(CopOfOutput(result.out, 0), CopOfColumns(pairs, 0), 1e-12);
  EXPECT_NEAR(CopOfOutput(result.out, 1), CopOfColumns(pairs, 2), 1e-12);
  EXPECT_LT(CopOfOutput(result.out, 0), 0.999);
}

INSTANTIATE_TEST_SUITE_P(Program, CrossValidationFileTest, testing::Values("cross_validation", "leave_one_out"),
                         [](const auto& method) { return std::string(method.param); });

TEST(Program, DoesNotDependOnJobs) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", NoisyDesigns());
  const Result one = RunZor(folder, "fit designs.csv --outputs y,z --json --jobs 1");
  const Result two = RunZor(folder, "fit designs.csv --outputs y,z --json --jobs 2");
  EXPECT_EQ(one.status, 0);
  EXPECT_EQ(one.out, two.out);
}

TEST(Program, PutsPredictionsIntoJson) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  folder.Write("points.csv", "a,b,c\n1,0,2\n");
  const Result result = RunZor(folder, kFit + std::string("--predict points.csv --json"));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, AllOf(ContainsRegex("\"predictions\": \\[(3|2.99999)[0-9.]*\\]"),
                                ContainsRegex("\"predictions\": \\[(5|4.99999)[0-9.]*\\]")));
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

struct WrongCall {
  const char* arguments;
  int status;
  const char* text;
};

TEST(Program, AnswersEveryFaultWithOneLine) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  folder.Write("points.csv", "a,b,c\n1,zero,2\n");
  folder.Write("header.csv", "a,b\n");
  folder.Write("names.csv", "wall thickness,y,PI\n1,2,3\n");
  folder.Write("missing.csv", "a,y\n1,\n2,nan\n3,inf\n");
  folder.Write("nameless.csv", "a,y,\n1,2,3\n");
  const WrongCall calls[] = {
      {"", 2, "A subcommand is required; see 'zor fit --help'"},
      {"fit --outputs y", 2, "designs is required; see 'zor fit --help'"},
      {"fit designs.csv", 2, "--outputs is required; see 'zor fit --help'"},
      {"fit designs.csv --outputs y --jobs many", 2, "Could not convert: --jobs = many; see 'zor fit --help'"},
      {"fit designs.csv --outputs y --jobs -1", 2, "Could not convert: --jobs = -1; see 'zor fit --help'"},
      {"fit designs.csv --outputs y --extrapolate", 2, "--extrapolate requires --predict; see 'zor fit --help'"},
      {"fit designs.csv --outputs y --bogus", 2,
       "The following argument was not expected: --bogus; see 'zor fit --help'"},
      {"fit none.csv --outputs y", 2, "none.csv: No such file or directory."},
      {"fit header.csv --outputs b", 2, "header.csv: The file has no designs below its header row."},
      {"fit header.csv --outputs a,b", 2, "header.csv: No column is left as input."},
      {"fit missing.csv --outputs y", 2, "missing.csv: The output 'y' has no finite value."},
      {"fit designs.csv --outputs q", 2,
       "designs.csv: There is no column 'q'; the file has 'id', 'a', 'b', 'c', 'y', 'z'."},
      {"fit designs.csv --inputs a,y --outputs y", 2, "The column 'y' is named twice as input or output."},
      {"fit designs.csv --outputs 'y, '", 2, "--outputs: a name is empty."},
      {"fit designs.csv --outputs y", 2, "designs.csv: row 2, column 1 ('id'): 'run 0' is not a number."},
      {"fit names.csv --outputs y --inputs 'wall thickness'", 2,
       "names.csv: row 1, column 1: 'wall thickness' is not a valid name: a name is a letter or '_', then letters, "
       "digits, '_', '.' or an apostrophe, and not a reserved word such as PI or TRUE."},
      {"fit names.csv --inputs y --outputs PI", 2,
       "names.csv: row 1, column 3: 'PI' is not a valid name: a name is a letter or '_', then letters, "
       "digits, '_', '.' or an apostrophe, and not a reserved word such as PI or TRUE."},
      {"fit nameless.csv --outputs y", 2, "nameless.csv: row 1, column 3: The column has no name."},
      {"fit designs.csv --inputs a,b,c --outputs y --predict points.csv", 2,
       "points.csv: row 2, column 2 ('b'): 'zero' is not a number."},
      {"fit designs.csv --inputs a,b,c --outputs y --predict header.csv", 2,
       "header.csv: There is no column 'c'; the file has 'a', 'b'."},
      {"fit designs.csv --inputs a --outputs y --cv designs.csv", 2,
       "designs.csv: Would overwrite a file that is read."},
      {"fit designs.csv --inputs a --outputs y --cv none/cv.csv", 2,
       "none/cv.csv: Cannot be written: No such file or directory."},
      {"fit designs.csv --inputs a --outputs y --set max_coi=2", 1, "ERROR: Importance limit must be between 0 and 1."},
      {"fit designs.csv --inputs a,b,c --outputs y --cv /dev/full", 1,
       "/dev/full: Not all could be written: No space left on device."},
  };
  for (const WrongCall& call : calls) {
    const Result result = RunZor(folder, call.arguments);
    EXPECT_EQ(result.status, call.status) << call.arguments;
    EXPECT_EQ(result.err, "zor: " + std::string(call.text) + "\n") << call.arguments;
    EXPECT_THAT(result.out, IsEmpty()) << call.arguments;
  }
  EXPECT_EQ(folder.Read("designs.csv"), ExactDesigns());
}

TEST(Program, TakesLettersOfEveryScriptAsNames) {
  const TemporaryFolder folder;
  std::string designs = "größe,y\n";
  for (int i = 0; i < 20; ++i) designs += std::to_string(i) + "," + std::to_string(2 * i) + "\n";
  folder.Write("designs.csv", designs);
  const Result result = RunZor(folder, "fit designs.csv --outputs y");
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("größe 1.0000"));
}

}  // namespace
}  // namespace kestrel::cli
