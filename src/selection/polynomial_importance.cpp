#include "selection/polynomial_importance.h"

#include <Eigen/Cholesky>
#include <memory>
#include <vector>

#include "selection/coi_uncorrelated.h"
#include "statistics/basic_statistics.h"
#include "surrogates/solve_coefficients.h"

namespace kestrel::math::metamodel {
namespace {

// Reciprocal condition of A down to which its inverse is good enough to compare inputs by.
constexpr double kLeastReciprocalCondition = 1e-9;

using Columns = std::vector<Index>;

// The basis columns in which each input occurs; an interaction counts for both of its inputs.
std::vector<Columns> ColumnsOfInputs(const LinearRegressionSettings& settings) {
  const std::size_t n = settings.GetNumInputs();
  std::vector<Columns> columns(n);
  Index column = 1;  // the constant comes first
  const Selection& main_terms = settings.GetMainTermSelection();
  for (auto term = main_terms.find_first(); term != Selection::npos; term = main_terms.find_next(term)) {
    columns[term % n].push_back(column++);
  }
  const Selection& interactions = settings.GetInteractionSelection();
  if (interactions.none()) return columns;
  std::size_t pair = 0;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      if (!interactions.test(pair++)) continue;
      columns[i].push_back(column);
      columns[j].push_back(column++);
    }
  }
  return columns;
}

Matrix BasisAtSupportPoints(const LinearRegression& regression) {
  const LinearRegressionSettings& settings = regression.GetSettingsBase();
  const Matrix& points = regression.GetSupportPoints();
  const std::unique_ptr<transform::Transform> scale =
      CreateTransformation(settings.GetCoordTransformation(), settings.GetCoordTransformationParameter());
  const bool scaled = scale && scale->Build(points);
  return BuildCoefficientMatrix(scaled ? scale->ScaleForward(points) : points, settings.GetMainTermSelection(),
                                settings.GetInteractionSelection());
}

// From the scale of the fit to units of the response, within the limits.
class BackTransformation {
 public:
  explicit BackTransformation(const LinearRegression& regression) : value_(regression.GetTransValue()) {
    const LinearRegressionSettings& settings = regression.GetSettingsBase();
    limit_ = CreateTransformation(settings.GetLimitTransformation(), settings.GetLimitTransformationParameter());
    if (limit_) limit_->Build(regression.GetResponseValues());
  }

  Vector operator()(Vector values) const {
    if (value_) values = value_->ScaleBackward(values);
    if (limit_) values = limit_->ScaleBackward(values);
    return values;
  }

 private:
  const transform::Transform* value_;
  std::unique_ptr<transform::Transform> limit_;
};

// Coefficients of the fits without the columns of each input, one column per input; those of the full fit for an input
// without columns.
Matrix ReducedCoefficients(const Vector& full, const Matrix& inverse, const std::vector<Columns>& columns) {
  Matrix reduced = full.replicate(1, static_cast<Index>(columns.size()));
  for (std::size_t input = 0; input < columns.size(); ++input) {
    const Columns& removed = columns[input];
    if (removed.empty()) continue;
    const Matrix block = inverse(removed, removed);
    const Vector pull = block.llt().solve(full(removed));
    reduced.col(static_cast<Index>(input)) -= inverse(Eigen::all, removed) * pull;
  }
  return reduced;
}

}  // namespace

Vector ImportanceByR2adj(const LinearRegression& regression) {
  const Vector& response = regression.GetResponseValues();
  if (statistics::isConst(response) || statistics::IsConstantResponse(response)) {
    return Vector::Zero(regression.GetNumberInputs());
  }
  const Matrix basis = BasisAtSupportPoints(regression);
  const Matrix normal = NormalMatrix(basis, Vector());
  const Eigen::LLT<Matrix> factor(normal);
  if (factor.info() != Eigen::Success || factor.rcond() < kLeastReciprocalCondition) {
    return statistics::CoiUncorrelated(regression, statistics::RSquared::kR2adj);
  }
  const Matrix inverse = factor.solve(Matrix::Identity(normal.rows(), normal.cols()));
  const std::vector<Columns> columns = ColumnsOfInputs(regression.GetSettingsBase());
  const Matrix fits = basis * ReducedCoefficients(regression.GetCoefficients(), inverse, columns);

  const BackTransformation back(regression);
  const std::uint64_t coefficients = regression.GetNumberCoefficients();
  const double full = statistics::R2adj(response, regression.Approximate(), coefficients);
  Vector importance = Vector::Zero(fits.cols());
  for (std::size_t input = 0; input < columns.size(); ++input) {
    if (columns[input].empty()) continue;
    const auto col = static_cast<Index>(input);
    importance(col) = full - statistics::R2adj(response, back(fits.col(col)), coefficients - columns[input].size());
  }
  return importance;
}

}  // namespace kestrel::math::metamodel
