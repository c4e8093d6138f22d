#include "datatypes/results/support_data.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>

#include "datatypes/design_matrices.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using math::Index;
using math::Matrix;
using math::Vector;

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof(double)) == 0; }

bool SameRow(const Matrix& a, Index row_a, const Matrix& b, Index row_b) {
  for (Index column = 0; column < a.cols(); ++column) {
    if (!SameBits(a(row_a, column), b(row_b, column))) return false;
  }
  return true;
}

/// Real part of element `index`, row by row; NaN for what has no such element.
double ElementOf(const CDesignEntry& entry, std::uint64_t index) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  if (entry.GetDomainType() != enums::DesignEntry::VARIANT) return kNone;
  const math::Variant<double>& variant = entry.GetVariant();
  switch (variant.GetKind()) {
    case math::Variant<double>::VECTOR: return index < variant.size() ? variant.at(index).real() : kNone;
    case math::Variant<double>::MATRIX:
    case math::Variant<double>::SIGNAL:
    case math::Variant<double>::XYDATA:
      return index < variant.size() ? variant.at(index / variant.size2(), index % variant.size2()).real() : kNone;
    default: return kNone;
  }
}

/// One element of a response that the designs hold whole.
Vector ElementsOf(const DesignManager& designs, const std::wstring& response, std::uint64_t index) {
  Vector values(static_cast<Index>(designs.size()));
  Index row = 0;
  for (const Design& design : designs) {
    const auto* const entry = design.GetResponses().GetData(response, std::nothrow);
    values(row++) = entry != nullptr ? ElementOf(*entry, index) : std::numeric_limits<double>::quiet_NaN();
  }
  return values;
}

/// A file may name any number of parameters or responses: the matrix of their values must not outgrow the designs by
/// far.
template <class CountOf>
bool HaveAsManyEntries(const DesignManager& designs, std::size_t names, CountOf count_of) {
  std::size_t entries = 0;
  for (const Design& design : designs) entries += std::invoke(count_of, design);
  return designs.empty() || names <= 2 * entries / designs.size();
}

std::vector<std::wstring> VaryingParameters(const ParameterManager& parameters) {
  std::vector<std::wstring> names;
  for (const Parameter& parameter : parameters.GetParameters()) {
    if (!parameter.IsConst()) names.push_back(parameter.GetName());
  }
  return names;
}

}  // namespace

SupportData::SupportData(const DesignManager& designs, const ParameterManager& parameters,
                         const std::vector<SurrogateInfo>& infos)
    : designs_(designs), parameters_(parameters) {
  std::vector<std::wstring> names;
  for (const SurrogateInfo& info : infos) {
    if (info.GetSurrogate() && !IsElement(info)) names.push_back(info.GetResponseComponentName());
  }
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  if (HaveAsManyEntries(designs, names.size(), &Design::GetNumResponses)) {
    responses_ = ConvertScalarResponsesToMatrix(designs, names);
    response_names_ = NameIndex(names);
  }
}

bool SupportData::TakePoints(const SurrogateInfo& info) {
  std::vector<std::wstring> names = info.GetParameterNames();
  if (names.empty()) names = VaryingParameters(parameters_);
  if (names.size() != info.GetSurrogate()->GetVariableSelection().size()) return false;
  if (names_ != names) {
    if (!HaveAsManyEntries(designs_, names.size(), &Design::GetNumParameters)) return false;
    points_ = ConvertParametersToMatrix(designs_, names);
    names_ = std::move(names);
  }
  return true;
}

bool SupportData::IsElement(const SurrogateInfo& info) const {
  return !info.IsResponseScalar() && !designs_.empty() && designs_[0].GetResponses().Contains(info.GetResponseName());
}

Vector SupportData::Values(const SurrogateInfo& info) const {
  if (IsElement(info)) return ElementsOf(designs_, info.GetResponseName(), info.GetResponseIndex());
  const std::wstring name = info.GetResponseComponentName();
  const std::size_t column = response_names_.Find(name, NameIndex::kUnknown);
  if (column == NameIndex::kUnknown) return ConvertScalarResponsesToMatrix(designs_, {name});
  return responses_.col(static_cast<Index>(column));
}

std::vector<CHierachicalId> SupportData::FindDesigns(const SurrogateInfo& info) {
  const Matrix& sample = info.GetSurrogate()->GetSupportPoints();
  const Vector& sample_values = info.GetSurrogate()->GetResponseValues();
  if (!TakePoints(info) || points_.cols() != sample.cols() || sample_values.size() != sample.rows()) return {};
  const Vector values = Values(info);

  // The rows of a sample are designs in their order, some of them left out, so the first design that fits is the one.
  std::vector<CHierachicalId> ids;
  Index next = 0;
  for (Index row = 0; row < points_.rows() && next < sample.rows(); ++row) {
    if (!SameBits(values(row), sample_values(next)) || !SameRow(points_, row, sample, next)) continue;
    ids.push_back(designs_[static_cast<std::size_t>(row)].GetId());
    ++next;
  }
  if (next < sample.rows()) ids.clear();
  return ids;
}

void SupportData::Restore(const SurrogateInfo& info) {
  const std::vector<CHierachicalId>& ids = info.GetUsedHIds();
  if (!TakePoints(info) || ids.size() > designs_.size()) {
    throw utils::runtime_error(L"Designs do not fit the metamodel of response \"" + info.GetResponseComponentName() +
                               L"\".");
  }
  const Vector values = Values(info);
  Matrix sample(static_cast<Index>(ids.size()), points_.cols());
  Vector sample_values(sample.rows());
  for (Index row = 0; row < sample.rows(); ++row) {
    const Design& design = designs_.GetDesign(ids[static_cast<std::size_t>(row)]);
    const Index position = &design - designs_.GetDesigns().data();
    sample.row(row) = points_.row(position);
    sample_values(row) = values(position);
  }
  info.GetSurrogate()->RestoreSupportsAfterSerialize(sample, sample_values);
}

}  // namespace kestrel::algorithm::datatypes
