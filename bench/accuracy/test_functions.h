#pragma once

#include <functional>
#include <string>
#include <vector>

/// Published functions that metamodels are commonly tried on.
namespace accuracy {

struct Range {
  double low;
  double high;
};

struct TestFunction {
  std::string name;
  std::vector<Range> ranges;  ///< one per input
  std::function<double(const double* x)> value;
};

const std::vector<TestFunction>& TestFunctions();

}  // namespace accuracy
