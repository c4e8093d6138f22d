#pragma once

#include <stdexcept>

namespace kestrel::cli {

/// What the user gave is wrong: an argument, a file, a cell. One line of text; the program ends with status 2.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The work itself failed, in the library or on writing its results. The program ends with status 1.
class WorkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kestrel::cli
