#pragma once

#include <string>

#include "selection/subspace_results.h"
#include "support/log.h"

/// Report lines about the model found for a response. The name comes first, filled up to 20 characters.
namespace kestrel::math::metamodel {

/// Name, model text filled up to 61 characters, number of variables, number of coefficients, adjusted CoD, CoP to 13
/// digits; "Unknown metamodel type." after the name for a result without a model.
void PrintResults(const SubspaceResults& result, const std::wstring& name, utils::log::LogBase& log,
                  utils::log::LogLevel level);

/// Name and "no model found", at information level.
void PrintNoModelFound(const std::wstring& name, utils::log::LogBase& log);

}  // namespace kestrel::math::metamodel
