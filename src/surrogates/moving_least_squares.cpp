#include "surrogates/moving_least_squares.h"

#include <algorithm>
#include <boost/format.hpp>
#include <stdexcept>
#include <typeinfo>

#include "support/error_report.h"
#include "surrogates/local_fits.h"
#include "surrogates/solve_coefficients.h"

namespace kestrel::math::metamodel {
namespace {

const MovingLeastSquaresSettings& ConvertSettings(const SurrogateSettingsBase& settings) {
  try {
    return dynamic_cast<const MovingLeastSquaresSettings&>(settings);
  } catch (const std::bad_cast& error) {
    throw std::logic_error(
        std::string("Initialize Moving Least Squares failed. Could not convert surrogate setting : ") + error.what());
  }
}

}  // namespace

MovingLeastSquares::MovingLeastSquares(const MatrixIn& points, const VectorIn& values)
    : SurrogateBase(points, values), settings_(static_cast<std::uint64_t>(points.cols())) {}

void MovingLeastSquares::InitializeImpl(const SurrogateSettingsBase& settings) {
  const MovingLeastSquaresSettings& given = ConvertSettings(settings);
  if (given.GetNumInputs() != 0 && given.GetNumInputs() != static_cast<std::uint64_t>(points_.cols())) {
    error::Report(L"Settings for ", given.GetNumInputs(), L" inputs do not fit support points of ", points_.cols(),
                  L" inputs");
  }
  settings_ = given;
  need_build_ = true;
  if (!(settings_ == MovingLeastSquaresSettings(settings_.GetNumInputs()))) settings_.SetState(eState::kGiven);
}

Matrix MovingLeastSquares::BasisAt(const MatrixIn& points) const {
  if (settings_.GetOrder() == 0) return Matrix::Ones(points.rows(), 1);
  return BuildCoefficientMatrix(points, settings_.GetMainTermSelection(), settings_.GetInteractionSelection());
}

Matrix MovingLeastSquares::SupportBasis() const {
  return settings_.GetOrder() == 0 ? Matrix(Matrix::Ones(values_trans_.size(), 1)) : coefficient_matrix_;
}

bool MovingLeastSquares::HasEnoughPoints() const {
  return GetNumberCoefficients() <= static_cast<std::uint64_t>(points_.rows());
}

bool MovingLeastSquares::CheckBeforeBuild() {
  if (!HasEnoughPoints()) return false;
  return settings_.GetOrder() == 0 || NormalEquations(BasisAt(TransformSupportPoints()), Vector()).HasFullRank();
}

bool MovingLeastSquares::CheckAfterBuild() const {
  return !need_build_ && !(trans_coord_ && trans_coord_->GetNeedBuild());
}

bool MovingLeastSquares::Build() {
  if (CheckAfterBuild()) return true;
  residuals_.resize(0);
  search_.reset();
  if (!HasEnoughPoints()) return false;
  const Matrix& points = TransformSupportPoints();
  points_trans_reduced_ = SelectVariablesFromPoints(points, GetVariableSelection());
  values_trans_ = TransformSupportValues();
  coefficient_matrix_ = settings_.GetOrder() == 0 ? Matrix() : BasisAt(points);
  WriteTransformationParameters(settings_);
  need_build_ = false;
  return true;
}

std::unique_ptr<KernelBase> MovingLeastSquares::MakeKernel() const {
  const auto type = static_cast<Kernel::eType>(settings_.GetKernelType());
  std::unique_ptr<KernelBase> kernel = CreateKernel(type, settings_.GetKernelParameter());
  if (settings_.GetKernelParameter().size() == 0) kernel->SetParameters(Vector());  // refuses it
  return kernel;
}

template <class BlockAt>
Vector MovingLeastSquares::PredictInBlocks(Index count, BlockAt block_at) const {
  const std::unique_ptr<KernelBase> kernel = MakeKernel();
  const bool is_mean = settings_.GetOrder() == 0;
  const Matrix ones = Matrix::Ones(is_mean ? values_trans_.size() : 0, 1);
  LocalFits fits(is_mean ? ones : coefficient_matrix_, values_trans_, MinNeighbours(), count);
  const Index block_size = fits.BlockSize();
  Matrix weights(values_trans_.size(), block_size);
  Matrix predictions(count, 1);
  for (Index first = 0; first < count; first += block_size) {
    CheckInterrupted();
    const Index size = std::min(block_size, count - first);
    const auto [query, basis] = block_at(first, size);
    kernel->EvaluatePoints(query, points_trans_reduced_, weights.leftCols(size));
    fits.Form(weights.leftCols(size));
    fits.Predict(basis, predictions.middleRows(first, size));
  }
  return TransformBack(predictions.col(0));
}

Vector MovingLeastSquares::Approximate(const MatrixIn& points) const {
  if (!CheckAfterBuild()) error::Report(L"can not approximate - build first");
  if (!CheckAfterBuild() || !CheckInputCount(points, L"Surrogate approximate")) return NoValues(points.rows());
  const Selection selection = GetVariableSelection();
  return PredictInBlocks(points.rows(), [&](Index first, Index count) {
    const Matrix query = TransformPoints(points.middleRows(first, count));
    return std::pair<Matrix, Matrix>(SelectVariablesFromPoints(query, selection), BasisAt(query));
  });
}

Vector MovingLeastSquares::Approximate() const {
  if (!CheckAfterBuild()) error::Report(L"can not approximate - build first");
  if (!CheckAfterBuild()) return NoValues(points_.rows());
  RequireSample();
  const Matrix basis = SupportBasis();
  return PredictInBlocks(points_.rows(), [&](Index first, Index count) {
    return std::pair<Matrix, Matrix>(points_trans_reduced_.middleRows(first, count), basis.middleRows(first, count));
  });
}

Vector MovingLeastSquares::ApproximateCrossValidation(const Subsets& subsets) const {
  if (!CheckAfterBuild()) throw std::logic_error("MLS::ApproximateCrossValidation - need build first");
  if (subsets.empty()) return ApproximateLeaveOneOut();
  RequireSample();
  if (subsets.size() != static_cast<std::size_t>(points_.rows())) {
    throw std::logic_error("subset vector has wrong length");
  }
  const std::unique_ptr<KernelBase> kernel = MakeKernel();
  const GroupedRows grouped = GroupRows(subsets);
  const Matrix points = points_trans_reduced_(grouped.rows, Eigen::all);
  GroupedLocalFits fits(SupportBasis(), values_trans_, MinNeighbours(), grouped);
  fits.CrossValidate(
      [&](Index first, Eigen::Ref<Matrix> weights) {
        kernel->EvaluatePoints(points.middleRows(first, weights.cols()), points, weights);
      },
      [this] { CheckInterrupted(); });
  return TransformBack(fits.GetCrossValidation().col(0));
}

std::wstring MovingLeastSquares::Name(bool short_name) const {
  const std::wstring name = L"Moving Least Squares";
  return short_name ? name : (boost::wformat(L"%1% | %2%") % name % settings_.GetOrder()).str();
}

std::wstring MovingLeastSquares::Str() const {
  const auto type = static_cast<Kernel::eType>(settings_.GetKernelType());
  return Name(false) + (boost::wformat(L"| %s ") % CreateKernel(type, Vector())->Str()).str() + SurrogateBase::Str();
}

}  // namespace kestrel::math::metamodel
