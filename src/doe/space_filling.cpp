#include "doe/space_filling.h"

#include <algorithm>
#include <boost/random/exponential_distribution.hpp>
#include <boost/random/uniform_int_distribution.hpp>
#include <cmath>
#include <limits>
#include <utility>

#include "doe/latin_hypercube.h"
#include "doe/point_set.h"

namespace kestrel::math::doe {
namespace {

constexpr std::uint64_t kMaxPoints = 8192;  // the distances between all of them are kept
constexpr double kTriesPerEntry = 1000.0;
constexpr double kMaxWork = 2e8;  // distances looked at in all: some seconds

// Of the logarithm of the sum, in which 1 is a smallest distance shorter by 5 %.
constexpr double kFirstTemperature = 0.5;
constexpr double kLastTemperature = 5e-4;

// The sum of d^-20.
double Repulsion(const Eigen::Ref<const Eigen::ArrayXd>& squared_distances) {
  const auto tenth = [](double s) {
    const double inverse = 1.0 / s;
    const double square = inverse * inverse;
    const double fifth = square * square * inverse;
    return fifth * fifth;
  };
  return squared_distances.unaryExpr(tenth).sum();
}

class Annealing {
 public:
  explicit Annealing(Matrix points) : points_(std::move(points)), distances_(points_.rows(), points_.rows()) {
    for (Index i = 0; i < points_.rows(); ++i) {
      distances_.col(i) = (points_.rowwise() - points_.row(i)).rowwise().squaredNorm();
    }
    distances_.matrix().diagonal().setConstant(std::numeric_limits<double>::infinity());  // a point repels only others
    SumUp();
    best_ = points_;
    best_sum_ = sum_;
  }

  // Exchanges input j of the points a and b unless the logarithm of the sum grew by more than `allowed`.
  void Try(Index j, Index a, Index b, double allowed) {
    if (a == b) return;
    Exchange(j, a, b);
    const double growth =
        Repulsion(moved_a_) - Repulsion(distances_.col(a)) + Repulsion(moved_b_) - Repulsion(distances_.col(b));
    if (sum_ + growth > sum_ * std::exp(allowed)) return;
    std::swap(points_(a, j), points_(b, j));
    StoreDistances(a, moved_a_);
    StoreDistances(b, moved_b_);
    sum_ += growth;
    if (sum_ < kDigitsLeft * summed_up_ || ++exchanges_ >= points_.rows()) SumUp();
    KeepBest();
  }

  const Matrix& Best() const { return best_; }

 private:
  static constexpr double kDigitsLeft = 1e-4;  // a sum that fell below this share is added up anew

  // The squared distances of a and b from all points after the exchange. Their own from each other stays.
  void Exchange(Index j, Index a, Index b) {
    const auto column = points_.col(j).array();
    change_ = (column - points_(b, j)).square() - (column - points_(a, j)).square();
    moved_a_ = distances_.col(a) + change_;
    moved_b_ = distances_.col(b) - change_;
    moved_a_(b) = moved_b_(a) = distances_(a, b);
  }

  void StoreDistances(Index point, const Eigen::ArrayXd& moved) {
    distances_.col(point) = moved;
    distances_.row(point) = moved.transpose();
  }

  void SumUp() {
    double twice = 0.0;  // each pair is met from both sides
    for (Index i = 0; i < distances_.cols(); ++i) twice += Repulsion(distances_.col(i));
    summed_up_ = sum_ = 0.5 * twice;
    exchanges_ = 0;
  }

  void KeepBest() {
    if (sum_ >= best_sum_ * (1.0 - 1e-9)) return;
    best_sum_ = sum_;
    best_ = points_;
  }

  Matrix points_;
  Eigen::ArrayXXd distances_;  // squared, N x N
  double sum_ = 0.0;
  double summed_up_ = 0.0;  // its value when it was added up last
  Index exchanges_ = 0;     // since then
  Matrix best_;
  double best_sum_ = 0.0;
  Eigen::ArrayXd change_, moved_a_, moved_b_;
};

}  // namespace

Matrix SpaceFillingLatinHypercube(std::uint64_t num_points, std::uint64_t num_inputs, random::Generator& generator) {
  RequireSize(num_points, num_inputs);
  Require(num_points <= kMaxPoints, L"A space filling Latin hypercube has at most " + std::to_wstring(kMaxPoints) +
                                        L" points, not " + std::to_wstring(num_points) + L".");
  Matrix start = RandomLatinHypercube(static_cast<Index>(num_points), static_cast<Index>(num_inputs), generator);
  if (num_points < 3 || num_inputs < 2) return start;

  using UniformIndex = boost::random::uniform_int_distribution<Index>;
  const UniformIndex any_input(0, start.cols() - 1);
  const UniformIndex any_point(0, start.rows() - 1);
  const double tries = std::min(kTriesPerEntry * static_cast<double>(start.size()),
                                kMaxWork / (4.0 * static_cast<double>(start.rows())));
  const double cooling = std::pow(kLastTemperature / kFirstTemperature, 1.0 / tries);
  Annealing annealing(std::move(start));
  double temperature = kFirstTemperature;
  boost::random::exponential_distribution<double> metropolis;
  for (auto left = static_cast<Index>(tries); left > 0; --left, temperature *= cooling) {
    const Index j = any_input(generator);
    const Index a = any_point(generator);
    const Index b = any_point(generator);
    annealing.Try(j, a, b, temperature * metropolis(generator));
  }
  return annealing.Best();
}

}  // namespace kestrel::math::doe
