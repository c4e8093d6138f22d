#include "surrogates/coefficient_matrix.h"

#include <gtest/gtest.h>

#include "support/matrix_compare.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;

IndexVector Codes(std::initializer_list<std::uint64_t> codes) {
  IndexVector subspace(static_cast<Index>(codes.size()));
  std::copy(codes.begin(), codes.end(), subspace.data());
  return subspace;
}

/// Bits as a text, bit 0 first.
std::string Bits(const Selection& selection) {
  std::string text;
  for (Selection::size_type i = 0; i < selection.size(); ++i) text += selection[i] ? '1' : '0';
  return text;
}

TEST(CoefficientMatrix, OrdersConstantPowersAndInteractions) {
  const Matrix points = (Matrix(2, 3) << 2, 3, 5, -1, 4, 7).finished();
  Selection main_terms = BuildMainTermSelection(3, 3, false);
  for (const std::size_t bit : {0U, 2U, 3U, 7U}) main_terms.set(bit);  // x0, x2, x0^2, x1^3
  Selection interactions = BuildInteractionSelection(3, false);
  interactions.set(InteractionBit(0, 2, 3));
  interactions.set(InteractionBit(1, 2, 3));

  const Matrix expected = (Matrix(2, 7) << 1, 2, 5, 4, 27, 10, 15, 1, -1, 7, 1, 64, -7, 28).finished();
  EXPECT_TRUE(MatrixNear(BuildCoefficientMatrix(points, main_terms, interactions), expected, 1e-12));
}

TEST(CoefficientMatrix, RefusesInteractionsOfAnotherDimension) {
  const Matrix points = Matrix::Ones(2, 1);
  const Selection main_terms = BuildMainTermSelection(1, 1, true);
  EXPECT_THROW(BuildCoefficientMatrix(points, main_terms, Selection(1)), std::logic_error);
  EXPECT_EQ(BuildCoefficientMatrix(points, main_terms, Selection()).cols(), 2);
  EXPECT_TRUE(MatrixNear(BuildCoefficientMatrix(points, Selection(1), Selection()), Matrix::Ones(2, 1), 0.0));
}

TEST(CoefficientMatrix, CountsPairsInOrder) {
  std::uint64_t bit = 0;
  for (std::uint64_t i = 0; i < 5; ++i) {
    for (std::uint64_t j = i + 1; j < 5; ++j) EXPECT_EQ(InteractionBit(i, j, 5), bit++);
  }
  EXPECT_EQ(NumberInteractionTerms(5), bit);
  EXPECT_EQ(NumberInteractionTerms(1), 0U);
}

TEST(CoefficientMatrix, ReadsSubspaceCodes) {
  struct Case {
    const char* name;
    IndexVector subspace;
    std::uint64_t order;
    const char* main_terms;
    const char* interactions;
  };
  const Case cases[] = {
      {"empty", Codes({0, 0}), 0, "", ""},
      {"linear", Codes({1, 0, 1}), 1, "101", ""},
      {"one quadratic has no partner", Codes({3, 1, 0}), 2, "110100", ""},
      {"pair of quadratics", Codes({3, 1, 3}), 2, "111101", "010"},
      {"quadratic only", Codes({2, 2}), 2, "0011", "1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(OrderFromSubspace(c.subspace), c.order);
    EXPECT_EQ(Bits(BuildMainTermSelectionFromSubspace(c.subspace)), c.main_terms);
    EXPECT_EQ(Bits(BuildInteractionSelectionFromSubspace(c.subspace)), c.interactions);
  }
  EXPECT_EQ(OrderFromSubspace(Codes({1U << 12U, 0})), 10U);
}

}  // namespace
}  // namespace kestrel::math::metamodel
