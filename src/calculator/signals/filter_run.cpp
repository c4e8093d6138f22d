#include "calculator/signals/filter_run.h"

#include <algorithm>
#include <cmath>

namespace kestrel::calculator {
namespace {

using math::Index;

/// The memory of a section in its transposed second direct form,
///   y_i = b0 x_i + p,   p <- b1 x_i - a1 y_i + q,   q <- b2 x_i - a2 y_i.
struct Memory {
  double p = 0.0;
  double q = 0.0;
};

/// The memory after x stood at the input for ever.
Memory Settled(const Section& s, double x) {
  const double y = x * (s.b0 + s.b1 + s.b2) / (1.0 + s.a1 + s.a2);
  const double q = s.b2 * x - s.a2 * y;
  return {s.b1 * x - s.a1 * y + q, q};
}

void RunSection(const Section& s, Memory memory, Column samples) {
  for (double& sample : samples) {
    const double x = sample;
    const double y = s.b0 * x + memory.p;
    memory.p = s.b1 * x - s.a1 * y + memory.q;
    memory.q = s.b2 * x - s.a2 * y;
    sample = y;
  }
}

void RunSettled(const Cascade& cascade, Column samples) {
  for (const Section& section : cascade) RunSection(section, Settled(section, samples(0)), samples);
}

/// The larger magnitude of the two poles of z^2 + a1 z + a2.
double LargestPole(const Section& section) {
  const double half = 0.5 * std::abs(section.a1);
  const double discriminant = half * half - section.a2;
  return discriminant < 0.0 ? std::sqrt(section.a2) : half + std::sqrt(discriminant);
}

/// Samples until what rings longest has fallen to a millionth.
Index RingingSamples(const Cascade& cascade, Index most) {
  double largest = 0.0;
  for (const Section& section : cascade) largest = std::max(largest, LargestPole(section));
  if (largest >= 1.0) return most;
  const double count = std::ceil(std::log(1e-6) / std::log(std::max(largest, 1e-6)));
  return static_cast<Index>(std::min(count, static_cast<double>(most)));
}

/// The samples with `count` reflected ones at both ends: 2 x_0 - x_count ... 2 x_0 - x_1, x_0 ... x_n, 2 x_n - x_(n-1)
/// ...
math::Vector Extended(const math::VectorIn& samples, Index count) {
  const Index size = samples.size();
  math::Vector extended(size + 2 * count);
  extended.segment(count, size) = samples;
  extended.head(count) = 2.0 * samples(0) - samples.segment(1, count).reverse().array();
  extended.tail(count) = 2.0 * samples(size - 1) - samples.segment(size - 1 - count, count).reverse().array();
  return extended;
}

}  // namespace

void RunForward(const Cascade& cascade, Column samples) {
  for (const Section& section : cascade) RunSection(section, {}, samples);
}

void RunBothWays(const Cascade& cascade, Column samples) {
  const Index count = RingingSamples(cascade, samples.size() - 1);
  math::Vector extended = Extended(samples, count);
  RunSettled(cascade, extended);
  extended.reverseInPlace();
  RunSettled(cascade, extended);
  extended.reverseInPlace();
  samples = extended.segment(count, samples.size());
}

}  // namespace kestrel::calculator
