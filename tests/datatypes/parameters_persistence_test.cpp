#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "datatypes/parameter_manager.h"
#include "datatypes/test_archive.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using boost::serialization::make_nvp;
using DetKind = enums::DeterministicProperties::eKind;

/// A parameter in which every stored field differs from its default.
Parameter MakeParameter(const std::wstring& name) {
  Parameter parameter(name, enums::Parameter::eKind::kMixed);
  parameter.SetDetKind(DetKind::kNominalDiscrete, {0.5, 1.5});
  parameter.SetBoundaries(0, 1);
  parameter.SetReferenceValue(1.5);
  RandomProperties random = RandomProperties::FromMoments(enums::RandomVariable::GUMBEL, {3.0, 0.6});
  random.SetCOV(0.25);
  parameter.SetRandomProperties(random);
  parameter.SetActive(false);
  parameter.SetConst(true);
  parameter.SetMutable(MutableMember::kConst, false);
  parameter.SetDependencyExpression(L"1 + a");
  parameter.SetId(CHierachicalId(2) / 7);
  parameter.SetModifiable(false);
  parameter.SetUnit(L"m\u00b2");
  parameter.SetRemovable(false);
  parameter.SetOrigin(L"solver");
  return parameter;
}

/// The layouts of the class versions of `Parameter` and of `RandomProperties`, written field by field.
template <unsigned kVersion>
struct ParameterLayout {
  const Parameter& parameter;
  std::map<MutableMember, bool> mutable_map = {{MutableMember::kConst, false}};

  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    const Parameter& p = parameter;
    const bool active = p.IsActive(), is_const = p.IsConst(), modifiable = p.IsModifiable(),
               removable = p.IsRemovable();
    archive << make_nvp("name_", p.GetName()) << make_nvp("active_", active) << make_nvp("const_", is_const)
            << make_nvp("rprop_", p.GetRandomProperties()) << make_nvp("dprops_", p.GetDeterministicProperties())
            << make_nvp("reference_value_", p.GetReferenceValue()) << make_nvp("mutable_map_", mutable_map);
    if (kVersion >= 2) archive << make_nvp("dependency_expression_", p.GetDependencyExpression());
    if (kVersion >= 3) archive << make_nvp("id_", p.GetId());
    if (kVersion >= 4) archive << make_nvp("modifiable_", modifiable);
    if (kVersion >= 5) archive << make_nvp("unit_", p.GetUnit());
    if (kVersion >= 6) archive << make_nvp("removable_", removable);
    if (kVersion >= 7) archive << make_nvp("origin_", p.GetOrigin());
  }
};

template <unsigned kVersion>
struct RandomLayout {
  const RandomProperties& random;

  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    const auto type = static_cast<std::int32_t>(random.GetType()), kind = static_cast<std::int32_t>(random.GetKind());
    const bool has_cov = random.HasSetCOV(), validated = random.IsValidated();
    const double cov = random.GetCOV();
    archive << make_nvp("type_", type) << make_nvp("kind_", kind) << make_nvp("params_", random.GetParams())
            << make_nvp("moments_", random.GetMoments());
    if (kVersion >= 3) archive << make_nvp("has_set_cov_", has_cov) << make_nvp("cov_", cov);
    if (kVersion >= 4) archive << make_nvp("validated_", validated);
  }
};

/// What a hostile file may say of a range.
struct RangeLayout {
  std::int32_t domain;
  CDesignEntry low;
  CDesignEntry high;
  std::vector<CDesignEntry> states;

  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    const bool ordered = true;
    const double relative = 0.0;
    archive << make_nvp("ordered_flag_", ordered) << make_nvp("domain_flag_", domain) << make_nvp("lower_bound_", low)
            << make_nvp("upper_bound_", high) << make_nvp("discrete_states_", states)
            << make_nvp("lower_bound_relative_", relative) << make_nvp("upper_bound_relative_", relative);
  }
};

}  // namespace
}  // namespace kestrel::algorithm::datatypes

namespace boost::serialization {

template <unsigned kVersion>
struct version<kestrel::algorithm::datatypes::ParameterLayout<kVersion>> {
  using type = mpl::int_<kVersion>;
  static constexpr int value = kVersion;
};

template <unsigned kVersion>
struct version<kestrel::algorithm::datatypes::RandomLayout<kVersion>> {
  using type = mpl::int_<kVersion>;
  static constexpr int value = kVersion;
};

template <>
struct version<kestrel::algorithm::datatypes::RangeLayout> {
  using type = mpl::int_<1>;
  static constexpr int value = 1;
};

}  // namespace boost::serialization

