#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "datatypes/design_point_to_rvset.h"
#include "datatypes/parameter_manager.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using DetKind = enums::DeterministicProperties::eKind;
using Kind = enums::Parameter::eKind;
using RandomType = enums::RandomVariable::eType;

const std::vector<CDesignEntry> kStates = {1.0, 2.0, 4.0};

Parameter MakeDiscrete(const std::wstring& name) {
  Parameter parameter(name);
  parameter.SetDetKind(DetKind::kOrdinalDiscrete, kStates);
  return parameter;
}

Parameter MakeRandom(const std::wstring& name, Kind kind) {
  Parameter parameter(name, kind);
  parameter.SetRandomProperties(RandomProperties::FromMoments(RandomType::NORMAL, {10.0, 2.0}));
  return parameter;
}

/// x and y continuous, d discrete, s stochastic.
ParameterManager MakeManager() {
  ParameterManager manager;
  manager.AddParameter(Parameter(L"x"));
  manager.AddParameter(Parameter(L"y"));
  manager.AddParameter(MakeDiscrete(L"d"));
  manager.AddParameter(MakeRandom(L"s", Kind::kStochastic));
  return manager;
}

struct Refusal {
  std::function<void(ParameterManager&)> action;
  std::wstring text;
};

void ExpectRefusals(const std::vector<Refusal>& refusals) {
  for (const Refusal& refusal : refusals) {
    ParameterManager manager = MakeManager();
    try {
      refusal.action(manager);
      ADD_FAILURE() << "not refused: " << testing::PrintToString(refusal.text);
    } catch (const utils::runtime_error& error) {
      EXPECT_EQ(error.What(), refusal.text);
    }
    EXPECT_EQ(manager, MakeManager()) << testing::PrintToString(refusal.text);
  }
}

TEST(ParameterManager, RefusesWhatDoesNotExist) {
  ExpectRefusals({
      {[](auto& m) { m.AddParameter(Parameter(L"x")); },
       L"Cannot add the parameter \"x\" to the parametermanager because a parameter with the same name already exists. "
       L"Parameter name MUST be unique."},
      {[](auto& m) { m.GetParameter(4); },
       L"Cannot return the parameter to the overflowing parameter index \"4\". There are only 4 parameters managed by "
       L"the parametermanager."},
      {[](auto& m) { m.GetParameter(L"z"); }, L"Cannot return non existing parameter \"z\"."},
      {[](auto& m) { m.SetCorrelation(L"x", L"z", 0.5); }, L"Cannot return non existing parameter \"z\"."},
      {[](auto& m) { m.SetBoundaries(L"z", 0.0, 1.0); }, L"Cannot set boundaries of the non existing parameter \"z\"."},
      {[](auto& m) { m.SetDetBounds(L"z", L"z", 0.0, 1.0); },
       L"Cannot set the boundaries of the non existing parameter \"z\"."},
      {[](auto& m) { m.SetConst(L"z", true); },
       L"Cannot set the const flag state of the non existing parameter \"z\"."},
      {[](auto& m) { m.SetReferenceValue(L"z", 1.0); },
       L"Cannot set the reference value of the non existing parameter \"z\"."},
      {[](auto& m) { m.SetKind(L"z", DetKind::kContinuous); },
       L"Cannot set the kind of the non existing parameter \"z\"."},
      {[](auto& m) {
         m.BuildCorrelationMatrix({L"x", L"y", L"x"});
       },
       L"Build correlation matrix impossible with not unique names"},
      {[](auto& m) { m.SetCorrelation(L"x", L"y", 1.5); },
       L"The correlation between \"x\" and \"y\" cannot be 1.500000."},
  });
}

TEST(Parameter, RefusesWhatItsKindDoesNotHave) {
  ExpectRefusals({
      {[](auto& m) { m.GetParameter(L"x").GetDetPropertyName(1); },
       L"Cannot return the name of the requested deterministic property at index 1. The index given for the requested "
       L"deterministic property of the parameter \"x\" is out of range: 1 < 1"},
      {[](auto& m) { m.SetDetBounds(L"x", L"q", 0.0, 1.0); },
       L"Cannot return the the requested deterministic property \"q\". Cannot find the determinsitic property \"q\" of "
       L"the parameter \"x\"."},
      {[](auto& m) { m.SetBoundaries(L"s", 0.0, 1.0); },
       L"Cannot set boundaries for the non optimization parameter \"s\"."},
      {[](auto& m) { m.SetDetBounds(L"s", L"s", 0.0, 1.0); },
       L"Cannot set the deterministic property \"bounds\" for the non optimization parameter \"s\"."},
      {[](auto& m) { m.SetKind(L"s", DetKind::kContinuous); },
       L"Cannot set the deterministic property \"kind\" for the non optimization parameter \"s\"."},
      {[](auto& m) { m.SetReferenceValue(L"s", 1); },
       L"Cannot set reference value for stochastic parameter \"s\". Data type needs to be REAL, got INTEGER"},
      {[](auto& m) { m.SetReferenceValue(L"x", L"1"); },
       L"Cannot set reference value for optimization parameter \"x\". Data type doesn't match. Awaited REAL, got "
       L"STRING"},
      {[](auto&) { MakeRandom(L"r", Kind::kMixed).SetReferenceValue(true); },
       L"Cannot set reference value for mixed parameter \"r\". Data type doesn't match. Awaited REAL, got BOOL"},
      {[](auto& m) { m.SetKind(L"x", Kind::kDependent); },
       L"Cannot make the parameter \"x\" dependent without an expression."},
      {[](auto&) { RandomProperties().GetCOV(); },
       L"The random property doesn't have a Coefficient of variation (COV) defined."},
  });
}

