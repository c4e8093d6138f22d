#pragma once

#include <initializer_list>
#include <memory>

#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {

enum class ePolynomial { kQuadratic, kQuadraticWithoutInteractions, kLinear };

/// A polynomial of the inputs that `model` selects, on its sample and in its coordinates, with the best of the Box-Cox
/// exponents: that is where models of other kinds take theirs from. It is not built where the samples are too few.
/// @param term_sets  not empty; the first of them that the sample determines, or else the last.
std::unique_ptr<LinearRegression> FitBoxCoxRegression(const SurrogateBase& model,
                                                      std::initializer_list<ePolynomial> term_sets,
                                                      const std::shared_ptr<utils::StopHelper>& stop);

}  // namespace kestrel::math::metamodel
