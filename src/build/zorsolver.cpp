#include "build/zorsolver.h"

#include <algorithm>
#include <boost/format.hpp>
#include <limits>
#include <map>
#include <set>

#include "datatypes/criteria_calculation.h"
#include "datatypes/design_matrices.h"
#include "datatypes/design_responses.h"
#include "persistence/archive/archives.h"
#include "support/exceptions.h"
#include "support/strings.h"

namespace kestrel::zor {
namespace {

using algorithm::datatypes::Design;
using algorithm::datatypes::DesignManager;
using algorithm::datatypes::LYRA;
using algorithm::datatypes::SurrogateInfoContainer;
using algorithm::datatypes::ZORInformation;
using enums::eExtrapolationTypes;
using math::metamodel::SurrogateBase;

/// The details of a metamodel run; null in a record without them.
ZORInformation* InformationOf(const LYRA& lyra) {
  const auto& algorithm = lyra.GetAlgorithmInfo();
  return algorithm ? algorithm->GetZORInfo() : nullptr;
}

using Bounds = std::pair<double, double>;

/// The bounds of the names, in their order; infinite where there are none.
std::vector<Bounds> BoundsOf(const std::vector<std::wstring>& names, const std::map<std::wstring, Bounds>& bounds) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  std::vector<Bounds> ordered;
  for (const std::wstring& name : names) {
    const auto entry = bounds.find(name);
    ordered.push_back(entry == bounds.end() ? Bounds(-kInfinity, kInfinity) : entry->second);
  }
  return ordered;
}

const SurrogateBase& UsableSurrogate(const algorithm::datatypes::SurrogateInfo* info) {
  if (info == nullptr || !info->GetSurrogate()) {
    throw utils::runtime_error(L"Evaluation impossible. No metamodel initialized.");
  }
  if (!info->GetSurrogate()->CheckAfterBuild()) throw utils::runtime_error(L"Evaluation impossible. Check failed.");
  return *info->GetSurrogate();
}

/// The value of a criterion as a number; NaN for what is neither a real number nor a truth.
double RealNumber(const CDesignEntry& entry) {
  if (const auto* const number = boost::get<double>(&entry.GetData())) return *number;
  if (const auto* const truth = boost::get<bool>(&entry.GetData())) return *truth ? 1.0 : 0.0;
  return std::numeric_limits<double>::quiet_NaN();
}

/// The run messages of a design, each of them for the first design that has it.
void TellOnce(const Design& design, std::set<std::wstring>& told, utils::log::LogBase& log) {
  for (const RunInfoMeta& run_info : design.GetStatus()) {
    for (const std::wstring& message : run_info.GetMessage()) {
      if (told.insert(message).second) log.Error() << message;
    }
  }
}

/// Keeps the first messages alone: a solver lives as long as its record, however often it is asked.
class FirstMessages : public utils::log::VectorLog {
 public:
  void add(utils::log::LogLevel level, const std::wstring& text) override {
    constexpr std::size_t kMost = 1000;
    if (GetEntries().size() < kMost) VectorLog::add(level, text);
  }
};

bool AnyDependent(const algorithm::datatypes::ParameterManager& manager) {
  const auto& parameters = manager.GetParameters();
  return std::any_of(parameters.begin(), parameters.end(), [](const auto& p) { return p.IsDependent(); });
}

}  // namespace

ZORSolver::ZORSolver(bool keep_log) : kept_log_(std::make_shared<FirstMessages>()), log_(kept_log_) {
  if (!keep_log) log_ = std::make_shared<utils::log::LogDummy>();
}

void ZORSolver::InitializeSolver(LYRA lyra, const std::filesystem::path& path) {
  lyra_ = std::move(lyra);
  if (!path.empty()) log_->Debug() << L"Models of " << string::widen(path.u8string());
  InitializeSolver();
}

void ZORSolver::InitializeSolver() {
  ZORInformation* const information = InformationOf(lyra_);
  if (information == nullptr) return;
  derived_ = Derive(lyra_, *information);
  SurrogateInfoContainer& infos = information->GetNonConstSurrogateInfos();
  if (!infos.CheckSurrogatesAvailability(*log_)) return;  // those are refused when they are to be evaluated
  infos.SetLog(log_);
  infos.Build(information->GetCVIndexes());
  infos.BuildErrors(information->GetCVIndexes());
}

