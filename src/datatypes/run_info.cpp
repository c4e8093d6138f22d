#include "datatypes/run_info.h"

#include <algorithm>

#include "persistence/archive/archives.h"

namespace kestrel {

RunInfoMeta::RunInfoMeta(eRunInfo run_info, std::wstring actor_name, std::wstring response_name,
                         std::list<std::wstring> message)
    : run_info_(run_info),
      actor_name_(std::move(actor_name)),
      response_name_(std::move(response_name)),
      message_(std::move(message)) {}

template <class Archive>
void RunInfoMeta::serialize(Archive& archive, unsigned int) {
  using boost::serialization::make_nvp;
  archive& make_nvp("run_info_", run_info_);
  archive& make_nvp("actor_name_", actor_name_);
  archive& make_nvp("response_name_", response_name_);
  archive& make_nvp("message_", message_);
}

bool RunInfoContainer::AnyFailed() const {
  return std::any_of(begin(), end(), [](const RunInfoMeta& run_info) { return run_info.IsFailed(); });
}

bool RunInfoContainer::HasSameRunInfos(const RunInfoContainer& other) const {
  return std::equal(begin(), end(), other.begin(), other.end(),
                    [](const RunInfoMeta& a, const RunInfoMeta& b) { return a.GetRunInfo() == b.GetRunInfo(); });
}

template <class Archive>
void RunInfoContainer::serialize(Archive& archive, unsigned int) {
  archive& boost::serialization::make_nvp("run_infos_", run_infos_);
}

}  // namespace kestrel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::RunInfoMeta)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::RunInfoContainer)
