#include "surrogates/dense_kernels.h"

#include <Eigen/Cholesky>

#define KESTREL_DENSE_KERNELS PortableKernels
#include "surrogates/dense_kernels.inc"

namespace kestrel::math::metamodel {

#ifdef KESTREL_AVX2_KERNELS
const DenseKernels& Avx2Kernels();  // dense_kernels_avx2.cpp

const DenseKernels& FastestKernels() {
  static const DenseKernels& kernels =
      __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? Avx2Kernels() : PortableKernels();
  return kernels;
}
#else
const DenseKernels& FastestKernels() { return PortableKernels(); }
#endif

}  // namespace kestrel::math::metamodel
