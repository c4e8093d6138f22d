#pragma once

#include <cstdint>

// Enumerations that pass through files as signed 32-bit numbers. Numbers without a name here are kept as they are.

namespace kestrel::enums {

namespace SupportedAlgorithms {

/// The algorithm that made a design or a record of results.
enum class eKind : std::int32_t { kNone = 0, kMetamodel = 18 };

}  // namespace SupportedAlgorithms

namespace DesignTypes {

/// What a design is for.
enum class eType : std::int32_t { kDefault = 0 };

}  // namespace DesignTypes
}  // namespace kestrel::enums

namespace kestrel::algorithm::datatypes {

/// How far the evaluation of a design is.
enum class eRunState : std::int32_t { kNotStarted = 0, kRunning = 1, kDone = 2 };

/// Whether a design is taken into account.
enum class eActivationStatus : std::int32_t { kActive = 0, kInactive = 1 };

}  // namespace kestrel::algorithm::datatypes
