#include "doe/model_terms.h"

#include <algorithm>
#include <set>

#include "doe/point_set.h"

namespace kestrel::math::doe {
namespace {

constexpr std::uint64_t kMaxTerms = 512;
constexpr std::uint64_t kMaxExponent = 16;

void RequireNumTerms(std::uint64_t count) {
  Require(count <= kMaxTerms,
          L"A D-optimal design is possible for models of at most " + std::to_wstring(kMaxTerms) + L" terms.");
}

// Zero exponents for `count` terms of the inputs, after a check of the sizes.
IndexMatrix NoExponents(std::uint64_t count, std::uint64_t num_inputs) {
  RequireSize(count, num_inputs);
  RequireNumTerms(count);
  return IndexMatrix::Zero(static_cast<Index>(count), static_cast<Index>(num_inputs));
}

void RequireDifferentTerms(const IndexMatrix& exponents) {
  std::set<std::vector<std::uint64_t>> seen;
  for (const auto& row : exponents.rowwise()) seen.emplace(row.begin(), row.end());
  Require(static_cast<Index>(seen.size()) == exponents.rows(), L"A term of the model is given twice.");
}

double Power(double x, std::uint64_t exponent) {
  double power = x;
  for (std::uint64_t i = 1; i < exponent; ++i) power *= x;
  return power;
}

}  // namespace

IndexMatrix LinearTerms(std::uint64_t num_inputs) {
  RequireNumTerms(num_inputs);
  IndexMatrix exponents = NoExponents(num_inputs + 1, num_inputs);
  exponents.bottomRows(exponents.cols()).setIdentity();
  return exponents;
}

IndexMatrix QuadraticTerms(std::uint64_t num_inputs, bool mixed) {
  RequireNumTerms(num_inputs);
  IndexMatrix exponents = NoExponents(1 + 2 * num_inputs + (mixed ? num_inputs * (num_inputs - 1) / 2 : 0), num_inputs);
  const Index n = exponents.cols();
  exponents.middleRows(1, n).setIdentity();
  exponents.middleRows(1 + n, n).diagonal().setConstant(2);
  Index row = 1 + 2 * n;
  for (Index i = 0; mixed && i < n; ++i) {
    for (Index j = i + 1; j < n; ++j, ++row) exponents(row, i) = exponents(row, j) = 1;
  }
  return exponents;
}

ModelTerms::ModelTerms(const IndexMatrix& exponents) {
  Require(exponents.size() > 0, L"The model of a D-optimal design needs terms.");
  RequireNumTerms(static_cast<std::uint64_t>(exponents.rows()));
  Require(exponents.maxCoeff() <= kMaxExponent,
          L"Exponents of a D-optimal design are at most " + std::to_wstring(kMaxExponent) + L".");
  RequireDifferentTerms(exponents);

  factors_.resize(static_cast<std::size_t>(exponents.rows()));
  for (Index j = 0; j < exponents.cols(); ++j) {
    orders_.push_back(exponents.col(j).maxCoeff());
    terms_of_input_.emplace_back();
    for (Index t = 0; t < exponents.rows(); ++t) {
      if (exponents(t, j) == 0) continue;
      factors_[static_cast<std::size_t>(t)].push_back({j, exponents(t, j)});
      terms_of_input_.back().push_back(t);
    }
  }
}

double ModelTerms::Evaluate(Index term, const VectorIn& x) const {
  double product = 1.0;
  for (const Factor& factor : factors_[static_cast<std::size_t>(term)]) {
    product *= Power(x(factor.input), factor.exponent);
  }
  return product;
}

Vector ModelTerms::Evaluate(const VectorIn& x) const {
  return Vector::NullaryExpr(NumTerms(), [&](Index term) { return Evaluate(term, x); });
}

}  // namespace kestrel::math::doe
