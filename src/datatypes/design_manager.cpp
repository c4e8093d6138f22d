#include "datatypes/design_manager.h"

#include <algorithm>
#include <utility>

#include "persistence/archive/archives.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

/// The designs in files: what the engine writes for a vector of them. Reading takes memory as the designs come, not for
/// the count that the file claims. The vector may move designs that are read already; nothing refers to them by
/// address.
class StoredDesigns {
 public:
  explicit StoredDesigns(std::vector<Design>& designs) : designs_(designs) {}

 private:
  friend class boost::serialization::access;

  template <class Archive>
  void serialize(Archive& archive, const unsigned int) {
    using boost::serialization::make_nvp;
    boost::serialization::collection_size_type count(designs_.size());
    boost::serialization::item_version_type item_version(boost::serialization::version<Design>::value);
    archive& make_nvp("count", count) & make_nvp("item_version", item_version);
    if constexpr (Archive::is_loading::value) {
      designs_.clear();
      const std::size_t stored = std::as_const(count);
      for (std::size_t i = 0; i < stored; ++i) archive& make_nvp("item", designs_.emplace_back());
    } else {
      for (Design& design : designs_) archive& make_nvp("item", design);
    }
  }

  std::vector<Design>& designs_;
};

}  // namespace

bool DesignManager::Stats::operator==(const Stats& other) const {
  return total_ == other.total_ && succeeded_ == other.succeeded_ && failed_ == other.failed_ &&
         pending_ == other.pending_;
}

template <class Archive>
void DesignManager::Stats::serialize(Archive& archive, const unsigned int) {
  using boost::serialization::make_nvp;
  archive& make_nvp("total_", total_) & make_nvp("succeeded_", succeeded_);
  archive& make_nvp("failed_", failed_) & make_nvp("pending_", pending_);
}

DesignManager::AtomicStats& DesignManager::AtomicStats::operator=(const Stats& stats) noexcept {
  total_ = stats.total_;
  succeeded_ = stats.succeeded_;
  failed_ = stats.failed_;
  pending_ = stats.pending_;
  return *this;
}

DesignManager::Stats DesignManager::AtomicStats::Get() const noexcept {
  Stats stats;
  stats.total_ = total_;
  stats.succeeded_ = succeeded_;
  stats.failed_ = failed_;
  stats.pending_ = pending_;
  return stats;
}

DesignManager::DesignManager(std::vector<Design> designs) : designs_(std::move(designs)) { Rebuild(); }

void DesignManager::reserve(std::size_t count) {
  designs_.reserve(count);
  lookup_.reserve(count);
}

void DesignManager::push_back(Design design) {
  designs_.push_back(std::move(design));
  lookup_.emplace(designs_.back().GetId(), designs_.size() - 1);
  largest_id_.reset();
  UpdateStats(eStatsAction::kAdd, &designs_.back());
}

void DesignManager::clear() {
  designs_.clear();
  Rebuild();
}

void DesignManager::UpdateDesign(Design design, bool leaf_only) {
  ReplaceDesign(RequireDesign(design.GetId(), leaf_only), std::move(design));
}

void DesignManager::UpdateDesign(const CHierachicalId& id, Design design) {
  ReplaceDesign(RequireDesign(id, false), std::move(design));
}

const Design& DesignManager::GetDesign(const CHierachicalId& id, bool leaf_only) const {
  return designs_[RequireDesign(id, leaf_only)];
}

Design& DesignManager::GetDesign(const CHierachicalId& id, bool leaf_only) {
  return designs_[RequireDesign(id, leaf_only)];
}

const Design* DesignManager::GetDesign(const CHierachicalId& id, std::nothrow_t, bool leaf_only) const {
  const std::size_t index = FindDesign(id, leaf_only);
  return index == kNoDesign ? nullptr : &designs_[index];
}

Design* DesignManager::GetDesign(const CHierachicalId& id, std::nothrow_t, bool leaf_only) {
  const std::size_t index = FindDesign(id, leaf_only);
  return index == kNoDesign ? nullptr : &designs_[index];
}

bool DesignManager::HasDesign(const CHierachicalId& id, bool leaf_only) const {
  return FindDesign(id, leaf_only) != kNoDesign;
}

const CHierachicalId* DesignManager::GetLargestId() const {
  if (designs_.empty()) return nullptr;
  if (!largest_id_) {
    const auto largest =
        std::max_element(begin(), end(), [](const Design& a, const Design& b) { return a.GetId() < b.GetId(); });
    largest_id_ = static_cast<std::size_t>(largest - begin());
  }
  return &designs_[*largest_id_].GetId();
}

