#pragma once

#include <vector>

#include "golden/golden_files.h"
#include "persistence/database/lyra.h"

namespace kestrel::testing {

/// One database for each kind of details; every field of every record in them holds something.
algorithm::datatypes::LYRA MakeMetamodelLyra();
algorithm::datatypes::LYRA MakeSystemsLyra();
algorithm::datatypes::LYRA MakeOptimizationLyra();
algorithm::datatypes::LYRA MakeReliabilityLyra();

std::vector<GoldenFile> MakeMonitoringFiles();

}  // namespace kestrel::testing
