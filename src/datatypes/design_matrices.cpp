#include "datatypes/design_matrices.h"

#include <boost/variant/get.hpp>
#include <limits>

#include "datatypes/name_index.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

void RequireColumns(const std::vector<std::wstring>& names, const math::MatrixIn& values) {
  if (names.size() == static_cast<std::size_t>(values.cols())) return;
  throw utils::logic_error(L"The number of names is not the number of columns.");
}

template <class GetEntries>
math::Matrix ConvertToMatrix(const DesignManager& manager, const std::vector<std::wstring>& names, GetEntries get) {
  const NameIndex columns(names);
  math::Matrix values =
      math::Matrix::Constant(static_cast<math::Index>(manager.size()), static_cast<math::Index>(names.size()), kNaN);
  for (math::Index row = 0; row < values.rows(); ++row) {
    std::size_t column = NameIndex::kUnknown;
    for (const auto& [name, entry] : get(manager[static_cast<std::size_t>(row)])) {
      column = columns.Find(name, column + 1);
      if (column != NameIndex::kUnknown) values(row, static_cast<math::Index>(column)) = ToNumber(entry);
    }
  }
  return values;
}

}  // namespace

RowSequence::RowSequence(const std::vector<std::wstring>& names) {
  cells_.reserve(names.size());
  for (const std::wstring& name : names) cells_.push_back(&sequence_.Add(name, kNaN));
}

const CDesignEntrySequence& RowSequence::Fill(const math::MatrixIn& values, math::Index row) {
  for (std::size_t j = 0; j < cells_.size(); ++j) *cells_[j] = values(row, static_cast<math::Index>(j));
  return sequence_;
}

double ToNumber(const CDesignEntry& entry) {
  if (const double* const real = boost::get<double>(&entry.GetData())) return *real;
  return entry.IsUninitialized() ? kNaN : ConvertDesignpointEntry<double>(entry);
}

DesignManager CreateDesignsFromMatrices(const std::vector<std::wstring>& parameter_names,
                                        const math::MatrixIn& parameters,
                                        const std::vector<std::wstring>& response_names,
                                        const math::MatrixIn& responses, std::uint64_t first_id) {
  RequireColumns(parameter_names, parameters);
  RequireColumns(response_names, responses);
  if (parameters.rows() != responses.rows()) {
    throw utils::logic_error(L"Parameters and responses differ in the number of rows.");
  }
  RowSequence parameter_row(parameter_names);
  RowSequence response_row(response_names);
  std::vector<Design> designs;
  designs.reserve(static_cast<std::size_t>(parameters.rows()));
  for (math::Index row = 0; row < parameters.rows(); ++row) {
    const CHierachicalId id(first_id + static_cast<std::uint64_t>(row));
    Design& design = designs.emplace_back(parameter_row.Fill(parameters, row), id);
    design.OverrideResponses(response_row.Fill(responses, row));
    design.SetRunStatus(eRunState::kDone);
  }
  return DesignManager(std::move(designs));
}

math::Vector DesignToFloatTypeVector(const CDesignEntrySequence& values) {
  math::Vector numbers(static_cast<math::Index>(values.size()));
  math::Index i = 0;
  for (const auto& pair : values) numbers[i++] = ToNumber(pair.second);
  return numbers;
}

math::Matrix ConvertParametersToMatrix(const DesignManager& manager, const std::vector<std::wstring>& names) {
  return ConvertToMatrix(manager, names,
                         [](const Design& design) -> const CDesignEntrySequence& { return design.GetParameters(); });
}

math::Matrix ConvertScalarResponsesToMatrix(const DesignManager& manager, const std::vector<std::wstring>& names) {
  return ConvertToMatrix(manager, names,
                         [](const Design& design) -> const CDesignEntrySequence& { return design.GetResponses(); });
}

}  // namespace kestrel::algorithm::datatypes
