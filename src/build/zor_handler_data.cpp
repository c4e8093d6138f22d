#include <algorithm>
#include <boost/format.hpp>
#include <boost/make_shared.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <limits>
#include <list>
#include <map>
#include <utility>

#include "build/error_lines.h"
#include "build/zor_handler.h"
#include "datatypes/design_functions.h"
#include "datatypes/design_matrices.h"
#include "datatypes/extract_parameters.h"
#include "support/exceptions.h"

// What a build is made of: the designs that count, the inputs, and the scalar responses that are modelled.

namespace kestrel::zor {
namespace {

using algorithm::datatypes::Design;
using algorithm::datatypes::DesignManager;
using algorithm::datatypes::LYRA;
using algorithm::datatypes::Parameter;
using algorithm::datatypes::ParameterManager;
using algorithm::datatypes::SplitResponseMapping;
using utils::log::LogBase;
using Names = std::vector<std::wstring>;
using Entries = std::list<std::pair<std::wstring, CDesignEntry>>;

constexpr std::size_t kMinDesigns = 2;

bool Refuse(LogBase& log, const std::wstring& reason) {
  log.Error() << reason;
  return false;
}

bool Contains(const Names& names, const std::wstring& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

template <class Sequence>
Names KeysOf(const Sequence& sequence) {
  Names names;
  for (const auto& [name, value] : sequence.GetSequence()) names.push_back(name);
  return names;
}

/// The values of the reference that are initialized, then those of the designs for the names it does not have.
CDesignEntrySequence Merge(const CDesignEntrySequence& reference, const CDesignEntrySequence& dummies) {
  CDesignEntrySequence merged;
  for (const auto& [name, value] : dummies.GetSequence()) {
    const CDesignEntry* const known = reference.GetData(name, std::nothrow);
    merged.Add(name, known != nullptr && !known->IsUninitialized() ? *known : value);
  }
  return merged;
}

/// True unless some design holds another value of the parameter than the first one.
bool IsConstantIn(const DesignManager& designs, const std::wstring& name) {
  const CDesignEntry& first = designs[0].GetParameters().GetDataConst(name);
  return std::all_of(designs.begin(), designs.end(), [&](const Design& design) {
    const CDesignEntry* const value = design.GetParameters().GetData(name, std::nothrow);
    return value != nullptr && Equal(*value, first);
  });
}

bool IsNumeric(const CDesignEntry& entry) {
  return entry.GetDomainType() != enums::DesignEntry::STRING && !entry.IsUninitialized();
}

/// A vector whose length differs from design to design has no components to model.
bool HasConstantSize(const DesignManager& designs, const std::wstring& name, std::size_t size) {
  return std::all_of(designs.begin(), designs.end(), [&](const Design& design) {
    const CDesignEntry* const value = design.GetResponses().GetData(name, std::nothrow);
    return value == nullptr || value->IsUninitialized() || value->Size() == size;
  });
}

/// The responses whose components are all numbers in equal number: scalars, and vectors of a constant size. The
/// dummies hold the first value of each response.
Entries GetResponsesWithConstantSize(const DesignManager& designs, const CDesignEntrySequence& dummies,
                                     const Names& signals) {
  Entries entries;
  for (const auto& [name, value] : dummies.GetSequence()) {
    // A response without any value is modelled as a scalar: its task tells that there is nothing to learn from.
    const bool is_scalar = value.IsUninitialized() || value.IsScalarType();
    if (!value.IsUninitialized() && !IsNumeric(value)) continue;
    if (!is_scalar && (Contains(signals, name) || !HasConstantSize(designs, name, value.Size()))) continue;
    entries.emplace_back(name, value);
  }
  return entries;
}

/// Smallest and largest finite value; the infinities in reverse order if there is none.
std::pair<double, double> FiniteRange(const math::VectorIn& values) {
  std::pair<double, double> range(std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity());
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    range.first = std::min(range.first, value);
    range.second = std::max(range.second, value);
  }
  return range;
}

/// Every finished design is to have inputs that can be used: a bad one among them is a mistake in the table.
void RequireFiniteInputs(const DesignManager& designs) {
  for (std::size_t row = 0; row < designs.size(); ++row) {
    if (!designs[row].IsActive() || !designs[row].IsDone() || !designs[row].HasFailedParameters()) continue;
    std::size_t input = 0;
    for (const auto& [name, value] : designs[row].GetParameters().GetSequence()) {
      if (algorithm::datatypes::IsBad(value)) break;
      ++input;
    }
    throw utils::runtime_error((boost::wformat(L"Input %u of design %u is not a finite number.") % input % row).str());
  }
}

bool Counts(const Design& design, bool use_incomplete) {
  if (!design.IsActive() || !design.IsDone()) return false;
  return use_incomplete ? !design.IsFailed() : design.IsSucceeded();
}

bool IsUsed(const std::map<std::wstring, bool>& usage, const std::wstring& name) {
  const auto entry = usage.find(name);
  return entry != usage.end() && entry->second;
}

void TakeBounds(const ParameterManager& source, const std::wstring& name, ParameterManager& target) {
  if (source.ContainsParameter(name) == 0 || !source.GetParameter(name).HasBounds()) return;
  const Parameter& sampled = source.GetParameter(name);
  if (sampled.GetDetKind() != target.GetParameter(name).GetDetKind()) return;  // indices of states are no values
  target.SetBoundaries(name, sampled.GetLowerBound(), sampled.GetUpperBound());
}

DesignManager SelectRows(const DesignManager& designs, const std::vector<math::Index>& rows) {
  std::vector<Design> selected;
  selected.reserve(rows.size());
  for (const math::Index row : rows) selected.push_back(designs[static_cast<std::size_t>(row)]);
  return DesignManager(std::move(selected));
}

/// Forgets the attached files that tools of earlier runs left: those know the run that made them.
void RemoveToolFiles(LYRA& lyra) {
  std::vector<boost::uuids::uuid> of_tools;
  for (const auto kind : {LYRA::eAttachment::kImage, LYRA::eAttachment::kProcess}) {
    for (const auto& [id, file] : lyra.GetAttachedPaths(kind)) {
      const std::wstring& title = file.GetTitle();
      if (file.GetPath().extension() == ".sim" || title == L"fzor_solver" || title == L"rf_generate") {
        of_tools.push_back(id);
      }
    }
  }
  for (const auto& id : of_tools) lyra.RemoveFilePath(id);
}

std::wstring TooFewDesigns(bool use_incomplete) {
  return (boost::wformat(L"There are not enough designs for ZOR. Only active succeeded%s designs are used.%s") %
          (use_incomplete ? L" and active incomplete" : L"") %
          (use_incomplete
               ? L""
               : L" To include active incomplete designs activate advanced setting \"Use incomplete designs\"."))
      .str();
}

DesignManager DesignsOfColumns(const CZORHandler::Columns& parameters, const CZORHandler::Columns& responses) {
  const auto matrix = [](const CZORHandler::Columns& columns) {
    math::Matrix values;
    math::Index column = 0;
    for (const auto& [name, variant] : columns.GetSequence()) {
      const auto& vector = variant.GetVector();
      if (column == 0) values.resize(static_cast<math::Index>(vector.size()), static_cast<math::Index>(columns.size()));
      if (static_cast<math::Index>(vector.size()) != values.rows()) {
        throw utils::runtime_error(L"The columns of the samples have different lengths.");
      }
      for (math::Index row = 0; row < values.rows(); ++row) {
        values(row, column) = vector[static_cast<std::size_t>(row)].real();
      }
      ++column;
    }
    return values;
  };
  const math::Matrix points = matrix(parameters);
  const math::Matrix values = matrix(responses);
  if (points.rows() != values.rows()) {
    throw utils::runtime_error(L"The columns of the samples have different lengths.");
  }
  return algorithm::datatypes::CreateDesignsFromMatrices(KeysOf(parameters), points, KeysOf(responses), values);
}

ParameterManager ParametersOf(const DesignManager& designs) {
  utils::log::LogDummy nobody;
  return algorithm::datatypes::extractParametersFromDesigns(designs, nobody);
}

}  // namespace

CZORHandler::CZORHandler(std::shared_ptr<LogBase> log, Parameters parameters, Designs designs, Design reference,
                         ZORCombinedSettings settings)
    : log_(std::move(log)), settings_(std::move(settings)) {
  using algorithm::datatypes::AlgorithmInfo;
  lyra_.SetParameterManager(std::move(parameters));
  lyra_.SetDesignContainer(std::move(designs));
  lyra_.SetReferenceDesign(std::move(reference));
  lyra_.SetAlgorithmInfo(boost::make_shared<AlgorithmInfo>(AlgorithmInfo::eKind::kMetamodel));
  SetData(*log_);
}

CZORHandler::CZORHandler(std::shared_ptr<LogBase> log, const Columns& parameters, const Columns& responses,
                         ZORCombinedSettings settings)
    : log_(std::move(log)), settings_(std::move(settings)) {
  using algorithm::datatypes::AlgorithmInfo;
  lyra_.SetDesignContainer(DesignsOfColumns(parameters, responses));
  lyra_.SetParameterManager(ParametersOf(lyra_.GetDesignContainer()));
  lyra_.SetAlgorithmInfo(boost::make_shared<AlgorithmInfo>(AlgorithmInfo::eKind::kMetamodel));
  SetData(*log_);
}

void CZORHandler::UpdateSettings(LogBase& log, ZORCombinedSettings settings) {
  settings_ = std::move(settings);
  SetData(log);
}

void CZORHandler::FillLYRA(LogBase& log, const LYRA& lyra, ZORCombinedSettings settings) {
  lyra_ = lyra;
  RemoveToolFiles(lyra_);
  lyra_.ClearMetaData();
  UpdateSettings(log, std::move(settings));
}

void CZORHandler::SetData(LogBase& log) {
  utils::log::VectorLog messages;
  const bool usable = PrepareData(messages);
  messages.Forward(log);
  if (!usable) throw utils::runtime_error(ErrorLines(messages) + L"\nGiven data is invalid.");
}

std::vector<std::wstring> CZORHandler::ExtractResponsesBlackList(LogBase& log) const {
  Names names;
  const auto* const information = lyra_.GetAlgorithmInfo() ? lyra_.GetAlgorithmInfo()->GetZORInfo() : nullptr;
  if (information == nullptr) return names;
  const std::wstring suffix = settings_.CVValuesSuffix();
  if (suffix.empty() || suffix != information->zor_settings_.CVValuesSuffix()) return names;
  for (const auto& [response, values] : information->response_to_cv_mapping_) names.push_back(values);
  if (!names.empty()) log.Information() << L"Removing cross validation values from file designs.";
  return names;
}

bool CZORHandler::PrepareData(LogBase& log) {
  if (!settings_.Check(log, false)) return Refuse(log, L"Incorrect settings given.");
  if (!lyra_.GetDeactivatedDesigns().empty()) lyra_.SetDesignContainer(lyra_.GetFilteredDesignContainer());
  black_list_ = ExtractResponsesBlackList(log);
  if (lyra_.GetDesignContainer().size() < kMinDesigns) {
    return Refuse(log, L"There are not enough designs for ZOR. Need at least 2 designs.");
  }
  RequireFiniteInputs(lyra_.GetDesignContainer());
  DescribeData();
  if (components_.empty()) return Refuse(log, L"There are no responses a ZOR can be found for.");
  return PrepareParameters(log) && SelectDesigns(log) && PrepareInputs(log);
}

/// Names, first values, ranges and abilities of what the designs hold, beside the choices that the caller made; and the
/// scalar responses among them that are to be modelled.
void CZORHandler::DescribeData() {
  const Designs& designs = lyra_.GetDesignContainer();
  const Design& reference = lyra_.GetReferenceDesign();
  const CDesignEntrySequence all_responses =
      Merge(reference.GetResponses(), Designs::GetCompleteDummyResponses(designs));
  CDesignEntrySequence responses;
  for (const auto& [name, value] : all_responses.GetSequence()) {
    if (!Contains(black_list_, name)) responses.Add(name, value);
  }
  const Entries usable =
      GetResponsesWithConstantSize(designs, responses, algorithm::datatypes::getSignalNames(designs));

  ZORData data = settings_.GetZORData();
  data.SetParameters(Merge(reference.GetParameters(), Designs::GetCompleteDummyParameters(designs)));
  data.SetResponses(responses);
  components_.clear();
  response_names_.clear();
  std::map<std::wstring, bool> zorability;
  for (const auto& [name, value] : responses.GetSequence()) zorability[name] = false;
  for (const auto& [name, pieces] : algorithm::datatypes::GetSplitResponseMapping(usable)) {
    Names used;
    for (const std::wstring& piece : pieces) {
      if (IsUsed(data.responses_usage_, piece) || IsUsed(data.responses_usage_, name)) used.push_back(piece);
    }
    zorability[name] = true;
    if (used.empty()) continue;
    components_.emplace_back(name, pieces);
    response_names_.insert(response_names_.end(), used.begin(), used.end());
  }
  data.SetResponsesZORability(std::move(zorability));
  settings_.SetZORData(std::move(data));
}

/// The parameters of the designs, all of them with bounds.
bool CZORHandler::PrepareParameters(LogBase& log) {
  const Designs& designs = lyra_.GetDesignContainer();
  parameters_ = lyra_.GetParameterManager();
  const CDesignEntrySequence& in_designs = settings_.GetZORData().parameters_;
  for (const std::wstring& name : parameters_.GetNames()) {
    if (!in_designs.Contains(name) || parameters_.GetParameter(name).IsDependent()) parameters_.EraseParameter(name);
  }
  AddMissingBounds(log);
  for (const Parameter& parameter : parameters_.GetParameters()) {
    if (parameter.IsConst() && !IsConstantIn(designs, parameter.GetName())) {
      return Refuse(log, L"Inconsistent data. At least one constant parameter varied in designs.");
    }
  }
  return true;
}

void CZORHandler::AddMissingBounds(LogBase& log) {
  const auto needs_bounds = [](const Parameter& parameter) {
    return parameter.IsOptimization() && !parameter.HasBounds();
  };
  const auto& all = parameters_.GetParameters();
  if (std::none_of(all.begin(), all.end(), needs_bounds)) return;
  const Parameters sampled = algorithm::datatypes::extractParametersFromDesigns(
      lyra_.GetDesignContainer(), log, settings_.GetDefaultParameterBoundsAdjustmentMin(),
      settings_.GetDefaultParameterBoundsAdjustmentMax());
  for (const std::wstring& name : parameters_.GetNames()) {
    if (needs_bounds(parameters_.GetParameter(name))) TakeBounds(sampled, name, parameters_);
  }
}

/// Finds the designs that count.
bool CZORHandler::SelectDesigns(LogBase& log) {
  const Designs& designs = lyra_.GetDesignContainer();
  const bool use_incomplete = settings_.ExtractAdvancedSettingsByType().use_incomplete_;
  rows_.clear();
  for (std::size_t row = 0; row < designs.size(); ++row) {
    if (Counts(designs[row], use_incomplete)) rows_.push_back(static_cast<math::Index>(row));
  }
  return rows_.size() >= kMinDesigns || Refuse(log, TooFewDesigns(use_incomplete));
}

bool CZORHandler::PrepareInputs(LogBase& log) {
  for (const Parameter& parameter : parameters_.GetParameters()) {
    if (!parameter.IsNominalDiscrete()) continue;
    return Refuse(log, L"Error: Unable to handle nominal discrete parameter " + parameter.GetName());
  }
  const Parameters inputs = GetNonConstParameterManager();
  input_names_ = inputs.GetNames();
  if (input_names_.empty()) return Refuse(log, L"There are no parameters a ZOR can be found for.");
  const Designs& designs = lyra_.GetDesignContainer();
  if (!Designs::HasUniqueIds(designs)) {
    return Refuse(log, L"Designs are inconsistent. ZOR can not handle designs with ambiguous Ids.");
  }
  points_ = GetZorPoints(inputs, designs)(rows_, Eigen::all);
  values_ = ResponseValues(designs);
  SetResponsesBoundaries();
  return true;
}

/// The modelled responses of the designs that count.
math::Matrix CZORHandler::ResponseValues(const Designs& designs) const {
  const auto is_scalar = [](const auto& entry) { return entry.second.size() == 1 && entry.second[0] == entry.first; };
  if (std::all_of(components_.begin(), components_.end(), is_scalar)) {
    return algorithm::datatypes::ConvertScalarResponsesToMatrix(designs, response_names_)(rows_, Eigen::all);
  }
  const math::Matrix pieces = algorithm::datatypes::ConvertResponsesToMatrix(designs, components_);
  std::vector<math::Index> columns;  // of the pieces that are modelled
  math::Index column = 0;
  for (const auto& [name, names] : components_) {
    for (const std::wstring& piece : names) {
      if (Contains(response_names_, piece)) columns.push_back(column);
      ++column;
    }
  }
  return pieces(rows_, columns);
}

void CZORHandler::SetResponsesBoundaries() {
  std::map<std::wstring, std::pair<double, double>> boundaries;
  for (std::size_t i = 0; i < response_names_.size(); ++i) {
    boundaries[response_names_[i]] = FiniteRange(values_.col(static_cast<math::Index>(i)));
  }
  ZORData data = settings_.GetZORData();
  data.SetResponsesBoundaries(std::move(boundaries));
  settings_.SetZORData(std::move(data));
}

CZORHandler::Parameters CZORHandler::GetNonConstParameterManager() const {
  Parameters parameters = parameters_;
  for (const Parameter& parameter : parameters_.GetParameters()) {
    if (parameter.IsConst()) parameters.EraseParameter(parameter.GetName());
  }
  return parameters;
}

CZORHandler::Parameters CZORHandler::GetAdaptedZORParameterManager() const {
  const ZORAdvancedSettings advanced = settings_.ExtractAdvancedSettingsByType();
  if (!advanced.adapt_bounds_) return parameters_;
  utils::log::LogDummy nobody;
  const double factor = advanced.adapt_bounds_safety_factor_;
  const Designs& designs = lyra_.GetDesignContainer();
  const auto extract = [&](const Designs& from) {
    return algorithm::datatypes::extractParametersFromDesigns(from, nobody, factor, factor);
  };
  const Parameters sampled = rows_.size() == designs.size() ? extract(designs) : extract(SelectRows(designs, rows_));
  Parameters adapted = parameters_;
  for (const std::wstring& name : adapted.GetNames()) {
    if (adapted.GetParameter(name).IsOptimization()) TakeBounds(sampled, name, adapted);
  }
  return adapted;
}

math::Matrix CZORHandler::GetZorPoints(const Parameters& parameters, const Designs& designs) {
  return algorithm::datatypes::ConvertParametersToMatrix(designs, parameters.GetNames());
}

}  // namespace kestrel::zor
