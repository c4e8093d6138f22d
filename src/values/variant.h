#pragma once

#include <boost/numeric/ublas/fwd.hpp>
#include <complex>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <variant>

#include "persistence/archive/persistent.h"
#include "values/value_box.h"
#include "values/variant_exceptions.h"

namespace kestrel::math {

/// The dynamic numeric value of the system: a boolean, a scalar, a vector, a matrix, a signal or x-y data, each with
/// real or complex content.
///
/// A signal is a data matrix with one row per channel and one column per sample, and a real timeline with one entry per
/// sample. X-y data is the same with abscissae of any order in the place of the timeline.
///
/// The header only declares the uBLAS containers: who touches their content includes
/// <boost/numeric/ublas/vector.hpp> and <boost/numeric/ublas/matrix.hpp>.
template <class T>
class Variant {
 public:
  using Complex = std::complex<T>;
  using VectorType = boost::numeric::ublas::vector<Complex>;
  using MatrixType = boost::numeric::ublas::matrix<Complex>;

  enum EKind : int { UNINITIALIZED = -1, BOOLEAN = 0, SCALAR = 1, VECTOR = 2, MATRIX = 3, SIGNAL = 4, XYDATA = 5 };

  Variant();
  explicit Variant(bool value);
  Variant(T real, T imaginary);
  explicit Variant(const Complex& value);
  explicit Variant(const VectorType& values);
  explicit Variant(const MatrixType& values);
  /// A signal, or x-y data if `kind` says so, of one channel or of several.
  /// @param timeline  one real entry per sample.   @param data  channels x samples.
  /// Raises CDomainException if the timeline is complex or its length is not the number of samples, CTypeException
  /// for a kind other than the two.
  Variant(const VectorType& timeline, const VectorType& data, EKind kind = SIGNAL);
  Variant(const VectorType& timeline, const MatrixType& data, EKind kind = SIGNAL);

  Variant(const Variant& other);
  Variant(Variant&& other) noexcept;
  Variant& operator=(const Variant& other);
  Variant& operator=(Variant&& other) noexcept;
  ~Variant();

  EKind GetKind() const;
  std::string GetKindS() const;
  std::wstring GetKindWS() const;
  /// Signal and x-y data turn into each other with their content; every other change starts with the zero or the empty
  /// value of the new kind.
  void SetKind(EKind kind);

  /// Frees the content; the value is uninitialized then.
  void Clear();
  /// Takes the content of the other value, which is uninitialized then.
  void Steal(Variant& other);

  /// True if the content has an imaginary part. The constructors look; a caller who writes through a reference says so.
  bool IsComplex() const { return complex_; }
  void SetComplex(bool complex) { complex_ = complex; }
  /// A mark of the owner that the content is sorted; nothing here depends on it.
  bool IsOrdered() const { return ordered_; }
  void SetOrdered(bool ordered) { ordered_ = ordered; }

  /// Raise CTypeException "Input object not of type ..." for every other kind.
  bool GetBoolean() const;
  const Complex& GetScalar() const;
  const VectorType& GetVector() const;
  /// The matrix, or the data matrix of a signal or x-y data.
  const MatrixType& GetMatrix() const;
  /// Raises CTypeException "Input object has invalid datatype." unless this is a signal or x-y data.
  const VectorType& GetTimeline() const;

  /// Raise CTypeException "Variant check failed: ..." for every other kind.
  bool& BooleanRef();
  Complex& ScalarRef();
  VectorType& VectorRef();
  MatrixType& MatrixRef();
  /// The timeline of a signal or x-y data, whose length is to stay the number of samples.
  VectorType& SignalVectorRef();
  MatrixType& SignalMatrixRef();

  /// Number of elements: 1 for a boolean and a scalar, rows times columns for the kinds with a matrix. Raises
  /// CTypeException "Invalid type." for the uninitialized kind.
  std::size_t size() const;
  /// Rows and columns of the kinds with a matrix; CTypeException for every other kind.
  std::size_t size1() const;
  std::size_t size2() const;

  /// Element of a vector, cell of a matrix or of the data matrix. Raise CDomainException out of bounds, CTypeException
  /// for a kind without such access.
  const Complex& at(std::size_t index) const;
  const Complex& at(std::size_t row, std::size_t column) const;
  const Complex& operator()(std::size_t row, std::size_t column) const { return at(row, column); }
  /// The value as an index: a boolean, or a real scalar whose fraction is dropped. Raises CTypeException "Index must be
  /// real." for other kinds and complex scalars, CDomainException "Index must be positive & real." and "Index out of
  /// bounds.".
  std::size_t ToIndex() const;

