#include "persistence/database/lyra_file.h"

#include <gtest/gtest.h>
#include <json/json.h>
#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>
#include <boost/interprocess/sync/named_sharable_mutex.hpp>
#include <sstream>

#include "persistence/database/lyra_lock.h"
#include "persistence/database/sample_lyra.h"
#include "support/temporary_folder.h"
#include "support/version.h"

namespace kestrel::algorithm {
namespace {

using datatypes::LYRA;
using FailureInfo = LYRAFile::FailureInfo;

void Save(const LYRA& lyra, const std::string& path) {
  struct RemoveLock {
    std::string name;
    ~RemoveLock() { boost::interprocess::named_sharable_mutex::remove(name.c_str()); }
  };
  const RemoveLock remove{datatypes::detail::hash_str(path)};
  LYRA::SaveToFile(lyra, path);
}

std::string FileOf(const LYRA& lyra) {
  const TemporaryFolder folder;
  Save(lyra, folder.Path("x.lyra"));
  return folder.Read("x.lyra");
}

std::string FailureOf(const LYRA& lyra, const std::string& path) {
  try {
    Save(lyra, path);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "";
}

/// A file with this header and the archive of `file`.
std::string WithHeader(const std::string& file, const std::string& json) {
  std::string frame = "LYRA";
  for (const std::size_t number : {std::size_t{1}, json.size()}) {
    for (std::size_t i = 0; i < 4; ++i) frame += static_cast<char>(number >> (8 * i) & 0xFF);
  }
  return frame + json + file.substr(file.find("KBA"));
}

TEST(LyraFile, ComesBackBehindAHeaderThatAnyJsonReaderReads) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("made/on/the/way/m\xC3\xBC.lyra");
  const LYRA lyra = testing::MakeLyra();
  Save(lyra, path);
  LYRA read;
  FailureInfo failure;
  ASSERT_TRUE(LYRAFile(path).Read(read, failure)) << failure.details;
  EXPECT_EQ(read.GetDesignContainer().GetDesigns(), lyra.GetDesignContainer().GetDesigns());

  std::string json;
  ASSERT_TRUE(LYRAFile(path).ReadHeader(json, failure));
  Json::Value header;
  std::istringstream(json) >> header;
  EXPECT_EQ(header["encoding"], "UTF-8");
  EXPECT_EQ(header["version"]["file"], 1);
  EXPECT_EQ(header["version"]["lyra"], 14);
  EXPECT_EQ(header["version"]["boost"], 107200);
  EXPECT_EQ(header["version"]["quillMark"]["major"].asUInt(), kVersion.major_number);
  EXPECT_EQ(header["version"]["quillMark"]["revision"].asUInt(), kVersion.build_number);
  EXPECT_EQ(header["datetime"]["last write"].asString().size(), sizeof("2026-01-01T00:00:00.000000") - 1);
  EXPECT_EQ(header["filename"], "m\xC3\xBC.lyra");
  EXPECT_TRUE(header["user"]["login name"].isString());
  EXPECT_EQ(header["system"]["arch"], "x86_64");
}

TEST(LyraFile, NamesTheFileOnlyWhereThereIsAPath) {
  EXPECT_EQ(LYRAFile::CreateDefaultJsonHeader(std::nullopt).find("filename"), std::string::npos);
  EXPECT_EQ(LYRAFile::CreateDefaultJsonHeader("").find("filename"), std::string::npos);
}

TEST(LyraFile, TellsWhyItCannotBeWritten) {
  const TemporaryFolder folder;
  folder.Write("file", "");
  const std::string taken = folder.Path("taken");
  ASSERT_EQ(mkdir(taken.c_str(), 0755), 0);
  EXPECT_EQ(FailureOf(LYRA(), taken), "Error while writing \"" + taken + "\": file not found");
  EXPECT_THROW(Save(LYRA(), folder.Path("file/below/x.lyra")), boost::filesystem::filesystem_error);
  LYRA inconsistent = testing::MakeLyra();
  inconsistent.GetParameterManager() = {};
  EXPECT_EQ(FailureOf(inconsistent, folder.Path("x")), "Parameter \"a\" does not exist in manager.");
  EXPECT_FALSE(boost::filesystem::exists(folder.Path("x")));
  EXPECT_NE(FailureOf(testing::MakeLyra(), "/dev/full"), "");
}

struct RefusalCase {
  const char* name;
  FailureInfo::State state;
  std::uint64_t number;
  std::string (*change)(const std::string& file);
};

class LyraFileRefusal : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(LyraFileRefusal, KeepsTheRecord) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("x.lyra", GetParam().change(FileOf(testing::MakeLyra())));
  LYRA record;
  record.SetMetaData(L"kept", "yes");
  FailureInfo failure;
  EXPECT_FALSE(LYRAFile(path).Read(record, failure));
  EXPECT_EQ(failure.state, GetParam().state) << failure.details;
  EXPECT_EQ(failure.number, GetParam().number);
  EXPECT_EQ(failure.path, path);
  EXPECT_EQ(record.GetMetaData().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Damage, LyraFileRefusal,
    ::testing::Values(
        RefusalCase{"Empty", FailureInfo::reading, 0, [](const std::string&) { return std::string(); }},
        RefusalCase{"HalfAFrame", FailureInfo::reading, 0, [](const std::string& f) { return f.substr(0, 10); }},
        RefusalCase{"Magic", FailureInfo::header, 0, [](const std::string& f) { return "LYRB" + f.substr(4); }},
        RefusalCase{"FileVersion", FailureInfo::file_version_mismatch, 2,
                    [](const std::string& f) { return "LYRA\x02" + f.substr(5); }},
        RefusalCase{"HeaderLength", FailureInfo::header, 0xFFFFFFFF,
                    [](const std::string& f) { return f.substr(0, 8) + "\xFF\xFF\xFF\xFF" + f.substr(12); }},
        RefusalCase{"NoJson", FailureInfo::header, 0, [](const std::string& f) { return WithHeader(f, "{\"a\":"); }},
        RefusalCase{"NoObject", FailureInfo::header, 0, [](const std::string& f) { return WithHeader(f, "[]"); }},
        RefusalCase{"DeepJson", FailureInfo::header, 0,
                    [](const std::string& f) { return WithHeader(f, std::string(1000000, '[')); }},
        RefusalCase{"NoVersion", FailureInfo::header, 0, [](const std::string& f) { return WithHeader(f, "{}"); }},
        RefusalCase{"LaterProduct", FailureInfo::product_version_mismatch, 15,
                    [](const std::string& f) { return WithHeader(f, "{\"version\":{\"lyra\":15}}"); }},
        RefusalCase{"HalfAnArchive", FailureInfo::reading, 0,
                    [](const std::string& f) { return f.substr(0, f.size() / 2); }},
        RefusalCase{"NoArchive", FailureInfo::reading, 0,
                    [](const std::string& f) { return f.substr(0, f.find("KBA")) + "no archive"; }}),
    [](const auto& each) { return std::string(each.param.name); });

TEST(LyraFile, OpensRegularFilesOnly) {
  const TemporaryFolder folder;
  const std::string pipe = folder.Path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0644), 0);
  for (const std::string& path : {pipe, folder.Path(""), folder.Path("missing"), std::string("/dev/zero")}) {
    LYRA record;
    std::string json;
    FailureInfo failure;
    EXPECT_FALSE(LYRAFile(path).Read(record, failure)) << path;
    EXPECT_EQ(failure.state, FailureInfo::missing_file) << path;
    EXPECT_FALSE(LYRAFile(path).ReadHeader(json, failure)) << path;
  }
}

TEST(LyraFile, HasATextForEveryState) {
  const char* const texts[] = {"successful",
                               "incompatible file version",
                               "incompatible product version",
                               "file not found",
                               "invalid stream state while reading",
                               "invalid stream state while writing",
                               "invalid header found",
                               "unknown"};
  for (std::uint32_t state = 0; state < 8; ++state) {
    EXPECT_EQ(FailureInfo::toString(static_cast<FailureInfo::State>(state)), texts[state]);
  }
}

}  // namespace
}  // namespace kestrel::algorithm
