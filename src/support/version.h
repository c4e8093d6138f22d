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

}  // namespace kestrel
