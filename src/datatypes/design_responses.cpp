#include "datatypes/design_responses.h"

#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <complex>
#include <limits>
#include <optional>
#include <unordered_map>

#include "datatypes/design_matrices.h"
#include "datatypes/entry_union.h"
#include "datatypes/name_index.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using Variant = CDesignEntry::VariantType;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// A name that holds "[index]": what stands before the bracket, and the index.
struct PieceName {
  std::wstring name;
  std::uint64_t index;
};

std::optional<PieceName> ParsePieceName(const std::wstring& text) {
  const std::size_t open = text.find(L'[');
  if (open == std::wstring::npos || open == 0) return std::nullopt;
  const std::size_t close = text.find(L']', open);
  if (close == std::wstring::npos) return std::nullopt;
  const std::wstring digits = text.substr(open + 1, close - open - 1);
  const bool is_number = digits.find_first_not_of(L"0123456789") == std::wstring::npos;
  constexpr std::size_t kMaxDigits = std::numeric_limits<std::uint64_t>::digits10;
  if (!is_number || digits.empty() || digits.size() > kMaxDigits) return std::nullopt;
  return PieceName{text.substr(0, open), std::stoull(digits)};
}

bool HasRows(const Variant& value) {
  const Variant::EKind kind = value.GetKind();
  return kind == Variant::MATRIX || kind == Variant::SIGNAL || kind == Variant::XYDATA;
}

double GetElement(const CDesignEntry& entry, std::size_t k) {
  const Variant& value = entry.GetVariant();
  if (!HasRows(value)) return value.at(k).real();
  const std::size_t columns = std::max<std::size_t>(value.size2(), 1);
  return value.at(k / columns, k % columns).real();
}

/// Writes the pieces of one response into its columns, of which `first` is the first.
void FillPieces(const CDesignEntry& entry, const SplitResponseMapping::value_type& response, math::Index first,
                Eigen::Ref<Eigen::RowVectorXd, 0, Eigen::InnerStride<>> row) {
  const auto& [name, pieces] = response;
  if (entry.IsUninitialized()) return;
  if (pieces.size() == 1 && pieces.front() == name) {
    row[first] = ToNumber(entry);
    return;
  }
  // A scalar has no elements: as a Variant it refuses the access by index.
  const CDesignEntry elements =
      entry.GetDomainType() == enums::DesignEntry::VARIANT ? entry : ConvertDesignpointEntry<Variant>(entry);
  for (std::size_t k = 0; k < pieces.size(); ++k) row[first + static_cast<math::Index>(k)] = GetElement(elements, k);
}

SplitResponseMapping GetMapping(const DesignManager& manager, bool skip_failed) {
  EntryUnion<CDesignEntry> responses;
  for (const Design& design : manager) {
    if (!skip_failed || !design.IsFailed()) responses.Add(design.GetResponses(), KeepInitialized);
  }
  std::list<std::pair<std::wstring, CDesignEntry>> entries;
  for (const auto& [name, entry] : responses.Take()) entries.emplace_back(name.str(), entry);
  return GetSplitResponseMapping(entries);
}

bool AnyDesignHasResponse(const DesignManager& manager, const std::wstring& name) {
  return std::any_of(manager.begin(), manager.end(),
                     [&](const Design& design) { return design.GetResponses().Contains(name); });
}

/// The pieces of one response of a design, and where their vector goes.
struct PieceGroup {
  CDesignEntry* target;
  std::vector<std::pair<std::uint64_t, std::complex<double>>> pieces;
};

std::complex<double> GetComplex(const CDesignEntry& entry) {
  if (entry.IsUninitialized()) return std::numeric_limits<double>::quiet_NaN();
  const Variant value = ConvertDesignpointEntry<Variant>(entry);
  if (value.GetKind() == Variant::SCALAR) return value.GetScalar();
  return ConvertDesignpointEntry<double>(entry);
}

