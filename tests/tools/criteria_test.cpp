#include "criteria.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "csv_reader.h"
#include "errors.h"
#include "run_zor.h"
#include "support/temporary_folder.h"

namespace kestrel::cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(Criteria, AreObjectivesOrOneComparison) {
  struct Case {
    const char* text;
    const char* name;
    zor_criterion_type type;
    const char* left;
    const char* right;
  };
  const Case cases[] = {
      {"c=2*a+y", "c", zor_objective_min, "2*a+y", ""},
      {" c = y <= 30", "c", zor_limit_state_less, "y ", " 30"},
      {"c=max(y[a>=2],1)>=b", "c", zor_limit_state_greater, "max(y[a>=2],1)", "b"},
      {"c=y==1", "c", zor_constraint_equal, "y", "1"},
      {"c=(y<=30)", "c", zor_objective_min, "(y<=30)", ""},
      {"c=y<=30 && z<=4", "c", zor_objective_min, "y<=30 && z<=4", ""},
      {"c=1<=y<=3", "c", zor_objective_min, "1<=y<=3", ""},
      {"c=calculate(\"1<=2\")", "c", zor_objective_min, "calculate(\"1<=2\")", ""},
  };
  for (const Case& c : cases) {
    const CriterionText criterion = ReadCriterion(c.text);
    EXPECT_EQ(criterion.name, c.name) << c.text;
    EXPECT_EQ(criterion.type, c.type) << c.text;
    EXPECT_EQ(criterion.left, c.left) << c.text;
    EXPECT_EQ(criterion.right, c.right) << c.text;
  }
  for (const char* const text : {"", "c", "=1", "c=", " = 1"}) EXPECT_THROW(ReadCriterion(text), InputError) << text;
}

TEST(Eval, PrintsTheValueOrOneLine) {
  const TemporaryFolder folder;
  const std::pair<const char*, const char*> calls[] = {
      {"eval '2^3^2'", "64\n"},
      {"eval -- '-2^2'", "-4\n"},
      {"eval 'a^2 + [1,2]' --set a=3", "[10,11]\n"},
      {"eval b --set a=3 --set 'b=2*a'", "6\n"},
  };
  for (const auto& [call, out] : calls) {
    const Result result = RunZor(folder, call);
    EXPECT_EQ(result.status, 0) << call << result.err;
    EXPECT_EQ(result.out, out) << call;
  }
  const Result faulty = RunZor(folder, "eval '1 + * 2'");
  EXPECT_EQ(faulty.status, 1);
  EXPECT_THAT(faulty.err, StartsWith("zor: Error while parsing"));
  EXPECT_EQ(RunZor(folder, "eval").status, 2);
  EXPECT_EQ(RunZor(folder, "eval 1 --set a").status, 2);
  EXPECT_THAT(RunZor(folder, "eval --functions").out, HasSubstr("\natan2("));
}

TEST(Predict, AddsTheCriteria) {
  const TemporaryFolder folder;
  folder.Write("designs.csv", ExactDesigns());
  folder.Write("points.csv", "a,b,c\n1,0.25,2\n0.5,-1,3\n");
  ASSERT_EQ(RunZor(folder, "fit designs.csv --inputs a,b,c --outputs y,z --store m.zor").status, 0);
  const Result result =
      RunZor(folder, "predict m.zor points.csv --criterion 'cost=2*y+a' --criterion 'safe=cost<=z*3'");
  ASSERT_EQ(result.status, 0) << result.err;
  folder.Write("out.csv", result.out);
  const Table table = ReadTable(folder.Path("out.csv"), [](const std::vector<std::string>& header) {
    EXPECT_EQ(header, (std::vector<std::string>{"y", "z", "cost", "safe"}));
    return std::vector<Column>{
        {0, CellRule::kAnyNumber}, {1, CellRule::kAnyNumber}, {2, CellRule::kAnyNumber}, {3, CellRule::kAnyNumber}};
  });
  ASSERT_EQ(table.rows, 2U);
  for (std::size_t row = 0; row < 2; ++row) {
    const double* const cells = &table.values[4 * row];
    EXPECT_NEAR(cells[2], 2.0 * cells[0] + (row == 0 ? 1.0 : 0.5), 1e-12);
    EXPECT_NEAR(cells[3], 3.0 * cells[1] - cells[2], 1e-12);
  }
  for (const char* const faulty : {"'y=1'", "'c=1+'", "c", "'c=1' --criterion 'c=2'"}) {
    EXPECT_EQ(RunZor(folder, "predict m.zor points.csv --criterion " + std::string(faulty)).status, 2) << faulty;
  }
}

}  // namespace
}  // namespace kestrel::cli
