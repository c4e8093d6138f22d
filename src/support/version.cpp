#include "support/version.h"

#include <Eigen/Core>
#include <boost/version.hpp>
#include <string>

namespace kestrel {
namespace {

// As the compiler was told by -march; higher levels than x86-64-v3 count as that one.
#if defined(__AVX2__) && defined(__FMA__) && defined(__BMI2__)
constexpr const char* kLevel = "x86-64-v3";
#else
constexpr const char* kLevel = "x86-64";
#endif

#ifdef __clang__
constexpr const char* kCompiler = "Clang " __clang_version__;
#else
constexpr const char* kCompiler = "GCC " __VERSION__;
#endif

std::string Joined(int major, int minor, int patch) {
  return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

}  // namespace

// The one record of the version: the build files read the version and the soname from this line.
const Version kVersion = {21, 2, 0, "dev", 1791, "21.2.0dev (1791)"};

const char* BuildText() {
  static const std::string text = std::string(kLevel) + ", " + kCompiler + ", Eigen " +
                                  Joined(EIGEN_WORLD_VERSION, EIGEN_MAJOR_VERSION, EIGEN_MINOR_VERSION) + ", Boost " +
                                  Joined(BOOST_VERSION / 100000, BOOST_VERSION / 100 % 1000, BOOST_VERSION % 100);
  return text.c_str();
}

}  // namespace kestrel
