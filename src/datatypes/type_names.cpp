#include "datatypes/type_names.h"

#include <array>
#include <cstddef>
#include <initializer_list>

namespace kestrel {
namespace {

/// The map of words that stand in the order of their enumerators, the first of which has the number `first`.
template <class Map, class Enumeration>
Map Numbered(Enumeration first, std::initializer_list<const wchar_t*> words) {
  Map map;
  auto number = static_cast<std::int32_t>(first);
  for (const wchar_t* const word : words) map.insert({word, static_cast<Enumeration>(number++)});
  return map;
}

ETypeInfo::Map MakeTypeInfoMap() {
  return Numbered<ETypeInfo::Map>(EType::BOOL, {L"Bool",
                                                L"Integer",
                                                L"Unsigned Integer",
                                                L"Unsigned Integer Vector",
                                                L"Real",
                                                L"String",
                                                L"String List",
                                                L"Variant",
                                                L"Path",
                                                L"Parameter",
                                                L"Parameter Set",
                                                L"Parameter Manager",
                                                L"Design",
                                                L"Designpoint",
                                                L"Design Container",
                                                L"Bool Vector",
                                                L"Criterion",
                                                L"Criterion Sequence",
                                                L"Designentry",
                                                L"Runinfo Meta",
                                                L"Runinfo"});
}

EDOE::Map MakeDoeMap() {
  return Numbered<EDOE::Map>(enums::DOE::DESIGNPOINTS, {L"Designpoints",
                                                        L"Center point",
                                                        L"Full factorial",
                                                        L"Axial points",
                                                        L"Star points",
                                                        L"Koshal",
                                                        L"Central composite",
                                                        L"Mixed terms",
                                                        L"Latin Hypercube Sampling",
                                                        L"Latin Hypercube Sampling Midpoint",
                                                        L"Orthogonal Latin Hypercube Sampling",
                                                        L"Sobol Sequence",
                                                        L"Plain Monte Carlo",
                                                        L"D-optimal customizable",
                                                        L"D-optimal linear",
                                                        L"D-optimal quadratic nomixed",
                                                        L"D-optimal quadratic",
                                                        L"Koshal linear",
                                                        L"Koshal quadratic",
                                                        L"Fekete points",
                                                        L"Box-Behnken",
                                                        L"Space filling Latin Hypercube Sampling",
                                                        L"Full combinatorial",
                                                        L"Advanced Latin Hypercube Sampling"});
}

ERandomVariable::Map MakeRandomVariableMap() {
  return Numbered<ERandomVariable::Map>(
      enums::RandomVariable::UNIFORM, {L"UNIFORM", L"NORMAL", L"TRUNCATEDNORMAL", L"LOGNORMAL", L"EXPONENTIAL",
                                       L"TRIANGULAR", L"WEIBULL", L"GUMBEL", L"FRECHET", L"POLYMAP", L"KERNEL",
                                       L"BERNOULLI", L"BETA", L"LOGUNIFORM", L"DISCRETE", L"MULTIUNIFORM", L"LAMBDA"});
}

}  // namespace

const std::wstring& EDesignEntry::TypeMap(enums::DesignEntry::eType type) {
  static const std::array<std::wstring, 6> words = {L"UNINITIALIZED", L"BOOL",   L"REAL",
                                                    L"INTEGER",       L"STRING", L"VARIANT"};
  return words.at(static_cast<std::size_t>(type));
}

const ETypeInfo::Map& ETypeInfo::TypeMap() {
  static const Map map = MakeTypeInfoMap();
  return map;
}

const EDOE::Map& EDOE::TypeMap() {
  static const Map map = MakeDoeMap();
  return map;
}

const ERandomVariable::Map& ERandomVariable::TypeMap() {
  static const Map map = MakeRandomVariableMap();
  return map;
}

}  // namespace kestrel
