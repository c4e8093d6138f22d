#include "api/zor_record.h"

#include <atomic>
#include <boost/format.hpp>
#include <boost/numeric/conversion/cast.hpp>
#include <boost/thread/thread.hpp>
#include <limits>
#include <new>
#include <set>
#include <stdexcept>

#include "support/strings.h"
#include "surrogates/linear_regression.h"

namespace {

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
void RequireUniqueNames(const kestrel::zor::SampleTable& samples) {
  if (samples.parameters.rows() == 0) return;
  RequireUnique(samples.parameter_names, [&](std::size_t i) {
    boost::wformat text(L"Value ( %1%, %2% ) already exists in this sequence");
    text % samples.parameter_names[i] % samples.parameters(0, static_cast<kestrel::math::Index>(i));
    throw std::invalid_argument(kestrel::string::narrow(text.str()));
  });
  RequireUnique(samples.response_names, [&](std::size_t i) {
    throw std::logic_error("Response \"" + kestrel::string::narrow(samples.response_names[i]) + "\" already exists.");
  });
}

std::uint64_t NumberOfWorkers(std::uint64_t wanted) {
  if (wanted != 0) return wanted;
  const unsigned hardware = boost::thread::hardware_concurrency();
  return hardware != 0 ? hardware : 1;
}

zor_model_type ModelTypeOf(const SurrogateBase* surrogate) {
  if (dynamic_cast<const kestrel::math::metamodel::LinearRegression*>(surrogate)) return zor_model_polynomial;
  return zor_model_none;
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

kestrel::zor::SampleTable ZOR::BuildHandlerData(kestrel::math::Matrix inputs, kestrel::math::Matrix outputs) const {
  Require(num_inputs_ != 0 && num_outputs_ != 0, "At least one input and one output needed.");
  Require(static_cast<std::uint64_t>(inputs.cols()) == num_inputs_, "Number of inputs does not fit given input count.");
  Require(static_cast<std::uint64_t>(outputs.cols()) == num_outputs_,
          "Number of outputs does not fit given output count.");
  Require(inputs.rows() == outputs.rows(), "Number of inputs and outputs do not match.");
  Require(input_names_.empty() || input_names_.size() == num_inputs_,
          "Number of input names does not fit given input count.");
  Require(output_names_.empty() || output_names_.size() == num_outputs_,
          "Number of output names does not fit given output count.");
  kestrel::zor::SampleTable samples{WideNames(input_names_, L'p', num_inputs_),
                                    WideNames(output_names_, L'r', num_outputs_), std::move(inputs),
                                    std::move(outputs)};
  RequireUniqueNames(samples);
  return samples;
}

kestrel::zor::ZORCombinedSettings ZOR::GetCombinedSettings(const kestrel::zor::SampleTable& samples) const {
  kestrel::zor::ZORData data;
  data.SetParameters(samples.parameter_names);
  data.SetResponses(samples.response_names);
  for (const std::wstring& name : samples.response_names) data.responses_usage_[name] = true;
  const std::vector<std::uint64_t>& importance = settings_.info_important_;
  if (importance.size() == samples.parameter_names.size()) {
    for (std::size_t i = 0; i < importance.size(); ++i) {
      data.parameter_importance_[samples.parameter_names[i]] = importance[i];
    }
  }
  kestrel::zor::ZORAdvancedSettings advanced;
  advanced.num_parallel_ = NumberOfWorkers(number_parallel_outputs_);
  advanced.pzor_settings_ = settings_;
  return kestrel::zor::ZORCombinedSettings(kestrel::zor::eSettingsType::kAdvanced, std::move(data), false,
                                           kestrel::zor::ZORAutomaticSettings(), std::move(advanced));
}

void ZOR::FillZORData(const ZORInformation& information) {
  const std::vector<SurrogateInfo>& infos = information.surrogate_infos_.GetInfos();
  Require(infos.size() == num_outputs_, "ZOR information has wrong sizes.");
  cop_per_output_.assign(infos.size(), kUnknown);
  single_cops_per_output_.assign(infos.size(), std::vector<double>(num_inputs_, kUnknown));
  model_per_output_.assign(infos.size(), zor_model_none);
  cv_indexes_per_output_.assign(infos.size(), {});
  surrogate_per_output_.assign(infos.size(), nullptr);
  for (std::size_t i = 0; i < infos.size(); ++i) {
    const auto& appraisal = infos[i].GetAppraisalData();
    cop_per_output_[i] = appraisal.GetCoP();
    model_per_output_[i] = ModelTypeOf(infos[i].GetSurrogate().get());
    surrogate_per_output_[i] = infos[i].GetSurrogate();
    const kestrel::math::Vector& single_cops = appraisal.GetSingleCoPs();
    if (single_cops.size() > 0) single_cops_per_output_[i].assign(single_cops.begin(), single_cops.end());
    cv_indexes_per_output_[i] = Narrowed(information.cv_indexes_.at(infos[i].GetResponseComponentName()));
  }
}

std::vector<std::pair<double, double>> ZOR::GetSamplingBounds() const {
  std::vector<std::pair<double, double>> bounds(num_inputs_, {kUnknown, kUnknown});
  const ZORInformation& information = zorsolver_.GetInformation();
  for (std::size_t i = 0; i < input_names_.size(); ++i) bounds[i] = information.sampling_limits_.at(i);
  return bounds;
}
