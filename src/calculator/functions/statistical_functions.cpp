#include <algorithm>
#include <cmath>
#include <limits>

#include "calculator/functions/arguments.h"
#include "calculator/functions/function_groups.h"
#include "calculator/functions/numbers.h"

namespace kestrel::calculator {
namespace {

/// Of the moduli. A NaN wins, so that it is not lost.
double LargestModulus(const NumberRow& row) {
  double largest = 0.0;
  for (const Complex& z : row) {
    const double modulus = Modulus(z);
    if (modulus > largest || std::isnan(modulus)) largest = modulus;
    if (std::isnan(modulus)) break;
  }
  return largest;
}

double SmallestModulus(const NumberRow& row) {
  double smallest = std::numeric_limits<double>::infinity();
  for (const Complex& z : row) {
    const double modulus = Modulus(z);
    if (modulus < smallest || std::isnan(modulus)) smallest = modulus;
    if (std::isnan(modulus)) break;
  }
  return smallest;
}

/// sqrt(sum |z|^2), by way of scaled entries only where the squares leave the range of a double.
double EuclideanNorm(const NumberRow& row) {
  constexpr double kLeastSafeSum = 1e-280;
  const double sum = row.squaredNorm();
  if (sum > kLeastSafeSum && std::isfinite(sum)) return std::sqrt(sum);
  const double largest = LargestModulus(row);
  return largest == 0.0 || !std::isfinite(largest) ? largest : row.stableNorm();
}

/// sum (|z| / scale)^p
double SumOfPowers(const NumberRow& row, double scale, double p) {
  double sum = 0.0;
  for (const Complex& z : row) sum += std::pow(Modulus(z) / scale, p);
  return sum;
}

/// (sum |z|^p)^(1/p), the largest modulus for an infinite p.
double PNorm(const NumberRow& row, double p) {
  if (p == 2.0) return EuclideanNorm(row);
  const double largest = LargestModulus(row);
  if (largest == 0.0 || !std::isfinite(largest) || std::isinf(p)) return largest;
  return largest * std::pow(SumOfPowers(row, largest, p), 1.0 / p);
}

double RootMeanSquare(const NumberRow& row) { return EuclideanNorm(row) / std::sqrt(static_cast<double>(row.size())); }

/// exp(mean(ln |z|))
double GeometricMean(const NumberRow& row) {
  double sum = 0.0;
  for (const Complex& z : row) sum += std::log(Modulus(z));
  return std::exp(sum / static_cast<double>(row.size()));
}

/// (mean |z|^p)^(1/p) with its limits for p = 0 and infinite p. Scaled by the modulus that dominates the sum.
double PowerMean(const NumberRow& row, double p) {
  if (p == 0.0) return GeometricMean(row);
  const double scale = p > 0.0 ? LargestModulus(row) : SmallestModulus(row);
  if (scale == 0.0 || !std::isfinite(scale) || std::isinf(p)) return scale;
  return scale * std::pow(SumOfPowers(row, scale, p) / static_cast<double>(row.size()), 1.0 / p);
}

Complex Mean(const NumberRow& row) { return row.sum() / static_cast<double>(row.size()); }

/// reduce(row - mean of the row) of each row, or, with a reference, reduce(row of x - reference).
template <class Reduce>
Value ReduceDeviations(const Arguments& arguments, std::size_t reference_index, Reduce reduce) {
  if (arguments.size() > reference_index) {
    const Value reference = CopyNumbers(GetValue(arguments, reference_index), reference_index);
    const Value deviation = MapPairs(GetValue(arguments, 0), reference, reference_index,
                                     [](const Complex& x, const Complex& y) { return x - y; });
    return ReduceRows(Numbers(deviation, 0).RequireSome(), reduce);
  }
  return ReduceRows(Numbers(arguments, 0).RequireSome(), [&](const NumberRow& row) {
    const Eigen::VectorXcd deviation = row.array() - Mean(row);
    return reduce(NumberRow(deviation.data(), deviation.size()));
  });
}

double GetExponent(const Arguments& arguments, std::size_t index, bool positive) {
  const double p = GetRealOr(arguments, index, 2.0);
  if (std::isnan(p) || (positive && !(p > 0.0))) {
    RefuseArgument(index, positive ? L"A positive exponent is expected." : L"An exponent is expected, not a NaN.");
  }
  return p;
}

Value Sum(const Arguments& arguments, FunctionContext&) {
  return ReduceRows(Numbers(arguments, 0), [](const NumberRow& row) { return row.sum(); });
}
Value MeanOf(const Arguments& arguments, FunctionContext&) {
  return ReduceRows(Numbers(arguments, 0).RequireSome(), &Mean);
}

/// Two passes: the mean, then the squares of the deviations.
Value StandardDeviation(const Arguments& arguments, FunctionContext&) {
  return ReduceDeviations(arguments, 1, [](const NumberRow& deviation) {
    if (deviation.size() == 1) return 0.0;
    return EuclideanNorm(deviation) / std::sqrt(static_cast<double>(deviation.size() - 1));
  });
}

Value Norm(const Arguments& arguments, FunctionContext&) {
  const double p = GetExponent(arguments, 1, true);
  return ReduceRows(Numbers(arguments, 0), [p](const NumberRow& row) { return PNorm(row, p); });
}
Value EuklidNorm(const Arguments& arguments, FunctionContext&) {
  return ReduceRows(Numbers(arguments, 0), &EuclideanNorm);
}
Value Rms(const Arguments& arguments, FunctionContext&) {
  return ReduceRows(Numbers(arguments, 0).RequireSome(), &RootMeanSquare);
}
Value RmsDeviation(const Arguments& arguments, FunctionContext&) {
  return ReduceDeviations(arguments, 1, &RootMeanSquare);
}
Value PowMean(const Arguments& arguments, FunctionContext&) {
  const double p = GetExponent(arguments, 1, false);
  return ReduceRows(Numbers(arguments, 0).RequireSome(), [p](const NumberRow& row) { return PowerMean(row, p); });
}
Value PowMeanDeviation(const Arguments& arguments, FunctionContext&) {
  const double p = GetExponent(arguments, 1, false);
  return ReduceDeviations(arguments, 2, [p](const NumberRow& row) { return PowerMean(row, p); });
}

}  // namespace

void AppendStatisticalFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject x{
      L"x", L"Numbers of any kind; each row of a matrix and each channel of a signal gives a result of its own."};
  const CCalculatorArgumentInfoObject norm_p{L"p", L"Positive exponent, which may be infinite; 2 if it is missing.",
                                             true};
  const CCalculatorArgumentInfoObject mean_p{L"p", L"Exponent: 1 arithmetic, 2 root mean square, -1 harmonic, ..."};
  const CCalculatorArgumentInfoObject reference{L"reference", L"What is subtracted in the place of the mean.", true};
  AppendRows(table, {
                        {L"sum", L"Sum of the entries; 0 without entries.", {x}, L"sum(x)", &Sum},
                        {L"mean", L"Mean of the entries.", {x}, L"mean(x)", &MeanOf},
                        {L"stddev",
                         L"Standard deviation sqrt(sum |x - mean|^2 / (n - 1)); 0 for one entry.",
                         {x},
                         L"stddev(x)",
                         &StandardDeviation},
                        {L"norm",
                         L"p-norm (sum |x|^p)^(1/p); the largest absolute value for an infinite p.",
                         {x, norm_p},
                         L"norm(x)\nnorm(x, p)",
                         &Norm},
                        {L"euklidnorm", L"Euclidean norm sqrt(sum |x|^2).", {x}, L"euklidnorm(x)", &EuklidNorm},
                        {L"rms", L"Root mean square sqrt(mean |x|^2).", {x}, L"rms(x)", &Rms},
                        {L"rmsdev",
                         L"Root mean square of the deviations from the mean (over n, not n - 1), or from a reference.",
                         {x, reference},
                         L"rmsdev(x)\nrmsdev(x, reference)",
                         &RmsDeviation},
                        {L"powmean",
                         L"Power mean (mean |x|^p)^(1/p); the geometric mean for p = 0, the largest or the smallest "
                         L"absolute value for an infinite p.",
                         {x, mean_p},
                         L"powmean(x, p)",
                         &PowMean},
                        {L"powmeandev",
                         L"Power mean of the deviations from the mean, or from a reference.",
                         {x, mean_p, reference},
                         L"powmeandev(x, p)\npowmeandev(x, p, reference)",
                         &PowMeanDeviation},
                    });
}

}  // namespace kestrel::calculator
