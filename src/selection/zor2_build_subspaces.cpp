#include "selection/filter_grid.h"
#include "selection/subspace_filters.h"
#include "selection/zor2.h"
#include "selection/zor2_check_correlated_inputs.h"
#include "statistics/basic_statistics.h"
#include "statistics/basic_statistics_colwise.h"

namespace kestrel::math::metamodel {
namespace {

IndexVector WorkingImportance(const ZORSettings& settings) {
  const std::vector<std::uint64_t>& info = settings.info_important_;
  return Eigen::Map<const IndexVector>(info.data(), static_cast<Index>(info.size()));
}

// False where no subset of the inputs can say anything about the response.
bool HasSomethingToSelect(const SearchContext& context) {
  if (statistics::IsConstantResponse(context.response) || context.importance.size() == 0) return false;
  if (!CheckImportanceSize(context.importance.size(), context.inputs.cols())) return false;
  return (context.importance.array() != 0).any();
}

// The largest linear correlation between two inputs that may enter a subspace.
double MaximumInputCorrelation(const SearchContext& context) {
  Matrix correlations = statistics::CalcLinCCMatrixColwise(context.inputs).cwiseAbs();
  correlations.diagonal().setZero();
  for (Index j = 0; j < correlations.cols(); ++j) {
    if (context.importance(j) != 0) continue;
    correlations.row(j).setZero();
    correlations.col(j).setZero();
  }
  return correlations.maxCoeff();
}

void DropCorrelatedInputs(SearchContext& context) {
  const double maximum = MaximumInputCorrelation(context);
  context.log->Debug() << L"Maximum input correlation " << maximum;
  if (maximum >= context.settings.corr_input_check_) context.importance = CheckCorrelatedInputs(context);
}

}  // namespace

void Zor::BuildSubspaces() {
  progress_(0.0F);
  Log().Debug() << L"===================== Build Subspaces =====================";
  context_.CheckInterrupted();
  subspaces_ = IndexMatrix::Zero(context_.inputs.cols(), 1);
  context_.importance = WorkingImportance(context_.settings);
  context_.level_counts = statistics::CalculateNumDiscreteValues(context_.inputs).array() - 1;
  if (!HasSomethingToSelect(context_)) return;

  if ((context_.importance.array() == 2).all()) {
    subspaces_ = FullSubspace(context_.importance, context_.level_counts);
    return;
  }

  context_.CheckInterrupted();
  if (context_.settings.use_input_corr_filter_) DropCorrelatedInputs(context_);
  if ((context_.importance.array() == 0).all()) return;

  const SubspaceCollector found = WalkFilterGrid(context_);
  if (found.Size() > 0) subspaces_ = found.SubspaceMatrix();
  progress_(0.5F);
}

}  // namespace kestrel::math::metamodel
