#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "test_functions.h"
#include "zor_api.h"

// How well the models that a build finds predict published functions: `accuracy [filter] [--write FILE]` prints rows
// for each function whose name contains the filter and each size of the sample; --write puts the rows into the table
// of a Markdown file instead. The library is used through its public header alone.

namespace accuracy {
namespace {

constexpr std::uint32_t kSizes[] = {50, 100, 200};
constexpr std::uint32_t kFreshPoints = 5000;
constexpr const char* kTableStart = "| function, inputs |";

struct Release {
  void operator()(zor_handle_t handle) const { zor_release(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<zor_handle_t>, Release>;

void Require(uint32_t code, zor_handle_t handle) {
  if (code != zor_success) throw std::runtime_error(zor_get_last_error(handle));
}

/// The entries of one generator, the same with every standard library.
class Uniform {
 public:
  explicit Uniform(std::uint64_t seed) : generator_(seed) {}
  double operator()() { return static_cast<double>(generator_() >> 11U) * 0x1p-53; }
  std::uint64_t Below(std::uint64_t count) { return generator_() % count; }

 private:
  std::mt19937_64 generator_;
};

/// Points row by row, and the values there.
struct Table {
  std::vector<double> points;
  std::vector<double> values;
};

Table Evaluate(const TestFunction& function, std::vector<double> points) {
  Table table{std::move(points), {}};
  const std::size_t inputs = function.ranges.size();
  for (std::size_t k = 0; k < table.points.size(); k += inputs)
    table.values.push_back(function.value(&table.points[k]));
  return table;
}

double Within(const Range& range, double share) { return range.low + share * (range.high - range.low); }

/// A Latin hypercube: along each input one point in each of `count` equal cells, anywhere in it.
Table MakeSample(const TestFunction& function, std::uint32_t count) {
  Uniform uniform(1000 + count);
  const std::size_t inputs = function.ranges.size();
  std::vector<double> points(count * inputs);
  std::vector<std::uint32_t> cells(count);
  for (std::size_t j = 0; j < inputs; ++j) {
    std::iota(cells.begin(), cells.end(), 0U);
    for (std::uint32_t i = count; i > 1; --i) std::swap(cells[i - 1], cells[uniform.Below(i)]);
    for (std::uint32_t i = 0; i < count; ++i) {
      points[i * inputs + j] = Within(function.ranges[j], (cells[i] + uniform()) / count);
    }
  }
  return Evaluate(function, std::move(points));
}

Table MakeFreshPoints(const TestFunction& function) {
  Uniform uniform(1);
  const std::size_t inputs = function.ranges.size();
  std::vector<double> points(kFreshPoints * inputs);
  for (std::size_t k = 0; k < points.size(); ++k) points[k] = Within(function.ranges[k % inputs], uniform());
  return Evaluate(function, std::move(points));
}

/// 1 - sum (r - p)^2 / sum (r - mean r)^2.
double CoefficientOfDetermination(const std::vector<double>& values, const std::vector<double>& predictions) {
  const double mean = std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
  double error = 0.0;
  double total = 0.0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    error += (values[i] - predictions[i]) * (values[i] - predictions[i]);
    total += (values[i] - mean) * (values[i] - mean);
  }
  return 1.0 - error / total;
}

enum class Options {
  kDefault,
  kAnisotropic,        ///< the default ones, with anisotropic Kriging
  kOpen,               ///< anisotropic Kriging on one design per input, and no tolerance for a simpler model
  kKrigingOnAllInputs  ///< one fit with a radius for each input, nothing selected: what the class can reach
};

Handle MakeHandle(Options options, std::uint32_t inputs) {
  zor_handle_t raw = nullptr;
  Require(zor_create(&raw), nullptr);
  Handle handle(raw);
  zor_set_input_count(raw, inputs);
  zor_set_output_count(raw, 1);
  if (options == Options::kDefault) return handle;
  zor_set_use_anisotropic_kriging(raw, zor_true);
  if (options == Options::kAnisotropic) return handle;
  zor_set_coeff_factor_kriging(raw, 1.0);
  zor_set_tolerance_cop_model(raw, 0.0);
  if (options == Options::kOpen) return handle;
  zor_set_use_polynomials(raw, zor_false);
  zor_set_use_mls(raw, zor_false);
  zor_set_use_boxcox(raw, zor_false);
  zor_set_info_important(raw, std::vector<std::uint32_t>(inputs, zor_mandatory).data());
  return handle;
}

struct Outcome {
  std::string model;
  std::size_t inputs_used;
  double cop;
  double true_r2;
  double seconds;  ///< of the processor
};

std::string ModelName(zor_handle_t handle) {
  char* text = nullptr;
  std::size_t length = 0;
  Require(zor_get_model_str_per_output(handle, 0, &text, &length), handle);
  std::string name(text, length);
  zor_release_buf(text);
  std::replace(name.begin(), name.end(), '|', ',');  // parts the columns of a table
  for (auto at = name.find(" ,"); at != std::string::npos; at = name.find(" ,")) name.erase(at, 1);
  return name;
}

Outcome Try(Options options, const Table& sample, const Table& fresh) {
  const auto designs = static_cast<std::uint32_t>(sample.values.size());
  const auto inputs = static_cast<std::uint32_t>(sample.points.size() / sample.values.size());
  const Handle handle = MakeHandle(options, inputs);
  const std::clock_t start = std::clock();
  Require(zor_build_split(handle.get(), sample.points.data(), sample.values.data(), designs), handle.get());
  Outcome outcome{ModelName(handle.get()), 0, 0.0, 0.0, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC};

  Require(zor_get_cop_per_output(handle.get(), 0, &outcome.cop), handle.get());
  std::vector<double> cops(inputs);
  Require(zor_get_single_cop_per_output(handle.get(), 0, cops.data()), handle.get());
  outcome.inputs_used =
      static_cast<std::size_t>(std::count_if(cops.begin(), cops.end(), [](double cop) { return !std::isnan(cop); }));
  std::vector<double> predictions(kFreshPoints);
  Require(zor_solve_extrapolate(handle.get(), fresh.points.data(), predictions.data(), kFreshPoints), handle.get());
  outcome.true_r2 = CoefficientOfDetermination(fresh.values, predictions);
  return outcome;
}

std::string Format(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof(text), format, value);
  return text;
}

/// A row for each set of options.
std::string Rows(const TestFunction& function, std::uint32_t size) {
  constexpr std::pair<Options, const char*> kOptions[] = {{Options::kDefault, "default"},
                                                          {Options::kAnisotropic, "anisotropic"},
                                                          {Options::kOpen, "open"},
                                                          {Options::kKrigingOnAllInputs, "all inputs"}};
  const Table sample = MakeSample(function, size);
  const Table fresh = MakeFreshPoints(function);
  std::string rows;
  for (const auto& [options, name] : kOptions) {
    const Outcome outcome = Try(options, sample, fresh);
    rows += "| " + function.name + ", " + std::to_string(function.ranges.size()) + " | " + std::to_string(size) +
            " | " + name + " | " + outcome.model + " | " + std::to_string(outcome.inputs_used) + " | " +
            Format("%.3f", outcome.cop) + " | " + Format("%.3f", outcome.true_r2) + " | " +
            Format("%.2f", outcome.seconds) + " |\n";
  }
  return rows;
}

std::string Head() {
  return std::string(kTableStart) +
         " N | options | model | used | CoP | R2 | s |\n| --- | ---: | --- | --- | ---: | ---: | ---: | ---: |\n";
}

/// Puts a table in the place of the one that starts with the same words; a table ends with its last line of cells.
void ReplaceTable(const std::string& path, const std::string& table) {
  std::ifstream in(path);
  const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const std::size_t first = text.find(kTableStart);
  if (first == std::string::npos) throw std::runtime_error(path + " has no table that starts with " + kTableStart);
  const std::size_t end = std::min(text.find("\n\n", first), text.size() - 1) + 1;
  std::ofstream out(path);
  out << text.substr(0, first) << table << text.substr(end);
  if (!out.flush()) throw std::runtime_error("cannot write " + path);
}

int Run(const std::vector<std::string>& arguments) {
  const bool write = arguments.size() >= 2 && arguments[arguments.size() - 2] == "--write";
  const std::string filter = arguments.size() > (write ? 2U : 0U) ? arguments.front() : "";
  std::string table = Head();
  std::cout << table;
  for (const TestFunction& function : TestFunctions()) {
    if (function.name.find(filter) == std::string::npos) continue;
    for (const std::uint32_t size : kSizes) {
      const std::string rows = Rows(function, size);
      table += rows;
      std::cout << rows << std::flush;
    }
  }
  if (write) ReplaceTable(arguments.back(), table);
  return 0;
}

}  // namespace
}  // namespace accuracy

int main(int count, char** arguments) {
  try {
    return accuracy::Run(std::vector<std::string>(arguments + 1, arguments + count));
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
