#include "datatypes/design_functions.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "datatypes/design_matrices.h"

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
  explicit RowLookup(const math::MatrixIn& rows) : rows_(rows) {
    for (math::Index i = 0; i < rows.rows(); ++i) {
      if (!rows.row(i).hasNaN()) sorted_.push_back(i);  // equal to no row, and without a place in the order
    }
    std::stable_sort(sorted_.begin(), sorted_.end(),
                     [this](math::Index a, math::Index b) { return Precedes(rows_.row(a), rows_.row(b)); });
    taken_.assign(sorted_.size(), 0);
  }

  /// The first row equal to `values` that was not taken before; -1 if there is none.
  template <class Row>
  math::Index Take(const Row& values) {
    const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), values,
                                        [this](math::Index i, const Row& row) { return Precedes(rows_.row(i), row); });
    if (found == sorted_.end()) return -1;
    const auto first = static_cast<std::size_t>(found - sorted_.begin());
    const std::size_t next = first + taken_[first];
    if (next == sorted_.size() || (rows_.row(sorted_[next]).array() != values.array()).any()) return -1;
    ++taken_[first];
    return sorted_[next];
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
  std::vector<std::size_t> taken_;  // by the position of the first of equal rows
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
    const math::Index found = values.row(i).hasNaN() ? -1 : lookup.Take(values.row(i));
    if (found >= 0) ids.push_back(manager[static_cast<std::size_t>(found)].GetId());
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
  const std::vector<std::wstring> order = parameters.GetNames();
  for (Design& design : manager) {
    const CDesignEntrySequence& unsorted = design.GetParameters();
    CDesignEntrySequence sorted = unsorted.ExtractInOrder(order, true);
    if (sorted.size() < unsorted.size()) {
      for (const auto& pair : unsorted) {
        if (!parameters.ContainsParameter(pair.first)) sorted.Add(pair);
      }
    }
    design.SetParametersUnsafe(std::move(sorted));
  }
  return manager;
}

}  // namespace kestrel::algorithm::datatypes