  /// A row or a column of the kinds with a matrix, as a vector.
  Variant GetRow(std::size_t row) const;
  Variant GetColumn(std::size_t column) const;
  /// One sample of a signal or x-y data: the timeline's entry, then the value of each channel.
  Variant GetSample(std::size_t index) const;

  /// True if an entry (`any`) or every entry is NaN (infinite) in its real or imaginary part; the timeline counts with
  /// `any` only. False for a boolean, an empty and an uninitialized value.
  bool IsNaN(bool any) const;
  bool IsInf(bool any) const;
  /// True if the timeline runs downwards, from a larger first to a smaller last entry. Raises CTypeException
  /// "IsFlipped: Input object has invalid datatype." for kinds without a timeline.
  bool IsFlipped() const;

  /// Kinds and sizes are the same and every entry passes `math::Equal` (`math::NearTo`) in its real and in its
  /// imaginary part. A boolean counts as the scalar 0 or 1; uninitialized values are equal.
  bool Equal(const Variant& other) const;
  bool NearTo(const Variant& other, T tolerance) const;

  /// Appends to a signal or x-y data the channels of another, the rows of a matrix with one column per sample, or a
  /// vector with one entry per sample. Raises CTypeException or CDomainException.
  void addChannels(const Variant& channels);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  template <class Archive>
  void SerializeContent(Archive& archive);
  void RequireConsistentContent() const;

  struct Signal;
  // Vectors, matrices and signals stand in a block of their own, so that a boolean or a scalar stays small.
  using State =
      std::variant<std::monostate, bool, Complex, ValueBox<VectorType>, ValueBox<MatrixType>, ValueBox<Signal>>;

  const Signal* GetSignal() const { return Content<Signal>(); }
  template <class C>
  const C* Content() const;
  template <class Holds>
  bool Test(bool any, Holds holds) const;

  State ks_;
  bool complex_ = false;
  bool ordered_ = false;
};

/// Entry by entry and exact, so that a NaN is unequal to all. A boolean counts as the scalar 0 or 1; values of other
/// different kinds and of different sizes are unequal; signals compare their timelines, too.
bool operator==(const Variant<double>& left, const Variant<double>& right);
bool operator!=(const Variant<double>& left, const Variant<double>& right);

/// An order for values of all kinds: uninitialized, then booleans and scalars (real part, then imaginary part), then
/// vectors (lexicographic), matrices (rows, columns, then row by row), signals and x-y data (timeline, then data).
bool operator<(const Variant<double>& left, const Variant<double>& right);
bool operator<=(const Variant<double>& left, const Variant<double>& right);
bool operator>(const Variant<double>& left, const Variant<double>& right);
bool operator>=(const Variant<double>& left, const Variant<double>& right);

/// Arithmetic, entry by entry. A boolean counts as the scalar 0 or 1; a scalar meets every entry of the other side;
/// signals and x-y data calculate with their data matrix, keep the timeline (of the left side, if both have one) and
/// take a matrix of the same shape or a vector with one entry per sample as the other side. Real operands stay real.
/// Raise CTypeException "Invalid type." for kinds that do not fit, CDomainException for dimensions that do not.
Variant<double> operator+(const Variant<double>& left, const Variant<double>& right);
Variant<double> operator-(const Variant<double>& left, const Variant<double>& right);
Variant<double> operator*(const Variant<double>& left, const Variant<double>& right);
Variant<double> operator/(const Variant<double>& left, const Variant<double>& right);
/// The remainder with the sign of the dividend; real operands only.
Variant<double> operator%(const Variant<double>& left, const Variant<double>& right);
/// Complex where the real power does not exist: (-1) to the power 0.5 is the imaginary unit.
Variant<double> Power(const Variant<double>& base, const Variant<double>& exponent);
Variant<double> operator-(const Variant<double>& value);

/// Truth of a boolean or a scalar (not 0; a NaN is true); CTypeException "Input object not of type BOOLEAN." else.
bool IsTrue(const Variant<double>& value);
Variant<double> operator!(const Variant<double>& value);
Variant<double> And(const Variant<double>& left, const Variant<double>& right);
Variant<double> Or(const Variant<double>& left, const Variant<double>& right);

/// A complex scalar as (real,imaginary), a real one as its real part; vectors in brackets, a matrix row by row, signals
/// with their timeline first. Nothing for an uninitialized value.
std::wostream& operator<<(std::wostream& stream, const Variant<double>& value);

extern template class Variant<double>;

}  // namespace kestrel::math

BOOST_CLASS_VERSION(kestrel::math::Variant<double>, 6)
