#include <json/json.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

#include "persistence/archive/archives.h"
#include "persistence/database/lyra.h"
#include "persistence/database/lyra_file.h"

namespace kestrel::algorithm {
namespace {

using State = LYRAFile::FailureInfo::State;

constexpr std::uint64_t kFrameSize = 12;

/// Values may stand in each other this deep; the headers that are written reach 3.
constexpr int kMaxJsonDepth = 32;

/// What ends the reading of a file.
struct Failure {
  State state;
  std::string details;
  std::uint64_t number = 0;
};

/// Runs `work` and tells how it ended.
template <class Work>
bool Guarded(LYRAFile::FailureInfo& info, const std::string& path, Work&& work) {
  info = LYRAFile::FailureInfo{State::success, path, "", 0};
  try {
    work();
    return true;
  } catch (const Failure& failure) {
    info = LYRAFile::FailureInfo{failure.state, path, failure.details, failure.number};
  } catch (const std::exception& error) {
    info = LYRAFile::FailureInfo{State::reading, path, error.what(), 0};
  }
  return false;
}

/// Directories, devices and pipes are not opened: reading them could fail in strange ways or wait for ever.
std::ifstream OpenRegularFile(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) throw Failure{State::missing_file, "not a regular file"};
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) throw Failure{State::missing_file, ""};
  return file;
}

void ReadBytes(std::istream& file, char* bytes, std::size_t count) {
  if (!file.read(bytes, static_cast<std::streamsize>(count))) throw Failure{State::reading, "unexpected end"};
}

std::uint32_t ReadLittleEndian(std::istream& file) {
  std::array<unsigned char, 4> bytes{};
  ReadBytes(file, reinterpret_cast<char*>(bytes.data()), bytes.size());
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
  return value;
}

/// Leaves the file where the archive begins.
std::string ReadHeaderText(std::ifstream& file) {
  const std::uint64_t size = static_cast<std::uint64_t>(file.seekg(0, std::ios::end).tellg());
  file.seekg(0);
  std::array<char, 4> magic{};
  ReadBytes(file, magic.data(), magic.size());
  if (magic != LYRAFile::MagicNumber::reference_value) throw Failure{State::header, "not a database file"};
  const std::uint32_t version = ReadLittleEndian(file);
  if (version != LYRAFile::file_version) throw Failure{State::file_version_mismatch, "", version};
  const std::uint32_t length = ReadLittleEndian(file);
  if (length > size - kFrameSize) throw Failure{State::header, "the header is longer than the file", length};
  std::string text(length, '\0');
  ReadBytes(file, text.data(), text.size());
  return text;
}

Json::Value ParseHeader(const std::string& text) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["stackLimit"] = kMaxJsonDepth;
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value header;
  std::string errors;
  try {
    if (!reader->parse(text.data(), text.data() + text.size(), &header, &errors)) throw Failure{State::header, errors};
  } catch (const Json::Exception& error) {  // so it tells that values stand too deep
    throw Failure{State::header, error.what()};
  }
  if (!header.isObject()) throw Failure{State::header, "not a JSON object"};
  return header;
}

/// A record of a later class version than this library's cannot be read.
void RequireReadableRecord(const Json::Value& header) {
  constexpr int kNewest = boost::serialization::version<datatypes::LYRA>::value;
  const Json::Value& version = header["version"];
  if (!version.isObject() || !version["lyra"].isUInt()) throw Failure{State::header, "no version of the record"};
  const unsigned record = version["lyra"].asUInt();
  if (record > kNewest) throw Failure{State::product_version_mismatch, "", record};
}

}  // namespace

bool LYRAFile::ReadHeader(std::string& json, FailureInfo& failure) const {
  return Guarded(failure, path_, [&] {
    std::ifstream file = OpenRegularFile(path_);
    std::string text = ReadHeaderText(file);
    ParseHeader(text);
    json = std::move(text);
  });
}

bool LYRAFile::Read(datatypes::LYRA& lyra, FailureInfo& failure) const {
  return Guarded(failure, path_, [&] {
    std::ifstream file = OpenRegularFile(path_);
    RequireReadableRecord(ParseHeader(ReadHeaderText(file)));
    datatypes::LYRA read;
    portable_binary_iarchive archive(file, 0);
    archive >> read;
    lyra = std::move(read);
  });
}

}  // namespace kestrel::algorithm
