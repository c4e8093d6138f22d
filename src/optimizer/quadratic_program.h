#pragma once

#include "support/linear_algebra.h"

namespace kestrel::algorithm::optimizer {

using math::Index;
using math::Matrix;
using math::MatrixIn;
using math::Vector;
using math::VectorIn;

/// minimise  1/2 d' B d + g' d  subject to
///
///   a_j d + b_j = 0   for the first num_equalities rows of A,
///   a_j d + b_j >= 0  for the others,
///   lower <= d <= upper;  a bound at the end of the range of double is none.
struct QuadraticProgram {
  MatrixIn matrix;    ///< n x n, lower triangle: B itself, or the unit triangle L of B = L D L'
  VectorIn diagonal;  ///< D, n; not read where the matrix is B itself
  bool is_full;       ///< the matrix is B itself
  VectorIn gradient;  ///< g, n
  MatrixIn normals;   ///< A, m x n
  VectorIn offsets;   ///< b, m
  Index num_equalities;
  VectorIn lower;  ///< n
  VectorIn upper;  ///< n
};

/// `kNotSolved`: B is not positive definite, or far more exchanges were made than rounding can explain.
enum class eProgramResult { kSolved, kInconsistent, kNotSolved };

struct ProgramSolution {
  eProgramResult result = eProgramResult::kNotSolved;
  Vector step;         ///< d, n
  Vector multipliers;  ///< m + 2 n: constraints, lower bounds, upper bounds; not negative but for equalities
};

/// Factorises a symmetric B = L D L' without pivoting: the lower triangle of `factor` gets the unit triangle L, and
/// `diagonal` gets D. Only the lower triangle of B is read. False if B is not safely positive definite.
bool ldl001_(const MatrixIn& b, Eigen::Ref<Matrix> factor, Eigen::Ref<Vector> diagonal);

/// Solves the program: factorises B where that is needed and goes on with the dual method.
/// @param tolerance  violation, relative to the terms of the constraint, that counts as none; 0: 1e-14.
ProgramSolution ql_(const QuadraticProgram& program, double tolerance);

/// The dual active set method for a program that comes factorised (Goldfarb and Idnani 1983, "A numerically stable dual
/// method for solving strictly convex quadratic programs"): from the free minimum it takes in one violated constraint
/// after the other, and drops those whose multipliers would turn negative.
ProgramSolution ql0002_(const QuadraticProgram& factorised, double tolerance);

}  // namespace kestrel::algorithm::optimizer
