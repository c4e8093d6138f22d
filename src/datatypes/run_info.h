#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <utility>

#include "persistence/archive/persistent.h"

namespace kestrel {

/// What a run message says; everything but `kNone` marks a failure. Other numbers pass through files unchanged.
enum class eRunInfo : std::int32_t { kNone = 0, kFailed = 1, kNotStarted = 501, kRunning = 502 };

/// One message of a run about one actor (a program, a solver) and, if it is about one output only, its response.
class RunInfoMeta {
 public:
  RunInfoMeta() = default;
  explicit RunInfoMeta(eRunInfo run_info, std::wstring actor_name = {}, std::wstring response_name = {},
                       std::list<std::wstring> message = {});

  eRunInfo GetRunInfo() const { return run_info_; }
  bool IsFailed() const { return run_info_ != eRunInfo::kNone; }
  const std::wstring& GetActorName() const { return actor_name_; }
  const std::wstring& GetResponseName() const { return response_name_; }
  /// The lines of the message.
  const std::list<std::wstring>& GetMessage() const { return message_; }
  void AddMessage(std::wstring line) { message_.push_back(std::move(line)); }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  eRunInfo run_info_ = eRunInfo::kNone;
  std::wstring actor_name_;
  std::wstring response_name_;
  std::list<std::wstring> message_;
};

/// The run messages of a design in the order of their arrival.
class RunInfoContainer {
 public:
  using const_iterator = std::list<RunInfoMeta>::const_iterator;

  const_iterator begin() const { return run_infos_.begin(); }
  const_iterator end() const { return run_infos_.end(); }
  std::size_t size() const { return run_infos_.size(); }
  bool empty() const { return run_infos_.empty(); }
  void push_back(RunInfoMeta run_info) { run_infos_.push_back(std::move(run_info)); }
  void clear() { run_infos_.clear(); }

  bool AnyFailed() const;
  /// The same `run_info_` in the same order; actors and texts do not count.
  bool HasSameRunInfos(const RunInfoContainer& other) const;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  std::list<RunInfoMeta> run_infos_;
};

}  // namespace kestrel

BOOST_CLASS_VERSION(kestrel::RunInfoMeta, 1)
BOOST_CLASS_VERSION(kestrel::RunInfoContainer, 1)
