#include "api/zor_record.h"

#include <algorithm>
#include <atomic>
#include <boost/format.hpp>
#include <boost/numeric/conversion/cast.hpp>
#include <boost/thread/thread.hpp>
#include <limits>
#include <new>
#include <set>
#include <stdexcept>

#include "datatypes/design_entry.h"
#include "datatypes/design_matrices.h"
#include "datatypes/extract_parameters.h"
#include "support/strings.h"
#include "surrogates/linear_regression.h"
#include "surrogates/moving_least_squares.h"
#include "surrogates/ordinary_kriging.h"

namespace {

using kestrel::algorithm::datatypes::LYRA;
using kestrel::algorithm::datatypes::SurrogateInfo;
using kestrel::algorithm::datatypes::ZORInformation;
using kestrel::math::metamodel::SurrogateBase;

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

std::uint64_t NextGeneration() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

void Require(bool holds, const char* message) {
  if (!holds) throw std::runtime_error(message);
}

/// The names in wide characters, or made-up ones of this prefix if there are none.
std::vector<std::wstring> WideNames(const std::vector<std::string>& names, wchar_t prefix, std::uint64_t count) {
  std::vector<std::wstring> wide;
  wide.reserve(count);
  for (const std::string& name : names) wide.push_back(kestrel::string::widen(name));
  if (!wide.empty()) return wide;
  for (std::uint64_t i = 0; i < count; ++i) wide.push_back(prefix + std::to_wstring(i));
  return wide;
}

/// Calls `refuse` with the position of the first name that an earlier one equals.
template <class Refuse>
void RequireUnique(const std::vector<std::wstring>& names, Refuse refuse) {
  std::set<std::wstring> seen;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!seen.insert(names[i]).second) refuse(i);
  }
}

/// Designs hold their values by name, so two values of one name have no place in them.
void RequireUniqueNames(const ZOR::HandlerData& data, const kestrel::math::Matrix& inputs) {
  if (inputs.rows() == 0) return;
  RequireUnique(data.input_names, [&](std::size_t i) {
    boost::wformat text(L"Value ( %1%, %2% ) already exists in this sequence");
    text % data.input_names[i] % inputs(0, static_cast<kestrel::math::Index>(i));
    throw std::invalid_argument(kestrel::string::narrow(text.str()));
  });
  RequireUnique(data.output_names, [&](std::size_t i) {
    throw std::logic_error("Response \"" + kestrel::string::narrow(data.output_names[i]) + "\" already exists.");
  });
}

const ZORInformation& RequireInformation(const LYRA& lyra) {
  const auto& algorithm = lyra.GetAlgorithmInfo();
  const ZORInformation* const information = algorithm ? std::as_const(*algorithm).GetZORInfo() : nullptr;
  if (information == nullptr) throw std::runtime_error("ZOR information missing.");
  return *information;
}

/// The names of a record are those of its database, unless it never had any.
bool SameNames(const std::vector<std::string>& names, const std::vector<std::wstring>& stored) {
  if (names.empty()) return true;
  const auto is_same = [](const std::string& name, const std::wstring& wide) {
    return kestrel::string::widen(name) == wide;
  };
  return std::equal(names.begin(), names.end(), stored.begin(), stored.end(), is_same);
}

/// Equal within the last bits.
bool IsNear(double a, double b) {
  constexpr double kTolerance = 2.220446049250313e-14;
  return kestrel::NearTo(kestrel::CDesignEntry(a), kestrel::CDesignEntry(b), kTolerance);
}

/// The same for lists of one length.
template <class A, class B>
bool AreNear(const A& a, const B& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](auto x, auto y) { return IsNear(static_cast<double>(x), static_cast<double>(y)); });
}

std::uint64_t NumberOfWorkers(std::uint64_t wanted) {
  if (wanted != 0) return wanted;
  const unsigned hardware = boost::thread::hardware_concurrency();
  return hardware != 0 ? hardware : 1;
}

ZOR::ModelNumber ModelTypeOf(const SurrogateBase* surrogate) {
  namespace models = kestrel::math::metamodel;
  if (dynamic_cast<const models::LinearRegression*>(surrogate)) return ZOR::ModelNumber{zor_model_polynomial};
  if (dynamic_cast<const models::MovingLeastSquares*>(surrogate)) return ZOR::ModelNumber{zor_model_mls};
  if (dynamic_cast<const models::OrdinaryKriging*>(surrogate)) return ZOR::ModelNumber{zor_model_kriging};
  return ZOR::ModelNumber{zor_model_none};
}

std::vector<std::uint32_t> Narrowed(const kestrel::math::metamodel::Subsets& subsets) {
  std::vector<std::uint32_t> narrow;
  narrow.reserve(subsets.size());
  for (const std::uint64_t subset : subsets) narrow.push_back(boost::numeric_cast<std::uint32_t>(subset));
  return narrow;
}

}  // namespace

