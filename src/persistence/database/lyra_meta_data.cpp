#include "persistence/database/lyra_meta_data.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/format.hpp>

#include "support/version.h"

namespace kestrel::algorithm::datatypes {

const char* BuildDate() { return __DATE__ " " __TIME__; }

std::string PresentTime() {
  const boost::posix_time::ptime now = boost::posix_time::microsec_clock::universal_time();
  const auto date = now.date().year_month_day();
  const auto time = now.time_of_day();
  boost::format text("%04d-%02d-%02dT%02d:%02d:%02d.%06d");
  text % date.year % date.month.as_number() % date.day.as_number();
  text % time.hours() % time.minutes() % time.seconds() % (time.total_microseconds() % 1000000);
  return text.str();
}

void StampMetaData(MetaData& data) {
  boost::format numbers("%u.%u.%u.%u");
  numbers % kVersion.major_number % kVersion.minor_number % kVersion.patch_number % kVersion.build_number;
  data[meta_data::md_id_qmk_version_str] = kVersion.text;
  data[meta_data::md_id_qmk_suffix] = kVersion.tag;
  data[meta_data::md_id_qmk_build_date] = BuildDate();
  data[meta_data::md_id_qmk_version] = numbers.str();
  data[meta_data::md_id_last_write_time] = PresentTime();
}

}  // namespace kestrel::algorithm::datatypes
