#pragma once

#include <ostream>
#include <string>

namespace kestrel::cli {

/// The arguments of `zor info`.
struct InfoArguments {
  std::string file;    ///< stored model or monitoring file
  bool build = false;  ///< the library is asked for, and no file
  bool json = false;
};

/// Tells on `out` what the file holds, or which library runs. Throws WorkError if it is neither kind of file.
void RunInfo(const InfoArguments& arguments, std::ostream& out);

}  // namespace kestrel::cli
