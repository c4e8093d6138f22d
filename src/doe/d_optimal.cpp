#include "doe/d_optimal.h"

#include <Eigen/Cholesky>
#include <boost/random/uniform_int_distribution.hpp>
#include <limits>
#include <vector>

#include "doe/model_terms.h"
#include "doe/point_set.h"

namespace kestrel::math::doe {
namespace {

constexpr int kStarts = 200;
constexpr int kMaxSweeps = 100;
constexpr double kWorthwhile = 1.0 + 1e-9;  // growth of the determinant that counts
constexpr double kMaxWork = 2e9;            // multiplications of the first start: some seconds
constexpr double kWorkOfStarts = 5e8;       // after which there is no further start

// Added to the diagonal of F'F, so that a start of too few different points has a way out (as in DuMouchel and Jones
// 1994). Too small to tell two designs apart that can both estimate the model.
constexpr double kRidge = 1e-6;

std::vector<double> LevelsOf(std::uint64_t order) {
  const std::uint64_t count = order <= 2 ? order + 1 : 4 * order + 1;
  std::vector<double> levels;
  for (std::uint64_t k = 0; k < count; ++k) levels.push_back(LevelValue(k, count));
  return levels;
}

// Points x_i and the terms f_i = f(x_i) there. A = (F'F + ridge)^-1, d(a, b) = f_a' A f_b.
class CoordinateExchange {
 public:
  CoordinateExchange(const ModelTerms& model, Index num_points)
      : model_(model), points_(model.NumInputs(), num_points), terms_(model.NumTerms(), num_points) {
    for (Index j = 0; j < model.NumInputs(); ++j) levels_.push_back(LevelsOf(model.Order(j)));
  }

  void Start(random::Generator& generator) {
    for (Index i = 0; i < points_.cols(); ++i) {
      for (Index j = 0; j < points_.rows(); ++j) {
        const std::vector<double>& levels = levels_[static_cast<std::size_t>(j)];
        const boost::random::uniform_int_distribution<std::size_t> level(0, levels.size() - 1);
        points_(j, i) = levels[level(generator)];
      }
      terms_.col(i) = model_.Evaluate(points_.col(i));
    }
    Refactor();
  }

  // Tries every coordinate of every point once; false if nothing was exchanged.
  bool Sweep() {
    bool exchanged = false;
    for (Index i = 0; i < points_.cols(); ++i) exchanged = ExchangeIn(i) || exchanged;
    if (exchanged) Refactor();  // the updates of A lose digits
    return exchanged;
  }

  double LogDeterminant() const { return log_determinant_; }
  Matrix Points() const { return points_.transpose(); }

 private:
  struct Exchange {
    double level = 0.0;
    double growth = kWorthwhile;  // factor of the determinant
  };

  void Refactor() {
    Matrix information = Matrix::Identity(terms_.rows(), terms_.rows()) * kRidge;
    information.selfadjointView<Eigen::Lower>().rankUpdate(terms_);
    const Eigen::LLT<Matrix> factor(information);
    inverse_ = factor.solve(Matrix::Identity(terms_.rows(), terms_.rows()));
    log_determinant_ = 2.0 * factor.matrixLLT().diagonal().array().log().sum();
  }

  bool ExchangeIn(Index i) {
    bool exchanged = false;
    image_ = inverse_ * terms_.col(i);
    variance_ = terms_.col(i).dot(image_);
    for (Index j = 0; j < points_.rows(); ++j) {
      const Exchange best = BestLevel(i, j);
      if (best.growth <= kWorthwhile) continue;
      Apply(i, j, best.level);
      exchanged = true;
    }
    return exchanged;
  }

  Exchange BestLevel(Index i, Index j) {
    Exchange best;
    const double current = points_(j, i);
    for (const double level : levels_[static_cast<std::size_t>(j)]) {
      if (level == current) continue;
      points_(j, i) = level;
      const double growth = Growth(i, j);
      if (growth > best.growth) best = {level, growth};
    }
    points_(j, i) = current;
    return best;
  }

