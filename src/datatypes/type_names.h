#pragma once

#include <boost/bimap.hpp>
#include <cstdint>
#include <string>

#include "datatypes/design_entry_type.h"
#include "random_variables/random_variable_type.h"

namespace kestrel::enums::DOE {

/// The kinds of design of experiments, in the order of their words.
enum eType : std::int32_t {
  DESIGNPOINTS = 0,
  CENTER_POINT,
  FULL_FACTORIAL,
  AXIAL_POINTS,
  STAR_POINTS,
  KOSHAL,
  CENTRAL_COMPOSITE,
  MIXED_TERMS,
  LATIN_HYPERCUBE,
  LATIN_HYPERCUBE_MIDPOINT,
  ORTHOGONAL_LATIN_HYPERCUBE,
  SOBOL_SEQUENCE,
  PLAIN_MONTE_CARLO,
  D_OPTIMAL_CUSTOMIZABLE,
  D_OPTIMAL_LINEAR,
  D_OPTIMAL_QUADRATIC_NOMIXED,
  D_OPTIMAL_QUADRATIC,
  KOSHAL_LINEAR,
  KOSHAL_QUADRATIC,
  FEKETE_POINTS,
  BOX_BEHNKEN,
  SPACE_FILLING_LATIN_HYPERCUBE,
  FULL_COMBINATORIAL,
  ADVANCED_LATIN_HYPERCUBE
};

}  // namespace kestrel::enums::DOE

namespace kestrel::EType {

/// What a value of the system is, for display; counted from 1.
enum info : std::int32_t {
  BOOL = 1,
  INTEGER,
  UNSIGNED_INTEGER,
  UNSIGNED_INTEGER_VECTOR,
  REAL,
  STRING,
  STRING_LIST,
  VARIANT,
  PATH,
  PARAMETER,
  PARAMETER_SET,
  PARAMETER_MANAGER,
  DESIGN,
  DESIGNPOINT,
  DESIGN_CONTAINER,
  BOOL_VECTOR,
  CRITERION,
  CRITERION_SEQUENCE,
  DESIGNENTRY,
  RUNINFO_META,
  RUNINFO
};

}  // namespace kestrel::EType

/// The words for enumerators. The maps are filled before first use and only read from then on; `at` on a side raises
/// std::out_of_range for what has no word.
namespace kestrel {

/// The words of cells: "UNINITIALIZED", "BOOL", "REAL", "INTEGER", "STRING", "VARIANT".
struct EDesignEntry {
  static const std::wstring& TypeMap(enums::DesignEntry::eType type);
};

struct ETypeInfo {
  using Map = boost::bimap<std::wstring, EType::info>;
  static const Map& TypeMap();
};

struct EDOE {
  using Map = boost::bimap<std::wstring, enums::DOE::eType>;
  static const Map& TypeMap();
};

struct ERandomVariable {
  using Map = boost::bimap<std::wstring, enums::RandomVariable::eType>;
  static const Map& TypeMap();
};

}  // namespace kestrel