ZORSolver::DerivedState ZORSolver::Derive(const LYRA& lyra, const ZORInformation& information) {
  DerivedState derived;
  derived.parameter_names = lyra.GetParameterNames();
  derived.response_names = information.GetResponseNames();
  const auto& names = derived.parameter_names;
  if (information.parameter_names_ != names) {
    for (const std::wstring& name : information.parameter_names_) {
      const auto position = std::find(names.begin(), names.end(), name);
      if (position == names.end()) throw utils::runtime_error(L"Parameter \"" + name + L"\" is not in the designs.");
      derived.inputs.push_back(position - names.begin());
    }
  }
  derived.sampling_bounds = BoundsOf(names, lyra.GetParameterSamplingBounds());
  derived.parameter_bounds = BoundsOf(names, lyra.GetParameterBounds());
  return derived;
}

const SurrogateInfoContainer& ZORSolver::GetSurrogateInfos() const {
  static const SurrogateInfoContainer kNone;
  const ZORInformation* const information = InformationOf(lyra_);
  return information == nullptr ? kNone : information->GetSurrogateInfos();
}

SurrogateInfoContainer& ZORSolver::GetNonConstSurrogateInfos() {
  ZORInformation* const information = InformationOf(lyra_);
  if (information == nullptr) throw utils::runtime_error(L"ZOR information missing.");
  return information->GetNonConstSurrogateInfos();
}

std::vector<std::wstring> ZORSolver::GetCriteriaNames() const {
  std::vector<std::wstring> names;
  for (const auto& [name, criterion] : lyra_.GetCriteria()) names.push_back(name);
  return names;
}

math::Matrix ZORSolver::DesignsToRequestMatrix(const DesignManager& designs) const {
  return algorithm::datatypes::ConvertParametersToMatrix(designs, derived_.parameter_names);
}

void ZORSolver::InitializeLog() {
  const bool keeps = log_ == kept_log_;
  kept_log_ = std::make_shared<FirstMessages>();
  if (keeps) log_ = kept_log_;
}

DesignManager ZORSolver::Approximate(const DesignManager& designs, eExtrapolationTypes type, bool throwing) const {
  DesignManager approximated = designs;
  approximated.ClearResponses();
  approximated.ClearCriteria();
  if (designs.empty()) return approximated;
  calculator::Calculator calculator;
  for (Design& design : approximated) {
    CalculateDependentParameters(design, lyra_.GetParameterManager(), calculator);
  }
  const math::Matrix values = ApproximateResponses(DesignsToRequestMatrix(approximated), type, throwing);
  if (values.size() == 0) return approximated;
  algorithm::datatypes::RowSequence responses(derived_.response_names);
  math::Index row = 0;
  for (Design& design : approximated) {
    design.OverrideResponses(responses.Fill(values, row++));
    design.SetApproximated(true);
  }
  algorithm::datatypes::compressResponses(approximated);
  for (Design& design : approximated) FillCriteria(design, calculator);
  approximated.SetDesignsDone(true);
  return approximated;
}

template <class Work>
math::Matrix ZORSolver::OnInputs(const math::MatrixIn& points, Work&& work) const {
  if (derived_.inputs.empty()) return work(points);
  const math::Matrix inputs = points(Eigen::all, derived_.inputs);
  return work(inputs);
}

math::Matrix ZORSolver::ApproximateDesigns(const math::MatrixIn& points, bool extrapolate, bool throwing) const {
  return ApproximateDesigns(points, extrapolate ? eExtrapolationTypes::kFree : eExtrapolationTypes::kSamplingBounds,
                            throwing);
}

math::Matrix ZORSolver::ApproximateDesigns(const math::MatrixIn& points, eExtrapolationTypes type,
                                           bool throwing) const {
  const bool fits = static_cast<std::size_t>(points.cols()) == derived_.parameter_names.size();
  if (!fits || !AnyDependent(lyra_.GetParameterManager())) return ApproximateComplete(points, type, throwing);
  return ApproximateComplete(WithDependentParameters(points), type, throwing);
}

math::Matrix ZORSolver::WithDependentParameters(const math::MatrixIn& points) const {
  DesignManager designs = algorithm::datatypes::CreateDesignsFromMatrices(derived_.parameter_names, points, {},
                                                                          math::Matrix(points.rows(), 0));
  calculator::Calculator calculator;
  std::set<std::wstring> told;
  for (Design& design : designs) {
    CalculateDependentParameters(design, lyra_.GetParameterManager(), calculator);
    TellOnce(design, told, *log_);
  }
  return DesignsToRequestMatrix(designs);
}

