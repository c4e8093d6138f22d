#include "problem.h"

#include <cstdint>

namespace kestrel::cli {

namespace {

using GetCount = std::uint32_t (*)(zor_handle_t, std::uint32_t*);
using GetName = std::uint32_t (*)(zor_handle_t, std::uint32_t, const char**);

std::uint32_t Count(const Handle& handle, GetCount get_count) {
  std::uint32_t count = 0;
  handle.Check(get_count(handle.get(), &count));
  return count;
}

std::vector<std::string> Names(const Handle& handle, GetCount get_count, GetName get_name) {
  std::vector<std::string> names(Count(handle, get_count));
  for (std::uint32_t i = 0; i < names.size(); ++i) {
    const char* name = "";
    handle.Check(get_name(handle.get(), i, &name));
    names[i] = name;
  }
  return names;
}

/// There is no call for it alone; every result has the same answer for a handle that is not built.
bool IsBuilt(const Handle& handle) {
  double cop = 0.0;
  return zor_get_cop_per_output(handle.get(), 0, &cop) != zor_not_built;
}

}  // namespace

Problem DescribeProblem(const Handle& handle) {
  Problem problem;
  problem.input_count = Count(handle, &zor_get_input_count);
  problem.output_count = Count(handle, &zor_get_output_count);
  problem.inputs = Names(handle, &zor_get_input_name_count, &zor_get_input_name);
  problem.outputs = Names(handle, &zor_get_output_name_count, &zor_get_output_name);
  problem.is_built = IsBuilt(handle);
  if (problem.is_built) {
    problem.bounds.resize(2 * problem.input_count);
    handle.Check(zor_get_input_bounds(handle.get(), problem.bounds.data()));
  }
  return problem;
}

}  // namespace kestrel::cli
