#include "selection/filter_grid.h"

#include <algorithm>
#include <cmath>

#include "selection/coi_filter.h"
#include "selection/log_text.h"
#include "selection/subspace_filters.h"
#include "statistics/basic_statistics.h"
#include "statistics/basic_statistics_colwise.h"
#include "statistics/significance_filter.h"

namespace kestrel::math::metamodel {
namespace {

// The limits of a subspace on which no significance filter acted.
FilterLimits WithoutSignificance() {
  FilterLimits limits;
  limits.significance = 1.0;
  return limits;
}

// How often `step` fits into `range`; the tiny summand makes up for the rounding of the quotient.
std::uint64_t NumberOfSteps(bool use_filter, double range, double step) {
  if (!use_filter || !(step > 0.0)) return 0;
  const double steps = std::floor(range / step + 0.0001);
  return steps > 0.0 ? static_cast<std::uint64_t>(std::min(steps, static_cast<double>(kMaxFilterSteps))) : 0;
}

Selection InputsThatMayEnter(const IndexVector& importance) {
  Selection selection(static_cast<std::size_t>(importance.size()));
  for (std::size_t j = 0; j < selection.size(); ++j) selection[j] = importance(static_cast<Index>(j)) != 0;
  return selection;
}

// One pass of the grid on one form of the sample: raw, or its ranks.
class CorrelationPass {
 public:
  CorrelationPass(const SearchContext& context, const FilterGridSizes& sizes, const Matrix& inputs,
                  const Vector& response, SubspaceCollector& collector)
      : context_(context),
        sizes_(sizes),
        inputs_(inputs),
        rho_(statistics::getLinRespCorrelationColwise(inputs, response)),
        M_(statistics::getQuadRespCorrelationColwise(inputs, response)),
        collector_(collector) {}

  void Run(CoIFilter& coi_filter);

 private:
  SubspaceCollector SignificanceColumns() const;
  void AddColumnsOfQuantiles(SubspaceCollector& columns) const;
  IndexVector SignificantInputs(const statistics::QuantileLimits& quantiles) const;
  void FilterByCorrelation(const IndexVector& column, FilterLimits limits);

