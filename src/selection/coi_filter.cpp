#include "selection/coi_filter.h"

#include <memory>

#include "selection/coi_uncorrelated.h"
#include "selection/polynomial_importance.h"
#include "selection/subspace_filters.h"
#include "statistics/basic_statistics.h"
#include "surrogates/polynomial_from_subspace.h"

namespace kestrel::math::metamodel {

CoIFilter::CoIFilter(const SearchContext& context, const Matrix& inputs, const Vector& response,
                     SubspaceCollector& collector)
    : context_(context),
      inputs_(inputs),
      response_(response),
      collector_(collector),
      coi_limits_(LimitsUpTo(context.settings.max_CoI_, context.settings.step_CoI_)) {}

void CoIFilter::Apply(const IndexVector& subspace, const FilterLimits& limits) {
  const auto known = qualities_.find(subspace);
  if (known == qualities_.end()) {
    qualities_.emplace(subspace, FitAndStore(subspace, limits));
  } else if (known->second) {
    LogQuality(*known->second);  // what the subspace leads to stands in the collector already
  }
}

CoIFilter::Quality CoIFilter::FitAndStore(const IndexVector& subspace, FilterLimits limits) {
  const LinearRegressionSettings settings(static_cast<std::uint64_t>(inputs_.cols()));
  const std::unique_ptr<LinearRegression> polynomial =
      BestPolynomialFromSubspace(subspace, inputs_, response_, settings, context_.settings.coeff_factor_poly_);
  const bool was_fitted = polynomial->CheckAfterBuild();  // no term set is fitted if the sample is too small for all
  if (!was_fitted || !polynomial->CheckBeforeBuild() || !polynomial->Build()) return std::nullopt;

  const double r2_adjusted =
      statistics::R2adj(response_, polynomial->Approximate(), polynomial->GetNumberCoefficients());
  LogQuality(r2_adjusted);
  if (r2_adjusted >= context_.settings.max_CoI_) {
    limits.r2_adjusted = r2_adjusted;
    StoreFiltered(subspace, Importance(*polynomial), limits);
  }
  return r2_adjusted;
}

Vector CoIFilter::Importance(const LinearRegression& polynomial) const {
  if (context_.settings.use_adj_cod_) return ImportanceByR2adj(polynomial);
  return statistics::CoiUncorrelated(polynomial, statistics::RSquared::kR2);
}

void CoIFilter::StoreFiltered(const IndexVector& subspace, const Vector& importance, FilterLimits limits) {
  for (const double limit : coi_limits_) {
    context_.CheckInterrupted();
    limits.coi = limit;
    collector_.StoreIfNew(CoIFilterSubspace(subspace, importance, limit, context_.importance), limits);
  }
}

void CoIFilter::LogQuality(double r2_adjusted) const { context_.log->Debug() << L" R2adj " << r2_adjusted; }

std::vector<double> LimitsUpTo(double last, double step) {
  std::vector<double> limits;
  if (!(step > 0.0)) return limits;
  for (double limit = step; limit <= last && limits.size() < kMaxFilterSteps; limit += step) limits.push_back(limit);
  return limits;
}

}  // namespace kestrel::math::metamodel