Variant MakeVector(PieceGroup& group) {
  std::stable_sort(group.pieces.begin(), group.pieces.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  Variant::VectorType values(group.pieces.size());
  for (std::size_t i = 0; i < group.pieces.size(); ++i) values[i] = group.pieces[i].second;
  return Variant(values);
}

CDesignEntrySequence Compress(const CDesignEntrySequence& responses) {
  CDesignEntrySequence compressed(responses.GetHeader());
  std::unordered_map<std::wstring, PieceGroup> groups;
  for (const auto& [name, entry] : responses) {
    const std::optional<PieceName> piece = ParsePieceName(name);
    if (!piece) {
      compressed.Add({name, entry});
      continue;
    }
    const auto [group, is_new] = groups.try_emplace(piece->name);
    if (is_new) group->second.target = &compressed.Add(piece->name, CDesignEntry());
    group->second.pieces.emplace_back(piece->index, GetComplex(entry));
  }
  for (auto& [name, group] : groups) *group.target = MakeVector(group);
  return compressed;
}

}  // namespace

SplitResponseMapping GetSplitResponseMapping(const std::list<std::pair<std::wstring, CDesignEntry>>& responses) {
  SplitResponseMapping mapping;
  for (const auto& [name, entry] : responses) {
    std::vector<std::wstring>& pieces = mapping.emplace_back(name, std::vector<std::wstring>()).second;
    if (entry.IsUninitialized() || entry.IsScalarType()) {
      pieces.push_back(name);
      continue;
    }
    const std::size_t count = entry.Size();
    pieces.reserve(count);
    for (std::size_t k = 0; k < count; ++k) pieces.push_back(name + L'[' + std::to_wstring(k) + L']');
  }
  return mapping;
}

std::vector<std::wstring> GetScalaredResponseNames(const DesignManager& manager, bool skip_failed) {
  std::vector<std::wstring> names;
  for (const auto& response : GetMapping(manager, skip_failed)) {
    names.insert(names.end(), response.second.begin(), response.second.end());
  }
  return names;
}

math::Matrix ConvertResponsesToMatrix(const DesignManager& manager, bool skip_failed) {
  return ConvertResponsesToMatrix(manager, GetMapping(manager, skip_failed), skip_failed);
}

math::Matrix ConvertResponsesToMatrix(const DesignManager& manager, const SplitResponseMapping& mapping,
                                      bool skip_failed) {
  NameIndex names;
  std::vector<math::Index> first_columns;
  math::Index columns = 0;
  for (const auto& [name, pieces] : mapping) {
    names.Append(name);
    first_columns.push_back(columns);
    columns += static_cast<math::Index>(pieces.size());
  }

  math::Matrix values = math::Matrix::Constant(static_cast<math::Index>(manager.size()), columns, kNaN);
  math::Index row = 0;
  for (const Design& design : manager) {
    std::size_t position = NameIndex::kUnknown;
    if (!skip_failed || !design.IsFailed()) {
      for (const auto& [name, entry] : design.GetResponses()) {
        position = names.Find(name, position + 1);
        if (position != NameIndex::kUnknown)
          FillPieces(entry, mapping[position], first_columns[position], values.row(row));
      }
    }
    ++row;
  }
  return values;
}

std::wstring GetOriginalResponseName(const DesignManager& manager, const std::wstring& name) {
  if (AnyDesignHasResponse(manager, name)) return name;
  const std::optional<PieceName> piece = ParsePieceName(name);
  if (piece && name.back() == L']' && AnyDesignHasResponse(manager, piece->name)) return piece->name;
  throw utils::logic_error(L"Response \"" + name + L"\" can not be found in designs.");
}

void compressResponses(DesignManager& manager) {
  for (Design& design : manager) {
    const auto& responses = design.GetResponses();
    if (std::any_of(responses.begin(), responses.end(),
                    [](const auto& pair) { return ParsePieceName(pair.first).has_value(); })) {
      design.OverrideResponses(Compress(responses));
    }
  }
  manager.UpdateStats(DesignManager::eStatsAction::kRecount);
}

}  // namespace kestrel::algorithm::datatypes