TEST(DeterministicProperties, RefusesBoundsAndStatesThatDoNotFit) {
  const std::wstring no_float = L"Boundaries of continuous parameters may only be float type values.";
  const std::wstring no_index = L"Boundaries of discrete parameters may only be integer index types.";
  const std::wstring outside = L"One or both boundaries are outside the accepted discrete state map index range.";
  const std::wstring mixed_types =
      L"The data type of each discrete state of a deterministic property must match the data type of the parameter";
  const std::wstring no_states_made =
      L"You must not constuct an discrete deterministic property with an empty discrete states vector.";
  const std::wstring no_states =
      L"A discrete deterministic property requires at least one discrete state but you passed an empty discrete states "
      L"vector.";
  ExpectRefusals({
      {[](auto& m) { m.SetBoundaries(L"x", 1, 2); }, no_float},
      {[](auto& m) { m.SetBoundaries(L"x", std::nan(""), 2.0); }, no_float},
      {[](auto& m) { m.GetParameter(L"x").ConvertData(enums::DesignEntry::INTEGER); }, no_float},
      {[](auto& m) { m.SetBoundaries(L"x", 2.0, 2.0); }, L"Lower and Upper bounds may not have the same value."},
      {[](auto& m) { m.SetBoundaries(L"x", 2.0, 1.0); }, L"The lower bound must not exceed the upper bound."},
      {[](auto& m) { m.SetBoundaries(L"d", 0.0, 1.0); }, no_index},
      {[](auto& m) { m.SetBoundaries(L"d", 0, 3); }, outside},
      {[](auto& m) { m.SetBoundaries(L"d", -1, 2); }, outside},
      {[](auto& m) { m.GetParameter(L"d").SetDiscreteStates({}); }, no_states},
      {[](auto& m) { m.SetKind(L"x", DetKind::kNominalDiscrete); }, no_states},
      {[](auto& m) {
         m.GetParameter(L"d").SetDiscreteStates({1.0, 2});
       },
       mixed_types},
      {[](auto& m) { m.GetParameter(L"x").SetDiscreteStates(kStates); },
       L"Cannot set discrete states for a continuous deterministic property"},
      {[](auto&) { DeterministicProperties(DetKind::kOrdinalDiscrete, {}); }, no_states_made},
      {[](auto&) {
         DeterministicProperties(DetKind::kOrdinalDiscrete, {1.0, L"a"});
       },
       mixed_types},
  });
}

TEST(Parameter, KindFollowsFromWhatItHas) {
  Parameter parameter(L"p", Kind::kMixed);
  EXPECT_EQ(parameter.GetKind(), Kind::kMixed);
  EXPECT_TRUE(parameter.IsOptimization() && parameter.IsStochastic());
  parameter.SetConst(true);
  EXPECT_FALSE(parameter.IsOptimization());
  parameter.SetDependencyExpression(L"2 * q");
  EXPECT_EQ(parameter.GetKind(), Kind::kDependent);
  EXPECT_FALSE(parameter.IsStochastic());
  parameter.SetKind(Kind::kStochastic);
  EXPECT_EQ(parameter.GetDetKind(), DetKind::kUndefined);
  EXPECT_FALSE(parameter.IsDependent() || parameter.HasBounds());
  parameter.SetKind(Kind::kOptimization);
  EXPECT_FALSE(parameter.IsStochastic());
  EXPECT_EQ(parameter.GetDetPropertyName(0), L"p");
}

TEST(Parameter, ChangesBetweenStatesAndBounds) {
  Parameter parameter = MakeDiscrete(L"d");
  EXPECT_EQ(parameter.GetLowerBound(), CDesignEntry(0));
  EXPECT_EQ(parameter.GetUpperBound(), CDesignEntry(2));
  parameter.SetBoundaries(1, 1);
  parameter.ConvertData(enums::DesignEntry::STRING);
  parameter.SetReferenceValue(L"4");
  EXPECT_EQ(parameter.GetDetProperty(L"d").GetDiscreteStates().back(), CDesignEntry(L"4"));
  EXPECT_EQ(parameter.GetUpperBound(), CDesignEntry(1));
  parameter.ConvertData(enums::DesignEntry::INTEGER);
  parameter.SetDetKind(DetKind::kContinuous);
  EXPECT_EQ(parameter.GetReferenceValue().GetDomainType(), enums::DesignEntry::REAL);
  EXPECT_EQ(parameter.GetLowerBound(), CDesignEntry(1.0));
  EXPECT_EQ(parameter.GetUpperBound(), CDesignEntry(4.0));
  EXPECT_EQ(parameter.GetUpperBound().GetDomainType(), enums::DesignEntry::REAL);
  parameter.SetDetKind(DetKind::kNominalDiscrete, {L"a", L"b"});
  EXPECT_TRUE(parameter.IsNominalDiscrete());
  parameter.SetReferenceValue(L"b");
  EXPECT_THROW(parameter.SetDetKind(DetKind::kContinuous), std::exception);
  EXPECT_TRUE(parameter.IsNominalDiscrete());
}

