#include "persistence/archive/size_reporter.h"

#include <iomanip>
#include <ostream>
#include <streambuf>

namespace kestrel {

portable_binary_archive_size_reporter::portable_binary_archive_size_reporter(std::streambuf& buffer,
                                                                             std::ostream& report)
    : buffer_(buffer), report_(report) {}

long portable_binary_archive_size_reporter::Position() const {
  return static_cast<long>(buffer_.pubseekoff(0, std::ios_base::cur, std::ios_base::in));
}

void portable_binary_archive_size_reporter::StartLine() {
  if (last_opened_is_open_) report_ << '\n';
  report_ << std::string(starts_.size(), ' ');
}

void portable_binary_archive_size_reporter::StartElement(const char* type, const char* name) {
  StartLine();
  report_ << name << " (" << type << ')';
  starts_.push_back(Position());
  last_opened_is_open_ = true;
  extra_info_.clear();
}

void portable_binary_archive_size_reporter::EndElement(const char* name) {
  if (starts_.empty()) return;
  const long size = Position() - starts_.back();
  starts_.pop_back();
  if (!last_opened_is_open_) {
    StartLine();
    report_ << "... " << name;
  }
  report_ << " -> " << size << extra_info_ << '\n';
  last_opened_is_open_ = false;
  extra_info_.clear();
}

void portable_binary_archive_size_reporter::SetExtraInfo(const std::string& content) {
  constexpr std::size_t kLongest = 64;
  if (content.size() > kLongest) return;
  constexpr char kDigits[] = "0123456789abcdef";
  extra_info_ = " \"";
  for (const char c : content) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 32) {
      extra_info_ += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15U]};
    } else {
      extra_info_ += c;
    }
  }
  extra_info_ += '"';
}

}  // namespace kestrel
