#pragma once

#include <boost/make_shared.hpp>

#include "datatypes/results/optimization_information.h"
#include "datatypes/results/reliability_information.h"
#include "datatypes/results/signal_info.h"
#include "datatypes/results/zor_information.h"

namespace kestrel::testing {

using Details = boost::shared_ptr<algorithm::datatypes::AlgorithmInfo::DetailedInformationBase>;

/// Records whose every field holds something. The regression in them was fitted to the designs 1.1 to 1.4 of two
/// parameters a and b at the corners of the unit square: all its numbers are exact.
algorithm::datatypes::SignalInfo MakeSignalRecord();
Details MakeZorRecord();
Details MakeSystemsRecord();
Details MakeOptimizationRecord();
Details MakeReliabilityRecord();

}  // namespace kestrel::testing