TEST(ParameterManager, KeepsOrderAndCorrelations) {
  ParameterManager manager = MakeManager();
  manager.SetCorrelation(L"y", L"x", 0.25);
  manager.SetCorrelation(L"x", L"s", -0.5);
  EXPECT_EQ(manager.GetCorrelations().Get(L"x", L"y"), 0.25);
  const math::Matrix built = manager.BuildCorrelationMatrix({L"s", L"x", L"y"});
  EXPECT_EQ(built, (math::Matrix(3, 3) << 1.0, -0.5, 0.0, -0.5, 1.0, 0.25, 0.0, 0.25, 1.0).finished());

  const ParameterManager copy = manager;
  EXPECT_TRUE(manager.EraseParameter(L"x"));
  EXPECT_FALSE(manager.EraseParameter(L"x"));
  EXPECT_TRUE(manager.GetCorrelations().empty());
  EXPECT_EQ(manager.GetNames(), (std::vector<std::wstring>{L"y", L"d", L"s"}));
  EXPECT_EQ(manager.ContainsParameter(L"x"), 0u);
  EXPECT_EQ(manager.ContainsParameter(L"d"), 2u);
  EXPECT_EQ(copy.size(), 4u);
  EXPECT_EQ(copy.GetDeterministicProperties().size(), 3u);
  EXPECT_EQ(TriangularIndex(L"a", L"b"), TriangularIndex(L"b", L"a"));
}

TEST(RandomProperties, KeepTheCoefficientOfVariation) {
  RandomProperties properties = RandomProperties::FromMoments(RandomType::LOGNORMAL, {10.0, 2.0});
  EXPECT_NEAR(properties.MakeRandomVariableAround(20.0)->Moments().stddev, 2.0, 1e-9);
  properties.SetCOV(0.1);
  EXPECT_EQ(properties.GetCOV(), 0.1);
  EXPECT_NEAR(properties.MakeRandomVariable()->Moments().stddev, 1.0, 1e-9);
  EXPECT_NEAR(properties.MakeRandomVariableAround(20.0)->Moments().stddev, 2.0, 1e-9);
  EXPECT_NEAR(properties.MakeRandomVariableAround(20.0)->Moments().mean, 20.0, 1e-9);
  EXPECT_THROW(properties.SetCOV(0.0), utils::runtime_error);
  EXPECT_THROW(RandomProperties::FromMoments(RandomType::NORMAL, {1.0}), utils::runtime_error);
  EXPECT_THROW(RandomProperties::FromParameters(RandomType::NORMAL, {1.0, -1.0}), utils::runtime_error);
}

TEST(DesignPoint, BecomesItsRandomVariables) {
  ParameterManager manager = MakeManager();
  manager.AddParameter(MakeRandom(L"m", Kind::kMixed));
  manager.AddParameter(MakeRandom(L"c", Kind::kStochastic));
  manager.SetConst(L"c", true);
  CDesignEntrySequence point;
  point.Add(L"m", 30.0);

  const auto independent = TransformDesignPointToRVSet(manager, point);
  ASSERT_EQ(independent->Size(), 2);
  EXPECT_EQ(independent->Variable(0).Parameters(), (std::vector<double>{10.0, 2.0}));
  EXPECT_EQ(independent->Variable(1).Parameters(), (std::vector<double>{30.0, 2.0}));
  EXPECT_EQ(independent->Correlation(), math::Matrix::Identity(2, 2));

  manager.SetCorrelation(L"m", L"s", 0.5);
  EXPECT_EQ(TransformDesignPointToRVSet(manager, point)->Correlation()(0, 1), 0.5);
}

TEST(DesignPoint, NamesTheParameterThatHasNoVariable) {
  ParameterManager manager;
  manager.AddParameter(MakeRandom(L"m", Kind::kMixed));
  try {
    TransformDesignPointToRVSet(manager, CDesignEntrySequence());
    FAIL();
  } catch (const utils::runtime_error& error) {
    EXPECT_EQ(
        error.What(),
        L"An error occured during transformation from a design point to a rvset: An FATAL ERROR occured while "
        L"transforming the parameter \"m\" to the appropriate rv-type. Key \"m\" does not exist in this sequence");
  }
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