  const SearchContext& context_;
  const FilterGridSizes& sizes_;
  const Matrix& inputs_;
  Vector rho_;  // linear correlation of each input with the response
  Matrix M_;    // 2 x n, quadratic correlation of the response on each input, and of the input on the response
  SubspaceCollector& collector_;
};

void CorrelationPass::Run(CoIFilter& coi_filter) {
  const SubspaceCollector columns = SignificanceColumns();
  for (Index c = 0; c < columns.Size(); ++c) {
    context_.CheckInterrupted();
    const IndexVector& column = columns.Subspace(c);
    if ((column.array() == 0).all()) continue;  // no filter makes more of it
    collector_.StoreIfNew(column, columns.Limits(c));
    if (context_.settings.use_coi_filter_) coi_filter.Apply(column, columns.Limits(c));
    if (context_.settings.use_corr_filter_) FilterByCorrelation(column, columns.Limits(c));
  }
}

// What the significance filter makes of the inputs at each quantile, empty where that is nothing new, and all inputs
// that may enter at last.
SubspaceCollector CorrelationPass::SignificanceColumns() const {
  SubspaceCollector columns(inputs_.cols());
  if (sizes_.significance > 0) AddColumnsOfQuantiles(columns);
  columns.StoreIfNew(FullSubspace(context_.importance, context_.level_counts), WithoutSignificance());
  context_.log->Debug() << L"significance_quantiles \n" << AsText(columns.LimitMatrix().topRows(4));
  return columns;
}

void CorrelationPass::AddColumnsOfQuantiles(SubspaceCollector& columns) const {
  context_.CheckInterrupted();
  const Matrix inputs_reduced = SelectVariablesFromPoints(inputs_, InputsThatMayEnter(context_.importance));
  const Matrix C = statistics::CalcLinCCMatrixColwise(inputs_reduced);
  const Matrix Q = statistics::CalcQuadCCMatrixColwise(inputs_reduced);
  const double sigma_lin = statistics::StdevCorrLin(C);
  const double sigma_quad_full = statistics::StdevCorrQuadFull(Q);
  const double sigma_quad_pure = statistics::StdevCorrQuadPure(Q, C);
  context_.log->Debug() << L"sigmaLin " << sigma_lin << L" sigmaQuadFull " << sigma_quad_full << L" sigmaQuadPure "
                        << sigma_quad_pure;

  const IndexVector empty = IndexVector::Zero(inputs_.cols());
  for (std::uint64_t k = 1; k <= sizes_.significance; ++k) {
    context_.CheckInterrupted();
    const double p = 1.0 - static_cast<double>(k) * context_.settings.step_significance_;
    if (p >= 1.0) continue;  // so small a step is lost in rounding, and no limit belongs to 1
    if (p <= 0.0) break;     // the limit falls to minus infinity: all inputs pass, as in the last column
    const auto quantiles = statistics::getQuantiles(sigma_lin, sigma_quad_full, sigma_quad_pure, p);
    const IndexVector candidate = SignificantInputs(quantiles);
    FilterLimits limits;
    limits.significance = p;
    limits.linear = quantiles.linear;
    limits.quadratic = quantiles.quadratic;
    limits.pure_quadratic = quantiles.pure_quadratic;
    columns.Store(columns.CheckFilterSubspaceNotEmpty(candidate) ? candidate : empty, limits);
  }
}

IndexVector CorrelationPass::SignificantInputs(const statistics::QuantileLimits& quantiles) const {
  return MapImportance2Subspace(statistics::SigFilterLin(quantiles.linear, rho_),
                                statistics::SigFilterQuadPure(quantiles.pure_quadratic, rho_, M_), context_.importance,
                                context_.level_counts);
}

// The fractions of the largest correlation run from half a level to half a level above one, where nothing is left but
// mandatory inputs; the last one keeps the inputs next to the largest.
void CorrelationPass::FilterByCorrelation(const IndexVector& column, FilterLimits limits) {
  const auto levels = static_cast<double>(sizes_.correlation - 1);
  for (std::uint64_t j = 1; j <= sizes_.correlation; ++j) {
    context_.CheckInterrupted();
    const double fraction = j < sizes_.correlation ? (static_cast<double>(j) - 0.5) / (levels - 1.0) : 0.999;
    limits.correlation = fraction;
    collector_.StoreIfNewNotEmpty(CorrFilterSubspace(column, M_, limits.pure_quadratic, fraction, context_.importance),
                                  limits);
  }
}

void RunPassOnRanks(const SearchContext& context, const FilterGridSizes& sizes, SubspaceCollector& collector) {
  const Matrix inputs = statistics::calc_rankOrderColwise(context.inputs);
  const Vector response = statistics::calc_rankOrder(context.response);
  CoIFilter coi_filter(context, inputs, response, collector);
  CorrelationPass(context, sizes, inputs, response, collector).Run(coi_filter);
}

// Leaves out the inputs whose own parabola explains less of the response than a limit.
void FilterByCoD(const SearchContext& context, CoIFilter& coi_filter, SubspaceCollector& collector) {
  const Matrix M = statistics::getQuadRespCorrelationColwise(context.inputs, context.response);
  const Vector cod = M.colwise().maxCoeff().cwiseAbs2().transpose();
  const IndexVector start = FullSubspace(context.importance, context.level_counts);
  FilterLimits limits = WithoutSignificance();
  for (const double limit : LimitsUpTo(context.settings.max_CoD_, context.settings.step_CoD_)) {
    context.CheckInterrupted();
    limits.correlation = limit;
    const IndexVector filtered = CoIFilterSubspace(start, cod, limit, context.importance);
    collector.StoreIfNew(filtered, limits);
    if (context.settings.use_coi_filter_ && (filtered.array() != 0).any()) coi_filter.Apply(filtered, limits);
  }
}

}  // namespace

FilterGridSizes::FilterGridSizes(const ZORSettings& settings)
    : significance(NumberOfSteps(settings.use_significance_filter_, 1.0 - settings.min_significance_,
                                 settings.step_significance_)),
      coi(NumberOfSteps(settings.use_coi_filter_, settings.max_CoI_, settings.step_CoI_)),
      cod(NumberOfSteps(settings.use_cod_filter_, settings.max_CoD_, settings.step_CoD_)),
      correlation(std::min(settings.num_corr_steps_, kMaxFilterSteps) + 1) {}

SubspaceCollector WalkFilterGrid(const SearchContext& context) {
  const FilterGridSizes sizes(context.settings);
  context.log->Debug() << L"num_sig_steps " << sizes.significance << L" num_coi_steps " << sizes.coi
                       << L" num_corr_steps " << sizes.correlation << L" max_num_subspaces " << sizes.MaxSubspaces();

  SubspaceCollector collector(context.inputs.cols());
  CoIFilter coi_filter(context, context.inputs, context.response, collector);
  CorrelationPass(context, sizes, context.inputs, context.response, collector).Run(coi_filter);
  if (context.settings.use_spearman_) RunPassOnRanks(context, sizes, collector);
  if (context.settings.use_cod_filter_) FilterByCoD(context, coi_filter, collector);
  context.log->Debug() << L"subspace_filter_settings \n" << AsText(collector.LimitMatrix());
  return collector;
}

}  // namespace kestrel::math::metamodel
