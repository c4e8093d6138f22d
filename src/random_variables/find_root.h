#pragma once

#include <boost/math/tools/roots.hpp>
#include <boost/math/tools/toms748_solve.hpp>
#include <cstdint>

namespace kestrel::algorithm {

/// The root of an ascending function between low and high, to the last bits (Alefeld, Potra and Shi 1995, TOMS 748).
/// The end nearer to it where the function does not change its sign.
template <class Function>
double FindRoot(const Function& function, double low, double high) {
  const double at_low = function(low);
  const double at_high = function(high);
  if (!(at_low < 0.0)) return low;
  if (!(at_high > 0.0)) return high;
  std::uintmax_t iterations = 200;
  const auto bracket = boost::math::tools::toms748_solve(function, low, high, at_low, at_high,
                                                         boost::math::tools::eps_tolerance<double>(), iterations);
  return 0.5 * (bracket.first + bracket.second);
}

}  // namespace kestrel::algorithm