  // Fedorov's factor (1 + d_new) (1 - d_old) + d(new, old)^2 if point i, of which coordinate j is changed already, took
  // the place of the old one. Only the terms of the input change, by g = f_new - f_old, so that d(new, old) = d_old +
  // g' A f_old and d_new = d_old + 2 g' A f_old + g' A g.
  double Growth(Index i, Index j) {
    const std::vector<Index>& changing = model_.TermsOfInput(j);
    change_.resize(static_cast<Index>(changing.size()));
    double along = 0.0;  // g' A f_old
    for (Index k = 0; k < change_.size(); ++k) {
      const Index t = changing[static_cast<std::size_t>(k)];
      change_(k) = model_.Evaluate(t, points_.col(i)) - terms_(t, i);
      along += change_(k) * image_(t);
    }
    double square = 0.0;  // g' A g
    for (Index k = 0; k < change_.size(); ++k) {
      const auto column = inverse_.col(changing[static_cast<std::size_t>(k)]);
      double product = 0.0;
      for (Index l = 0; l < change_.size(); ++l) product += column(changing[static_cast<std::size_t>(l)]) * change_(l);
      square += change_(k) * product;
    }
    const double mixed = variance_ + along;
    return (1.0 + variance_ + 2.0 * along + square) * (1.0 - variance_) + mixed * mixed;
  }

  // Exchanges the level and brings A up to date: adds f_new f_new' to F'F, then takes f_old f_old' out (Sherman and
  // Morrison 1950, twice).
  void Apply(Index i, Index j, double level) {
    points_(j, i) = level;
    const Vector old_terms = terms_.col(i);
    terms_.col(i) = model_.Evaluate(points_.col(i));
    AddRankOne(terms_.col(i), 1.0);
    AddRankOne(old_terms, -1.0);
    image_ = inverse_ * terms_.col(i);
    variance_ = terms_.col(i).dot(image_);
  }

  void AddRankOne(const VectorIn& f, double sign) {
    const Vector product = inverse_ * f;
    inverse_.noalias() -= (sign / (1.0 + sign * f.dot(product)) * product) * product.transpose();
  }

  const ModelTerms& model_;
  std::vector<std::vector<double>> levels_;  // per input
  Matrix points_;                            // n x N, a point is a column
  Matrix terms_;                             // F', m x N
  Matrix inverse_;                           // A
  double log_determinant_ = 0.0;             // of F'F + ridge
  Vector image_;                             // A f of the point at hand
  double variance_ = 0.0;                    // its d
  Vector change_;                            // g, the terms of the input only
};

}  // namespace

Matrix DOptimal(const IndexMatrix& exponents, std::uint64_t num_points, random::Generator& generator) {
  const ModelTerms model(exponents);
  const auto num_terms = static_cast<std::uint64_t>(model.NumTerms());
  Require(num_points >= num_terms, L"A D-optimal design for " + std::to_wstring(num_terms) +
                                       L" terms needs at least as many points, not " + std::to_wstring(num_points) +
                                       L".");
  RequireSize(num_points, static_cast<std::uint64_t>(model.NumInputs()));
  RequireSize(num_points, num_terms);

  const auto terms = static_cast<double>(num_terms);
  const double work_per_sweep = 4.0 * static_cast<double>(num_points) * terms * terms;
  Require(work_per_sweep <= 10.0 * kMaxWork, L"A D-optimal design of " + std::to_wstring(num_points) + L" points for " +
                                                 std::to_wstring(num_terms) + L" terms is too large.");

  CoordinateExchange search(model, static_cast<Index>(num_points));
  Matrix best;
  double largest = -std::numeric_limits<double>::infinity();
  double work = 0.0;
  for (int start = 0; start == 0 || (start < kStarts && work < kWorkOfStarts); ++start) {
    search.Start(generator);
    for (int sweep = 0; sweep < kMaxSweeps && work <= kMaxWork && search.Sweep(); ++sweep) work += work_per_sweep;
    if (search.LogDeterminant() <= largest) continue;
    largest = search.LogDeterminant();
    best = search.Points();
  }
  return best;
}

}  // namespace kestrel::math::doe
