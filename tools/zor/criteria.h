#pragma once

#include <string>
#include <utility>
#include <vector>

#include "handle.h"

namespace kestrel::cli {

/// "name=text" in two, without the blanks around. Throws InputError, with the name of the option in front, if one of
/// them is missing.
std::pair<std::string, std::string> SplitAtEquals(const std::string& option, const std::string& text);

/// A criterion as it is written: NAME=EXPRESSION is an objective, NAME=LEFT<=RIGHT, with >= or with == in the place of
/// <=, a comparison. The comparison stands outside of brackets and quotes; one in (brackets) is part of an expression.
struct CriterionText {
  std::string name;
  zor_criterion_type type;
  std::string left;
  std::string right;
};

/// Throws InputError for a text that is no criterion.
CriterionText ReadCriterion(const std::string& text);

/// Adds the criteria to a built handle. Throws InputError for one that the library refuses.
void AddCriteria(const Handle& handle, const std::vector<std::string>& texts);

/// The criteria of a built handle, in the library's order.
std::vector<std::string> CriterionNames(const Handle& handle);

}  // namespace kestrel::cli
