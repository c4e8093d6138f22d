#include "datatypes/design_functions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "datatypes/design_matrices.h"
#include "datatypes/design_responses.h"
#include "datatypes/extract_parameters.h"
#include "support/exceptions.h"
#include "support/log.h"
#include "support/matrix_compare.h"

namespace kestrel::algorithm::datatypes {
namespace {

using Names = std::vector<std::wstring>;
using Variant = CDesignEntry::VariantType;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

DesignManager MakeTable() {
  math::Matrix parameters(4, 2);
  parameters << 1, 10, 2, 20, 1, 10, 3, -30;
  math::Matrix responses(4, 1);
  responses << 5, kNaN, 7, 8;
  return CreateDesignsFromMatrices({L"a", L"b"}, parameters, {L"y"}, responses);
}

CDesignEntrySequence MakeSequence(std::initializer_list<std::pair<const wchar_t*, CDesignEntry>> pairs) {
  CDesignEntrySequence sequence;
  for (const auto& [name, value] : pairs) sequence.Add(name, value);
  return sequence;
}

Variant MakeVector(std::initializer_list<double> values) {
  Variant::VectorType vector(values.size());
  std::copy(values.begin(), values.end(), vector.begin());
  return Variant(vector);
}

template <class Action>
std::string RefusalOf(Action action) {
  try {
    action();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "";
}

TEST(DesignTable, TurnsMatricesIntoFinishedDesignsAndBack) {
  math::Matrix parameters(2, 2);
  parameters << 1, 2, 3, 4;
  math::Matrix responses(2, 1);
  responses << 5, 6;
  DesignManager manager = CreateDesignsFromMatrices({L"a", L"b"}, parameters, {L"y"}, responses, 7);
  EXPECT_EQ(manager.GetStats().succeeded_, 2u);
  EXPECT_TRUE(manager.HasDesign(CHierachicalId(8)));
  EXPECT_TRUE(testing::MatrixNear(ConvertParametersToMatrix(manager, {L"a", L"b"}), parameters, 0.0));
  EXPECT_TRUE(testing::MatrixNear(ConvertScalarResponsesToMatrix(manager, {L"y"}), responses, 0.0));
  EXPECT_TRUE(
      testing::MatrixNear(DesignToFloatTypeVector(manager[1].GetParameters()), parameters.row(1).transpose(), 0.0));

  // Names in another order, unknown names, and a design whose own order is another.
  manager[1].SetParameters(MakeSequence({{L"b", 4.0}, {L"a", 3.0}}));
  math::Matrix expected(2, 3);
  expected << 2, kNaN, 1, 4, kNaN, 3;
  EXPECT_TRUE(testing::MatrixNear(ConvertParametersToMatrix(manager, {L"b", L"c", L"a"}), expected, 0.0));
}

TEST(DesignTable, RefusesSizesAndNamesThatDoNotFit) {
  const math::Matrix two = math::Matrix::Zero(2, 2);
  EXPECT_NE(RefusalOf([&] { CreateDesignsFromMatrices({L"a"}, two, {L"y", L"z"}, two); }), "");
  EXPECT_NE(RefusalOf([&] { CreateDesignsFromMatrices({L"a", L"b"}, two, {L"y", L"z"}, two.topRows(1)); }), "");
  EXPECT_NE(RefusalOf([&] { CreateDesignsFromMatrices({L"a", L"a"}, two, {L"y", L"z"}, two); }), "");
  EXPECT_EQ(RefusalOf([&] { ConvertParametersToMatrix(MakeTable(), {L"a", L"a"}); }), "Name \"a\" is given twice.");
}

TEST(DesignNames, AreThoseOfTheFirstDesign) {
  DesignManager manager = MakeTable();
  manager[0].AddResponse(L"s", Variant(Variant::VectorType(2, 1.0), Variant::VectorType(2, 1.0)));
  CriterionSequence criteria;
  criteria.Add(L"c", Criterion(enums::CriterionType::CONSTRAINT_LESS, L"y", L"1"));
  criteria.Add(L"l", Criterion(enums::CriterionType::LIMIT_STATE_LESS, L"y", L"1"));
  manager[0].SetCriteria(criteria);
  EXPECT_EQ(getParameterNames(manager), (Names{L"a", L"b"}));
  EXPECT_EQ(getResponseNames(manager), (Names{L"y", L"s"}));
  EXPECT_EQ(getLimitStateNames(manager), Names{L"l"});
  EXPECT_EQ(getSignalNames(manager), Names{L"s"});
}

TEST(DesignNames, RefuseAnEmptyContainer) {
  const DesignManager empty;
  EXPECT_THROW(getResponseNames(empty), std::domain_error);
  EXPECT_EQ(RefusalOf([&] { getParameterNames(empty); }),
            "Can't extract parameter names from an empty design container");
  EXPECT_EQ(RefusalOf([&] { getResponseNames(empty); }), "Can't extract response names from an empty design container");
  EXPECT_EQ(RefusalOf([&] { getLimitStateNames(empty); }),
            "Can't extract limit state names from an empty design container");
  EXPECT_EQ(RefusalOf([&] { getSignalNames(empty); }), "Can't extract signal names from an empty design container");
  EXPECT_EQ(RefusalOf([&] { getDesignIDsFromParamValues(empty, {}, math::Matrix()); }),
            "Can't extract designs numbers from an empty design container.");
}

TEST(DesignPoints, AreFoundByTheirValuesOnceEach) {
  const DesignManager manager = MakeTable();
  math::Matrix values(5, 2);
  values << -30, 3, 10, 1, 10, 1, 8, 8, kNaN, 1;
  const std::vector<CHierachicalId> expected = {CHierachicalId(4), CHierachicalId(1), CHierachicalId(3)};
  EXPECT_EQ(getDesignIDsFromParamValues(manager, {L"b", L"a"}, values), expected);
  EXPECT_EQ(RefusalOf([&] { getDesignIDsFromParamValues(manager, {L"a"}, values.leftCols(1)); }),
            "Number of parameters in design container doesn't fit to parameter value matrix.");
}

TEST(DesignExtremes, PassOverWhatIsNoNumberAndOnRequestFailedDesigns) {
  DesignManager manager = MakeTable();
  manager[3].OverrideResponse(L"y", 9.0);
  EXPECT_EQ(GetMaxValueOfParameterFromDesign(manager, L"b"), CDesignEntry(20.0));
  EXPECT_EQ(GetMinValueOfParameterFromDesign(manager, L"b"), CDesignEntry(-30.0));
  EXPECT_THROW(GetMinValueOfParameterFromDesign(manager, L"c"), utils::invalid_argument);
  EXPECT_EQ(GetMinValueOfResponseFromDesign(manager, L"y", false), CDesignEntry(5.0));
  EXPECT_EQ(GetMaxValueOfResponseFromDesign(manager, L"y", true), CDesignEntry(9.0));
  manager[3].SetParameters(MakeSequence({{L"a", kNaN}, {L"b", 1.0}}));
  EXPECT_EQ(GetMaxValueOfResponseFromDesign(manager, L"y", true), CDesignEntry(7.0));
  EXPECT_TRUE(GetMaxValueOfResponseFromDesign(manager, L"z", true).IsUninitialized());
}

TEST(DesignOrder, FollowsTheParameterManager) {
  ParameterManager parameters;
  for (const wchar_t* const name : {L"z", L"b", L"a"}) parameters.AddParameter(Parameter(name));
  DesignManager manager = MakeTable();
  manager[0].SetParametersUnsafe(MakeSequence({{L"a", 1.0}, {L"q", 2.0}, {L"b", 3.0}}));
  const DesignManager sorted = sortByParameterOrder(manager, parameters);
  EXPECT_EQ(sorted[0].GetParameters(), MakeSequence({{L"b", 3.0}, {L"a", 1.0}, {L"q", 2.0}}));
  EXPECT_EQ(getDesignPointsFromDesigns(sorted)[3], &sorted[3].GetParameters());
  EXPECT_EQ(sorted[3].GetParameters(), MakeSequence({{L"b", -30.0}, {L"a", 3.0}}));
}

DesignManager MakeVectorTable() {
  DesignManager manager = MakeTable();
  for (std::size_t i = 0; i < manager.size(); ++i) {
    const auto x = static_cast<double>(i);
    manager[i].SetResponses(MakeSequence({{L"y", x}}));
    manager[i].AddResponse(L"v", MakeVector({x, 10 + x, 20 + x}));
    manager[i].AddResponse(L"w", -x);
  }
  return manager;
}

TEST(DesignResponses, SplitIntoScalarsAndComeTogetherAgain) {
  const DesignManager original = MakeVectorTable();
  const Names names = GetScalaredResponseNames(original, false);
  EXPECT_EQ(names, (Names{L"y", L"v[0]", L"v[1]", L"v[2]", L"w"}));
  const math::Matrix values = ConvertResponsesToMatrix(original, false);
  EXPECT_EQ(values(2, 3), 22.0);

  DesignManager split =
      CreateDesignsFromMatrices({L"a", L"b"}, ConvertParametersToMatrix(original, {L"a", L"b"}), names, values);
  EXPECT_EQ(GetOriginalResponseName(original, L"v[2]"), L"v");
  EXPECT_EQ(GetOriginalResponseName(split, L"v[2]"), L"v[2]");
  compressResponses(split);
  for (std::size_t i = 0; i < original.size(); ++i) EXPECT_EQ(split[i].GetResponses(), original[i].GetResponses());
}

TEST(DesignResponses, CompressInTheOrderOfTheIndex) {
  DesignManager manager;
  manager.push_back(Design(CHierachicalId(1)));
  manager[0].SetResponses(MakeSequence({{L"x", 0.0},
                                        {L"v[10]", 3.0},
                                        {L"[0]", 5.0},
                                        {L"v[2]", 2.0},
                                        {L"u[k]", 6.0},
                                        {L"v[99999999999999999999]", 7.0},
                                        {L"v[1]", CDesignEntry()},
                                        {L"]v[", 8.0}}));
  compressResponses(manager);
  const CDesignEntrySequence& responses = manager[0].GetResponses();
  Names names;
  for (const auto& pair : responses) names.push_back(pair.first.str());
  EXPECT_EQ(names, (Names{L"x", L"v", L"[0]", L"u[k]", L"v[99999999999999999999]", L"]v["}));
  const Variant& vector = responses[L"v"].GetVariant();
  ASSERT_EQ(vector.size(), 3u);
  EXPECT_TRUE(std::isnan(vector.at(0).real()));
  EXPECT_EQ(vector.at(1), 2.0);
  EXPECT_EQ(vector.at(2), 3.0);
}

TEST(DesignResponses, StayWhereTheyCannotBeAVector) {
  DesignManager manager;
  manager.push_back(Design(CHierachicalId(1)));
  const CDesignEntrySequence responses = MakeSequence(
      {{L"a", 1.0}, {L"a[0]", 2.0}, {L"b[0]", L"text"}, {L"b[1]", 3.0}, {L"c[0]", MakeVector({1.0, 2.0})}});
  manager[0].SetResponses(responses);
  compressResponses(manager);
  EXPECT_EQ(manager[0].GetResponses(), responses);
}

TEST(DesignResponses, GiveMatricesRowByRow) {
  Variant::MatrixType matrix(2, 3);
  for (std::size_t k = 0; k < 6; ++k) matrix(k / 3, k % 3) = static_cast<double>(k);
  DesignManager manager;
  manager.push_back(Design(CHierachicalId(1)));
  manager[0].AddResponse(L"m", Variant(matrix));
  EXPECT_EQ(GetScalaredResponseNames(manager, false).back(), L"m[5]");
  EXPECT_TRUE(
      testing::MatrixNear(ConvertResponsesToMatrix(manager, false), math::Vector::LinSpaced(6, 0, 5).transpose(), 0.0));
}

TEST(DesignResponses, RefuseElementsThatAreNotThere) {
  const struct {
    const char* name;
    CDesignEntry entry;
    std::string refusal;
  } cases[] = {{"shorter vector", MakeVector({1.0, 2.0}), "Index out of vector bounds."},
               {"smaller matrix", Variant(Variant::MatrixType(1, 1)), "Index out of matrix bounds."},
               {"scalar", 1.0, "Type doesn't support access by index."},
               {"uninitialized", CDesignEntry(), ""}};
  for (const auto& tested : cases) {
    SCOPED_TRACE(tested.name);
    DesignManager manager = MakeVectorTable();
    manager[3].OverrideResponse(L"v", tested.entry);
    EXPECT_EQ(RefusalOf([&] { ConvertResponsesToMatrix(manager, false); }), tested.refusal);
    manager[3].SetParameters(MakeSequence({{L"a", kNaN}, {L"b", kNaN}}));
    EXPECT_TRUE(ConvertResponsesToMatrix(manager, true).row(3).array().isNaN().all());
  }
  DesignManager manager = MakeVectorTable();
  EXPECT_EQ(RefusalOf([&] { GetOriginalResponseName(manager, L"u[1]"); }),
            "Response \"u[1]\" can not be found in designs.");
  const SplitResponseMapping mapping = GetSplitResponseMapping({{L"y", 1.0}});
  manager[2].OverrideResponse(L"y", MakeVector({1.0, 2.0}));
  EXPECT_EQ(RefusalOf([&] { ConvertResponsesToMatrix(manager, mapping, false); }), "Invalid type.");
}

TEST(DesignResponses, LoseOnlyTheirLastIndexWhenTheyAreSplit) {
  DesignManager manager = MakeTable();
  for (std::size_t i = 0; i < manager.size(); ++i) manager[i].AddResponse(L"y[1]", MakeVector({1.0, 2.0}));
  EXPECT_EQ(GetOriginalResponseName(manager, L"y[1][0]"), L"y[1]");
}

TEST(ExtractParameters, TakesBoundsAroundTheValues) {
  utils::log::VectorLog log;
  const ParameterManager parameters = extractParametersFromDesigns(MakeTable(), log, 0.1, 0.2);
  EXPECT_EQ(parameters.GetNames(), (Names{L"a", L"b"}));
  EXPECT_DOUBLE_EQ(ToNumber(parameters.GetParameter(L"b").GetLowerBound()), -35.0);
  EXPECT_DOUBLE_EQ(ToNumber(parameters.GetParameter(L"b").GetUpperBound()), 30.0);
  EXPECT_TRUE(log.GetEntries().empty());
}

TEST(ExtractParameters, WidensAConstantColumnByItsSize) {
  utils::log::LogDummy log;
  const math::Matrix constant = math::Matrix::Constant(3, 1, -20.0);
  const DesignManager manager = CreateDesignsFromMatrices({L"a"}, constant, {L"y"}, constant);
  const Parameter parameter = extractParametersFromDesigns(manager, log).GetParameter(L"a");
  EXPECT_DOUBLE_EQ(ToNumber(parameter.GetLowerBound()), -22.0);
  EXPECT_DOUBLE_EQ(ToNumber(parameter.GetUpperBound()), -18.0);
  EXPECT_TRUE(extractParametersFromDesigns(manager, log, 0.0, 0.0).GetParameter(L"a").HasBounds());
}

TEST(ExtractParameters, MakesTextsAndIntegersDiscrete) {
  DesignManager manager;
  for (const std::int64_t i : {3, 1, 3}) {
    manager.push_back(Design(CHierachicalId(manager.size())));
    manager[manager.size() - 1].SetParameters(
        MakeSequence({{L"text", std::to_wstring(i)}, {L"number", i}, {L"bad", kNaN}}));
  }
  utils::log::VectorLog log;
  const ParameterManager parameters = extractParametersFromDesigns(manager, log);
  EXPECT_TRUE(parameters.GetParameter(L"text").IsNominalDiscrete());
  EXPECT_EQ(parameters.GetParameter(L"number").GetDetKind(), Parameter::eDetKind::kOrdinalDiscrete);
  const auto& states =
      parameters.GetParameter(L"number").GetDeterministicProperties().front().second.GetDiscreteStates();
  EXPECT_EQ(states, (std::vector<CDesignEntry>{3, 1}));
  EXPECT_FALSE(parameters.GetParameter(L"bad").HasBounds());

  Names messages;
  for (const auto& entry : log.GetEntries()) messages.push_back(entry.second);
  EXPECT_EQ(
      messages,
      (Names{L"Added discrete state \"3\" for parameter text", L"Added discrete state \"1\" for parameter text",
             L"Added discrete state \"3\" for parameter number", L"Added discrete state \"1\" for parameter number",
             L"Unable to extract lower bound for parameter \"bad\"",
             L"Unable to extract upper bound for parameter \"bad\""}));
}

TEST(ExtractParameters, ReportsAnEmptyContainer) {
  utils::log::VectorLog log;
  EXPECT_TRUE(extractParametersFromDesigns(DesignManager(), log).empty());
  ASSERT_EQ(log.GetEntries().size(), 1u);
  EXPECT_EQ(log.GetEntries()[0].second, L"Design container is empty.");
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
