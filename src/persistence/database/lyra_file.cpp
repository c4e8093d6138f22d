#include "persistence/database/lyra_file.h"

#include <fstream>
#include <limits>
#include <stdexcept>

#include "persistence/archive/archives.h"
#include "persistence/database/lyra.h"

namespace kestrel::algorithm {
namespace {

void WriteLittleEndian(std::ostream& stream, std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) stream.put(static_cast<char>((value >> shift) & 0xFFu));
}

}  // namespace

std::string LYRAFile::FailureInfo::toString(State state) {
  switch (state) {
    case success: return "successful";
    case file_version_mismatch: return "incompatible file version";
    case product_version_mismatch: return "incompatible product version";
    case missing_file: return "file not found";
    case reading: return "invalid stream state while reading";
    case writing: return "invalid stream state while writing";
    case header: return "invalid header found";
  }
  return "unknown";
}

bool LYRAFile::Write(const datatypes::LYRA& lyra, FailureInfo& failure) const {
  failure = FailureInfo{FailureInfo::success, path_, "", 0};
  std::ofstream file(path_, std::ios::binary | std::ios::trunc);
  if (!file.is_open()) {
    failure.state = FailureInfo::missing_file;
    return false;
  }
  WriteFileHeader(file, path_);
  // The archive changes the stream's conversion, which a file refuses for ever while it cannot write what it holds.
  if (file.flush()) AppendLYRAObject(file, lyra);
  file.close();
  if (!file) failure.state = FailureInfo::writing;
  return file.good();
}

void LYRAFile::WriteFileHeader(std::ostream& stream, const std::string& path) {
  const std::string header = CreateDefaultJsonHeader(path);
  if (header.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("The header of the database is too long.");
  }
  stream.write(MagicNumber::reference_value.data(), MagicNumber::reference_value.size());
  WriteLittleEndian(stream, file_version);
  WriteLittleEndian(stream, static_cast<std::uint32_t>(header.size()));
  stream << header;
}

void LYRAFile::AppendLYRAObject(std::ostream& stream, const datatypes::LYRA& lyra) {
  portable_binary_oarchive archive(stream, 0);
  archive << lyra;
  archive.Flush();
}

}  // namespace kestrel::algorithm
