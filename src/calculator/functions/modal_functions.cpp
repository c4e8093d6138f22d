#include <algorithm>
#include <vector>

#include "calculator/functions/arguments.h"
#include "calculator/functions/dense_matrices.h"
#include "calculator/functions/function_groups.h"

namespace kestrel::calculator {
namespace {

/// Both arguments as mode matrices, one column per mode and one row per degree of freedom; a vector is one mode.
/// Returns measure(modes of the first, modes of the second).
template <class Measure>
Value CompareModes(const Arguments& arguments, bool in_pairs, Measure measure) {
  const Numbers a(arguments, 0);
  const Numbers b(arguments, 1);
  const auto modes = [](const Numbers& n) { return n.Kind() <= Value::VECTOR ? 1 : n.Columns(); };
  const auto freedoms = [](const Numbers& n) { return n.Kind() <= Value::VECTOR ? n.Size() : n.Rows(); };
  if (freedoms(a) != freedoms(b)) RefuseArgument(1, L"It is to have as many degrees of freedom as the first argument.");
  if (in_pairs && modes(a) != modes(b)) RefuseArgument(1, L"It is to have as many modes as the first argument.");
  if (!in_pairs) {
    RequireEntries(modes(a), modes(b));
    RequireOperations(modes(a), freedoms(a), modes(b));
  }
  return WithScalarOf(a, b, [&](auto scalar) {
    using Scalar = decltype(scalar);
    return measure(ToDense<Scalar>(a, true), ToDense<Scalar>(b, true));
  });
}

template <class Modes>
void Normalise(Modes& modes) {
  for (auto mode : modes.colwise()) {
    const double norm = mode.size() == 0 ? 0.0 : mode.stableNorm();
    if (norm > 0.0) mode /= norm;
  }
}

/// MAC_ij = |a_i^H b_j|^2 / (a_i^H a_i  b_j^H b_j), one row per mode of a (Allemang and Brown 1982).
template <class Modes>
Eigen::MatrixXd ModalAssurance(Modes a, Modes b) {
  Normalise(a);
  Normalise(b);
  return (a.adjoint() * b).cwiseAbs2();
}

Value Mac(const Arguments& arguments, FunctionContext&) {
  const bool of_vectors =
      GetValue(arguments, 0).GetKind() < Value::MATRIX && GetValue(arguments, 1).GetKind() < Value::MATRIX;
  return CompareModes(arguments, false, [of_vectors](const auto& a, const auto& b) {
    const Eigen::MatrixXd mac = ModalAssurance(a, b);
    return of_vectors ? Value(mac(0, 0), 0.0) : ToMatrix(mac);
  });
}

/// num / den, and 0 for 0 / 0.
double Quotient(double numerator, double denominator) { return denominator == 0.0 ? 0.0 : numerator / denominator; }

/// COMAC_i = (sum_r |a_ir b_ir|)^2 / (sum_r |a_ir|^2 sum_r |b_ir|^2) over the pairs r of modes (Lieven and Ewins 1988).
Value Comac(const Arguments& arguments, FunctionContext&) {
  return CompareModes(arguments, true, [](const auto& a, const auto& b) {
    const Eigen::VectorXd products = a.cwiseProduct(b).cwiseAbs().rowwise().sum();
    const Eigen::VectorXd squares = a.rowwise().squaredNorm().cwiseProduct(b.rowwise().squaredNorm());
    return ToVector(products.cwiseAbs2().binaryExpr(squares, &Quotient));
  });
}

/// Share of each degree of freedom in the squared curvature of a mode, by central differences over evenly spaced
/// degrees of freedom; the ends have the curvature of their neighbours. One column per mode, n >= 3 rows.
template <class Modes>
Eigen::MatrixXd CurvatureShares(const Modes& modes) {
  const Eigen::Index n = modes.rows();
  Eigen::MatrixXd shares(n, modes.cols());
  shares.middleRows(1, n - 2) =
      (modes.topRows(n - 2) - 2.0 * modes.middleRows(1, n - 2) + modes.bottomRows(n - 2)).cwiseAbs2();
  shares.row(0) = shares.row(1);
  shares.row(n - 1) = shares.row(n - 2);
  for (auto mode : shares.colwise()) {
    if (const double total = mode.sum(); total > 0.0) mode /= total;
  }
  return shares;
}

/// beta_j = sum_i (1 + F'_ij) / sum_i (1 + F_ij) with the shares F of the intact and F' of the damaged modes i (Stubbs,
/// Kim and Farrar 1995).
Value Sdi(const Arguments& arguments, FunctionContext&) {
  return CompareModes(arguments, true, [](const auto& intact, const auto& damaged) {
    if (intact.rows() < 3) RefuseArgument(0, L"At least three degrees of freedom are expected.");
    const Eigen::VectorXd before = (1.0 + CurvatureShares(intact).array()).rowwise().sum();
    const Eigen::VectorXd after = (1.0 + CurvatureShares(damaged).array()).rowwise().sum();
    return ToVector(after.binaryExpr(before, &Quotient));
  });
}

struct ModePair {
  Eigen::Index a;
  Eigen::Index b;
  double mac;
};

/// The pair with the largest MAC, then the next among the modes that are still free, as long as MAC >= threshold.
std::vector<ModePair> FindPairs(const Eigen::MatrixXd& mac, double threshold) {
  std::vector<ModePair> candidates;
  for (Eigen::Index a = 0; a < mac.rows(); ++a) {
    for (Eigen::Index b = 0; b < mac.cols(); ++b) {
      if (mac(a, b) >= threshold) candidates.push_back({a, b, mac(a, b)});
    }
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const ModePair& left, const ModePair& right) { return left.mac > right.mac; });
  std::vector<bool> a_is_taken(static_cast<std::size_t>(mac.rows()));
  std::vector<bool> b_is_taken(static_cast<std::size_t>(mac.cols()));
  std::vector<ModePair> pairs;
  for (const ModePair& pair : candidates) {
    const auto a = static_cast<std::size_t>(pair.a);
    const auto b = static_cast<std::size_t>(pair.b);
    if (a_is_taken[a] || b_is_taken[b]) continue;
    a_is_taken[a] = b_is_taken[b] = true;
    pairs.push_back(pair);
  }
  std::sort(pairs.begin(), pairs.end(), [](const ModePair& left, const ModePair& right) { return left.a < right.a; });
  return pairs;
}

Value ModePairs(const Arguments& arguments, FunctionContext&) {
  const double threshold = GetRealOr(arguments, 2, 0.0);
  return CompareModes(arguments, false, [threshold](const auto& a, const auto& b) {
    const std::vector<ModePair> pairs = FindPairs(ModalAssurance(a, b), threshold);
    Eigen::MatrixX3d rows(static_cast<Eigen::Index>(pairs.size()), 3);
    for (Eigen::Index i = 0; i < rows.rows(); ++i) {
      const ModePair& pair = pairs[static_cast<std::size_t>(i)];
      rows.row(i) << static_cast<double>(pair.a), static_cast<double>(pair.b), pair.mac;
    }
    return ToMatrix(rows);
  });
}

}  // namespace

void AppendModalFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject a{L"a", L"Mode shapes: a matrix with one column per mode, or a vector."};
  const CCalculatorArgumentInfoObject b{L"b", L"Other mode shapes with the same degrees of freedom."};
  const CCalculatorArgumentInfoObject intact{L"intact", L"Mode shapes without damage, one column per mode."};
  const CCalculatorArgumentInfoObject damaged{L"damaged", L"The same modes with damage."};
  const CCalculatorArgumentInfoObject threshold{L"threshold", L"The least MAC of a pair; 0 if it is missing.", true};
  AppendRows(table,
             {
                 {L"mac",
                  L"Modal assurance criterion |a^H b|^2 / (a^H a b^H b) (Allemang and Brown 1982): a number for two "
                  L"vectors, else a matrix with one row per mode of a and one column per mode of b. 0 for a mode "
                  L"without displacements.",
                  {a, b},
                  L"mac(a, b)",
                  &Mac},
                 {L"comac",
                  L"Coordinate modal assurance criterion (Lieven and Ewins 1988) of paired modes that are scaled "
                  L"alike: a vector with one entry (sum |a b|)^2 / (sum |a|^2 sum |b|^2) per degree of freedom, 0 "
                  L"where nothing moves.",
                  {a, b},
                  L"comac(a, b)",
                  &Comac},
                 {L"sdi",
                  L"Structural damage index from modal curvatures (Stubbs, Kim and Farrar 1995) of paired modes "
                  L"over evenly spaced degrees of freedom: a vector with one entry per degree of freedom, above 1 "
                  L"where the share of the squared curvature grew by damage.",
                  {intact, damaged},
                  L"sdi(intact, damaged)",
                  &Sdi},
                 {L"modepairs",
                  L"Pairs of modes: the two with the largest MAC, then again among the rest. A matrix with one row "
                  L"[mode of a, mode of b, MAC] per pair, in the order of a; modes count from 0.",
                  {a, b, threshold},
                  L"modepairs(a, b)\nmodepairs(a, b, threshold)",
                  &ModePairs},
             });
}

}  // namespace kestrel::calculator
