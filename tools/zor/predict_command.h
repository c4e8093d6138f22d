#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace kestrel::cli {

/// The arguments of `zor predict`; an empty text is one that was not given.
struct PredictArguments {
  std::string model;                  ///< stored model
  std::string points;                 ///< CSV file of the points to predict
  bool extrapolate = false;           ///< predict points outside the bounds of the designs too
  std::vector<std::string> criteria;  ///< criteria besides those of the model, see ReadCriterion
  std::string predictions;            ///< file that receives the predictions
  std::string gradients;              ///< file that receives the gradients
  std::string errors;                 ///< file that receives the local errors
};

/// Reads the model and the points; predictions without a file of their own go to `out`. Throws InputError or WorkError.
void RunPredict(const PredictArguments& arguments, std::ostream& out);

}  // namespace kestrel::cli
