#pragma once

namespace kestrel {

/// The version of the library, by parts and as one text.
struct Version {
  unsigned major_number;
  unsigned minor_number;
  unsigned patch_number;
  const char* tag;
  unsigned build_number;
  const char* text;  ///< "major.minor.patch<tag> (build)"
};

extern const Version kVersion;

/// What this library was compiled for and with: "x86-64-v3, GCC 12.2.0, Eigen 3.4.0, Boost 1.74.0".
const char* BuildText();

}  // namespace kestrel
