#pragma once

#include <cstdint>

/// The type of a cell as everything but the file format counts it.
namespace kestrel::enums::DesignEntry {

enum eType : std::int32_t { UNINITIALIZED = 0, BOOL = 1, REAL = 2, INTEGER = 3, STRING = 4, VARIANT = 5 };

}  // namespace kestrel::enums::DesignEntry