math::Matrix ZORSolver::ApproximateComplete(const math::MatrixIn& points, eExtrapolationTypes type,
                                            bool throwing) const {
  math::Matrix responses = ApproximateResponses(points, type, throwing);
  if (lyra_.GetCriteria().empty() || responses.size() == 0) return responses;
  const math::Matrix criteria = ApproximateCriteria(points, responses);
  math::Matrix all(responses.rows(), responses.cols() + criteria.cols());
  all << responses, criteria;
  return all;
}

math::Matrix ZORSolver::ApproximateCriteria(const math::MatrixIn& points, const math::MatrixIn& responses) const {
  constexpr math::Index kBlock = 1024;  // rows that are designs at one time
  const auto count = static_cast<math::Index>(lyra_.GetCriteria().size());
  math::Matrix values(points.rows(), count);
  calculator::Calculator calculator;
  std::set<std::wstring> told;
  for (math::Index first = 0; first < points.rows(); first += kBlock) {
    const math::Index rows = std::min(kBlock, points.rows() - first);
    DesignManager designs =
        algorithm::datatypes::CreateDesignsFromMatrices(derived_.parameter_names, points.middleRows(first, rows),
                                                        derived_.response_names, responses.middleRows(first, rows));
    algorithm::datatypes::compressResponses(designs);
    for (math::Index row = 0; row < rows; ++row) {
      Design& design = designs[static_cast<std::size_t>(row)];
      FillCriteria(design, calculator);
      math::Index column = 0;
      for (const auto& [name, criterion] : design.GetCriteria()) {
        values(first + row, column++) = RealNumber(criterion.GetValue());
      }
      TellOnce(design, told, *log_);
    }
  }
  return values;
}

void ZORSolver::FillCriteria(Design& design, calculator::Calculator& calculator) const {
  if (lyra_.GetCriteria().empty()) return;
  design.SetCriteria(lyra_.GetCriteria());
  CalculateCriteria(design, calculator);
}

math::Matrix ZORSolver::ApproximateResponses(const math::MatrixIn& points, eExtrapolationTypes type,
                                             bool throwing) const {
  const auto& infos = GetSurrogateInfos().GetInfos();
  if (infos.empty()) throw utils::runtime_error(L"Approximation impossible due to missing meta models.");
  if (!HasInputColumns(points) || BoundariesViolated(points, type, throwing)) return math::Matrix();
  if (points.rows() == 0) return math::Matrix(0, static_cast<math::Index>(infos.size()));
  return OnInputs(points, [&](const math::MatrixIn& inputs) {
    math::Matrix responses(inputs.rows(), static_cast<math::Index>(infos.size()));
    for (std::size_t i = 0; i < infos.size(); ++i) {
      const math::Vector values = UsableSurrogate(&infos[i]).Approximate(inputs);
      auto column = responses.col(static_cast<math::Index>(i));
      if (values.size() == inputs.rows()) {
        column = values;
      } else {
        log_->Error() << L"Approximation for response \"" << infos[i].GetResponseComponentName()
                      << L"\" failed with incorrect result size.";
        column.setConstant(std::numeric_limits<double>::quiet_NaN());
      }
    }
    return responses;
  });
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
  const SurrogateBase& surrogate = UsableSurrogate(GetSurrogateInfos().GetSurrogateInfoByComponentName(response));
  if (points.rows() == 0) return math::Matrix();
  return OnInputs(points, [&](const math::MatrixIn& inputs) { return evaluation(surrogate, inputs); });
}

bool ZORSolver::HasInputColumns(const math::MatrixIn& points) const {
  const std::size_t expected = derived_.parameter_names.size();
  if (static_cast<std::size_t>(points.cols()) == expected) return true;
  log_->Error() << expected << L" input columns expected.";
  return false;
}

const ZORSolver::Limits& ZORSolver::GetLimits(eExtrapolationTypes type) const {
  switch (type) {
    case eExtrapolationTypes::kParameterBounds: return derived_.parameter_bounds;
    case eExtrapolationTypes::kSamplingBounds: return derived_.sampling_bounds;
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
      const std::wstring& name = derived_.parameter_names[static_cast<std::size_t>(column)];
      const std::wstring message =
          (boost::wformat(L"Value %g of Parameter %s violates bounds: [%g, %g]") % value % name % lower % upper).str();
      if (throwing) throw utils::runtime_error(message);
      log_->Error() << message;
      return true;
    }
  }
  return false;
}

template <class Archive>
void ZORSolver::serialize(Archive& archive, unsigned int) {
  archive& boost::serialization::make_nvp("lyra_", lyra_);
}

}  // namespace kestrel::zor

KESTREL_INSTANTIATE_SERIALIZE(kestrel::zor::ZORSolver)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::zor::ZORSolver)
