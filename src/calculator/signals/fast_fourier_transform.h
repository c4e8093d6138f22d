#pragma once

#include <complex>
#include <cstddef>

/// The discrete Fourier transform behind one interface, so that the library that computes it can be exchanged.
///
///   forward  X_k = sum_j x_j exp(-2 pi i j k / n),   inverse  x_j = 1/n sum_k X_k exp(2 pi i j k / n).
///
/// Any length n from 1 in O(n log n) operations. Source and target do not overlap.
namespace kestrel::calculator::fourier {

using Complex = std::complex<double>;

void Forward(const Complex* source, Complex* target, std::size_t n);
/// Writes the first n/2 + 1 entries; the others are X_(n-k) = conj(X_k).
void ForwardReal(const double* source, Complex* target, std::size_t n);
void Inverse(const Complex* source, Complex* target, std::size_t n);

}  // namespace kestrel::calculator::fourier
