#include <boost/lexical_cast.hpp>
#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>
#include <limits>

#include "datatypes/design_entry.h"
#include "support/exceptions.h"

namespace kestrel {
namespace {

using VariantType = CDesignEntry::VariantType;

double RealOfScalar(const VariantType& value) {
  if (value.GetKind() == VariantType::SCALAR) return value.GetScalar().real();
  throw utils::logic_error(L"Designpoint conversion failed: variant isn't scalar.");
}

/// The value of a variant that is one real number to the cells of designs.
double ToReal(const VariantType& value) {
  if (value.GetKind() == VariantType::BOOLEAN) return value.GetBoolean() ? 1.0 : 0.0;
  return RealOfScalar(value);
}

/// Towards zero. Beyond the range of the integers the nearest of them, and 0 for a NaN, instead of an undefined result.
std::int64_t Truncated(double value) {
  constexpr double kBeyond = 9223372036854775808.0;  // 2^63
  using Limits = std::numeric_limits<std::int64_t>;
  if (value >= kBeyond) return Limits::max();
  if (value < -kBeyond) return Limits::min();
  return value == value ? static_cast<std::int64_t>(value) : 0;
}

template <class T>
struct Converter;

template <>
struct Converter<double> : boost::static_visitor<double> {
  double operator()(UninitializedType) const { return std::numeric_limits<double>::quiet_NaN(); }
  double operator()(double value) const { return value; }
  double operator()(std::int64_t value) const { return static_cast<double>(value); }
  double operator()(const std::wstring& value) const { return boost::lexical_cast<double>(value); }
  double operator()(bool value) const { return value ? 1.0 : 0.0; }
  double operator()(const VariantType& value) const { return ToReal(value); }
};

template <>
struct Converter<std::int64_t> : boost::static_visitor<std::int64_t> {
  std::int64_t operator()(UninitializedType) const { return 0; }
  std::int64_t operator()(double value) const { return Truncated(value); }
  std::int64_t operator()(std::int64_t value) const { return value; }
  std::int64_t operator()(const std::wstring& value) const { return boost::lexical_cast<std::int64_t>(value); }
  std::int64_t operator()(bool value) const { return value ? 1 : 0; }
  std::int64_t operator()(const VariantType& value) const { return Truncated(ToReal(value)); }
};

template <>
struct Converter<bool> : boost::static_visitor<bool> {
  bool operator()(UninitializedType) const { return false; }
  bool operator()(double value) const { return value != 0.0; }
  bool operator()(std::int64_t value) const { return value != 0; }
  bool operator()(const std::wstring& value) const { return boost::lexical_cast<bool>(value); }
  bool operator()(bool value) const { return value; }
  bool operator()(const VariantType& value) const { return ToReal(value) != 0.0; }
};

template <>
struct Converter<std::wstring> : boost::static_visitor<std::wstring> {
  std::wstring operator()(UninitializedType) const { return L"uninitialized"; }
  std::wstring operator()(const std::wstring& value) const { return value; }
  /// A boolean variant has no text.
  std::wstring operator()(const VariantType& value) const {
    return boost::lexical_cast<std::wstring>(RealOfScalar(value));
  }
  template <class Number>
  std::wstring operator()(const Number& value) const {
    return boost::lexical_cast<std::wstring>(value);
  }
};

template <>
struct Converter<VariantType> : boost::static_visitor<VariantType> {
  VariantType operator()(UninitializedType) const { return {}; }
  VariantType operator()(double value) const { return {value, 0.0}; }
  VariantType operator()(std::int64_t value) const { return {static_cast<double>(value), 0.0}; }
  VariantType operator()(bool value) const { return VariantType(value); }
  VariantType operator()(const VariantType& value) const { return value; }
  VariantType operator()(const std::wstring& value) const {
    double number = 0.0;
    return boost::conversion::try_lexical_convert(value, number) ? VariantType(number, 0.0) : VariantType();
  }
};

}  // namespace

template <class T>
T ConvertDesignpointEntry(const CDesignEntry& entry) {
  return boost::apply_visitor(Converter<T>(), entry.GetData());
}

template double ConvertDesignpointEntry<double>(const CDesignEntry&);
template std::int64_t ConvertDesignpointEntry<std::int64_t>(const CDesignEntry&);
template bool ConvertDesignpointEntry<bool>(const CDesignEntry&);
template std::wstring ConvertDesignpointEntry<std::wstring>(const CDesignEntry&);
template VariantType ConvertDesignpointEntry<VariantType>(const CDesignEntry&);

}  // namespace kestrel
