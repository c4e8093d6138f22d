#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <unordered_map>
#include <vector>

#include "datatypes/design.h"
#include "persistence/archive/persistent.h"

namespace kestrel::algorithm::datatypes {

/// The designs of a run in the order of insertion, a lookup by id, and running statistics.
///
/// Ids should be unique (`HasUniqueIds`); where one repeats, the lookup knows the design that came first. The
/// statistics may be read by other threads during a run; everything else belongs to one thread at a time.
class DesignManager {
 public:
  /// How many designs there are of each class. Succeeded are those with `Design::IsSucceeded()`, failed those that are
  /// incomplete or failed, pending all others.
  struct Stats {
    std::uint64_t total_ = 0;
    std::uint64_t succeeded_ = 0;
    std::uint64_t failed_ = 0;
    std::uint64_t pending_ = 0;

    bool operator==(const Stats& other) const;

   private:
    friend class boost::serialization::access;
    template <class Archive>
    void serialize(Archive& archive, unsigned int version);
  };

  /// The same numbers, each atomic by itself.
  class AtomicStats {
   public:
    AtomicStats() = default;
    AtomicStats(const AtomicStats& other) noexcept { *this = other.Get(); }
    AtomicStats& operator=(const AtomicStats& other) noexcept { return *this = other.Get(); }
    AtomicStats& operator=(const Stats& stats) noexcept;
    ~AtomicStats() = default;

    Stats Get() const noexcept;

   private:
    friend class DesignManager;

    std::atomic<std::uint64_t> total_{0};
    std::atomic<std::uint64_t> succeeded_{0};
    std::atomic<std::uint64_t> failed_{0};
    std::atomic<std::uint64_t> pending_{0};
  };

  enum class eStatsAction : int {
    kAdd = 0,
    kRemove = 1,
    kReplace = 2,
    kUpdateToSucceeded = 3,
    kUpdateToOther = 4,
    kRecount = 5,
  };

  using iterator = std::vector<Design>::iterator;
  using const_iterator = std::vector<Design>::const_iterator;

  DesignManager() = default;
  /// The bulk road: takes the designs over as they are.
  explicit DesignManager(std::vector<Design> designs);

  std::size_t size() const { return designs_.size(); }
  bool empty() const { return designs_.empty(); }
  const Design& operator[](std::size_t index) const { return designs_[index]; }
  const_iterator begin() const { return designs_.begin(); }
  const_iterator end() const { return designs_.end(); }
  const std::vector<Design>& GetDesigns() const { return designs_; }
  /// Designs to be changed in place. A change of ids has to be followed by `UpdateLookup()`, and one that touches the
  /// status, the values or the criteria by `UpdateStats(eStatsAction::kRecount)`.
  Design& operator[](std::size_t index) { return designs_[index]; }
  iterator begin() { return designs_.begin(); }
  iterator end() { return designs_.end(); }

  void reserve(std::size_t count);
  void push_back(Design design);
  void clear();

  /// Replace the design of that id (that leaf with `leaf_only`), "No such design" as below if there is none.
  void UpdateDesign(Design design, bool leaf_only = false);
  void UpdateDesign(const CHierachicalId& id, Design design);

  /// With `leaf_only` the first design is meant whose id has the same leaf; it is searched, the whole id is looked up.
  /// Raises utils::logic_error "No such design" if there is none.
  const Design& GetDesign(const CHierachicalId& id, bool leaf_only = false) const;
  Design& GetDesign(const CHierachicalId& id, bool leaf_only = false);
  /// Null if there is none.
  const Design* GetDesign(const CHierachicalId& id, std::nothrow_t, bool leaf_only = false) const;
  Design* GetDesign(const CHierachicalId& id, std::nothrow_t, bool leaf_only = false);
  bool HasDesign(const CHierachicalId& id, bool leaf_only = false) const;
  /// The largest id in use, null without designs. Valid until the next change of the manager.
  const CHierachicalId* GetLargestId() const;

  /// False if there was none.
  bool RemoveDesign(const CHierachicalId& id);
  void RemoveDesignsByType(Design::eType type);
  /// Removes in one sweep all designs for which `remove(design)` is true.
  template <class Predicate>
  void RemoveDesignsIf(Predicate remove);
  /// Copies, in their order.
  DesignManager GetDesignsByType(Design::eType type) const;

  /// True: all runs are done. False: none has started.
  void SetDesignsDone(bool done);
  /// `Design::ClearResponses` and `Design::ClearCriteria` of all designs.
  void ClearResponses();
  void ClearCriteria();

  Stats GetStats() const { return stats_.Get(); }
  /// Brings the counters up to date. Add, remove: the design that comes or goes. Replace: the new design, before it
  /// takes the place of the one with its id. Update to succeeded, to other (failed): the design as it was before.
  /// Recount needs none.
  void UpdateStats(eStatsAction action, const Design* design = nullptr);
  /// Rebuilds the lookup from the ids.
  void UpdateLookup();

  static bool HasUniqueIds(const DesignManager& manager);

  /// The union of the entries of all designs, each with the first value that is initialized, in the order of
  /// appearance; a template for what the designs hold. With `strict`, entries of one name that do not fit each other
  /// raise utils::logic_error; otherwise the first one holds. The texts:
  /// "Found response with same name but incompatible data type.",
  /// "Found response with same name but different variant type.",
  /// "Found criterion with same name but different criterion type.",
  /// "Found criterion with same name but different variant type.",
  /// "Found criterion with same name but incompatible data type.".
  static CDesignEntrySequence GetCompleteDummyParameters(const DesignManager& manager);
  static CDesignEntrySequence GetCompleteDummyResponses(const DesignManager& manager, bool strict = true);
  static CriterionSequence GetCompleteDummyCriteria(const DesignManager& manager, bool strict = true);
  static Design GetCompleteDummyDesign(const DesignManager& manager, bool strict = true);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  static constexpr std::size_t kNoDesign = static_cast<std::size_t>(-1);

  /// The position of the design, or kNoDesign.
  std::size_t FindDesign(const CHierachicalId& id, bool leaf_only) const;
  std::size_t RequireDesign(const CHierachicalId& id, bool leaf_only) const;
  void ReplaceDesign(std::size_t index, Design design);
  std::atomic<std::uint64_t>& ClassCounter(const Design& design);
  void Rebuild();

  std::vector<Design> designs_;
  std::unordered_map<CHierachicalId, std::size_t, HierachicalIdHash> lookup_;
  mutable std::optional<std::size_t> largest_id_;  // position of the design with the largest id, while it is known
  AtomicStats stats_;
};

template <class Predicate>
void DesignManager::RemoveDesignsIf(Predicate remove) {
  designs_.erase(std::remove_if(designs_.begin(), designs_.end(), remove), designs_.end());
  Rebuild();
}

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::DesignManager, 2)
