#include "surrogates/surrogate_registration.h"

#include "surrogates/kernels/kernel_constant_influence.h"
#include "surrogates/kernels/kernel_nodal_influence.h"
#include "surrogates/linear_regression.h"
#include "surrogates/moving_least_squares.h"
#include "surrogates/ordinary_kriging.h"
#include "surrogates/surrogate_tps.h"

namespace kestrel::math::metamodel {

void surrogate_classes_registration_policy() { surrogate_classes_registration_base_policy(); }

void surrogate_classes_registration_base_policy() {
  static_cast<void>(KernelConstInflExp());
  static_cast<void>(KernelConstInflIsoExp());
  static_cast<void>(KernelConstInflIsoReg());
  static_cast<void>(KernelNodalInflExp());
  static_cast<void>(LinearRegression(Matrix(), Vector()));
  static_cast<void>(MovingLeastSquares(Matrix(), Vector()));
  static_cast<void>(OrdinaryKriging(Matrix(), Vector()));
  static_cast<void>(SurrogateTPS(Matrix(), Vector()));
}

}  // namespace kestrel::math::metamodel