namespace kestrel::algorithm::datatypes {
namespace {

TEST(ParameterPersistence, ManagerIsReadAsItWasStored) {
  ParameterManager manager;
  manager.AddParameter(MakeParameter(L"b"));
  manager.AddParameter(MakeParameter(L"a"));
  manager.AddParameter(Parameter(L"plain"));
  manager.SetCorrelation(L"b", L"a", -0.5);
  const ParameterManager read = Read<ParameterManager>(Write(manager));
  EXPECT_EQ(read, manager);
  EXPECT_EQ(read.GetCorrelations().Get(L"a", L"b"), -0.5);
  EXPECT_FALSE(read.GetParameter(L"a").IsMutable(MutableMember::kConst));
}

TEST(ParameterPersistence, LayoutIsThatOfTheFormat) {
  const Parameter parameter = MakeParameter(L"p");
  EXPECT_EQ(Write(parameter), Write(ParameterLayout<7>{parameter}));
  const RandomProperties& random = parameter.GetRandomProperties();
  EXPECT_EQ(Write(random), Write(RandomLayout<4>{random}));
  const RangeLayout range{enums::DesignEntry::REAL, 0, 1, {0.5, 1.5}};
  const DeterministicProperties properties(DetKind::kOrdinalDiscrete, {0.5, 1.5});
  EXPECT_EQ(Write(properties), Write(range));
}

TEST(ParameterPersistence, OldParametersLackTheLaterFields) {
  const Parameter parameter = MakeParameter(L"p");
  const Parameter version_0 = Read<Parameter>(Write(ParameterLayout<0>{parameter}));
  Parameter expected = parameter;
  expected.SetDependencyExpression(L"");
  expected.SetId(CHierachicalId());
  expected.SetModifiable(true);
  expected.SetUnit(L"");
  expected.SetRemovable(true);
  expected.SetOrigin(L"");
  EXPECT_EQ(version_0, expected);
  EXPECT_EQ(Read<Parameter>(Write(ParameterLayout<1>{parameter})), expected);
  expected.SetDependencyExpression(parameter.GetDependencyExpression());
  EXPECT_EQ(Read<Parameter>(Write(ParameterLayout<2>{parameter})), expected);
  expected.SetId(parameter.GetId());
  EXPECT_EQ(Read<Parameter>(Write(ParameterLayout<3>{parameter})), expected);
  expected.SetModifiable(false);
  EXPECT_EQ(Read<Parameter>(Write(ParameterLayout<4>{parameter})), expected);
  expected.SetUnit(parameter.GetUnit());
  EXPECT_EQ(Read<Parameter>(Write(ParameterLayout<5>{parameter})), expected);
  expected.SetRemovable(false);
  EXPECT_EQ(Read<Parameter>(Write(ParameterLayout<6>{parameter})), expected);
}

TEST(ParameterPersistence, OldDistributionsLackTheLaterFields) {
  const Parameter parameter = MakeParameter(L"p");
  const RandomProperties& random = parameter.GetRandomProperties();
  const RandomProperties version_2 = Read<RandomProperties>(Write(RandomLayout<2>{random}));
  EXPECT_FALSE(version_2.HasSetCOV() || version_2.IsValidated());
  EXPECT_EQ(version_2.GetParams(), random.GetParams());
  EXPECT_EQ(version_2.GetMoments(), random.GetMoments());
  const RandomProperties version_3 = Read<RandomProperties>(Write(RandomLayout<3>{random}));
  EXPECT_EQ(version_3.GetCOV(), 0.25);
  EXPECT_FALSE(version_3.IsValidated());
}

TEST(ParameterPersistence, RefusesRangesThatContradictThemselves) {
  using enums::DesignEntry::REAL;
  const RangeLayout ranges[] = {
      {REAL, 0, 5, {0.5, 1.5}},      // a bound beyond the states
      {REAL, 0.5, 1.5, {0.5, 1.5}},  // discrete bounds that are no indices
      {REAL, 0, 1, {0.5, L"a"}},     // states of two types
      {REAL, 2.0, 1.0, {}},          // bounds in descending order
      {REAL, L"a", L"b", {}},
  };
  for (const RangeLayout& range : ranges) {
    EXPECT_THROW(Read<DeterministicProperties>(Write(range)), utils::runtime_error);
  }
}

TEST(ParameterPersistence, KindOfOldRangesIsReset) {
  const RangeLayout integers{enums::DesignEntry::INTEGER, 2, 7, {}};
  DeterministicProperties properties = Read<DeterministicProperties>(Write(integers));
  properties.SetKind(DetKind::kContinuous);
  EXPECT_EQ(properties, DeterministicProperties(2.0, 7.0));
  EXPECT_EQ(properties.GetLowerBound().GetDomainType(), enums::DesignEntry::REAL);
}

TEST(ParameterPersistence, RefusesNamesThatAreNotUnique) {
  ParameterManager manager;
  manager.AddParameter(Parameter(L"one"));
  manager.AddParameter(Parameter(L"two"));
  std::string bytes = Write(manager);
  const std::size_t second = bytes.find("two");
  ASSERT_NE(second, std::string::npos);
  bytes.replace(second, 3, "one");
  EXPECT_THROW(Read<ParameterManager>(bytes), utils::runtime_error);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
