#pragma once

#include <boost/flyweight.hpp>
#include <boost/serialization/level.hpp>
#include <boost/serialization/split_free.hpp>
#include <boost/serialization/tracking.hpp>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace kestrel {

/// An immutable name that costs one pointer: equal names share one text, whichever thread makes them. The names of the
/// inputs and outputs recur in every design, and a table of designs would otherwise consist of their copies.
class SharedName {
 public:
  SharedName() : SharedName(Empty()) {}
  SharedName(const std::wstring& text) : text_(text) {}  // NOLINT(google-explicit-constructor): stands for the text
  SharedName(const wchar_t* text) : text_(text) {}       // NOLINT(google-explicit-constructor)

  const std::wstring& str() const { return text_.get(); }
  operator const std::wstring&() const { return text_.get(); }  // NOLINT(google-explicit-constructor)

  friend bool operator==(const SharedName& a, const SharedName& b) { return a.text_ == b.text_; }
  friend bool operator!=(const SharedName& a, const SharedName& b) { return a.text_ != b.text_; }
  friend bool operator==(const SharedName& a, const std::wstring& b) { return a.str() == b; }
  friend bool operator==(const SharedName& a, const wchar_t* b) { return a.str() == b; }
  friend bool operator!=(const SharedName& a, const std::wstring& b) { return a.str() != b; }
  friend std::wostream& operator<<(std::wostream& stream, const SharedName& name) { return stream << name.str(); }

 private:
  /// To be copied: a copy does not search for the text, which containers that are read would do for each element.
  static const SharedName& Empty() {
    static const SharedName empty{std::wstring()};
    return empty;
  }

  boost::flyweight<std::wstring> text_;
};

/// Lives in the helper collection of an archive that is read. A table of designs repeats its names in one order, so the
/// name behind the last one is tried before the text is searched for among all shared names.
class SharedNameMemory {
 public:
  static void* HelperId() {
    static char id = 0;
    return &id;
  }

  const SharedName& Share(const std::wstring& text) {
    if (next_ == names_.size()) next_ = 0;
    if (next_ < names_.size() && names_[next_] == text) return names_[next_++];
    if (names_.size() == kMostNames) names_.clear();
    next_ = names_.size() + 1;
    return names_.emplace_back(text);
  }

 private:
  static constexpr std::size_t kMostNames = 4096;

  std::vector<SharedName> names_;
  std::size_t next_ = 0;
};

}  // namespace kestrel

// In files a shared name is its text alone, with neither class information nor tracking.
BOOST_CLASS_IMPLEMENTATION(kestrel::SharedName, boost::serialization::object_serializable)
BOOST_CLASS_TRACKING(kestrel::SharedName, boost::serialization::track_never)

namespace boost::serialization {

template <class Archive>
void save(Archive& archive, const kestrel::SharedName& name, unsigned int) {
  archive << name.str();
}

template <class Archive>
void load(Archive& archive, kestrel::SharedName& name, unsigned int) {
  std::wstring text;
  archive >> text;
  using Memory = kestrel::SharedNameMemory;
  name = archive.template get_helper<Memory>(Memory::HelperId()).Share(text);
}

template <class Archive>
void serialize(Archive& archive, kestrel::SharedName& name, unsigned int version) {
  split_free(archive, name, version);
}

}  // namespace boost::serialization
