#include "datatypes/design_functions.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "datatypes/design_matrices.h"
#include "datatypes/name_index.h"

namespace kestrel::algorithm::datatypes {
namespace {

const Design& RequireFirst(const DesignManager& manager, const char* refusal) {
  if (manager.empty()) throw std::domain_error(refusal);
  return manager[0];
}

/// The names of the pairs for whose value `wanted(value)` is true.
template <class Entries, class Wanted>
std::vector<std::wstring> NamesIf(const Entries& entries, const Wanted& wanted) {
  std::vector<std::wstring> names;
  for (const auto& [name, value] : entries) {
    if (wanted(value)) names.push_back(name.str());
  }
  return names;
}

constexpr auto kAnyEntry = [](const CDesignEntry&) { return true; };

/// The largest entry by `less`, which is `operator<` or its reverse.
template <class Less>
class ExtremeEntry {
 public:
  explicit ExtremeEntry(Less less) : less_(less) {}

  void Offer(const CDesignEntry* entry) {
    if (entry == nullptr || entry->IsUninitialized() || entry->IsNaN()) return;
    if (extreme_ == nullptr || less_(*extreme_, *entry)) extreme_ = entry;
  }
  CDesignEntry Get() const { return extreme_ == nullptr ? CDesignEntry() : *extreme_; }

 private:
  Less less_;
  const CDesignEntry* extreme_ = nullptr;
};

bool Less(const CDesignEntry& a, const CDesignEntry& b) { return a < b; }
bool Greater(const CDesignEntry& a, const CDesignEntry& b) { return b < a; }

template <class Compare>
CDesignEntry ExtremeParameter(const DesignManager& manager, const std::wstring& name, Compare less) {
  ExtremeEntry<Compare> extreme(less);
  for (const Design& design : manager) extreme.Offer(&design.GetParameters()[name]);
  return extreme.Get();
}

template <class Compare>
CDesignEntry ExtremeResponse(const DesignManager& manager, const std::wstring& name, bool skip_failed, Compare less) {
  ExtremeEntry<Compare> extreme(less);
  for (const Design& design : manager) {
    if (!skip_failed || !design.IsFailed()) extreme.Offer(design.GetResponses().GetData(name, std::nothrow));
  }
  return extreme.Get();
}

/// Finds the rows of a matrix by their values.
class RowLookup {
 public:
  explicit RowLookup(const math::MatrixIn& rows) : rows_(rows), taken_(static_cast<std::size_t>(rows.rows()), 0) {
    for (math::Index i = 0; i < rows.rows(); ++i) {
      if (!rows.row(i).hasNaN()) sorted_.push_back(i);  // equal to no row, and without a place in the order
    }
    std::stable_sort(sorted_.begin(), sorted_.end(),
                     [this](math::Index a, math::Index b) { return Precedes(rows_.row(a), rows_.row(b)); });
  }

  /// All rows equal to `values`; none if they were taken before.
  template <class Row>
  std::vector<math::Index> Take(const Row& values) {
    auto next = std::lower_bound(sorted_.begin(), sorted_.end(), values,
                                 [this](math::Index i, const Row& row) { return Precedes(rows_.row(i), row); });
    std::vector<math::Index> found;
    for (; next != sorted_.end() && (rows_.row(*next).array() == values.array()).all(); ++next) {
      char& taken = taken_[static_cast<std::size_t>(*next)];
      if (taken == 0) found.push_back(*next);
      taken = 1;
    }
    return found;
  }

 private:
  template <class Left, class Right>
  static bool Precedes(const Left& left, const Right& right) {
    for (math::Index j = 0; j < left.size(); ++j) {
      if (left[j] != right[j]) return left[j] < right[j];
    }
    return false;
  }

  math::MatrixIn rows_;
  std::vector<math::Index> sorted_;
  std::vector<char> taken_;
};

}  // namespace

std::vector<std::wstring> getParameterNames(const DesignManager& manager) {
  const char* const refusal = "Can't extract parameter names from an empty design container";
  return NamesIf(RequireFirst(manager, refusal).GetParameters(), kAnyEntry);
}

std::vector<std::wstring> getResponseNames(const DesignManager& manager) {
  const char* const refusal = "Can't extract response names from an empty design container";
  return NamesIf(RequireFirst(manager, refusal).GetResponses(), kAnyEntry);
}

std::vector<std::wstring> getLimitStateNames(const DesignManager& manager) {
  const char* const refusal = "Can't extract limit state names from an empty design container";
  return NamesIf(RequireFirst(manager, refusal).GetCriteria(),
                 [](const Criterion& criterion) { return criterion.IsLimitState(); });
}

std::vector<std::wstring> getSignalNames(const DesignManager& manager) {
  const char* const refusal = "Can't extract signal names from an empty design container";
  return NamesIf(RequireFirst(manager, refusal).GetResponses(), [](const CDesignEntry& entry) {
    return entry.GetDomainType() == enums::DesignEntry::VARIANT &&
           entry.GetVariant().GetKind() == CDesignEntry::VariantType::SIGNAL;
  });
}

std::vector<const CDesignEntrySequence*> getDesignPointsFromDesigns(const DesignManager& manager) {
  std::vector<const CDesignEntrySequence*> points;
  points.reserve(manager.size());
  for (const Design& design : manager) points.push_back(&design.GetParameters());
  return points;
}

std::vector<CHierachicalId> getDesignIDsFromParamValues(const DesignManager& manager,
                                                        const std::vector<std::wstring>& names,
                                                        const math::MatrixIn& values) {
  const Design& first = RequireFirst(manager, "Can't extract designs numbers from an empty design container.");
  const auto columns = static_cast<std::size_t>(values.cols());
  if (columns != names.size() || columns != first.GetNumParameters()) {
    throw std::domain_error("Number of parameters in design container doesn't fit to parameter value matrix.");
  }
  const math::Matrix points = ConvertParametersToMatrix(manager, names);
  RowLookup lookup(points);
  std::vector<CHierachicalId> ids;
  for (math::Index i = 0; i < values.rows(); ++i) {
    if (values.row(i).hasNaN()) continue;
    for (const math::Index found : lookup.Take(values.row(i))) {
      ids.push_back(manager[static_cast<std::size_t>(found)].GetId());
    }
  }
  return ids;
}

CDesignEntry GetMaxValueOfParameterFromDesign(const DesignManager& manager, const std::wstring& name) {
  return ExtremeParameter(manager, name, Less);
}

CDesignEntry GetMinValueOfParameterFromDesign(const DesignManager& manager, const std::wstring& name) {
  return ExtremeParameter(manager, name, Greater);
}

CDesignEntry GetMaxValueOfResponseFromDesign(const DesignManager& manager, const std::wstring& name, bool skip_failed) {
  return ExtremeResponse(manager, name, skip_failed, Less);
}

CDesignEntry GetMinValueOfResponseFromDesign(const DesignManager& manager, const std::wstring& name, bool skip_failed) {
  return ExtremeResponse(manager, name, skip_failed, Greater);
}

DesignManager sortByParameterOrder(DesignManager manager, const ParameterManager& parameters) {
  const NameIndex order(parameters.GetNames());  // what it does not know comes last
  for (Design& design : manager) {
    CDesignEntrySequence sorted = design.GetParameters();
    sorted.SortBy([&order](const SharedName& name) { return order.Find(name, NameIndex::kUnknown); });
    design.SetParametersUnsafe(std::move(sorted));
  }
  return manager;
}

}  // namespace kestrel::algorithm::datatypes
