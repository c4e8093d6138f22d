#include "doe/doe.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "datatypes/type_names.h"
#include "doe/model_matrix.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "support/raised_text.h"

namespace kestrel::math::doe {
namespace {

using testing::MatrixNear;

constexpr std::uint64_t kHuge = std::numeric_limits<std::uint64_t>::max();

PointSetOptions Options() {
  PointSetOptions options;
  options.levels = 3;
  options.levels_per_input = {2, 3, 4};
  options.exponents = IndexMatrix{{0, 0, 0}, {1, 0, 0}, {0, 2, 0}, {1, 1, 1}};
  return options;
}

Matrix Build(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples,
             const PointSetOptions& options = Options(), std::uint64_t seed = 1) {
  random::Generator generator(seed);
  return DOE(generator).BuildClassic(type, num_inputs, num_samples, options);
}

struct Kind {
  const char* name;
  eClassicType type;
  enums::DOE::eType word;
  Index points;  // of three inputs; 0 where the caller chooses
  bool random;
};

// For a readable failure.
void PrintTo(const Kind& kind, std::ostream* stream) { *stream << kind.name; }

const Kind kKinds[] = {
    {"Center", eClassicType::kCenterPoint, enums::DOE::CENTER_POINT, 1, false},
    {"FullFactorial", eClassicType::kFullFactorial, enums::DOE::FULL_FACTORIAL, 27, false},
    {"Axial", eClassicType::kAxialPoints, enums::DOE::AXIAL_POINTS, 6, false},
    {"Star", eClassicType::kStarPoints, enums::DOE::STAR_POINTS, 7, false},
    {"Koshal", eClassicType::kKoshal, enums::DOE::KOSHAL, 10, false},
    {"CentralComposite", eClassicType::kCentralComposite, enums::DOE::CENTRAL_COMPOSITE, 15, false},
    {"MixedTerms", eClassicType::kMixedTerms, enums::DOE::MIXED_TERMS, 3, false},
    {"LatinHypercube", eClassicType::kLatinHypercube, enums::DOE::LATIN_HYPERCUBE, 0, true},
    {"Midpoint", eClassicType::kLatinHypercubeMidpoint, enums::DOE::LATIN_HYPERCUBE_MIDPOINT, 0, true},
    {"Orthogonal", eClassicType::kLatinHypercubeOrthogonal, enums::DOE::ORTHOGONAL_LATIN_HYPERCUBE, 0, true},
    {"Sobol", eClassicType::kSobolSequence, enums::DOE::SOBOL_SEQUENCE, 0, false},
    {"MonteCarlo", eClassicType::kPlainMonteCarlo, enums::DOE::PLAIN_MONTE_CARLO, 0, true},
    {"DOptimalCustomizable", eClassicType::kDOptimalCustomizable, enums::DOE::D_OPTIMAL_CUSTOMIZABLE, 0, true},
    {"DOptimalLinear", eClassicType::kDOptimalLinear, enums::DOE::D_OPTIMAL_LINEAR, 0, true},
    {"DOptimalNoMixed", eClassicType::kDOptimalQuadraticNoMixed, enums::DOE::D_OPTIMAL_QUADRATIC_NOMIXED, 0, true},
    {"DOptimalQuadratic", eClassicType::kDOptimalQuadratic, enums::DOE::D_OPTIMAL_QUADRATIC, 0, true},
    {"KoshalLinear", eClassicType::kKoshalLinear, enums::DOE::KOSHAL_LINEAR, 4, false},
    {"KoshalQuadratic", eClassicType::kKoshalQuadratic, enums::DOE::KOSHAL_QUADRATIC, 10, false},
    {"Fekete", eClassicType::kFeketePoints, enums::DOE::FEKETE_POINTS, 0, true},
    {"BoxBehnken", eClassicType::kBoxBehnken, enums::DOE::BOX_BEHNKEN, 13, false},
    {"SpaceFilling", eClassicType::kLatinHypercubeSpaceFilling, enums::DOE::SPACE_FILLING_LATIN_HYPERCUBE, 0, true},
    {"FullCombinatorial", eClassicType::kFullCombinatorial, enums::DOE::FULL_COMBINATORIAL, 24, false},
    {"Advanced", eClassicType::kLatinHypercubeAdvanced, enums::DOE::ADVANCED_LATIN_HYPERCUBE, 0, true}};

class PointSet : public ::testing::TestWithParam<Kind> {};

TEST_P(PointSet, IsNumberedAsItsWord) {
  EXPECT_EQ(static_cast<int>(GetParam().type) + 1, static_cast<int>(GetParam().word));
}

TEST_P(PointSet, HasItsNumberOfPointsInTheBox) {
  const auto& [name, type, word, fixed, random] = GetParam();
  const Matrix points = Build(type, 3, fixed > 0 ? 0 : 14);
  EXPECT_EQ(points.rows(), fixed > 0 ? fixed : 14);
  EXPECT_EQ(points.cols(), 3);
  EXPECT_LE(points.cwiseAbs().maxCoeff(), 1.0);
  if (fixed == 0) return;
  EXPECT_TRUE(MatrixNear(Build(type, 3, static_cast<std::uint64_t>(fixed)), points, 0.0));
  EXPECT_THROW(Build(type, 3, static_cast<std::uint64_t>(fixed) + 1), utils::logic_error);
}

TEST_P(PointSet, IsThatOfItsGenerator) {
  const auto& [name, type, word, fixed, random] = GetParam();
  const Matrix points = Build(type, 3, static_cast<std::uint64_t>(fixed > 0 ? fixed : 14), Options(), 9);
  EXPECT_TRUE(MatrixNear(Build(type, 3, static_cast<std::uint64_t>(points.rows()), Options(), 9), points, 0.0));
  if (random) {
    EXPECT_FALSE(MatrixNear(Build(type, 3, 14, Options(), 10), points, 0.0));
  }
}

TEST_P(PointSet, RefusesSizesOutOfReach) {
  const auto& [name, type, word, fixed, random] = GetParam();
  EXPECT_THROW(Build(type, 0, 14), utils::logic_error);
  EXPECT_THROW(Build(type, kHuge, 14), utils::logic_error);
  EXPECT_THROW(Build(type, kHuge / 2 + 1, kHuge / 2 + 1), utils::logic_error);
  EXPECT_THROW(Build(type, 3, kHuge), utils::logic_error);
  if (fixed == 0) {
    EXPECT_THROW(Build(type, 3, 0), utils::logic_error);
  }
}

INSTANTIATE_TEST_SUITE_P(Types, PointSet, ::testing::ValuesIn(kKinds),
                         [](const auto& kind) { return kind.param.name; });

TEST(PointSets, RefuseWhatCannotBe) {
  struct Case {
    const char* name;
    eClassicType type;
    std::uint64_t inputs, samples;
    const wchar_t* text;
  };
  for (const Case& c :
       {Case{"unknown", static_cast<eClassicType>(23), 2, 5, L"Unknown type of point set."},
        Case{"design points", static_cast<eClassicType>(-1), 2, 5, L"Unknown type of point set."},
        Case{"no inputs", eClassicType::kSobolSequence, 0, 5, L"A point set needs at least one input."},
        Case{"no points", eClassicType::kSobolSequence, 5, 0, L"A point set needs at least one point."},
        Case{"many levels", eClassicType::kFullFactorial, 60, 0,
             L"The point set is too large: 18446744073709551615 points of 60 inputs, at most 67108864 entries are "
             L"possible."},
        Case{"levels of other inputs", eClassicType::kFullCombinatorial, 4, 0,
             L"A full combinatorial design needs the number of levels of each input."},
        Case{"one mixed input", eClassicType::kMixedTerms, 1, 0, L"Mixed terms need at least two inputs."},
        Case{"box behnken", eClassicType::kBoxBehnken, 2, 0, L"A Box-Behnken design needs at least three inputs."},
        Case{"direction numbers", eClassicType::kSobolSequence, 3668, 5,
             L"A Sobol sequence has at most 3667 inputs, not 3668."},
        Case{"few points", eClassicType::kDOptimalQuadratic, 3, 9,
             L"A D-optimal design for 10 terms needs at least as many points, not 9."},
        Case{"terms of other inputs", eClassicType::kDOptimalCustomizable, 4, 9,
             L"The terms of a customizable D-optimal design need an exponent of each input."},
        Case{"fixed", eClassicType::kBoxBehnken, 3, 14, L"This point set has 13 points, not 14."},
        Case{"fekete", eClassicType::kFeketePoints, 1, 3, L"A single input has two Fekete points only."}}) {
    EXPECT_EQ(testing::RaisedText([&] { Build(c.type, c.inputs, c.samples); }), c.text) << c.name;
  }
}

TEST(PointSets, RefuseModelsAndLevelsThatCannotBe) {
  const auto with_terms = [](const IndexMatrix& exponents) {
    PointSetOptions options;
    options.exponents = exponents;
    return Build(eClassicType::kDOptimalCustomizable, 2, 8, options);
  };
  EXPECT_THROW(with_terms(IndexMatrix(0, 2)), utils::logic_error);
  EXPECT_THROW(with_terms(IndexMatrix{{1, 0}, {1, 0}}), utils::logic_error);
  EXPECT_THROW(with_terms(IndexMatrix{{1, 17}}), utils::logic_error);
  PointSetOptions options;
  options.levels = 1;
  options.levels_per_input = {2, 0};
  EXPECT_THROW(Build(eClassicType::kFullFactorial, 2, 0, options), utils::logic_error);
  EXPECT_THROW(Build(eClassicType::kKoshal, 2, 0, options), utils::logic_error);
  EXPECT_THROW(Build(eClassicType::kFullCombinatorial, 2, 0, options), utils::logic_error);
}

TEST(PointSets, EstimateTheModelsThatTheyAreFor) {
  for (const std::uint64_t inputs : {2U, 3U, 5U}) {
    EXPECT_TRUE(CanEstimate(QuadraticTerms(inputs, false), Build(eClassicType::kStarPoints, inputs, 0)));
    EXPECT_TRUE(CanEstimate(QuadraticTerms(inputs, true), Build(eClassicType::kCentralComposite, inputs, 0)));
    const Matrix star = Build(eClassicType::kStarPoints, inputs, 0);
    const Matrix mixed = Build(eClassicType::kMixedTerms, inputs, 0);
    EXPECT_FALSE(CanEstimate(QuadraticTerms(inputs, true), star));
    EXPECT_TRUE(CanEstimate(QuadraticTerms(inputs, true),
                            (Matrix(star.rows() + mixed.rows(), star.cols()) << star, mixed).finished()));
    EXPECT_TRUE(CanEstimate(LinearTerms(inputs), Build(eClassicType::kAxialPoints, inputs, 0)));
  }
}

}  // namespace
}  // namespace kestrel::math::doe
