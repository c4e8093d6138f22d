#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

namespace kestrel::algorithm {

namespace datatypes {
class LYRA;
}

/// A monitoring database file, extension .lyra:
///
///   0       4  the letters "LYRA"
///   4       4  file version, unsigned, 1
///   8       4  length n of the header, unsigned
///   12      n  header: JSON text in UTF-8 that any tool can read
///   12 + n     portable binary archive with one `LYRA` object, to the end of the file
///
/// Numbers are little-endian.
class LYRAFile {
 public:
  static constexpr std::uint32_t file_version = 1;

  struct MagicNumber {
    static constexpr std::array<char, 4> reference_value = {'L', 'Y', 'R', 'A'};
  };

  /// What went wrong, if anything did.
  struct FailureInfo {
    enum State : std::uint32_t {
      success = 0,
      file_version_mismatch = 1,
      product_version_mismatch = 2,
      missing_file = 3,
      reading = 4,
      writing = 5,
      header = 6,
    };

    State state = success;
    std::string path;
    std::string details;
    std::uint64_t number = 0;  ///< the version or the length that was found, where it is about one

    /// "successful", "incompatible file version" and so on; "unknown" for a number that is no state.
    static std::string toString(State state);
  };

  /// @param path  in the encoding of the file system.
  explicit LYRAFile(std::string path) : path_(std::move(path)) {}

  /// Writes the file anew; what stood there is gone. False if it cannot be opened (`missing_file`) or written
  /// (`writing`). Raises what the archive raises.
  bool Write(const datatypes::LYRA& lyra, FailureInfo& failure) const;

  /// Reads the record; false, with the record as it was, for everything that is no such file. Only a regular file is
  /// opened. The sizes that a file states are checked against its own before memory is taken.
  bool Read(datatypes::LYRA& lyra, FailureInfo& failure) const;
  /// The header as it stands in the file; it is valid JSON then, an object.
  bool ReadHeader(std::string& json, FailureInfo& failure) const;

  /// The header of a file that is written now; with the file's name if there is a path.
  static std::string CreateDefaultJsonHeader(const std::optional<std::string>& path);
  /// Frame and header. Raises std::length_error for a header longer than 4294967295 bytes.
  static void WriteFileHeader(std::ostream& stream, const std::string& path);
  static void AppendLYRAObject(std::ostream& stream, const datatypes::LYRA& lyra);

 private:
  std::string path_;
};

}  // namespace kestrel::algorithm
