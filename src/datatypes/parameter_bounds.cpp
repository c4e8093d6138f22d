#include "datatypes/parameter_bounds.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kestrel::algorithm::datatypes {
namespace {

using Bounds = std::optional<std::pair<double, double>>;

Bounds BoundsOfStates(const std::vector<CDesignEntry>& states) {
  Bounds bounds;
  for (const CDesignEntry& state : states) {
    const std::optional<double> number = NumberOf(state);
    if (!number || std::isnan(*number)) continue;
    if (!bounds) bounds.emplace(*number, *number);
    bounds->first = std::min(bounds->first, *number);
    bounds->second = std::max(bounds->second, *number);
  }
  return bounds;
}

}  // namespace

std::optional<double> NumberOf(const CDesignEntry& entry) {
  switch (entry.GetDomainType()) {
    case enums::DesignEntry::BOOL:
    case enums::DesignEntry::REAL:
    case enums::DesignEntry::INTEGER: return ConvertDesignpointEntry<double>(entry);
    case enums::DesignEntry::VARIANT:
      if (entry.IsScalarType()) return ConvertDesignpointEntry<double>(entry);
      return std::nullopt;
    default: return std::nullopt;
  }
}

Bounds NumberBoundsOf(const Parameter& parameter) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (!parameter.IsOptimization()) return std::nullopt;
  const DeterministicProperties& property = parameter.GetDeterministicProperties().front().second;
  if (property.IsDiscrete()) return BoundsOfStates(property.GetDiscreteStates());
  return std::pair(NumberOf(property.GetLowerBound()).value_or(-kInfinity),
                   NumberOf(property.GetUpperBound()).value_or(kInfinity));
}

}  // namespace kestrel::algorithm::datatypes
