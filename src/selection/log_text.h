#pragma once

#include <boost/dynamic_bitset.hpp>
#include <ostream>

#include "support/linear_algebra.h"

/// Wide text of vectors, matrices and bit sets for the log. `AsText(x)` only remembers x, which must outlive the
/// message; the text is composed when a log takes it, so that a message that nobody reads costs nothing.
namespace kestrel::math::metamodel {

template <class Dense>
struct DenseText {
  const Dense& values;
};

struct SelectionText {
  const boost::dynamic_bitset<>& bits;
};

template <class Derived>
DenseText<Derived> AsText(const Eigen::DenseBase<Derived>& values) {
  return {values.derived()};
}

inline SelectionText AsText(const boost::dynamic_bitset<>& bits) { return {bits}; }

/// A vector in one line, a matrix with one line per row; entries apart by blanks.
template <class Dense>
std::wostream& operator<<(std::wostream& out, const DenseText<Dense>& text) {
  const Index line_length = Dense::IsVectorAtCompileTime ? text.values.size() : text.values.cols();
  for (Index row = 0; row < text.values.rows(); ++row) {
    for (Index col = 0; col < text.values.cols(); ++col) {
      const Index entry = row * text.values.cols() + col;
      if (entry > 0) out << (entry % line_length == 0 ? L"\n" : L" ");
      out << text.values.coeff(row, col);
    }
  }
  return out;
}

/// 0 or 1 for each bit, the first bit first.
inline std::wostream& operator<<(std::wostream& out, const SelectionText& text) {
  for (std::size_t bit = 0; bit < text.bits.size(); ++bit) out << (text.bits.test(bit) ? L'1' : L'0');
  return out;
}

}  // namespace kestrel::math::metamodel
