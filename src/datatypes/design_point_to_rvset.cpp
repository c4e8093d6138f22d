#include "datatypes/design_point_to_rvset.h"

#include <boost/format.hpp>
#include <string>
#include <vector>

#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

std::shared_ptr<RV_Base> MakeVariable(const Parameter& parameter, const CDesignEntrySequence& design_point) {
  try {
    const RandomProperties& properties = parameter.GetRandomProperties();
    if (parameter.GetKind() != Parameter::eKind::kMixed) return properties.MakeRandomVariable();
    const CDesignEntry& value = design_point[parameter.GetName()];
    return properties.MakeRandomVariableAround(ConvertDesignpointEntry<double>(value));
  } catch (const std::exception& error) {
    boost::wformat text(
        L"An FATAL ERROR occured while transforming the parameter \"%1%\" to the appropriate rv-type. %2%");
    throw utils::runtime_error((text % parameter.GetName() % utils::exception_what(error)).str());
  }
}

std::unique_ptr<RVSet_Base> MakeSet(const ParameterManager& manager, const CDesignEntrySequence& design_point) {
  std::vector<std::wstring> names;
  RVSet_Base::Variables variables;
  for (const Parameter& parameter : manager.GetParameters()) {
    if (!parameter.IsStochastic() || !parameter.IsActive() || parameter.IsConst()) continue;
    names.push_back(parameter.GetName());
    variables.push_back(MakeVariable(parameter, design_point));
  }
  math::Matrix correlation = manager.BuildCorrelationMatrix(names);
  if (correlation == math::Matrix::Identity(correlation.rows(), correlation.cols())) {
    return std::make_unique<RVSet_Independent>(std::move(variables));
  }
  return std::make_unique<RVSet_Nataf>(std::move(variables), std::move(correlation));
}

}  // namespace

std::unique_ptr<RVSet_Base> TransformDesignPointToRVSet(const ParameterManager& manager,
                                                        const CDesignEntrySequence& design_point) {
  try {
    return MakeSet(manager, design_point);
  } catch (const std::exception& error) {
    throw utils::runtime_error(L"An error occured during transformation from a design point to a rvset: " +
                               utils::exception_what(error));
  } catch (...) {
    throw utils::runtime_error(L"A FATAL ERROR occured while transforming a design point to a rvset.");
  }
}

}  // namespace kestrel::algorithm::datatypes
