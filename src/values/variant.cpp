#include "values/variant.h"

#include <algorithm>
#include <boost/numeric/ublas/matrix_proxy.hpp>
#include <cmath>
#include <type_traits>

#include "values/variant_signal.h"

namespace kestrel::math {
namespace {

namespace ublas = boost::numeric::ublas;

template <class Container>
bool HasImaginaryPart(const Container& values) {
  return std::any_of(values.data().begin(), values.data().end(), [](const auto& value) { return value.imag() != 0; });
}

void Require(bool holds, const wchar_t* type_fault) {
  if (!holds) throw CTypeException(type_fault);
}

void RequireDomain(bool holds, const wchar_t* fault) {
  if (!holds) throw CDomainException(fault);
}

constexpr auto kNeedsMatrix = L"Invalid type. Only types MATRIX, SIGNAL and XYDATA allowed. \n";
constexpr auto kSignalCheck = L"Variant check failed: ((ks_.kind_ & skKindMask) == skSIGNAL) && (ks_.kind_ != 0)";

}  // namespace

template <class T>
Variant<T>::Variant() = default;

template <class T>
Variant<T>::Variant(bool value) : ks_(std::in_place_type<bool>, value) {}

template <class T>
Variant<T>::Variant(T real, T imaginary) : Variant(Complex(real, imaginary)) {}

template <class T>
Variant<T>::Variant(const Complex& value) : ks_(std::in_place_type<Complex>, value), complex_(value.imag() != 0) {}

template <class T>
Variant<T>::Variant(const VectorType& values)
    : ks_(std::in_place_type<ValueBox<VectorType>>, values), complex_(HasImaginaryPart(values)) {}

template <class T>
Variant<T>::Variant(const MatrixType& values)
    : ks_(std::in_place_type<ValueBox<MatrixType>>, values), complex_(HasImaginaryPart(values)) {}

template <class T>
Variant<T>::Variant(const VectorType& timeline, const VectorType& data, EKind kind) {
  MatrixType channel(1, data.size());
  std::copy(data.begin(), data.end(), channel.data().begin());
  *this = Variant(timeline, channel, kind);
}

template <class T>
Variant<T>::Variant(const VectorType& timeline, const MatrixType& data, EKind kind) {
  Require(kind == SIGNAL || kind == XYDATA, L"Invalid type.");
  const bool is_xy_data = kind == XYDATA;
  RequireDomain(!HasImaginaryPart(timeline),
                is_xy_data ? L"Timeline of XYDATA may not be complex." : L"Timeline of signal may not be complex.");
  RequireDomain(timeline.size() == data.size2(),
                is_xy_data ? L"X- and Y-data have to be of same dimension."
                           : L"Timeline of signal and data-matrix have to be of same dimension.");
  ks_.template emplace<ValueBox<Signal>>(Signal{timeline, data, is_xy_data});
  complex_ = HasImaginaryPart(data);
}

template <class T>
Variant<T>::Variant(const Variant& other) = default;

template <class T>
Variant<T>::Variant(Variant&& other) noexcept {
  Steal(other);
}

template <class T>
Variant<T>& Variant<T>::operator=(const Variant& other) {
  return *this = Variant(other);  // a copy that fails leaves this value as it was
}

template <class T>
Variant<T>& Variant<T>::operator=(Variant&& other) noexcept {
  if (this != &other) Steal(other);
  return *this;
}

template <class T>
Variant<T>::~Variant() = default;

template <class T>
void Variant<T>::Clear() {
  ks_ = std::monostate();
  complex_ = false;
  ordered_ = false;
}

template <class T>
void Variant<T>::Steal(Variant& other) {
  if (this == &other) return;
  ks_ = std::move(other.ks_);
  complex_ = other.complex_;
  ordered_ = other.ordered_;
  other.Clear();
}

template <class T>
auto Variant<T>::GetKind() const -> EKind {
  if (const Signal* const signal = GetSignal()) return signal->is_xy_data ? XYDATA : SIGNAL;
  return static_cast<EKind>(static_cast<int>(ks_.index()) - 1);  // the alternatives stand in the order of the kinds
}

template <class T>
std::string Variant<T>::GetKindS() const {
  switch (GetKind()) {
    case BOOLEAN: return "BOOLEAN";
    case SCALAR: return "SCALAR";
    case VECTOR: return "VECTOR";
    case MATRIX: return "MATRIX";
    case SIGNAL: return "SIGNAL";
    case XYDATA: return "XYDATA";
    case UNINITIALIZED: break;
  }
  return "UNINITIALIZED";
}

template <class T>
std::wstring Variant<T>::GetKindWS() const {
  const std::string word = GetKindS();
  return {word.begin(), word.end()};
}

template <class T>
void Variant<T>::SetKind(EKind kind) {
  if (kind == GetKind()) return;
  const bool has_timeline = kind == SIGNAL || kind == XYDATA;
  if (has_timeline && GetSignal() != nullptr) {
    (*std::get<ValueBox<Signal>>(ks_)).is_xy_data = kind == XYDATA;
    return;
  }
  Clear();
  if (kind == BOOLEAN) ks_ = false;
  if (kind == SCALAR) ks_ = Complex();
  if (kind == VECTOR) ks_ = ValueBox<VectorType>(VectorType());
  if (kind == MATRIX) ks_ = ValueBox<MatrixType>(MatrixType());
  if (has_timeline) ks_ = ValueBox<Signal>(Signal{VectorType(), MatrixType(), kind == XYDATA});
}

/// The content if it is of this class, else null.
template <class T>
template <class C>
auto Variant<T>::Content() const -> const C* {
  if constexpr (std::is_same_v<C, bool> || std::is_same_v<C, Complex>) {
    return std::get_if<C>(&ks_);
  } else {
    const auto* const box = std::get_if<ValueBox<C>>(&ks_);
    return box == nullptr ? nullptr : &**box;
  }
}

template <class T>
bool Variant<T>::GetBoolean() const {
  const bool* const value = Content<bool>();
  Require(value != nullptr, L"Input object not of type BOOLEAN.");
  return *value;
}

template <class T>
auto Variant<T>::GetScalar() const -> const Complex& {
  const Complex* const value = Content<Complex>();
  Require(value != nullptr, L"Input object not of type SCALAR.");
  return *value;
}

template <class T>
auto Variant<T>::GetVector() const -> const VectorType& {
  const VectorType* const values = Content<VectorType>();
  Require(values != nullptr, L"Input object not of type VECTOR.");
  return *values;
}

template <class T>
auto Variant<T>::GetMatrix() const -> const MatrixType& {
  if (const Signal* const signal = GetSignal()) return signal->data;
  const MatrixType* const values = Content<MatrixType>();
  Require(values != nullptr, L"Input object not of type MATRIX.");
  return *values;
}

template <class T>
auto Variant<T>::GetTimeline() const -> const VectorType& {
  Require(GetSignal() != nullptr, L"Input object has invalid datatype.");
  return GetSignal()->timeline;
}

template <class T>
bool& Variant<T>::BooleanRef() {
  Require(GetKind() == BOOLEAN, L"Variant check failed: GetKind() == BOOLEAN");
  return std::get<bool>(ks_);
}

template <class T>
auto Variant<T>::ScalarRef() -> Complex& {
  Require(GetKind() == SCALAR, L"Variant check failed: (ks_.kind_ & skKindMask) == skSCALAR");
  return std::get<Complex>(ks_);
}

template <class T>
auto Variant<T>::VectorRef() -> VectorType& {
  Require(GetKind() == VECTOR, L"Variant check failed: (ks_.kind_ & skKindMask) == skVECTOR");
  return *std::get<ValueBox<VectorType>>(ks_);
}

template <class T>
auto Variant<T>::MatrixRef() -> MatrixType& {
  Require(GetKind() == MATRIX, L"Variant check failed: (ks_.kind_ & skKindMask) == skMATRIX");
  return *std::get<ValueBox<MatrixType>>(ks_);
}

template <class T>
auto Variant<T>::SignalVectorRef() -> VectorType& {
  Require(GetSignal() != nullptr, kSignalCheck);
  return (*std::get<ValueBox<Signal>>(ks_)).timeline;
}

template <class T>
auto Variant<T>::SignalMatrixRef() -> MatrixType& {
  Require(GetSignal() != nullptr, kSignalCheck);
  return (*std::get<ValueBox<Signal>>(ks_)).data;
}

template <class T>
std::size_t Variant<T>::size() const {
  switch (GetKind()) {
    case BOOLEAN:
    case SCALAR: return 1;
    case VECTOR: return GetVector().size();
    case MATRIX:
    case SIGNAL:
    case XYDATA: return GetMatrix().size1() * GetMatrix().size2();
    case UNINITIALIZED: break;
  }
  throw CTypeException(L"Invalid type.");
}

template <class T>
std::size_t Variant<T>::size1() const {
  Require(GetKind() >= MATRIX, kNeedsMatrix);
  return GetMatrix().size1();
}

template <class T>
std::size_t Variant<T>::size2() const {
  Require(GetKind() >= MATRIX, kNeedsMatrix);
  return GetMatrix().size2();
}

template <class T>
auto Variant<T>::at(std::size_t index) const -> const Complex& {
  Require(GetKind() < MATRIX, L"Type doesn't support access by (only one) index.");
  Require(GetKind() == VECTOR, L"Type doesn't support access by index.");
  RequireDomain(index < GetVector().size(), L"Index out of vector bounds.");
  return GetVector()(index);
}

template <class T>
auto Variant<T>::at(std::size_t row, std::size_t column) const -> const Complex& {
  Require(GetKind() >= MATRIX, L"Type doesn't support access by index.");
  const MatrixType& values = GetMatrix();
  RequireDomain(row < values.size1() && column < values.size2(), L"Index out of matrix bounds.");
  return values(row, column);
}

template <class T>
std::size_t Variant<T>::ToIndex() const {
  if (GetKind() == BOOLEAN) return GetBoolean() ? 1 : 0;
  Require(GetKind() == SCALAR && GetScalar().imag() == 0, L"Index must be real.");
  const T index = GetScalar().real();
  constexpr T kLargestExactInteger = 9007199254740992.0;  // 2^53
  RequireDomain(index >= 0, L"Index must be positive & real.");
  RequireDomain(index < kLargestExactInteger, L"Index out of bounds.");
  return static_cast<std::size_t>(index);
}

template <class T>
Variant<T> Variant<T>::GetRow(std::size_t row) const {
  RequireDomain(row < size1(), L"This row index doesn't exist in this matrix. \n");
  return Variant(VectorType(ublas::row(GetMatrix(), row)));
}

template <class T>
Variant<T> Variant<T>::GetColumn(std::size_t column) const {
  RequireDomain(column < size2(), L"This column index doesn't exist in this matrix. \n");
  return Variant(VectorType(ublas::column(GetMatrix(), column)));
}

template <class T>
Variant<T> Variant<T>::GetSample(std::size_t index) const {
  const VectorType& timeline = GetTimeline();
  RequireDomain(index < timeline.size(), L"Index out of bounds.");
  VectorType sample(GetMatrix().size1() + 1);
  sample(0) = timeline(index);
  for (std::size_t channel = 0; channel + 1 < sample.size(); ++channel)
    sample(channel + 1) = GetMatrix()(channel, index);
  return Variant(sample);
}

template <class T>
template <class Holds>
bool Variant<T>::Test(bool any, Holds holds) const {
  const auto test = [&](const auto& values) {
    const auto& data = values.data();
    if (any) return std::any_of(data.begin(), data.end(), holds);
    return data.size() != 0 && std::all_of(data.begin(), data.end(), holds);
  };
  switch (GetKind()) {
    case SCALAR: return holds(GetScalar());
    case VECTOR: return test(GetVector());
    case MATRIX: return test(GetMatrix());
    case SIGNAL:
    case XYDATA: return test(GetMatrix()) || (any && test(GetTimeline()));
    case BOOLEAN:
    case UNINITIALIZED: break;
  }
  return false;
}

template <class T>
bool Variant<T>::IsNaN(bool any) const {
  return Test(any, [](const Complex& value) { return std::isnan(value.real()) || std::isnan(value.imag()); });
}

template <class T>
bool Variant<T>::IsInf(bool any) const {
  return Test(any, [](const Complex& value) { return std::isinf(value.real()) || std::isinf(value.imag()); });
}

template <class T>
bool Variant<T>::IsFlipped() const {
  Require(GetSignal() != nullptr, L"IsFlipped: Input object has invalid datatype.");
  const VectorType& timeline = GetSignal()->timeline;
  return timeline.size() > 1 && timeline(0).real() > timeline(timeline.size() - 1).real();
}

template <class T>
void Variant<T>::addChannels(const Variant& channels) {
  Require(GetSignal() != nullptr, L"Channels can be added to signal objects only");
  if (channels.GetKind() < VECTOR) {
    throw CTypeException(L"addChannels: object type not supported: " + channels.GetKindWS());
  }
  const bool is_vector = channels.GetKind() == VECTOR;
  const std::size_t samples = is_vector ? channels.size() : channels.size2();
  RequireDomain(samples == size2(), L"addChannels: dimensions do not match.");

  MatrixType joined(size1() + (is_vector ? 1 : channels.size1()), samples);
  const auto append = [](const auto& from, auto to) { return std::copy(from.data().begin(), from.data().end(), to); };
  const auto end_of_own = append(GetMatrix(), joined.data().begin());  // rows follow each other in memory
  if (is_vector) {
    append(channels.GetVector(), end_of_own);
  } else {
    append(channels.GetMatrix(), end_of_own);
  }
  complex_ = complex_ || HasImaginaryPart(joined);
  SignalMatrixRef().swap(joined);
}

template class Variant<double>;

}  // namespace kestrel::math
