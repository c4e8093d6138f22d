#pragma once

#include <optional>
#include <string>
#include <vector>

#include "datatypes/design_manager.h"
#include "datatypes/name_index.h"
#include "datatypes/parameter_manager.h"
#include "datatypes/results/surrogate_info.h"
#include "support/linear_algebra.h"

namespace kestrel::algorithm::datatypes {

/// Finds the samples of surrogates among designs and the other way round. What it reads of the designs for one
/// surrogate it keeps for the next one with the same parameters. It refers to what it is made of.
class SupportData {
 public:
  /// @param infos  the surrogates that it will be asked for.
  SupportData(const DesignManager& designs, const ParameterManager& parameters,
              const std::vector<SurrogateInfo>& infos);

  /// The ids of the designs whose parameters and response are, bit for bit and in their order, the points and values of
  /// the surrogate; empty if they are not all there. The surrogate has its sample.
  std::vector<CHierachicalId> FindDesigns(const SurrogateInfo& info);

  /// Gives the surrogate the sample that its ids name. Raises utils::logic_error "No such design" for one that is not
  /// there, utils::runtime_error if the parameters are not as many as the inputs of the surrogate.
  void Restore(const SurrogateInfo& info);

 private:
  /// Brings `points_` to the columns of the surrogate's points; false if the designs cannot have them.
  bool TakePoints(const SurrogateInfo& info);
  /// One value per design of the response, or component of a response, that the surrogate stands for; NaN where the
  /// design has none.
  math::Vector Values(const SurrogateInfo& info) const;
  /// True for a component of a response that the designs hold as a vector.
  bool IsElement(const SurrogateInfo& info) const;

  const DesignManager& designs_;
  const ParameterManager& parameters_;
  NameIndex response_names_;                        ///< of the columns of `responses_`
  math::Matrix responses_;                          ///< N x m, one row per design
  std::optional<std::vector<std::wstring>> names_;  ///< of the columns of `points_`
  math::Matrix points_;                             ///< N x n, one row per design
};

}  // namespace kestrel::algorithm::datatypes
