#include "datatypes/extract_parameters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <vector>

#include "datatypes/name_index.h"

namespace kestrel::algorithm::datatypes {
namespace {

using enums::DesignEntry::eType;
using eDetKind = enums::DeterministicProperties::eKind;

/// The initialized values of one parameter, in the order of the designs.
struct Column {
  std::wstring name;
  std::vector<const CDesignEntry*> values;
};

std::vector<Column> CollectColumns(const DesignManager& manager) {
  std::vector<Column> columns;
  NameIndex names;
  for (const Design& design : manager) {
    std::size_t position = NameIndex::kUnknown;
    for (const auto& [name, entry] : design.GetParameters()) {
      position = names.Find(name, position + 1);
      if (position == NameIndex::kUnknown) {
        position = names.size();
        names.Append(name);
        columns.push_back({name.str(), {}});
      }
      if (!entry.IsUninitialized()) columns[position].values.push_back(&entry);
    }
  }
  return columns;
}

bool AllOfType(const Column& column, eType type) {
  return std::all_of(column.values.begin(), column.values.end(),
                     [type](const CDesignEntry* entry) { return entry->GetDomainType() == type; });
}

bool AnyOfType(const Column& column, eType type) {
  return std::any_of(column.values.begin(), column.values.end(),
                     [type](const CDesignEntry* entry) { return entry->GetDomainType() == type; });
}

/// The one type of discrete values; texts where types meet that have none in common.
eType DiscreteType(const Column& column) {
  for (const eType type : {enums::DesignEntry::INTEGER, enums::DesignEntry::BOOL}) {
    if (AllOfType(column, type)) return type;
  }
  return enums::DesignEntry::STRING;
}

bool IsDiscrete(const Column& column) {
  if (column.values.empty()) return false;
  return AnyOfType(column, enums::DesignEntry::STRING) || AnyOfType(column, enums::DesignEntry::BOOL) ||
         AllOfType(column, enums::DesignEntry::INTEGER);
}

std::vector<CDesignEntry> CollectStates(const Column& column, eType type) {
  std::vector<CDesignEntry> states;
  std::set<CDesignEntry> known;
  for (const CDesignEntry* const value : column.values) {
    const CDesignEntry state =
        type == enums::DesignEntry::STRING ? ConvertDesignpointEntry<std::wstring>(*value) : *value;
    if (known.insert(state).second) states.push_back(state);
  }
  return states;
}

Parameter MakeDiscrete(const Column& column, utils::log::LogBase& log) {
  const eType type = DiscreteType(column);
  const std::vector<CDesignEntry> states = CollectStates(column, type);
  for (const CDesignEntry& state : states) {
    log.Information() << L"Added discrete state \"" << state << L"\" for parameter " << column.name;
  }
  Parameter parameter(column.name);
  // Texts have no natural order.
  parameter.SetDetKind(type == enums::DesignEntry::STRING ? eDetKind::kNominalDiscrete : eDetKind::kOrdinalDiscrete,
                       states);
  return parameter;
}

struct Bounds {
  double lower = std::numeric_limits<double>::quiet_NaN();
  double upper = std::numeric_limits<double>::quiet_NaN();
};

/// The range of the finite numbers, widened; not finite where there are none or the widened range overflows.
Bounds WidenedRange(const Column& column, double lower_factor, double upper_factor) {
  double smallest = std::numeric_limits<double>::infinity();
  double largest = -smallest;
  for (const CDesignEntry* const entry : column.values) {
    if (!entry->IsScalarType()) return {};
    const auto value = ConvertDesignpointEntry<double>(*entry);
    if (!std::isfinite(value)) continue;
    smallest = std::min(smallest, value);
    largest = std::max(largest, value);
  }
  if (smallest > largest) return {};
  const double range = largest - smallest;
  const Bounds bounds{smallest - lower_factor * range, largest + upper_factor * range};
  if (bounds.lower < bounds.upper) return bounds;
  const double size = std::max(std::abs(smallest), 1.0);
  return {smallest - (lower_factor > 0.0 ? lower_factor : kBoundsFactor) * size,
          largest + (upper_factor > 0.0 ? upper_factor : kBoundsFactor) * size};
}

Parameter MakeContinuous(const Column& column, double lower_factor, double upper_factor, utils::log::LogBase& log) {
  Parameter parameter(column.name);
  const Bounds bounds = WidenedRange(column, lower_factor, upper_factor);
  const bool has_lower = std::isfinite(bounds.lower);
  const bool has_upper = std::isfinite(bounds.upper);
  if (!has_lower) log.Warning() << L"Unable to extract lower bound for parameter \"" << column.name << L"\"";
  if (!has_upper) log.Warning() << L"Unable to extract upper bound for parameter \"" << column.name << L"\"";
  if (has_lower && has_upper) parameter.SetBoundaries(bounds.lower, bounds.upper);
  return parameter;
}

}  // namespace

ParameterManager extractParametersFromDesigns(const DesignManager& manager, utils::log::LogBase& log,
                                              double lower_factor, double upper_factor) {
  ParameterManager parameters;
  if (manager.empty()) log.Error() << L"Design container is empty.";
  for (const Column& column : CollectColumns(manager)) {
    parameters.AddParameter(IsDiscrete(column) ? MakeDiscrete(column, log)
                                               : MakeContinuous(column, lower_factor, upper_factor, log));
  }
  return parameters;
}

}  // namespace kestrel::algorithm::datatypes
