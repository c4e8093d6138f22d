#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "numbers.h"
#include "support/temporary_folder.h"

namespace kestrel::cli {

struct Result {
  int status;
  std::string out;
  std::string err;
};

/// Runs `zor` with arguments for the shell, in the folder.
inline Result RunZor(const TemporaryFolder& folder, const std::string& arguments) {
  const std::string command = "cd '" + folder.Path("") + "' && '" ZOR_PROGRAM "' " + arguments + " >out 2>err";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status)) << "killed by a signal: zor " << arguments;
  return {WEXITSTATUS(status), folder.Read("out"), folder.Read("err")};
}

/// A call that fails with that status and, on standard error, that one line behind "zor: ".
struct FaultyCall {
  const char* arguments;
  int status;
  const char* text;
};

inline void ExpectRefusal(const TemporaryFolder& folder, const FaultyCall& call) {
  const Result result = RunZor(folder, call.arguments);
  EXPECT_EQ(result.status, call.status) << call.arguments;
  EXPECT_EQ(result.err, "zor: " + std::string(call.text) + "\n") << call.arguments;
  EXPECT_EQ(result.out, "") << call.arguments;
}

/// y = 1 + 2 a - 3 b + 4 a b without noise and z = 7 - c, of 48 designs; z is missing in every sixth.
inline double Y(double a, double b) { return 1.0 + 2.0 * a - 3.0 * b + 4.0 * a * b; }

inline std::string ExactDesigns() {
  std::ostringstream csv;
  csv << "id,a,b,c,y,z\n";
  for (int i = 0; i < 48; ++i) {
    const double a = 0.25 * (i % 7);
    const double b = 0.5 * ((5 * i) % 11) - 2.0;
    const double c = (3 * i) % 13;
    csv << "run " << i << ',' << a << ',' << b << ',' << c << ',' << ExactText(Y(a, b)) << ',';
    if (i % 6 != 3) csv << 7.0 - c;
    csv << '\n';
  }
  return csv.str();
}

}  // namespace kestrel::cli
