#pragma once

#include <string>

#include "golden/plain_schema.h"

/// Fields of the stored records, for the classes that are made of them.
namespace kestrel::testing {

constexpr bool kTracked = true;
constexpr bool kUntracked = false;

inline const PlainWalk::Field kUnsigned = PlainWalk::Unsigned();
inline const PlainWalk::Field kSigned = PlainWalk::Signed();
inline const PlainWalk::Field kBool = PlainWalk::Bool();
inline const PlainWalk::Field kReal = PlainWalk::Real();
inline const PlainWalk::Field kText = PlainWalk::Text();
inline const PlainWalk::Field kReals = PlainWalk::Numbers("doubles", kReal);
inline const PlainWalk::Field kUnsigneds = PlainWalk::Numbers("64-bit numbers", kUnsigned);
inline const PlainWalk::Field kShortUnsigneds = PlainWalk::Numbers("32-bit numbers", kUnsigned);
inline const PlainWalk::Field kMatrix = PlainWalk::Matrix("matrix");
inline const PlainWalk::Field kVector = PlainWalk::Matrix("vector");
inline const PlainWalk::Field kTexts = PlainWalk::List("vector of texts", kText);
inline const PlainWalk::Field kWideTexts = PlainWalk::List("vector of wide texts", kText);
inline const PlainWalk::Field kRealPair = PlainWalk::Pair("pair of doubles", kReal, kReal);
inline const PlainWalk::Field kRealPairs = PlainWalk::List("vector of pairs of doubles", kRealPair);
inline const PlainWalk::Field kRealsByName = PlainWalk::Map("doubles by name", kText, kReal);
inline const PlainWalk::Field kBoolsByName = PlainWalk::Map("bools by name", kText, kBool);
inline const PlainWalk::Field kTextsByName = PlainWalk::Map("texts by name", kText, kText);
inline const PlainWalk::Field kUnsignedsByName = PlainWalk::Map("64-bit numbers by name", kText, kUnsigned);

PlainWalk::Field Entry();
PlainWalk::Field Sequence(const std::string& of, const PlainWalk::Field& value);
PlainWalk::Field Id();
PlainWalk::Field Ids();
PlainWalk::Field Criterion();
PlainWalk::Field Design();
PlainWalk::Field DesignManager();
PlainWalk::Field ParameterManager();
PlainWalk::Field Surrogate();
PlainWalk::Field SurrogateInfos();
PlainWalk::Field SubspaceResultContainer();
PlainWalk::Field ZorSettings();
PlainWalk::Field CombinedSettings();

}  // namespace kestrel::testing
