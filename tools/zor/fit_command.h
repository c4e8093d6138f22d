#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace kestrel::cli {

/// The arguments of `zor fit`; an empty text or list is one that was not given.
struct FitArguments {
  std::string designs;                ///< CSV file of the sampled designs
  std::vector<std::string> outputs;   ///< names of columns
  std::vector<std::string> inputs;    ///< names of columns; all that are no outputs if not given
  std::vector<std::string> settings;  ///< "option=value"
  std::uint32_t jobs = 0;             ///< outputs worked on at once; 0: one per hardware thread
  std::string points;                 ///< CSV file of the points to predict
  bool extrapolate = false;           ///< predict points outside the bounds of the designs too
  std::string predictions;            ///< file that receives the predictions
  std::string cross_validation;       ///< file that receives observed and cross-validation values
  std::string stored_model;           ///< file that receives the built model
  std::string monitoring;             ///< file that receives the record of the build
  bool build_report = false;          ///< the library's report in place of the table
  bool json = false;
};

/// Reads the designs, builds the models, stores and reports them and predicts. The report goes to `out`, and so do
/// predictions without a file of their own: in the place of a report for people, which then goes to `notes`, or inside
/// the JSON object. Throws InputError or WorkError.
void RunFit(const FitArguments& arguments, std::ostream& out, std::ostream& notes);

}  // namespace kestrel::cli
