#pragma once

#include <map>
#include <string>

namespace kestrel::algorithm::datatypes {

/// Free texts of a database by key.
using MetaData = std::map<std::wstring, std::string>;

/// The keys that every database gets when it is written.
namespace meta_data {

inline constexpr const wchar_t* md_id_qmk_version_str = L"quillMark version";   ///< the version as a text
inline constexpr const wchar_t* md_id_qmk_version = L"quillMark version_full";  ///< its four numbers
inline constexpr const wchar_t* md_id_qmk_suffix = L"quillMark suffix";
inline constexpr const wchar_t* md_id_qmk_build_date = L"quillMark build date";
inline constexpr const wchar_t* md_id_last_write_time = L"last_write_time";
inline constexpr const wchar_t* md_id_deactivated_designs = L"deactivated_designs";  ///< an archive of their ids

}  // namespace meta_data

/// Sets version, suffix and build date of this library and the present time.
void StampMetaData(MetaData& data);

/// When this library was compiled, "Mon dd yyyy hh:mm:ss".
const char* BuildDate();

/// The present time, UTC, in ISO extended form. Always with six digits behind the second: the usual text drops them
/// when they are zero.
std::string PresentTime();

}  // namespace kestrel::algorithm::datatypes
