#pragma once

#include <boost/make_shared.hpp>
#include <memory>

#include "datatypes/design_matrices.h"
#include "datatypes/results/zor_information.h"
#include "persistence/database/lyra.h"
#include "surrogates/linear_regression.h"
#include "surrogates/sample_data.h"

namespace kestrel::testing {

/// Twelve designs, ids 1 to 12, of the parameters "a" and "b" with the response "r", and the built regression of "r".
inline algorithm::datatypes::LYRA MakeLyra() {
  namespace datatypes = algorithm::datatypes;
  const math::Matrix points = RandomPoints(12, 2, 3);
  const math::Vector values = points.rowwise().sum() + Noise(12, 0.1, 4);
  auto regression = std::make_shared<math::metamodel::LinearRegression>(points, values);
  regression->Build();
  datatypes::LYRA lyra;
  for (const wchar_t* name : {L"a", L"b"}) lyra.GetParameterManager().AddParameter(datatypes::Parameter(name));
  lyra.SetDesignContainer(datatypes::CreateDesignsFromMatrices({L"a", L"b"}, points, {L"r"}, values));
  auto info = boost::make_shared<datatypes::AlgorithmInfo>(datatypes::AlgorithmInfo::eKind::kMetamodel);
  info->GetZORInfo()->surrogate_infos_.AddSurrogateInfo(datatypes::SurrogateInfo(L"r", regression, {}, {L"a", L"b"}));
  lyra.SetAlgorithmInfo(info);
  return lyra;
}

}  // namespace kestrel::testing
