#pragma once

#include <optional>
#include <string>
#include <vector>

#include "datatypes/design_manager.h"
#include "datatypes/parameter_manager.h"
#include "datatypes/results/surrogate_info.h"
#include "support/linear_algebra.h"

namespace kestrel::algorithm::datatypes {

/// Finds the samples of surrogates among designs and the other way round. What it reads of the designs for one
/// surrogate it keeps for the next one with the same parameters. It refers to what it is made of.
class SupportData {
 public:
  SupportData(const DesignManager& designs, const ParameterManager& parameters)
      : designs_(designs), parameters_(parameters) {}

  /// The ids of the designs whose parameters and response are, bit for bit and in their order, the points and values of
  /// the surrogate; empty if they are not all there. The surrogate has its sample.
  std::vector<CHierachicalId> FindDesigns(const SurrogateInfo& info);

  /// Gives the surrogate the sample that its ids name. Raises utils::runtime_error if a design is not there, or if the
  /// points have another number of columns than the surrogate has inputs.
  void Restore(const SurrogateInfo& info);

 private:
  /// N x n, one row per design, in the order of the columns of the surrogate's points.
  const math::Matrix& Points(const SurrogateInfo& info);
  /// One value per design of the response, or component of a response, that the surrogate stands for; NaN where the
  /// design has none.
  math::Vector Values(const SurrogateInfo& info) const;

  const DesignManager& designs_;
  const ParameterManager& parameters_;
  std::optional<std::vector<std::wstring>> names_;  ///< of the columns of `points_`
  math::Matrix points_;
};

}  // namespace kestrel::algorithm::datatypes
