#include "datatypes/results/signal_info.h"

#include "persistence/archive/archives.h"
#include "persistence/archive/serialize_fields.h"

namespace kestrel::algorithm::datatypes {

bool SignalInfo::operator==(const SignalInfo& other) const {
  return x_data_ == other.x_data_ && channel_info_map_ == other.channel_info_map_ &&
         channel_info_names_ == other.channel_info_names_;
}

bool SignalInfo::ChannelInfo::operator==(const ChannelInfo& other) const {
  return data_info_map_ == other.data_info_map_ && data_info_names_ == other.data_info_names_;
}

bool SignalInfo::ChannelInfo::DataInfo::operator==(const DataInfo& other) const {
  return data_part_map_ == other.data_part_map_ && data_part_names_ == other.data_part_names_;
}

template <class Archive>
void SignalInfo::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

template <class Archive>
void SignalInfo::ChannelInfo::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

template <class Archive>
void SignalInfo::ChannelInfo::DataInfo::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::SignalInfo)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::SignalInfo::ChannelInfo)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::SignalInfo::ChannelInfo::DataInfo)
