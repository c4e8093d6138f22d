#pragma once

#include <cstdint>
#include <vector>

#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Terms of a polynomial model, m x n: the exponent of each input in each term.
/// 1 and all x_j.
IndexMatrix LinearTerms(std::uint64_t num_inputs);
/// These and all x_j^2; with `mixed` all x_i x_j as well.
IndexMatrix QuadraticTerms(std::uint64_t num_inputs, bool mixed);

/// The terms of a model, ready to be evaluated.
class ModelTerms {
 public:
  /// Refuses a model without terms or inputs, terms that are there twice, more than 512 terms, and exponents above 16.
  explicit ModelTerms(const IndexMatrix& exponents);

  Index NumTerms() const { return static_cast<Index>(factors_.size()); }
  Index NumInputs() const { return static_cast<Index>(terms_of_input_.size()); }

  /// Term number `term` at the point x.
  double Evaluate(Index term, const VectorIn& x) const;
  /// All terms at x, length m.
  Vector Evaluate(const VectorIn& x) const;

  /// The terms in which an input has an exponent above 0, in ascending order.
  const std::vector<Index>& TermsOfInput(Index input) const { return terms_of_input_[static_cast<std::size_t>(input)]; }
  /// The largest exponent of an input.
  std::uint64_t Order(Index input) const { return orders_[static_cast<std::size_t>(input)]; }

 private:
  struct Factor {
    Index input;
    std::uint64_t exponent;
  };

  std::vector<std::vector<Factor>> factors_;  ///< per term, without exponents of 0
  std::vector<std::vector<Index>> terms_of_input_;
  std::vector<std::uint64_t> orders_;
};

}  // namespace kestrel::math::doe