ZOR::ZOR() : generation_(NextGeneration()) {}

void ZOR::ClearResults() {
  SetLastError("");
  zorsolver_ = kestrel::zor::ZORSolver(true);
  built_ = false;
  cop_per_output_.clear();
  single_cops_per_output_.clear();
  model_per_output_.clear();
  cv_indexes_per_output_.clear();
  surrogate_per_output_.clear();
  report_.clear();
}

void ZOR::SetLastError(std::string_view text) noexcept {
  try {
    if (last_error_.get() == nullptr) last_error_.reset(std::make_unique<LastError>().release());
    last_error_->generation = generation_;
    last_error_->text.clear();
    last_error_->text = text;
  } catch (const std::bad_alloc&) {
    // The code that the caller gets says that something failed; there is no memory to say what.
  }
}

const char* ZOR::GetLastError() const noexcept {
  const LastError* const last = last_error_.get();
  return last != nullptr && last->generation == generation_ ? last->text.c_str() : "";
}

ZOR::HandlerData ZOR::BuildHandlerData(const kestrel::math::Matrix& inputs,
                                       const kestrel::math::Matrix& outputs) const {
  using kestrel::algorithm::datatypes::CreateDesignsFromMatrices;
  using kestrel::algorithm::datatypes::extractParametersFromDesigns;
  Require(num_inputs_ != 0 && num_outputs_ != 0, "At least one input and one output needed.");
  Require(static_cast<std::uint64_t>(inputs.cols()) == num_inputs_, "Number of inputs does not fit given input count.");
  Require(static_cast<std::uint64_t>(outputs.cols()) == num_outputs_,
          "Number of outputs does not fit given output count.");
  Require(inputs.rows() == outputs.rows(), "Number of inputs and outputs do not match.");
  Require(input_names_.empty() || input_names_.size() == num_inputs_,
          "Number of input names does not fit given input count.");
  Require(output_names_.empty() || output_names_.size() == num_outputs_,
          "Number of output names does not fit given output count.");
  HandlerData data;
  data.input_names = WideNames(input_names_, L'p', num_inputs_);
  data.output_names = WideNames(output_names_, L'r', num_outputs_);
  RequireUniqueNames(data, inputs);
  data.designs = CreateDesignsFromMatrices(data.input_names, inputs, data.output_names, outputs);
  kestrel::utils::log::LogDummy nobody;
  data.parameters = extractParametersFromDesigns(data.designs, nobody);
  return data;
}

kestrel::zor::ZORCombinedSettings ZOR::GetCombinedSettings(const HandlerData& handler_data) const {
  kestrel::zor::ZORData data;
  data.SetParameters(handler_data.input_names);
  data.SetResponses(handler_data.output_names);
  for (const std::wstring& name : handler_data.output_names) data.responses_usage_[name] = true;
  const std::vector<std::uint64_t>& importance = settings_.info_important_;
  if (importance.size() == handler_data.input_names.size()) {
    for (std::size_t i = 0; i < importance.size(); ++i) {
      data.parameter_importance_[handler_data.input_names[i]] = importance[i];
    }
  }
  kestrel::zor::ZORAdvancedSettings advanced;
  advanced.num_parallel_ = NumberOfWorkers(number_parallel_outputs_);
  advanced.pzor_settings_ = settings_;
  return kestrel::zor::ZORCombinedSettings(kestrel::zor::eSettingsType::kAdvanced, std::move(data), false,
                                           kestrel::zor::ZORAutomaticSettings(), std::move(advanced));
}

void ZOR::FillZORData(const LYRA& lyra) {
  const ZORInformation& information = RequireInformation(lyra);
  const std::vector<SurrogateInfo>& infos = information.GetSurrogateInfos().GetInfos();
  Require(infos.size() == num_outputs_, "ZOR information has wrong sizes.");
  cop_per_output_.assign(infos.size(), kUnknown);
  single_cops_per_output_.assign(infos.size(), std::vector<double>(num_inputs_, kUnknown));
  model_per_output_.assign(infos.size(), ModelNumber{zor_model_none});
  cv_indexes_per_output_.assign(infos.size(), {});
  surrogate_per_output_.assign(infos.size(), nullptr);
  for (std::size_t i = 0; i < infos.size(); ++i) {
    const auto& appraisal = infos[i].GetAppraisalData();
    cop_per_output_[i] = appraisal.GetCoP();
    model_per_output_[i] = ModelTypeOf(infos[i].GetSurrogate().get());
    surrogate_per_output_[i] = infos[i].GetSurrogate();
    const kestrel::math::Vector& single_cops = appraisal.GetSingleCoPs();
    if (single_cops.size() > 0) single_cops_per_output_[i].assign(single_cops.begin(), single_cops.end());
    cv_indexes_per_output_[i] = Narrowed(information.GetCVIndexes().at(infos[i].GetResponseComponentName()));
  }
}