bool DesignManager::RemoveDesign(const CHierachicalId& id) {
  const std::size_t index = FindDesign(id, false);
  if (index == kNoDesign) return false;
  UpdateStats(eStatsAction::kRemove, &designs_[index]);
  designs_.erase(designs_.begin() + static_cast<std::ptrdiff_t>(index));
  UpdateLookup();
  return true;
}

void DesignManager::RemoveDesignsByType(Design::eType type) {
  RemoveDesignsIf([type](const Design& design) { return design.GetDesignType() == type; });
}

DesignManager DesignManager::GetDesignsByType(Design::eType type) const {
  DesignManager chosen;
  for (const Design& design : designs_) {
    if (design.GetDesignType() == type) chosen.push_back(design);
  }
  return chosen;
}

void DesignManager::SetDesignsDone(bool done) {
  for (Design& design : designs_) design.SetRunStatus(done ? eRunState::kDone : eRunState::kNotStarted);
  UpdateStats(eStatsAction::kRecount);
}

void DesignManager::ClearResponses() {
  for (Design& design : designs_) design.ClearResponses();
  UpdateStats(eStatsAction::kRecount);
}

void DesignManager::ClearCriteria() {
  for (Design& design : designs_) design.ClearCriteria();
  UpdateStats(eStatsAction::kRecount);
}

void DesignManager::UpdateStats(eStatsAction action, const Design* design) {
  if (action == eStatsAction::kRecount) {
    stats_ = Stats();
    stats_.total_ = designs_.size();
    for (const Design& counted : designs_) ++ClassCounter(counted);
    return;
  }
  if (design == nullptr) throw utils::logic_error(L"Statistics need the design that changes.");
  switch (action) {
    case eStatsAction::kAdd:
      ++stats_.total_;
      ++ClassCounter(*design);
      break;
    case eStatsAction::kRemove:
      --stats_.total_;
      --ClassCounter(*design);
      break;
    case eStatsAction::kReplace:
      --ClassCounter(GetDesign(design->GetId()));
      ++ClassCounter(*design);
      break;
    case eStatsAction::kUpdateToSucceeded:
      --ClassCounter(*design);
      ++stats_.succeeded_;
      break;
    case eStatsAction::kUpdateToOther:
      --ClassCounter(*design);
      ++stats_.failed_;
      break;
    case eStatsAction::kRecount: break;
  }
}

void DesignManager::UpdateLookup() {
  lookup_.clear();
  lookup_.reserve(designs_.size());
  for (std::size_t i = 0; i < designs_.size(); ++i) lookup_.emplace(designs_[i].GetId(), i);
  largest_id_.reset();
}

bool DesignManager::HasUniqueIds(const DesignManager& manager) {
  std::vector<const CHierachicalId*> ids;
  ids.reserve(manager.size());
  for (const Design& design : manager) ids.push_back(&design.GetId());
  std::sort(ids.begin(), ids.end(), [](const auto* a, const auto* b) { return *a < *b; });
  return std::adjacent_find(ids.begin(), ids.end(), [](const auto* a, const auto* b) { return *a == *b; }) == ids.end();
}

std::size_t DesignManager::FindDesign(const CHierachicalId& id, bool leaf_only) const {
  if (leaf_only) {
    const std::uint64_t leaf = id.GetLeaf()();
    const auto found =
        std::find_if(begin(), end(), [leaf](const Design& design) { return design.GetId().GetLeaf()() == leaf; });
    return found == end() ? kNoDesign : static_cast<std::size_t>(found - begin());
  }
  const auto found = lookup_.find(id);
  return found == lookup_.end() ? kNoDesign : found->second;
}

std::size_t DesignManager::RequireDesign(const CHierachicalId& id, bool leaf_only) const {
  const std::size_t index = FindDesign(id, leaf_only);
  if (index == kNoDesign) throw utils::logic_error(L"No such design");
  return index;
}

void DesignManager::ReplaceDesign(std::size_t index, Design design) {
  --ClassCounter(designs_[index]);
  ++ClassCounter(design);
  const bool id_changes = designs_[index].GetId() != design.GetId();
  designs_[index] = std::move(design);
  if (id_changes) UpdateLookup();
}

std::atomic<std::uint64_t>& DesignManager::ClassCounter(const Design& design) {
  if (!design.IsDone()) return stats_.pending_;
  return design.IsSucceeded() ? stats_.succeeded_ : stats_.failed_;
}

void DesignManager::Rebuild() {
  UpdateLookup();
  UpdateStats(eStatsAction::kRecount);
}

// The statistics of a file are read and dropped: what the designs are is recounted.
template <class Archive>
void DesignManager::serialize(Archive& archive, const unsigned int) {
  using boost::serialization::make_nvp;
  StoredDesigns designs(designs_);
  Stats stats = GetStats();
  archive& make_nvp("designs_", designs) & make_nvp("stats_", stats);
  if constexpr (Archive::is_loading::value) Rebuild();
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::DesignManager)
