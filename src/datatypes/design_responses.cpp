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
#include "support/component_name.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using Variant = CDesignEntry::VariantType;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

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
    if (!entry.IsScalarType()) throw math::CTypeException(L"Invalid type.");
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

/// The number that a piece of a vector can be; none for a text that is no number and for what is not scalar.
std::optional<std::complex<double>> GetPiece(const CDesignEntry& entry) {
  if (entry.IsUninitialized()) return kNaN;
  if (!entry.IsScalarType()) return std::nullopt;
  const Variant value = ConvertDesignpointEntry<Variant>(entry);
  if (value.GetKind() == Variant::BOOLEAN) return value.GetBoolean() ? 1.0 : 0.0;
  if (value.GetKind() != Variant::SCALAR) return std::nullopt;
  return value.GetScalar();
}

/// The pieces of one response of a design.
struct PieceGroup {
  std::vector<std::pair<std::uint64_t, std::complex<double>>> pieces;
  bool fits = true;  ///< all pieces are numbers, and no response has the name of the vector

  Variant MakeVector() {
    std::stable_sort(pieces.begin(), pieces.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    Variant::VectorType values(pieces.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) values[i] = pieces[i].second;
    return Variant(values);
  }
};

using PieceGroups = std::unordered_map<std::wstring, PieceGroup>;

PieceGroups GatherPieces(const CDesignEntrySequence& responses) {
  PieceGroups groups;
  for (const auto& [name, entry] : responses) {
    const auto piece = string::splitComponentName(name);
    if (!piece) continue;
    PieceGroup& group = groups[piece->name];
    const std::optional<std::complex<double>> value = GetPiece(entry);
    group.fits = group.fits && value.has_value();
    group.pieces.emplace_back(piece->index, value.value_or(kNaN));
  }
  if (groups.empty()) return groups;
  for (const auto& pair : responses) {
    const auto same_name = groups.find(pair.first.str());
    if (same_name != groups.end()) same_name->second.fits = false;
  }
  return groups;
}

/// The vector of a group stands where its first piece stood. Groups that do not fit stay as they are.
CDesignEntrySequence Compress(const CDesignEntrySequence& responses, PieceGroups groups) {
  CDesignEntrySequence compressed(responses.GetHeader());
  for (const auto& [name, entry] : responses) {
    const auto piece = string::splitComponentName(name);
    PieceGroup* const group = piece ? &groups[piece->name] : nullptr;
    if (group == nullptr || !group->fits) {
      compressed.Add({name, entry});
    } else if (!group->pieces.empty()) {
      compressed.Add(piece->name, group->MakeVector());
      group->pieces.clear();
    }
  }
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
  const auto piece = string::splitComponentName(name);
  if (piece && AnyDesignHasResponse(manager, piece->name)) return piece->name;
  throw utils::logic_error(L"Response \"" + name + L"\" can not be found in designs.");
}

void compressResponses(DesignManager& manager) {
  for (Design& design : manager) {
    PieceGroups groups = GatherPieces(design.GetResponses());
    if (!groups.empty()) design.OverrideResponses(Compress(design.GetResponses(), std::move(groups)));
  }
  manager.UpdateStats(DesignManager::eStatsAction::kRecount);
}

}  // namespace kestrel::algorithm::datatypes