void ZOR::CheckData() const {
  const LYRA& lyra = zorsolver_.GetLYRA();
  const std::vector<std::wstring> inputs = lyra.GetParameterNames();
  Require(inputs.size() == num_inputs_, "Number of inputs does not match.");
  Require(SameNames(input_names_, inputs), "Input names do not match.");
  const ZORInformation& information = RequireInformation(lyra);
  const std::vector<SurrogateInfo>& infos = information.GetSurrogateInfos().GetInfos();
  Require(infos.size() == num_outputs_, "Number of outputs does not match.");
  Require(SameNames(output_names_, information.GetResponseNames()), "Output names do not match.");
  Require(cop_per_output_.size() == infos.size(), "CoP does not match.");
  Require(model_per_output_.size() == infos.size(), "Model type does not match.");
  Require(surrogate_per_output_.size() == infos.size(), "Surrogate does not match.");
  Require(single_cops_per_output_.size() == infos.size(), "Single CoP do not match.");
  Require(cv_indexes_per_output_.size() == infos.size(), "Cross validation indexes do not match.");
  for (std::size_t i = 0; i < infos.size(); ++i) CheckOutput(i, infos[i], information);
}

/// The part of `CheckData` on one output.
void ZOR::CheckOutput(std::size_t output, const SurrogateInfo& info, const ZORInformation& information) const {
  const auto& appraisal = info.GetAppraisalData();
  Require(cop_per_output_[output] == appraisal.GetCoP(), "CoP does not match.");
  Require(model_per_output_[output] == ModelTypeOf(info.GetSurrogate().get()), "Model type does not match.");
  const auto& surrogate = surrogate_per_output_[output];
  const bool both = surrogate != nullptr && info.GetSurrogate() != nullptr;
  Require(both && *surrogate == *info.GetSurrogate(), "Surrogate does not match.");
  Require(static_cast<std::uint64_t>(surrogate->GetSupportPoints().cols()) == num_inputs_,
          "Number of inputs does not match.");
  const std::vector<double>& single_cops = single_cops_per_output_[output];
  const kestrel::math::Vector& stored_cops = appraisal.GetSingleCoPs();
  const bool has_cops = stored_cops.size() > 0;
  // The caller's buffer has one place per input.
  Require(
      single_cops.size() == num_inputs_ && (!has_cops || static_cast<std::uint64_t>(stored_cops.size()) == num_inputs_),
      "Single CoP do not match.");
  Require(!has_cops || AreNear(single_cops, stored_cops), "Current single CoP does not match.");
  const std::vector<std::uint32_t>& indexes = cv_indexes_per_output_[output];
  const auto& stored_indexes = information.GetCVIndexes().at(info.GetResponseComponentName());
  Require(indexes.size() == stored_indexes.size(), "Cross validation indexes do not match.");
  Require(AreNear(indexes, stored_indexes), "Cross validation index does not match.");
}

void ZOR::FinishReading(unsigned int version) {
  if (version == 0) TakeDescriptionFromDatabase();
  if (!built_) return;
  CheckData();
  zorsolver_.InitializeSolver();
}

/// Records of version 0 hold no more than their database.
void ZOR::TakeDescriptionFromDatabase() {
  const LYRA& lyra = zorsolver_.GetLYRA();
  built_ = lyra.IsConsistent() && !lyra.GetDesignContainer().empty();
  if (!built_) return;
  const ZORInformation& information = RequireInformation(lyra);
  const auto narrowed = [](const std::vector<std::wstring>& names) {
    std::vector<std::string> narrow;
    for (const std::wstring& name : names) narrow.push_back(kestrel::string::narrow(name));
    return narrow;
  };
  input_names_ = narrowed(lyra.GetParameterNames());
  output_names_ = narrowed(information.GetResponseNames());
  num_inputs_ = input_names_.size();
  num_outputs_ = output_names_.size();
  FillZORData(lyra);
}

std::vector<std::pair<double, double>> ZOR::GetSamplingBounds() const {
  std::vector<std::pair<double, double>> bounds(num_inputs_, {kUnknown, kUnknown});
  const auto sampled = zorsolver_.GetLYRA().GetParameterSamplingBounds();
  for (std::size_t i = 0; i < input_names_.size(); ++i) {
    const auto entry = sampled.find(kestrel::string::widen(input_names_[i]));
    if (entry != sampled.end()) bounds.at(i) = entry->second;
  }
  return bounds;
}
