#pragma once

#include <cmath>
#include <vector>

#include "selection/coi_uncorrelated.h"
#include "selection/search_context.h"
#include "selection/subspace_filters.h"
#include "statistics/basic_statistics.h"
#include "statistics/basic_statistics_colwise.h"
#include "statistics/significance_filter.h"
#include "surrogates/polynomial_from_subspace.h"

/// The filter grid by its definition: every subspace is compared with every other, and every polynomial is fitted as
/// often as it is met. A reference for samples in which no input is excluded.
namespace kestrel::testing {

class PlainFilterGrid {
 public:
  explicit PlainFilterGrid(const math::metamodel::SearchContext& context) : context_(context), s_(context.settings) {
    namespace statistics = math::statistics;
    Pass(context.inputs, context.response);
    if (s_.use_spearman_) {
      Pass(statistics::calc_rankOrderColwise(context.inputs), statistics::calc_rankOrder(context.response));
    }
    if (s_.use_cod_filter_) WalkCoD();
  }

  std::vector<math::IndexVector> subspaces;
  std::vector<std::vector<double>> limits;  ///< seven numbers for each subspace

 private:
  using Subspace = math::IndexVector;

  static bool Empty(const Subspace& subspace) { return (subspace.array() == 0).all(); }

  static bool IsNew(const Subspace& candidate, const std::vector<Subspace>& known) {
    for (const Subspace& subspace : known) {
      if (subspace == candidate) return false;
    }
    return true;
  }

  void StoreIfNew(const Subspace& candidate, const std::vector<double>& candidate_limits) {
    if (!IsNew(candidate, subspaces)) return;
    subspaces.push_back(candidate);
    limits.push_back(candidate_limits);
  }

  void Pass(const math::Matrix& x, const math::Vector& y) {
    namespace statistics = math::statistics;
    const math::Vector rho = statistics::getLinRespCorrelationColwise(x, y);
    const math::Matrix M = statistics::getQuadRespCorrelationColwise(x, y);
    const math::Matrix C = statistics::CalcLinCCMatrixColwise(x);
    const math::Matrix Q = statistics::CalcQuadCCMatrixColwise(x);
    std::vector<Subspace> columns;
    std::vector<std::vector<double>> quantiles;
    const double steps =
        s_.use_significance_filter_ ? std::floor((1.0 - s_.min_significance_) / s_.step_significance_ + 0.0001) : 0.0;
    for (int k = 1; k <= steps; ++k) {
      const double p = 1.0 - k * s_.step_significance_;
      const auto q = statistics::getQuantiles(statistics::StdevCorrLin(C), statistics::StdevCorrQuadFull(Q),
                                              statistics::StdevCorrQuadPure(Q, C), p);
      columns.push_back(math::metamodel::MapImportance2Subspace(statistics::SigFilterLin(q.linear, rho),
                                                                statistics::SigFilterQuadPure(q.pure_quadratic, rho, M),
                                                                context_.importance, context_.level_counts));
      quantiles.push_back({p, q.linear, q.quadratic, q.pure_quadratic});
    }
    columns.push_back(math::metamodel::FullSubspace(context_.importance, context_.level_counts));
    quantiles.push_back({1.0, 0.0, 0.0, 0.0});
    std::vector<Subspace> walked;
    for (std::size_t c = 0; c < columns.size(); ++c) {
      if (Empty(columns[c]) || !IsNew(columns[c], walked)) continue;
      walked.push_back(columns[c]);
      WalkColumn(columns[c], quantiles[c], x, y, M);
    }
  }

  void WalkColumn(const Subspace& column, std::vector<double> found, const math::Matrix& x, const math::Vector& y,
                  const math::Matrix& M) {
    found.resize(7, 0.0);
    StoreIfNew(column, found);
    if (s_.use_coi_filter_) WalkCoI(column, found, x, y);
    if (!s_.use_corr_filter_) return;
    const double pure_quadratic = found[3];
    for (std::uint64_t j = 1; j <= s_.num_corr_steps_ + 1; ++j) {
      const double levels = static_cast<double>(s_.num_corr_steps_);
      found[6] = j <= s_.num_corr_steps_ ? (static_cast<double>(j) - 0.5) / (levels - 1.0) : 0.999;
      const Subspace filtered =
          math::metamodel::CorrFilterSubspace(column, M, pure_quadratic, found[6], context_.importance);
      if (!Empty(filtered)) StoreIfNew(filtered, found);
    }
  }

  void WalkCoI(const Subspace& subspace, std::vector<double> found, const math::Matrix& x, const math::Vector& y) {
    namespace statistics = math::statistics;
    const auto inputs = static_cast<std::uint64_t>(x.cols());
    const auto polynomial = math::metamodel::BestPolynomialFromSubspace(
        subspace, x, y, math::metamodel::LinearRegressionSettings(inputs), s_.coeff_factor_poly_);
    if (!polynomial->CheckAfterBuild() || !polynomial->CheckBeforeBuild()) return;
    found[4] = statistics::R2adj(y, polynomial->Approximate(), polynomial->GetNumberCoefficients());
    if (found[4] < s_.max_CoI_) return;
    const auto type = s_.use_adj_cod_ ? statistics::RSquared::kR2adj : statistics::RSquared::kR2;
    const math::Vector importance = statistics::CoiUncorrelated(*polynomial, type);
    for (double t = s_.step_CoI_; t <= s_.max_CoI_; t += s_.step_CoI_) {
      found[5] = t;
      StoreIfNew(math::metamodel::CoIFilterSubspace(subspace, importance, t, context_.importance), found);
    }
  }

  void WalkCoD() {
    const math::Matrix M = math::statistics::getQuadRespCorrelationColwise(context_.inputs, context_.response);
    const math::Vector cod = M.row(0).cwiseMax(M.row(1)).cwiseAbs2();
    const Subspace start = math::metamodel::FullSubspace(context_.importance, context_.level_counts);
    for (double t = s_.step_CoD_; t <= s_.max_CoD_; t += s_.step_CoD_) {
      const Subspace filtered = math::metamodel::CoIFilterSubspace(start, cod, t, context_.importance);
      StoreIfNew(filtered, {1.0, 0.0, 0.0, 0.0, 0.0, 0.0, t});
      if (s_.use_coi_filter_ && !Empty(filtered)) {
        WalkCoI(filtered, {1.0, 0.0, 0.0, 0.0, 0.0, 0.0, t}, context_.inputs, context_.response);
      }
    }
  }

  const math::metamodel::SearchContext& context_;
  const math::metamodel::ZORSettings& s_;
};

}  // namespace kestrel::testing
