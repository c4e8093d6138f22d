#pragma once

#include <map>
#include <string>
#include <vector>

#include "persistence/archive/persistent.h"

namespace kestrel::algorithm::datatypes {

/// Describes a signal: its abscissa and, channel by channel, where its data come from. The maps are in the order of the
/// names; the lists of names keep the order in which they were given.
struct SignalInfo {
  struct ChannelInfo;

  std::vector<double> x_data_;  ///< abscissa
  std::map<std::wstring, ChannelInfo> channel_info_map_;
  std::vector<std::wstring> channel_info_names_;

  bool operator==(const SignalInfo& other) const;
  template <class Visit>
  static void ForEachField(Visit visit);
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

struct SignalInfo::ChannelInfo {
  struct DataInfo {
    std::map<std::wstring, std::wstring> data_part_map_;
    std::vector<std::wstring> data_part_names_;

    bool operator==(const DataInfo& other) const;
    template <class Visit>
    static void ForEachField(Visit visit);
    template <class Archive>
    void serialize(Archive& archive, unsigned int version);
  };

  std::map<std::wstring, DataInfo> data_info_map_;
  std::vector<std::wstring> data_info_names_;

  bool operator==(const ChannelInfo& other) const;
  template <class Visit>
  static void ForEachField(Visit visit);
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

template <class Visit>
void SignalInfo::ForEachField(Visit visit) {
  visit("x_data_", &SignalInfo::x_data_, 0u);
  visit("channel_info_map_", &SignalInfo::channel_info_map_, 0u);
  visit("channel_info_names_", &SignalInfo::channel_info_names_, 0u);
}

template <class Visit>
void SignalInfo::ChannelInfo::ForEachField(Visit visit) {
  visit("data_info_map_", &ChannelInfo::data_info_map_, 0u);
  visit("data_info_names_", &ChannelInfo::data_info_names_, 0u);
}

template <class Visit>
void SignalInfo::ChannelInfo::DataInfo::ForEachField(Visit visit) {
  visit("data_part_map_", &DataInfo::data_part_map_, 0u);
  visit("data_part_names_", &DataInfo::data_part_names_, 0u);
}

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::SignalInfo, 1)
BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::SignalInfo::ChannelInfo, 1)
BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::SignalInfo::ChannelInfo::DataInfo, 1)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::SignalInfo, boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::SignalInfo::ChannelInfo, boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::SignalInfo::ChannelInfo::DataInfo,
                     boost::serialization::track_always)
