#include "selection/sobol_indices.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "doe/doe.h"
#include "statistics/basic_statistics.h"
#include "statistics/basic_statistics_colwise.h"

namespace kestrel::math::statistics {
namespace {

// From this correlation on an input moves along with the one that is replaced.
constexpr double kCorrelated = 0.2;

// Where the surrogate is looked at: points x (rows) and its values there.
struct SupportSample {
  Matrix x;
  Vector y;
};

std::vector<Index> SelectedInputs(const metamodel::SurrogateBase& surrogate) {
  const metamodel::Selection selection = surrogate.GetVariableSelection();
  std::vector<Index> inputs;
  for (auto bit = selection.find_first(); bit != metamodel::Selection::npos; bit = selection.find_next(bit)) {
    inputs.push_back(static_cast<Index>(bit));
  }
  return inputs;
}

Matrix UniformPoints(const MatrixIn& support, std::uint64_t num_samples, random::Generator& generator) {
  Matrix points = doe::DOE(generator).BuildClassic(doe::eClassicType::kLatinHypercubeOrthogonal,
                                                   static_cast<std::uint64_t>(support.cols()), num_samples);
  for (Index j = 0; j < points.cols(); ++j) {
    const double min = support.col(j).minCoeff();
    const double max = support.col(j).maxCoeff();
    points.col(j) = (points.col(j).array() + 1.0) * 0.5 * (max - min) + min;
  }
  return points;
}

SupportSample EvaluateSupport(const metamodel::SurrogateBase& surrogate, Matrix points) {
  const Vector values = surrogate.Approximate(points);
  std::vector<Index> valid;
  for (Index i = 0; i < values.size(); ++i) {
    if (!std::isnan(values(i))) valid.push_back(i);
  }
  if (static_cast<Index>(valid.size()) == values.size()) return {std::move(points), values};
  return {points(valid, Eigen::all), values(valid)};
}

double Limited(double index) { return std::clamp(index, 0.0, 1.0); }  // a NaN stays

// The pick-and-freeze estimate. Sample A and sample B are rows of the support picked at random; sample C of an input
// has the input's value from A and all others from B. So A and C share this input alone, B and C all others.
class PickAndFreeze {
 public:
  PickAndFreeze(const metamodel::SurrogateBase& surrogate, const SupportSample& support, std::vector<Index> inputs,
                std::uint64_t num_samples, random::Generator& generator)
      : surrogate_(surrogate), support_(support), inputs_(std::move(inputs)) {
    const auto support_size = static_cast<std::uint64_t>(support.x.rows());
    rows_a_ = random::Select_with_Replacement(support_size, num_samples, generator);
    rows_b_ = random::Select_with_Replacement(support_size, num_samples, generator);
    y_a_ = support.y(rows_a_);
    y_b_ = support.y(rows_b_);
    x_c_ = support.x(rows_b_, Eigen::all);
    const Matrix selected = support.x(Eigen::all, inputs_);
    sigmas_ = SigmaColwise(selected, MeanColwise(selected));
    correlations_ = CalcLinCCMatrixColwise(selected);
  }

  // First-order and total-effect index of the input at a position of the selection.
  Eigen::RowVector2d Indices(Index position, utils::log::LogBase* log) {
    const std::vector<Index> moving = MovingWith(position);
    TakeFromA(position, moving);
    const Vector y_c = surrogate_.Approximate(x_c_);
    RestoreB(position, moving);
    return Estimate(y_c, log);
  }

 private:
  // Positions of the inputs that are correlated with the one at `position`.
  std::vector<Index> MovingWith(Index position) const {
    std::vector<Index> moving;
    for (Index other = 0; other < correlations_.cols(); ++other) {
      if (other != position && std::abs(correlations_(position, other)) >= kCorrelated) moving.push_back(other);
    }
    return moving;
  }

  Index Input(Index position) const { return inputs_[static_cast<std::size_t>(position)]; }

  // A correlated input x_j keeps its residual on x_i: x_j = a + b x_i + residual, so that it moves by b times the
  // change of x_i.
  void TakeFromA(Index position, const std::vector<Index>& moving) {
    const Index i = Input(position);
    const Vector change = support_.x.col(i)(rows_a_) - x_c_.col(i);
    for (const Index other : moving) {
      const double slope = correlations_(position, other) * sigmas_(other) / sigmas_(position);
      x_c_.col(Input(other)) += slope * change;
    }
    x_c_.col(i) = support_.x.col(i)(rows_a_);
  }

  void RestoreB(Index position, const std::vector<Index>& moving) {
    x_c_.col(Input(position)) = support_.x.col(Input(position))(rows_b_);
    for (const Index other : moving) x_c_.col(Input(other)) = support_.x.col(Input(other))(rows_b_);
  }

  Eigen::RowVector2d Estimate(const Vector& y_c, utils::log::LogBase* log) const {
    Eigen::Array<double, Eigen::Dynamic, 3> y(y_c.size(), 3);  // A, B, C
    y << y_a_, y_b_, y_c;
    Index count = y.rows();
    for (Index r = 0; r < count;) {
      if (std::isnan(y(r, 2))) {
        y.row(r) = y.row(--count);
      } else {
        ++r;
      }
    }
    if (log && count < y.rows()) {
      log->Warning() << L"Approximation returned invalid values while calculating single CoP. (Removed "
                     << y.rows() - count << L" out of " << y.rows() << L" samples from calculation.)";
    }
    y.conservativeResize(count, 3);
    y.rowwise() -= y.colwise().mean().eval();
    const double first = (y.col(2) * y.col(0)).sum() / y.col(0).square().sum();
    const double total = 1.0 - (y.col(2) * y.col(1)).sum() / y.col(1).square().sum();
    return {Limited(first), Limited(total)};
  }

  const metamodel::SurrogateBase& surrogate_;
  const SupportSample& support_;
  const std::vector<Index> inputs_;
  IndexVector rows_a_;
  IndexVector rows_b_;
  Vector y_a_;
  Vector y_b_;
  Matrix x_c_;           ///< sample B but for the columns of the input at hand
  Vector sigmas_;        ///< of the selected inputs
  Matrix correlations_;  ///< between the selected inputs
};

}  // namespace

Matrix SobolIndices(const metamodel::SurrogateBase& surrogate, utils::log::LogBase* log, std::uint64_t num_samples,
                    bool uniform, random::Generator& generator) {
  const Matrix& points = surrogate.GetSupportPoints();
  Matrix indices = Matrix::Constant(points.cols(), 2, std::numeric_limits<double>::quiet_NaN());
  const std::vector<Index> inputs = SelectedInputs(surrogate);
  if (inputs.size() == 1) indices.row(inputs.front()).setOnes();
  if (inputs.size() < 2) return indices;

  const SupportSample support =
      EvaluateSupport(surrogate, uniform ? UniformPoints(points, num_samples, generator) : points);
  if (support.y.size() == 0 || IsConstantResponse(support.y)) return indices;

  PickAndFreeze estimate(surrogate, support, inputs, num_samples, generator);
  for (std::size_t position = 0; position < inputs.size(); ++position) {
    indices.row(inputs[position]) = estimate.Indices(static_cast<Index>(position), log);
  }
  return indices;
}

}  // namespace kestrel::math::statistics
