#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace kestrel {

/// Prints how many bytes of a stream every item takes, as a tree of names. A development aid.
class portable_binary_archive_size_reporter {
 public:
  /// @param buffer  the stream buffer that is read; its positions give the sizes.
  portable_binary_archive_size_reporter(std::streambuf& buffer, std::ostream& report);

  void StartElement(const char* type, const char* name);
  void EndElement(const char* name);

  /// Shows the content behind the size of the element that is open, characters below 32 as \xNN. Long texts are left
  /// out.
  void SetExtraInfo(const std::string& content);

 private:
  long Position() const;
  void StartLine();

  std::streambuf& buffer_;
  std::ostream& report_;
  std::vector<long> starts_;          // stream positions at which the open elements begin
  bool last_opened_is_open_ = false;  // the line of the last opened element still waits for its size
  std::string extra_info_;
};

}  // namespace kestrel
