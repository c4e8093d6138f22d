#include <mkl_dfti.h>

#include "calculator/functions/calculator_exceptions.h"
#include "calculator/signals/fast_fourier_transform.h"

namespace kestrel::calculator::fourier {
namespace {

void Check(MKL_LONG status) {
  if (status != DFTI_NO_ERROR) throw CCalculatorException(L"The Fourier transform failed.");
}

/// A plan for transforms of one length from one array to another.
class Plan {
 public:
  Plan(DFTI_CONFIG_VALUE domain, std::size_t n) {
    Check(DftiCreateDescriptor(&handle_, DFTI_DOUBLE, domain, 1, static_cast<MKL_LONG>(n)));
    Check(DftiSetValue(handle_, DFTI_PLACEMENT, DFTI_NOT_INPLACE));
    if (domain == DFTI_REAL) Check(DftiSetValue(handle_, DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_COMPLEX));
    Check(DftiSetValue(handle_, DFTI_BACKWARD_SCALE, 1.0 / static_cast<double>(n)));
    Check(DftiCommitDescriptor(handle_));
  }
  Plan(const Plan&) = delete;
  Plan& operator=(const Plan&) = delete;
  ~Plan() { DftiFreeDescriptor(&handle_); }

  DFTI_DESCRIPTOR_HANDLE Get() const { return handle_; }

 private:
  DFTI_DESCRIPTOR_HANDLE handle_ = nullptr;
};

}  // namespace

// The interface of the library takes sources without const; it does not write to them unless asked to work in place.
void Forward(const Complex* source, Complex* target, std::size_t n) {
  Check(DftiComputeForward(Plan(DFTI_COMPLEX, n).Get(), const_cast<Complex*>(source), target));
}

void ForwardReal(const double* source, Complex* target, std::size_t n) {
  Check(DftiComputeForward(Plan(DFTI_REAL, n).Get(), const_cast<double*>(source), target));
}

void Inverse(const Complex* source, Complex* target, std::size_t n) {
  Check(DftiComputeBackward(Plan(DFTI_COMPLEX, n).Get(), const_cast<Complex*>(source), target));
}

}  // namespace kestrel::calculator::fourier
