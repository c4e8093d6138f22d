#include "datatypes/design_entry.h"

#include <array>
#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>
#include <boost/variant/static_visitor.hpp>
#include <cmath>
#include <ostream>
#include <stdexcept>

#include "datatypes/parse_bool.h"
#include "values/real_comparison.h"

namespace kestrel {
namespace {

using enums::DesignEntry::eType;
using VariantType = CDesignEntry::VariantType;

template <class T>
const T& Get(const CDesignEntry& entry) {
  return boost::get<T>(entry.GetData());
}

VariantType ToVariant(const CDesignEntry& entry) { return ConvertDesignpointEntry<VariantType>(entry); }

bool SameType(const CDesignEntry& a, const CDesignEntry& b) { return a.GetData().which() == b.GetData().which(); }

bool OneIs(eType type, const CDesignEntry& a, const CDesignEntry& b) {
  return a.GetDomainType() == type || b.GetDomainType() == type;
}

bool HoldsNoNumber(const CDesignEntry& entry) { return entry.IsUninitialized() || entry.IsNaN(); }

/// The value in the type; a text counts as its own type only.
CDesignEntry Converted(const CDesignEntry& value, eType type) {
  switch (type) {
    case enums::DesignEntry::BOOL: return ConvertDesignpointEntry<bool>(value);
    case enums::DesignEntry::REAL: return ConvertDesignpointEntry<double>(value);
    case enums::DesignEntry::INTEGER: return ConvertDesignpointEntry<std::int64_t>(value);
    case enums::DesignEntry::STRING: return ConvertDesignpointEntry<std::wstring>(value);
    case enums::DesignEntry::VARIANT: return ToVariant(value);
    case enums::DesignEntry::UNINITIALIZED: break;
  }
  return {};
}

/// The value that a text spells, in the type. Unlike a conversion, it raises boost::bad_lexical_cast for a text without
/// a number where a `Variant` is asked for, and it knows the words of a bool.
CDesignEntry Parsed(const CDesignEntry& text, eType type) {
  if (type == enums::DesignEntry::BOOL) return ParseBool(Get<std::wstring>(text));
  if (type == enums::DesignEntry::VARIANT) return VariantType(ConvertDesignpointEntry<double>(text), 0.0);
  return Converted(text, type);
}

std::int64_t WrappingDifference(std::int64_t a, std::int64_t b) {
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

}  // namespace

eType CDesignEntry::GetDomainType() const {
  using namespace enums::DesignEntry;
  constexpr std::array<eType, 6> kTypes = {UNINITIALIZED, REAL, INTEGER, STRING, BOOL, VARIANT};
  return kTypes[static_cast<std::size_t>(data_.which())];
}

bool CDesignEntry::IsUninitialized() const {
  if (const auto* const value = boost::get<VariantType>(&data_)) return value->GetKind() == VariantType::UNINITIALIZED;
  return GetDomainType() == enums::DesignEntry::UNINITIALIZED;
}

bool CDesignEntry::IsNaN() const {
  if (const auto* const value = boost::get<double>(&data_)) return std::isnan(*value);
  const auto* const value = boost::get<VariantType>(&data_);
  return value != nullptr && value->IsNaN(true);
}

bool CDesignEntry::IsInf() const {
  if (const auto* const value = boost::get<double>(&data_)) return std::isinf(*value);
  const auto* const value = boost::get<VariantType>(&data_);
  return value != nullptr && value->IsInf(true);
}

std::size_t CDesignEntry::Size() const {
  if (const auto* const value = boost::get<VariantType>(&data_)) return value->size();
  if (IsUninitialized()) throw std::invalid_argument("Unknown domain type");
  return 1;
}

bool CDesignEntry::IsScalarType() const {
  if (const auto* const value = boost::get<VariantType>(&data_)) {
    return value->GetKind() == VariantType::BOOLEAN || value->GetKind() == VariantType::SCALAR;
  }
  return !IsUninitialized();
}

bool CDesignEntry::IsScalar() const { return Size() == 1; }

std::complex<double> CDesignEntry::GetScalar() const {
  if (const auto* const value = boost::get<double>(&data_)) return *value;
  if (const auto* const value = boost::get<std::int64_t>(&data_)) return static_cast<double>(*value);
  if (const auto* const value = boost::get<VariantType>(&data_)) return value->GetScalar();
  throw std::invalid_argument("GetScalar not supported for this type");
}

const VariantType& CDesignEntry::GetVariant() const {
  if (const auto* const value = boost::get<VariantType>(&data_)) return *value;
  throw std::invalid_argument("GetVariant is not supported for this type");
}

VariantType& CDesignEntry::GetVariant() { return const_cast<VariantType&>(std::as_const(*this).GetVariant()); }

void CDesignEntry::assignPreservingType(const CDesignEntry& rhs, bool parse_strings, eType fallback_type) {
  const bool has_no_type = GetDomainType() == enums::DesignEntry::UNINITIALIZED;
  if (SameType(*this, rhs) || (has_no_type && fallback_type == enums::DesignEntry::UNINITIALIZED)) {
    *this = rhs;
    return;
  }
  if (!IsUninitialized() && IsScalar() != rhs.IsScalar()) {
    throw std::logic_error("Cannot assign. Value types do not match.");
  }
  const eType type = has_no_type ? fallback_type : GetDomainType();
  const bool parse = parse_strings && rhs.GetDomainType() == enums::DesignEntry::STRING;
  *this = parse ? Parsed(rhs, type) : Converted(rhs, type);
}

CDesignEntry& CDesignEntry::operator-=(const CDesignEntry& rhs) {
  if (OneIs(enums::DesignEntry::STRING, *this, rhs)) {
    throw std::logic_error("Substraction not supported for strings");
  }
  if (OneIs(enums::DesignEntry::VARIANT, *this, rhs)) return *this = ToVariant(*this) - ToVariant(rhs);
  if (auto* const value = boost::get<double>(&data_)) {
    *value -= ConvertDesignpointEntry<double>(rhs);
  } else if (auto* const count = boost::get<std::int64_t>(&data_)) {
    *count = WrappingDifference(*count, ConvertDesignpointEntry<std::int64_t>(rhs));
  } else if (auto* const flag = boost::get<bool>(&data_)) {
    *flag = *flag != ConvertDesignpointEntry<bool>(rhs);
  }
  return *this;
}

CDesignEntry operator-(const CDesignEntry& a, const CDesignEntry& b) {
  CDesignEntry difference = a;
  difference -= b;
  return difference;
}

bool operator==(const CDesignEntry& a, const CDesignEntry& b) {
  if (!SameType(a, b)) return !OneIs(enums::DesignEntry::STRING, a, b) && ToVariant(a) == ToVariant(b);
  switch (a.GetDomainType()) {
    case enums::DesignEntry::REAL: return Get<double>(a) == Get<double>(b);
    case enums::DesignEntry::INTEGER: return Get<std::int64_t>(a) == Get<std::int64_t>(b);
    case enums::DesignEntry::BOOL: return Get<bool>(a) == Get<bool>(b);
    case enums::DesignEntry::STRING: return Get<std::wstring>(a) == Get<std::wstring>(b);
    case enums::DesignEntry::VARIANT: return Get<VariantType>(a) == Get<VariantType>(b);
    case enums::DesignEntry::UNINITIALIZED: break;
  }
  return true;
}

bool operator<(const CDesignEntry& a, const CDesignEntry& b) {
  if (!SameType(a, b)) {
    if (OneIs(enums::DesignEntry::STRING, a, b)) return a.data_.which() < b.data_.which();
    return ToVariant(a) < ToVariant(b);
  }
  switch (a.GetDomainType()) {
    case enums::DesignEntry::REAL: return Get<double>(a) < Get<double>(b);
    case enums::DesignEntry::INTEGER: return Get<std::int64_t>(a) < Get<std::int64_t>(b);
    case enums::DesignEntry::BOOL: return Get<bool>(a) < Get<bool>(b);
    case enums::DesignEntry::STRING: return Get<std::wstring>(a) < Get<std::wstring>(b);
    case enums::DesignEntry::VARIANT: return Get<VariantType>(a) < Get<VariantType>(b);
    case enums::DesignEntry::UNINITIALIZED: break;
  }
  return true;  // deliberate: an uninitialized cell is less than an uninitialized cell
}

bool Equal(const CDesignEntry& a, const CDesignEntry& b) {
  if (HoldsNoNumber(a) && HoldsNoNumber(b)) return true;
  if (OneIs(enums::DesignEntry::STRING, a, b)) return a == b;
  if (!SameType(a, b)) return ToVariant(a).Equal(ToVariant(b));
  if (a.GetDomainType() == enums::DesignEntry::REAL) return math::Equal(Get<double>(a), Get<double>(b));
  if (a.GetDomainType() == enums::DesignEntry::VARIANT) return Get<VariantType>(a).Equal(Get<VariantType>(b));
  return a == b;
}

bool NearTo(const CDesignEntry& a, const CDesignEntry& b, double tolerance) {
  if (Equal(a, b)) return true;
  if (OneIs(enums::DesignEntry::STRING, a, b)) return false;
  if (!SameType(a, b)) return ToVariant(a).NearTo(ToVariant(b), tolerance);
  if (a.GetDomainType() == enums::DesignEntry::REAL) return math::NearTo(Get<double>(a), Get<double>(b), tolerance);
  if (a.GetDomainType() == enums::DesignEntry::VARIANT) {
    return Get<VariantType>(a).NearTo(Get<VariantType>(b), tolerance);
  }
  return false;
}

namespace {

struct Printer : boost::static_visitor<void> {
  explicit Printer(std::wostream& stream) : stream_(stream) {}
  void operator()(UninitializedType) const {}
  template <class T>
  void operator()(const T& value) const {
    stream_ << value;
  }
  std::wostream& stream_;
};

}  // namespace

std::wostream& operator<<(std::wostream& stream, const CDesignEntry& entry) {
  boost::apply_visitor(Printer(stream), entry.GetData());
  return stream;
}

}  // namespace kestrel
