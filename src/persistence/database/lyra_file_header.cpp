#include <json/json.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <boost/filesystem/path.hpp>

#include "persistence/database/lyra.h"
#include "persistence/database/lyra_file.h"
#include "support/strings.h"
#include "support/version.h"

namespace kestrel::algorithm {
namespace {

constexpr int kEngineVersion = 107200;  ///< a constant of the format, whatever the installed Boost says of itself

/// The name of the effective user; empty if the password database has none.
std::string LoginName() {
  std::array<char, 16384> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return "";
  return found->pw_name;
}

/// Bytes that are not UTF-8 are replaced: the header is.
std::string ToValidUtf8(const std::string& text) { return string::narrow(string::widen(text)); }

Json::Value ProductVersion() {
  Json::Value version;
  version["major"] = kVersion.major_number;
  version["minor"] = kVersion.minor_number;
  version["maintenance"] = kVersion.patch_number;
  version["revision"] = kVersion.build_number;
  version["suffix"] = kVersion.tag;
  return version;
}

std::string ToCompactText(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["commentStyle"] = "None";
  writer["indentation"] = "";
  writer["useSpecialFloats"] = false;
  return Json::writeString(writer, value);
}

}  // namespace

std::string LYRAFile::CreateDefaultJsonHeader(const std::optional<std::string>& path) {
  Json::Value header;
  header["encoding"] = "UTF-8";
  header["version"]["file"] = file_version;
  header["version"]["lyra"] = boost::serialization::version<datatypes::LYRA>::value;
  header["version"]["quillMark"] = ProductVersion();
  header["version"]["boost"] = kEngineVersion;
  header["datetime"]["quillMark build"] = datatypes::BuildDate();
  header["datetime"]["last write"] = datatypes::PresentTime();
  header["datetime"]["standard"] = "UTC";
  if (path && !path->empty()) header["filename"] = ToValidUtf8(boost::filesystem::path(*path).filename().string());
  header["user"]["login name"] = ToValidUtf8(LoginName());
  header["system"]["arch"] = "x86_64";
  header["system"]["os"] = "linux";
  return ToCompactText(header);
}

}  // namespace kestrel::algorithm
