#pragma once

#include <ostream>
#include <string>

namespace kestrel::cli {

/// The library that the program runs with.
struct LibraryInfo {
  std::string version;
  std::string build;  ///< what it was compiled for and with
  std::string file;   ///< as the loader found it
};

LibraryInfo CollectLibraryInfo();

void PrintLibraryInfo(std::ostream& stream, const LibraryInfo& info);
void PrintLibraryInfoJson(std::ostream& stream, const LibraryInfo& info);

}  // namespace kestrel::cli
