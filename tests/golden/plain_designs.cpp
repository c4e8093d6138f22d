#include "golden/plain_classes.h"

// The classes of values, parameters and designs, one function each: name, version, tracking, and its fields in stored
// order.

namespace kestrel::testing {

using Field = PlainWalk::Field;

namespace {

/// A value of any kind: behind "ordered_" what its kind needs.
Field Variant() {
  const Field complex = PlainWalk::Group({{"real", kReal}, {"imag", kReal}});
  const Field cells = PlainWalk::Object({"uBLAS array", 0, kUntracked, {{"", PlainWalk::Items("size", complex)}}});
  const Field vector = PlainWalk::Object({"uBLAS vector", 0, kUntracked, {{"data", cells}}});
  const Field matrix =
      PlainWalk::Object({"uBLAS matrix", 0, kUntracked, {{"size1", kUnsigned}, {"size2", kUnsigned}, {"data", cells}}});
  const PlainWalk::Fields signal{{"timeline_", vector}, {"matrix_", matrix}};
  const Field content = PlainWalk::Choice("kind_", {{-1, {}},
                                                    {0, {{"boolean_", kBool}}},
                                                    {1, {{"scalar_", complex}}},
                                                    {2, {{"vector_", vector}}},
                                                    {3, {{"matrix_", matrix}}},
                                                    {4, signal},
                                                    {5, signal}});
  return PlainWalk::Object(
      {"Variant", 6, kUntracked, {{"kind_", kSigned}, {"complex_", kBool}, {"ordered_", kBool}, {"", content}}});
}

Field RandomProperties() {
  return PlainWalk::Object({"RandomProperties",
                            4,
                            kUntracked,
                            {{"type_", kSigned},
                             {"kind_", kSigned},
                             {"params_", kReals},
                             {"moments_", kReals},
                             {"has_set_cov_", kBool},
                             {"cov_", kReal},
                             {"validated_", kBool}}});
}

Field DeterministicProperties() {
  return PlainWalk::Object({"DeterministicProperties",
                            1,
                            kUntracked,
                            {{"ordered_flag_", kBool},
                             {"domain_flag_", kSigned},
                             {"lower_bound_", Entry()},
                             {"upper_bound_", Entry()},
                             {"discrete_states_", PlainWalk::List("vector of cells", Entry(), 5)},
                             {"lower_bound_relative_", kReal},
                             {"upper_bound_relative_", kReal}}});
}

Field Parameter() {
  const Field property = PlainWalk::Pair("named range", kText, DeterministicProperties());
  return PlainWalk::Object({"Parameter",
                            7,
                            kUntracked,
                            {{"name_", kText},
                             {"active_", kBool},
                             {"const_", kBool},
                             {"rprop_", RandomProperties()},
                             {"dprops_", PlainWalk::List("list of named ranges", property)},
                             {"reference_value_", Entry()},
                             {"mutable_map_", PlainWalk::Map("bools by member", kSigned, kBool)},
                             {"dependency_expression_", kText},
                             {"id_", Id()},
                             {"modifiable_", kBool},
                             {"unit_", kText},
                             {"removable_", kBool},
                             {"origin_", kText}}});
}

Field RunInfos() {
  const Field info = PlainWalk::Object({"RunInfoMeta",
                                        1,
                                        kUntracked,
                                        {{"run_info_", kSigned},
                                         {"actor_name_", kText},
                                         {"response_name_", kText},
                                         {"message_", PlainWalk::List("list of wide texts", kText)}}});
  return PlainWalk::Object(
      {"RunInfoContainer", 1, kUntracked, {{"run_infos_", PlainWalk::List("list of run infos", info, 1)}}});
}

}  // namespace

Field Entry() {
  const Field nothing = PlainWalk::Object({"nothing", 0, kUntracked, {}});
  const Field data = PlainWalk::Variant("content of a cell", {nothing, kReal, kSigned, kText, kBool, Variant()});
  return PlainWalk::Object({"kestrel::design_entry_type", 5, kTracked, {{"data_", data}}});
}

Field Sequence(const std::string& of, const Field& value) {
  const Field pairs = PlainWalk::List("list of named " + of, PlainWalk::Pair("named " + of, kText, value));
  return PlainWalk::Object({"sequence of " + of, 0, kUntracked, {{"header_", kUnsigned}, {"seq_", pairs}}});
}

Field Id() {
  return PlainWalk::List("id", kUnsigned);  // of the same layout as a list
}

Field Ids() { return PlainWalk::List("vector of ids", Id()); }

Field Criterion() {
  const Field description = PlainWalk::Object(
      {"CriterionDescription", 0, kUntracked, {{"type_", kSigned}, {"lhs_", kText}, {"rhs_", kText}}});
  const Field value = PlainWalk::Object(
      {"CriterionValue",
       0,
       kUntracked,
       {{"value_", Entry()}, {"lhs_value_", Entry()}, {"rhs_value_", Entry()}, {"needeval_", kBool}}});
  return PlainWalk::Object(
      {"Criterion", 3, kUntracked, {{"CriterionDescription", description}, {"CriterionValue", value}}});
}

Field ParameterManager() {
  const Field index = PlainWalk::Object({"TriangularIndex", 0, kUntracked, {{"first_", kText}, {"second_", kText}}});
  const Field correlations = PlainWalk::Map("correlations", index, kReal);
  return PlainWalk::Object(
      {"ParameterManager",
       1,
       kUntracked,
       {{"parameters_", PlainWalk::List("list of parameters", Parameter(), 7)},
        {"coherences_", PlainWalk::Object({"CorrelationMatrix", 0, kUntracked, {{"correlations_", correlations}}})}}});
}

Field Design() {
  return PlainWalk::Object({"Design",
                            6,
                            kTracked,
                            {{"parameters_", Sequence("cells", Entry())},
                             {"responses_", Sequence("cells", Entry())},
                             {"status_", RunInfos()},
                             {"runstate_", kSigned},
                             {"duplicates_", Id()},
                             {"activation_state_", kSigned},
                             {"criteria_", Sequence("criteria", Criterion())},
                             {"isapproximated_", kBool},
                             {"id_", Id()},
                             {"iteration_", Id()},
                             {"workflow_id_", kSigned},
                             {"type_", kSigned},
                             {"algo_iteration_", kUnsigned}}});
}

Field DesignManager() {
  const Field stats = PlainWalk::Object(
      {"DesignManager::Stats",
       0,
       kUntracked,
       {{"total_", kUnsigned}, {"succeeded_", kUnsigned}, {"failed_", kUnsigned}, {"pending_", kUnsigned}}});
  return PlainWalk::Object({"DesignManager",
                            2,
                            kUntracked,
                            {{"designs_", PlainWalk::List("vector of designs", Design(), 6)}, {"stats_", stats}}});
}

}  // namespace kestrel::testing
