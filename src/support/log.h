#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Sinks for log messages. All are written for wide characters; a message is one call of `add`, whatever number of
/// pieces it was streamed from.
namespace kestrel::utils::log {

enum class LogLevel : int {
  kError = 1,
  kDebug = 2,
  kWarning = 4,
  kInformation = 8,
  kTrace = 16,
  kDetailedInformation = 32,
};

/// "ERROR", "DEBUG", "WARNING", "INFO", "TRACE", "INFO_DETAIL"; "UNDEFINED" for a value that is not one level.
std::wstring LevelToString(LogLevel level);

namespace templates {

template <class Char>
class LogBase;

/// Collects the pieces of one message and hands it to the log when it goes out of scope. Pieces streamed to a log
/// that does not accept the level cost a test only.
template <class Char>
class LogFlushHelper {
 public:
  LogFlushHelper(LogBase<Char>& log, LogLevel level) : log_(log), level_(level), accepted_(log.Accepts(level)) {}
  LogFlushHelper(const LogFlushHelper&) = delete;
  LogFlushHelper& operator=(const LogFlushHelper&) = delete;
  ~LogFlushHelper();

  template <class Value>
  LogFlushHelper& operator<<(const Value& value) {
    if (accepted_) text_ << value;
    return *this;
  }

 private:
  LogBase<Char>& log_;
  LogLevel level_;
  bool accepted_;
  std::basic_ostringstream<Char> text_;
};

/// The named entry points per level: `log.Debug() << L"R2adj " << r2;`.
template <class Char>
class MessageBase {
 public:
  LogFlushHelper<Char> Error() { return Message(LogLevel::kError); }
  LogFlushHelper<Char> Debug() { return Message(LogLevel::kDebug); }
  LogFlushHelper<Char> Warning() { return Message(LogLevel::kWarning); }
  LogFlushHelper<Char> Information() { return Message(LogLevel::kInformation); }
  LogFlushHelper<Char> Trace() { return Message(LogLevel::kTrace); }
  LogFlushHelper<Char> DetailedInformation() { return Message(LogLevel::kDetailedInformation); }

 protected:
  ~MessageBase() = default;

 private:
  LogFlushHelper<Char> Message(LogLevel level) { return {static_cast<LogBase<Char>&>(*this), level}; }
};

/// The abstract sink.
template <class Char>
class LogBase : public MessageBase<Char> {
 public:
  using String = std::basic_string<Char>;

  virtual ~LogBase() = default;
  virtual void add(LogLevel level, const String& text) = 0;

  /// False where a message of this level would be dropped, so that nobody composes it.
  virtual bool Accepts(LogLevel) const { return true; }
};

template <class Char>
LogFlushHelper<Char>::~LogFlushHelper() {
  if (accepted_) log_.add(level_, text_.str());
}

/// Writes "LEVEL: message" and a line feed, then flushes; errors go to the first stream, all else to the second.
/// The streams outlive the log. A mutex keeps the messages of several threads apart.
template <class Char>
class BasicStreamLog : public LogBase<Char> {
 public:
  using Stream = std::basic_ostream<Char>;

  BasicStreamLog(Stream& errors, Stream& others) : errors_(errors), others_(others) {}
  void add(LogLevel level, const std::basic_string<Char>& text) override;

 private:
  std::mutex mutex_;
  Stream& errors_;
  Stream& others_;
};

/// Collects messages; used by one thread at a time.
template <class Char>
class VectorLog : public LogBase<Char> {
 public:
  using Entry = std::pair<LogLevel, std::basic_string<Char>>;

  void add(LogLevel level, const std::basic_string<Char>& text) override { entries_.emplace_back(level, text); }
  void Forward(LogBase<Char>& log) const;
  void Clear() { entries_.clear(); }
  const std::vector<Entry>& GetEntries() const { return entries_; }

 private:
  std::vector<Entry> entries_;
};

/// Passes on only the levels whose bit is set in the mask.
template <class Char>
class LevelFilterLog : public LogBase<Char> {
 public:
  LevelFilterLog(std::shared_ptr<LogBase<Char>> log, int mask) : log_(std::move(log)), mask_(mask) {}
  void add(LogLevel level, const std::basic_string<Char>& text) override;
  bool Accepts(LogLevel level) const override;

 private:
  std::shared_ptr<LogBase<Char>> log_;
  int mask_;
};

/// Passes each message on to several logs.
template <class Char>
class LogMulti : public LogBase<Char> {
 public:
  explicit LogMulti(std::vector<std::shared_ptr<LogBase<Char>>> logs) : logs_(std::move(logs)) {}
  void add(LogLevel level, const std::basic_string<Char>& text) override;
  bool Accepts(LogLevel level) const override;

 private:
  std::vector<std::shared_ptr<LogBase<Char>>> logs_;
};

/// Drops everything.
template <class Char>
class LogDummy : public LogBase<Char> {
 public:
  void add(LogLevel, const std::basic_string<Char>&) override {}
  bool Accepts(LogLevel) const override { return false; }
};

}  // namespace templates

using LogBase = templates::LogBase<wchar_t>;
using VectorLog = templates::VectorLog<wchar_t>;
using LevelFilterLog = templates::LevelFilterLog<wchar_t>;
using LogMulti = templates::LogMulti<wchar_t>;
using LogDummy = templates::LogDummy<wchar_t>;

/// The concrete form on two wide streams, or on one for all levels.
class BasicStreamLog : public templates::BasicStreamLog<wchar_t> {
 public:
  BasicStreamLog(std::wostream& errors, std::wostream& others) : templates::BasicStreamLog<wchar_t>(errors, others) {}
  explicit BasicStreamLog(std::wostream& stream) : templates::BasicStreamLog<wchar_t>(stream, stream) {}
};

namespace detail {

/// A wide output stream on a UTF-8 file, whatever the locale; zero characters are left out.
class Utf8FileStream : private std::wstreambuf, public std::wostream {
 public:
  using traits_type = std::char_traits<wchar_t>;
  using int_type = traits_type::int_type;

  /// Raises `utils::runtime_error` if the file cannot be opened for writing.
  Utf8FileStream(const std::filesystem::path& path, bool append);

 private:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const wchar_t* text, std::streamsize count) override;
  int sync() override;

  std::ofstream file_;
};

}  // namespace detail

/// The form on a UTF-8 file that takes all levels.
class BasicFileStreamLog : private detail::Utf8FileStream, public templates::BasicStreamLog<wchar_t> {
 public:
  /// Raises `utils::runtime_error` if the file cannot be opened for writing.
  /// @param append          keeps what the file holds and writes behind it; otherwise the file starts empty.
  /// @param create_folders  makes the missing folders of the path.
  explicit BasicFileStreamLog(const std::filesystem::path& path, bool append = false, bool create_folders = false);
};

extern template class templates::BasicStreamLog<wchar_t>;
extern template class templates::VectorLog<wchar_t>;
extern template class templates::LevelFilterLog<wchar_t>;
extern template class templates::LogMulti<wchar_t>;

}  // namespace kestrel::utils::log
