#include "library_info.h"

#include <dlfcn.h>
#include <zor_api.h>

#include "json.h"

namespace kestrel::cli {

namespace {

/// Which of the libraries in the folders of the loader this process took.
std::string FileOfLibrary() {
  const void* const inside = zor_get_version_str();  // a text of the library, not of this program
  Dl_info found{};
  return dladdr(inside, &found) != 0 && found.dli_fname != nullptr ? found.dli_fname : "";
}

}  // namespace

LibraryInfo CollectLibraryInfo() { return {zor_get_version_str(), zor_get_build_str(), FileOfLibrary()}; }

void PrintLibraryInfo(std::ostream& stream, const LibraryInfo& info) {
  stream << "version  " << info.version << "\nbuild    " << info.build << "\nfile     " << info.file << '\n';
}

void PrintLibraryInfoJson(std::ostream& stream, const LibraryInfo& info) {
  stream << "{\n  \"kind\": \"library\",\n  \"version\": " << JsonText(info.version)
         << ",\n  \"build\": " << JsonText(info.build) << ",\n  \"file\": " << JsonText(info.file) << "\n}\n";
}

}  // namespace kestrel::cli
