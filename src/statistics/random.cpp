#include "statistics/random.h"

#include <algorithm>
#include <boost/random/seed_seq.hpp>
#include <boost/random/uniform_int_distribution.hpp>
#include <numeric>

#include "support/exceptions.h"

namespace kestrel::math::random {
namespace {

constexpr std::uint64_t kSharedSeed = 20210917;

// The distributions of Boost give the same numbers on every platform, those of the standard library need not.
using UniformIndex = boost::random::uniform_int_distribution<std::uint64_t>;

}  // namespace

GeneratorSingleton& GeneratorSingleton::Instance() {
  static GeneratorSingleton instance;
  return instance;
}

GeneratorSingleton::GeneratorSingleton() : generator_(kSharedSeed) {}

std::uint64_t DrawSharedSeed() {
  GeneratorSingleton& shared = GeneratorSingleton::Instance();
  const std::lock_guard<std::mutex> lock(shared.Mutex());
  return shared.Get()();
}

Generator MakeStream(std::uint64_t root_seed, std::uint64_t stream) {
  const auto low = [](std::uint64_t number) { return static_cast<std::uint32_t>(number); };
  const auto high = [](std::uint64_t number) { return static_cast<std::uint32_t>(number >> 32); };
  boost::random::seed_seq sequence{low(root_seed), high(root_seed), low(stream), high(stream)};
  return Generator(sequence);
}

IndexVector RandomPermutation(std::uint64_t n, Generator& generator) {
  IndexVector order(static_cast<Index>(n));
  std::iota(order.begin(), order.end(), std::uint64_t{0});
  for (Index last = order.size() - 1; last > 0; --last) {  // Fisher and Yates
    const UniformIndex position(0, static_cast<std::uint64_t>(last));
    std::swap(order(last), order(static_cast<Index>(position(generator))));
  }
  return order;
}

IndexVector Select_with_Replacement(std::uint64_t n, std::uint64_t count, Generator& generator) {
  if (n == 0 && count > 0) throw utils::logic_error(L"Cannot select from an empty set.");
  IndexVector selected(static_cast<Index>(count));
  const UniformIndex position(0, std::max<std::uint64_t>(n, 1) - 1);
  for (std::uint64_t& index : selected) index = position(generator);
  return selected;
}

}  // namespace kestrel::math::random
