#pragma once

#include <boost/variant/recursive_wrapper.hpp>
#include <boost/variant/variant.hpp>
#include <complex>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <type_traits>

#include "datatypes/design_entry_type.h"
#include "persistence/archive/persistent.h"
#include "values/variant.h"

namespace kestrel {

/// The content of a cell that holds nothing.
struct UninitializedType {
  template <class Archive>
  void serialize(Archive&, unsigned int) {}
};

/// A small dynamically typed cell: a value of a parameter or a response, a bound, a discrete state. 16 bytes, because a
/// table of designs has many of them; a text and a `Variant` stand in a block of their own.
class CDesignEntry {
 public:
  using VariantType = math::Variant<double>;
  // The position of an alternative is the "which" of the file format.
  using Data = boost::variant<UninitializedType, double, std::int64_t, boost::recursive_wrapper<std::wstring>, bool,
                              boost::recursive_wrapper<VariantType>>;

  // A cell stands for its value, hence the implicit constructors; they serve as assignments of a value, too.
  CDesignEntry() = default;
  CDesignEntry(UninitializedType) {}            // NOLINT(google-explicit-constructor)
  CDesignEntry(double value) : data_(value) {}  // NOLINT(google-explicit-constructor)
  CDesignEntry(bool value) : data_(value) {}    // NOLINT(google-explicit-constructor)
  template <class Integer, std::enable_if_t<std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>, bool> = true>
  CDesignEntry(Integer value) : data_(static_cast<std::int64_t>(value)) {}  // NOLINT(google-explicit-constructor)
  CDesignEntry(const std::wstring& value) : data_(value) {}                 // NOLINT(google-explicit-constructor)
  CDesignEntry(const wchar_t* value) : data_(std::wstring(value)) {}        // NOLINT(google-explicit-constructor)
  CDesignEntry(const VariantType& value) : data_(value) {}                  // NOLINT(google-explicit-constructor)

  enums::DesignEntry::eType GetDomainType() const;
  /// Also true for a `Variant` that is uninitialized itself.
  bool IsUninitialized() const;
  bool IsNaN() const;
  bool IsInf() const;

  /// Number of values. Raises std::invalid_argument "Unknown domain type" for an uninitialized cell,
  /// math::CTypeException "Invalid type." for an uninitialized `Variant`.
  std::size_t Size() const;
  /// By type: a vector of one element is not of scalar type.
  bool IsScalarType() const;
  /// By value: `Size()` is 1. Raises what `Size()` raises.
  bool IsScalar() const;

  /// Raises std::invalid_argument for a bool, a text and an uninitialized cell.
  std::complex<double> GetScalar() const;
  /// Raise std::invalid_argument for every other type.
  const VariantType& GetVariant() const;
  VariantType& GetVariant();
  const Data& GetData() const { return data_; }

  /// Takes over a new value for a cell that is to keep its type.
  /// @param parse_strings  lets a text be read as a value of the type (a bool from "true", "false" or digits).
  /// @param fallback_type  the type that an uninitialized cell gets.
  /// Raises std::logic_error "Cannot assign. Value types do not match." if one of the two is a scalar and the other is
  /// not, and what the conversions raise; the cell is unchanged then.
  void assignPreservingType(const CDesignEntry& rhs, bool parse_strings,
                            enums::DesignEntry::eType fallback_type = enums::DesignEntry::UNINITIALIZED);

  /// The difference; exclusive or for bools. The left side keeps its type unless one side is a `Variant`. Raises
  /// std::logic_error "Substraction not supported for strings".
  CDesignEntry& operator-=(const CDesignEntry& rhs);

  /// Exact comparison; different types other than a text compare as `Variant`.
  friend bool operator==(const CDesignEntry& a, const CDesignEntry& b);
  friend bool operator!=(const CDesignEntry& a, const CDesignEntry& b) { return !(a == b); }
  /// Note that an uninitialized cell is less than an uninitialized cell.
  friend bool operator<(const CDesignEntry& a, const CDesignEntry& b);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  template <class Archive>
  void LoadData(Archive& archive, unsigned int version);

  Data data_;
};

CDesignEntry operator-(const CDesignEntry& a, const CDesignEntry& b);

/// Equal up to rounding (see math::Equal); uninitialized and NaN count as the same.
bool Equal(const CDesignEntry& a, const CDesignEntry& b);
/// `Equal`, or near by the relative tolerance (see math::NearTo).
bool NearTo(const CDesignEntry& a, const CDesignEntry& b, double tolerance);

/// The bare value; nothing for an uninitialized cell.
std::wostream& operator<<(std::wostream& stream, const CDesignEntry& entry);

/// The value of a cell as double, std::int64_t, bool, std::wstring or math::Variant<double>. A text is read by
/// boost::lexical_cast (boost::bad_lexical_cast; an uninitialized `Variant` where that is the target). Raises
/// utils::logic_error for a `Variant` that is neither boolean nor scalar.
template <class T>
T ConvertDesignpointEntry(const CDesignEntry& entry);

extern template double ConvertDesignpointEntry<double>(const CDesignEntry&);
extern template std::int64_t ConvertDesignpointEntry<std::int64_t>(const CDesignEntry&);
extern template bool ConvertDesignpointEntry<bool>(const CDesignEntry&);
extern template std::wstring ConvertDesignpointEntry<std::wstring>(const CDesignEntry&);
extern template math::Variant<double> ConvertDesignpointEntry<math::Variant<double>>(const CDesignEntry&);

}  // namespace kestrel

BOOST_CLASS_VERSION(kestrel::CDesignEntry, 5)
BOOST_CLASS_TRACKING(kestrel::CDesignEntry, boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::CDesignEntry, "kestrel::design_entry_type")
