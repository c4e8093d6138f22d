#pragma once

#include <boost/random/mersenne_twister.hpp>
#include <cstdint>
#include <mutex>

#include "support/linear_algebra.h"

/// Random numbers. Algorithms take a `Generator` by reference; only the outermost call names the shared one.
namespace kestrel::math::random {

using Generator = boost::random::mt19937_64;

/// The generator shared by the process. It starts from a fixed seed, so that the same calls in the same order give the
/// same numbers in every process. Draw only while holding its mutex.
class GeneratorSingleton {
 public:
  static GeneratorSingleton& Instance();

  std::mutex& Mutex() { return mutex_; }
  Generator& Get() { return generator_; }

 private:
  GeneratorSingleton();

  std::mutex mutex_;
  Generator generator_;
};

/// One number of the shared generator's sequence, drawn under its mutex: the root from which the streams of a build
/// are derived.
std::uint64_t DrawSharedSeed();

/// An independent generator for stream number `stream` of a root seed; depends on these two numbers only.
Generator MakeStream(std::uint64_t root_seed, std::uint64_t stream);

/// The indices 0 to n - 1 in a random order.
IndexVector RandomPermutation(std::uint64_t n, Generator& generator);

/// `count` indices drawn uniformly from 0 to n - 1, with replacement. Raises utils::logic_error
/// for n = 0.
IndexVector Select_with_Replacement(std::uint64_t n, std::uint64_t count, Generator& generator);

}  // namespace kestrel::math::random
