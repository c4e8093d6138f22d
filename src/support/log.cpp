#include "support/log.h"

#include <algorithm>

#include "support/exceptions.h"
#include "support/strings.h"

namespace kestrel::utils::log {

std::wstring LevelToString(LogLevel level) {
  switch (level) {
    case LogLevel::kError: return L"ERROR";
    case LogLevel::kDebug: return L"DEBUG";
    case LogLevel::kWarning: return L"WARNING";
    case LogLevel::kInformation: return L"INFO";
    case LogLevel::kTrace: return L"TRACE";
    case LogLevel::kDetailedInformation: return L"INFO_DETAIL";
  }
  return L"UNDEFINED";
}

namespace templates {

template <class Char>
void BasicStreamLog<Char>::add(LogLevel level, const std::basic_string<Char>& text) {
  const std::wstring word = LevelToString(level);
  std::basic_string<Char> line(word.begin(), word.end());
  line.append({Char{':'}, Char{' '}}).append(text).push_back(Char{'\n'});

  const std::lock_guard<std::mutex> lock(mutex_);
  Stream& stream = level == LogLevel::kError ? errors_ : others_;
  stream.clear();  // a character that the stream's locale cannot show spoils one message, not the ones after it
  stream.write(line.data(), static_cast<std::streamsize>(line.size())).flush();
}

template <class Char>
void VectorLog<Char>::Forward(LogBase<Char>& log) const {
  for (const auto& [level, text] : entries_) log.add(level, text);
}

template <class Char>
bool LevelFilterLog<Char>::Accepts(LogLevel level) const {
  return (static_cast<int>(level) & mask_) != 0 && log_->Accepts(level);
}

template <class Char>
void LevelFilterLog<Char>::add(LogLevel level, const std::basic_string<Char>& text) {
  if (Accepts(level)) log_->add(level, text);
}

template <class Char>
bool LogMulti<Char>::Accepts(LogLevel level) const {
  return std::any_of(logs_.begin(), logs_.end(), [level](const auto& log) { return log->Accepts(level); });
}

template <class Char>
void LogMulti<Char>::add(LogLevel level, const std::basic_string<Char>& text) {
  for (const auto& log : logs_) log->add(level, text);
}

template class BasicStreamLog<wchar_t>;
template class VectorLog<wchar_t>;
template class LevelFilterLog<wchar_t>;
template class LogMulti<wchar_t>;

}  // namespace templates

namespace detail {

Utf8FileStream::Utf8FileStream(const std::filesystem::path& path, bool append)
    : std::wostream(static_cast<std::wstreambuf*>(this)),
      file_(path, std::ios::binary | (append ? std::ios::app : std::ios::trunc)) {
  if (!file_) throw runtime_error(L"Unable to open the log file \"" + string::widen(path.string()) + L"\".");
}

std::wstreambuf::int_type Utf8FileStream::overflow(int_type character) {
  if (!traits_type::eq_int_type(character, traits_type::eof())) {
    const wchar_t value = traits_type::to_char_type(character);
    xsputn(&value, 1);
  }
  return traits_type::not_eof(character);
}

std::streamsize Utf8FileStream::xsputn(const wchar_t* text, std::streamsize count) {
  const std::wstring_view all(text, static_cast<std::size_t>(count));
  // A conversion ends at a zero character, a log does not: the pieces between the zeros are written one by one.
  for (std::size_t begin = 0; begin < all.size();) {
    const std::size_t zero = std::min(all.find(L'\0', begin), all.size());
    file_ << string::narrow(all.substr(begin, zero - begin));
    begin = zero + 1;
  }
  return file_ ? count : 0;
}

int Utf8FileStream::sync() { return file_.flush() ? 0 : -1; }

}  // namespace detail

namespace {

/// The path, its folder made before the file in it is opened.
std::filesystem::path WithFolders(const std::filesystem::path& path, bool create_folders) {
  if (create_folders && path.has_parent_path()) std::filesystem::create_directories(path.parent_path());
  return path;
}

}  // namespace

BasicFileStreamLog::BasicFileStreamLog(const std::filesystem::path& path, bool append, bool create_folders)
    : detail::Utf8FileStream(WithFolders(path, create_folders), append),
      templates::BasicStreamLog<wchar_t>(static_cast<std::wostream&>(*this), static_cast<std::wostream&>(*this)) {}

}  // namespace kestrel::utils::log
