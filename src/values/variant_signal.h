#pragma once

#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>

#include "values/variant.h"

namespace kestrel::math {

/// The content of a signal or of x-y data.
template <class T>
struct Variant<T>::Signal {
  VectorType timeline;  ///< one real entry per sample
  MatrixType data;      ///< channels x samples
  bool is_xy_data = false;
};

}  // namespace kestrel::math
