#include "build/zorsolver.h"

#include <boost/format.hpp>
#include <limits>

#include "support/exceptions.h"

namespace kestrel::zor {
namespace {

using enums::eExtrapolationTypes;
using math::metamodel::SurrogateBase;

const SurrogateBase& UsableSurrogate(const algorithm::datatypes::SurrogateInfo* info) {
  if (info == nullptr || !info->GetSurrogate()) {
    throw utils::runtime_error(L"Evaluation impossible. No metamodel initialized.");
  }
  if (!info->GetSurrogate()->CheckAfterBuild()) throw utils::runtime_error(L"Evaluation impossible. Check failed.");
  return *info->GetSurrogate();
}

}  // namespace

ZORSolver::ZORSolver(bool keep_log) : kept_log_(std::make_shared<utils::log::VectorLog>()), log_(kept_log_) {
  if (!keep_log) log_ = std::make_shared<utils::log::LogDummy>();
}

void ZORSolver::InitializeSolver(algorithm::datatypes::ZORInformation information) {
  information_ = std::move(information);
  algorithm::datatypes::SurrogateInfoContainer& infos = information_.surrogate_infos_;
  if (!infos.CheckSurrogatesAvailability(*log_)) return;  // those are refused when they are to be evaluated
  infos.SetLog(log_);
  infos.Build(information_.cv_indexes_);
  infos.BuildErrors(information_.cv_indexes_);
}

math::Matrix ZORSolver::ApproximateDesigns(const math::MatrixIn& points, bool extrapolate, bool throwing) const {
  return ApproximateDesigns(points, extrapolate ? eExtrapolationTypes::kFree : eExtrapolationTypes::kSamplingBounds,
                            throwing);
}

math::Matrix ZORSolver::ApproximateDesigns(const math::MatrixIn& points, eExtrapolationTypes type,
                                           bool throwing) const {
  const auto& infos = information_.surrogate_infos_.GetInfos();
  if (infos.empty()) throw utils::runtime_error(L"Approximation impossible due to missing meta models.");
  if (!HasInputColumns(points) || BoundariesViolated(points, type, throwing)) return math::Matrix();

  math::Matrix responses(points.rows(), static_cast<math::Index>(infos.size()));
  if (points.rows() == 0) return responses;
  for (std::size_t i = 0; i < infos.size(); ++i) {
    auto column = responses.col(static_cast<math::Index>(i));
    const math::Vector values = UsableSurrogate(&infos[i]).Approximate(points);
    if (values.size() == points.rows()) {
      column = values;
    } else {
      log_->Error() << L"Approximation for response \"" << infos[i].GetResponseName()
                    << L"\" failed with incorrect result size.";
      column.setConstant(std::numeric_limits<double>::quiet_NaN());
    }
  }
  return responses;
}

math::Matrix ZORSolver::ApproximateGradientsPerResponse(const math::MatrixIn& points, const std::wstring& response,
                                                        eExtrapolationTypes type, bool throwing) const {
  const auto gradients = [](const SurrogateBase& surrogate, const math::MatrixIn& at) {
    return surrogate.ApproximateGradients(at);
  };
  return DoForOne(response, gradients, points, type, throwing);
}

math::Matrix ZORSolver::ApproximateErrorsPerResponse(const math::MatrixIn& points, const std::wstring& response,
                                                     eExtrapolationTypes type, bool throwing) const {
  const auto errors = [](const SurrogateBase& surrogate, const math::MatrixIn& at) {
    return surrogate.ApproximateErrors(at);
  };
  return DoForOne(response, errors, points, type, throwing);
}

math::Matrix ZORSolver::DoForOne(const std::wstring& response, const Evaluation& evaluation,
                                 const math::MatrixIn& points, eExtrapolationTypes type, bool throwing) const {
  if (!HasInputColumns(points) || BoundariesViolated(points, type, throwing)) return math::Matrix();
  const SurrogateBase& surrogate =
      UsableSurrogate(information_.surrogate_infos_.GetSurrogateInfoByComponentName(response));
  return points.rows() == 0 ? math::Matrix() : evaluation(surrogate, points);
}

bool ZORSolver::HasInputColumns(const math::MatrixIn& points) const {
  const std::size_t expected = information_.parameter_names_.size();
  if (static_cast<std::size_t>(points.cols()) == expected) return true;
  log_->Error() << expected << L" input columns expected.";
  return false;
}

const ZORSolver::Limits& ZORSolver::GetLimits(eExtrapolationTypes type) const {
  switch (type) {
    case eExtrapolationTypes::kParameterBounds: return information_.defined_limits_;
    case eExtrapolationTypes::kSamplingBounds: return information_.sampling_limits_;
    default: throw utils::runtime_error(L"Extrapolation type is not defined.");
  }
}

bool ZORSolver::BoundariesViolated(const math::MatrixIn& points, eExtrapolationTypes type, bool throwing) const {
  if (type == eExtrapolationTypes::kFree) return false;
  const Limits& limits = GetLimits(type);
  for (math::Index row = 0; row < points.rows(); ++row) {
    for (math::Index column = 0; column < points.cols(); ++column) {
      const auto [lower, upper] = limits.at(static_cast<std::size_t>(column));
      const double value = points(row, column);
      if (value >= lower && value <= upper) continue;
      const std::wstring& name = information_.parameter_names_[static_cast<std::size_t>(column)];
      const std::wstring message =
          (boost::wformat(L"Value %g of Parameter %s violates bounds: [%g, %g]") % value % name % lower % upper).str();
      if (throwing) throw utils::runtime_error(message);
      log_->Error() << message;
      return true;
    }
  }
  return false;
}

}  // namespace kestrel::zor
