#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include "persistence/archive/persistent.h"

namespace kestrel::algorithm::datatypes {

/// A file that belongs to a database without being part of it.
class LYRAAttachedPath {
 public:
  LYRAAttachedPath() = default;
  LYRAAttachedPath(std::filesystem::path path, std::wstring title, bool is_path_fix = false)
      : path_(std::move(path)), title_(std::move(title)), isPathFix_(is_path_fix) {}

  const std::filesystem::path& GetPath() const { return path_; }
  const std::wstring& GetTitle() const { return title_; }
  /// A fixed path stays when the database moves.
  bool IsPathFix() const { return isPathFix_; }
  /// Command-line arguments for the file, and whether placeholders in them are filled in.
  const std::wstring& GetArguments() const { return arguments_; }
  bool AutoInsertPlaceholders() const { return autoInsertPlaceholders_; }
  void SetArguments(std::wstring arguments, bool auto_insert_placeholders);

  bool operator==(const LYRAAttachedPath& other) const;

  template <class Visit>
  static void ForEachField(Visit visit);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  std::filesystem::path path_;
  std::wstring title_;
  bool isPathFix_ = false;
  std::wstring arguments_;
  bool autoInsertPlaceholders_ = false;
};

template <class Visit>
void LYRAAttachedPath::ForEachField(Visit visit) {
  visit("path_", &LYRAAttachedPath::path_, 0u);
  visit("title_", &LYRAAttachedPath::title_, 0u);
  visit("isPathFix_", &LYRAAttachedPath::isPathFix_, 0u);
  visit("arguments_", &LYRAAttachedPath::arguments_, 1u);
  visit("autoInsertPlaceholders_", &LYRAAttachedPath::autoInsertPlaceholders_, 2u);
}

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::LYRAAttachedPath, 2)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::LYRAAttachedPath, boost::serialization::track_always)
