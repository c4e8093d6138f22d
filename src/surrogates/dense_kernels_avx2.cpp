// The dense kernels for processors with AVX2 and FMA; CMakeLists.txt compiles this file, and it alone, for them. Eigen
// goes by another name here: its functions are templates, of which the linker keeps one copy, and the copies of this
// file must never be the ones that the rest of the library calls.
#define Eigen EigenAvx2
#define KESTREL_DENSE_KERNELS Avx2Kernels

#include <Eigen/Cholesky>

#include "surrogates/dense_kernels.h"

namespace kestrel::math::metamodel {
const DenseKernels& Avx2Kernels();
}

#include "surrogates/dense_kernels.inc"
