#include "support/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "support/exceptions.h"
#include "support/temporary_folder.h"

namespace kestrel::utils::log {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

/// Sends one message on every level.
void LogEveryLevel(LogBase& log) {
  log.Error() << L"e" << 1;
  log.Debug() << L"d" << 2;
  log.Warning() << L"w" << 4;
  log.Information() << L"i" << 8;
  log.Trace() << L"t" << 16;
  log.DetailedInformation() << L"x" << 32;
}

TEST(StreamLog, SendsErrorsToTheFirstStreamAndTheRestToTheSecond) {
  std::wostringstream errors, others;
  BasicStreamLog log(errors, others);
  LogEveryLevel(log);
  EXPECT_EQ(errors.str(), L"ERROR: e1\n");
  EXPECT_EQ(others.str(), L"DEBUG: d2\nWARNING: w4\nINFO: i8\nTRACE: t16\nINFO_DETAIL: x32\n");
}

TEST(StreamLog, KeepsMessagesOfTwoThreadsApart) {
  constexpr int kMessages = 2000;
  std::wostringstream stream;
  BasicStreamLog log(stream);
  const auto write = [&log](wchar_t letter) {
    for (int i = 0; i < kMessages; ++i) log.Debug() << std::wstring(20, letter) << std::wstring(20, letter);
  };
  std::thread a(write, L'a'), b(write, L'b');
  a.join();
  b.join();

  std::wistringstream lines(stream.str());
  std::wstring line;
  int count = 0;
  for (; std::getline(lines, line); ++count) {
    ASSERT_EQ(line, L"DEBUG: " + std::wstring(40, line.back()));
  }
  EXPECT_EQ(count, 2 * kMessages);
}

TEST(FileStreamLog, WritesUtf8InAnyLocaleAndAfterEachMessage) {
  const TemporaryFolder folder;
  const auto path = std::filesystem::path(folder.Path("message_log.txt"));
  BasicFileStreamLog log(path);
  log.Error() << L"Gr\u00F6\u00DFe " << L'\U0001F600';
  EXPECT_EQ(folder.Read("message_log.txt"),
            "ERROR: Gr\xC3\xB6\xC3\x9F"
            "e \xF0\x9F\x98\x80\n");
  log.add(LogLevel::kTrace, {L'a', L'\0', L'\xD800', L'b'});  // neither ends the log
  EXPECT_THAT(folder.Read("message_log.txt"), ::testing::EndsWith("\nTRACE: a\xEF\xBF\xBD"
                                                                  "b\n"));
}

TEST(FileStreamLog, AppendsAndMakesFoldersOnlyIfTold) {
  const TemporaryFolder folder;
  const auto path = std::filesystem::path(folder.Path("a/b/log.txt"));
  EXPECT_THROW(BasicFileStreamLog(path, false, false), runtime_error);
  BasicFileStreamLog(path, false, true).Debug() << L"one";
  BasicFileStreamLog(path, true).Debug() << L"two";
  EXPECT_EQ(folder.Read("a/b/log.txt"), "DEBUG: one\nDEBUG: two\n");
  BasicFileStreamLog(path).Debug() << L"three";
  EXPECT_EQ(folder.Read("a/b/log.txt"), "DEBUG: three\n");
}

TEST(VectorLog, CollectsAndForwardsInOrder) {
  VectorLog first, second;
  first.Error() << L"a";
  first.Trace() << L"b";
  first.Forward(second);
  first.Clear();
  EXPECT_TRUE(first.GetEntries().empty());
  EXPECT_THAT(second.GetEntries(), ElementsAre(Pair(LogLevel::kError, L"a"), Pair(LogLevel::kTrace, L"b")));
}

TEST(LevelFilterLog, PassesOnlyTheLevelsOfItsMask) {
  const auto inner = std::make_shared<VectorLog>();
  LevelFilterLog log(inner, static_cast<int>(LogLevel::kError) | static_cast<int>(LogLevel::kTrace));
  LogEveryLevel(log);
  log.add(LogLevel::kDebug, L"by add");
  EXPECT_THAT(inner->GetEntries(), ElementsAre(Pair(LogLevel::kError, L"e1"), Pair(LogLevel::kTrace, L"t16")));
}

TEST(LogMulti, PassesToAllAndAsksWhetherOneListens) {
  const auto first = std::make_shared<VectorLog>();
  const auto second = std::make_shared<VectorLog>();
  LogMulti log({first, std::make_shared<LogDummy>(), second});
  log.Debug() << L"m";
  EXPECT_THAT(first->GetEntries(), ElementsAre(Pair(LogLevel::kDebug, L"m")));
  EXPECT_EQ(second->GetEntries(), first->GetEntries());
  EXPECT_FALSE(LogMulti({std::make_shared<LogDummy>()}).Accepts(LogLevel::kError));
}

/// A value that tells whether somebody composed it.
struct Composed {
  bool* flag;
};
std::wostream& operator<<(std::wostream& stream, const Composed& value) {
  *value.flag = true;
  return stream;
}

TEST(LogFlushHelper, DoesNotComposeWhatNobodyReads) {
  bool composed = false;
  LogDummy().Debug() << Composed{&composed};
  EXPECT_FALSE(composed);
  VectorLog().Debug() << Composed{&composed};
  EXPECT_TRUE(composed);
}

}  // namespace
}  // namespace kestrel::utils::log
