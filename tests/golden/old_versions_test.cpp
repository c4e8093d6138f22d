#include <gtest/gtest.h>

#include "golden/detail_records.h"
#include "support/old_layout.h"

// Records of every class version that the format ever had: what they hold is read, what they lack is left as stated.

namespace kestrel::testing {
namespace {

using namespace algorithm::datatypes;
using math::metamodel::AppraisalData;
using Base = AlgorithmInfo::DetailedInformationBase;
using SystemsInformation = AlgorithmInfo::SystemsInformation;
using ReliabilityInformation = AlgorithmInfo::ReliabilityInformation;
using ReliabilityDesignSetInfo = ReliabilityInformation::ReliabilityDesignSetInfo;
using Ids = std::vector<CHierachicalId>;
using Names = std::vector<std::wstring>;
using TextsByName = std::map<std::wstring, std::wstring>;
using RealsByName = std::map<std::wstring, double>;
using Directions = std::pair<std::uint64_t, std::uint64_t>;

template <class Record>
const Record& As(const Details& details) {
  return dynamic_cast<const Record&>(*details);
}

TEST(OldVersions, OfMetamodelDetailsAreRead) {
  using Self = ZORInformation;
  const Details full = MakeZorRecord();
  Layout<Self>(As<Self>(full))
      .BasePart<Base>("DetailedInformationBase")
      .Field("cv_indexes_", &Self::cv_indexes_)
      .Field("response_to_cv_mapping_", &Self::response_to_cv_mapping_)
      .Since(2, "parameter_manager_", &Self::parameter_manager_, ParameterManager())
      .Field("surrogate_infos_", &Self::surrogate_infos_)
      .Field("was_deterministic_sampling_", &Self::was_deterministic_sampling_)
      .Since(5, "zor_settings_", &Self::zor_settings_, zor::ZORCombinedSettings())
      .Field("parameter_names_", &Self::parameter_names_)
      .Field("sampling_limits_", &Self::sampling_limits_)
      .Field("defined_limits_", &Self::defined_limits_)
      .Field("distribution_settings_", &Self::distribution_settings_)
      .Field("calculated_models_", &Self::calculated_models_)
      .Field("best_models_", &Self::best_models_)
      .Field("function_strings_", &Self::function_strings_)
      .Below(9, "polynomial_info_", TextsByName{{L"r", L"linear"}})
      .Field("relative_freq_of_importance_", &Self::relative_freq_of_importance_)
      .Since(8, "custom_zor_logs_", &Self::custom_zor_logs_, TextsByName())
      .ExpectEveryVersionIsRead();
}

TEST(OldVersions, OfSystemsDetailsAreRead) {
  using Self = SystemsInformation;
  const SystemsInformation::DesignSets old_sets{{L"old", std::make_shared<SystemsInformation::DesignSet>()}};
  old_sets.at(L"old")->identifier_ = L"old";
  Layout<Self>(As<Self>(MakeSystemsRecord()))
      .BasePart<Base>("DetailedInformationBase")
      .Below(6, "history_map_", HistoryMap{{L"course", {1.0, 0.5}}})
      .Below(6, "internal_algo_history_names_", Names{L"course"})
      .Below(6, "design_set_map_", old_sets,
             [=](Self& record) { record.design_sets_map_[L"old"] = old_sets.at(L"old"); })
      .Field("index_id_map_", &Self::index_id_map_)
      .Field("design_set_position_map_", &Self::design_set_position_map_)
      .Since(2, "prefered_design_set_", &Self::prefered_design_set_, std::wstring())
      .Since(3, "additional_designs_", &Self::additional_designs_, decltype(Self::additional_designs_)())
      .Since(5, "design_sets_map_", &Self::design_sets_map_, old_sets)
      .ExpectEveryVersionIsRead();
}

TEST(OldVersions, OfReliabilityDetailsAreRead) {
  using Self = ReliabilityInformation;
  Layout<Self>(As<Self>(MakeReliabilityRecord()))
      .BasePart<SystemsInformation>("SystemsInformation")
      .Below(3, "complete_directions_pair_", Directions(1, 2))
      .Field("reli_total_infos_", &Self::reli_total_infos_)
      .Field("stndrd_reli_infos_", &Self::stndrd_reli_infos_)
      .Field("reli_iteration_infos_", &Self::reli_iteration_infos_)
      .Field("design_iteration_map_", &Self::design_iteration_map_)
      .Field("reli_design_set_infos_", &Self::reli_design_set_infos_)
      .Field("design_type_map_", &Self::design_type_map_)
      .Field("reli_method_name_", &Self::reli_method_name_)
      .Field("is_converged_", &Self::is_converged_)
      .Field("is_form_converged_", &Self::is_form_converged_)
      .ExpectEveryVersionIsRead();
}

TEST(OldVersions, OfReliabilityResultsAreRead) {
  using Self = ReliabilityDesignSetInfo;
  const Details details = MakeReliabilityRecord();
  Self full = *As<ReliabilityInformation>(details).reli_design_set_infos_.at(L"step");
  full.has_valid_data_ = false;
  Layout<Self>(full)
      .Field("safe_domain_designs_", &Self::safe_domain_designs_)
      .Field("unsafe_domain_designs_", &Self::unsafe_domain_designs_)
      .Field("failed_strings_", &Self::failed_strings_)
      .Field("unsuccessful_designs_", &Self::unsuccessful_designs_)
      .Field("total_designs_", &Self::total_designs_)
      .Field("most_probable_failure_point_id_", &Self::most_probable_failure_point_id_)
      .Field("probability_of_failure_", &Self::probability_of_failure_)
      .Field("standard_deviation_error_", &Self::standard_deviation_error_)
      .Field("reliability_index_", &Self::reliability_index_)
      .Field("probability_of_failure_form_", &Self::probability_of_failure_form_)
      .Field("reliability_index_form_", &Self::reliability_index_form_)
      .Field("method_name_", &Self::method_name_)
      .Field("error_r2_", &Self::error_r2_)
      .Field("error_loo_", &Self::error_loo_)
      .Below(5, "history_map_", HistoryMap{{L"course", {1.0, 0.5}}})
      .Field("arsm_ds_map_", &Self::arsm_ds_map_)
      .Below(2, "arsm_ds_types_", std::map<std::wstring, std::int32_t>{{L"step", 1}})
      .Since(3, "has_valid_data_", &Self::has_valid_data_, true)
      .ExpectEveryVersionIsRead();
}

TEST(OldVersions, OfSurrogateRecordsAreRead) {
  using Self = SurrogateInfo;
  const Details details = MakeZorRecord();
  Self full = As<ZORInformation>(details).GetSurrogateInfos().GetInfos().at(0);
  full.SetComponent(2);
  Layout<Self>(full)
      .Field("response_name_", &Self::GetResponseName)
      .Field("response_index_", &Self::GetResponseIndex)
      .Field("is_response_scalar_", &Self::IsResponseScalar)
      .Field("surrogate_", &Self::GetSurrogate)
      .Field("appraisal_data_", &Self::GetAppraisalData)
      .Field("num_vars_", &Self::GetNumVars)
      .Field("subspace_", &Self::GetSubspace)
      .Field("parameter_name_lookup_map_",
             [](const Self&) {
               return std::map<std::wstring, std::uint64_t>{{L"a", 0}, {L"b", 1}};
             })
      .Since(2, "testing_type_", &Self::GetTestingType,
             [](Self& record) { record.SetTestingType(math::metamodel::TestingType::kCrossValidation); })
      .Since(4, "used_hids_", &Self::GetUsedHIds, [](Self& record) { record.SetUsedHIds({}); })
      .ExpectEveryVersionIsRead();
}

TEST(OldVersions, OfAppraisalsAreRead) {
  using Self = AppraisalData;
  Self full;
  full.SetCoP(0.5);
  full.SetCoD(0.75);
  full.SetCoDAdj(0.625);
  full.SetSingleCoPs(math::Vector{{0.25, 0.125}});
  full.SetFirstOrderIndices(math::Vector{{0.375, 0.0625}});
  Layout<Self>(full)
      .Field("cop_", &Self::GetCoP)
      .Field("cod_", &Self::GetCoD)
      .Field("codadj_", &Self::GetCoDAdj)
      .Field("single_cop_", &Self::GetSingleCoPs)
      .Since(1, "first_order_indices_", &Self::GetFirstOrderIndices,
             [](Self& record) { record.SetFirstOrderIndices({}); })
      .ExpectEveryVersionIsRead(full);
}

const TextsByName kAdditionalData{{L"key", L"value"}};

/// With these signals, named in this order.
AlgorithmInfo MakeInfo(AlgorithmInfo::eKind kind, const Details& details, const Names& signals) {
  AlgorithmInfo info;
  ReadOld<AlgorithmInfo, 7>(info, [&](FieldWriter& field) {
    std::map<std::wstring, SignalInfo> container;
    for (const std::wstring& name : signals) container[name] = MakeSignalRecord();
    field("algo_type_", kind)("design_group_map_", std::map<std::wstring, Ids>{{L"start", {CHierachicalId(1) / 2}}});
    field("additional_data_", kAdditionalData)("signal_info_container_", container);
    field("signal_info_names_", signals)("detailed_info_", details);
  });
  return info;
}

class OldAlgorithmInformation : public ::testing::TestWithParam<AlgorithmInfo::eKind> {};

TEST_P(OldAlgorithmInformation, IsRead) {
  using Self = AlgorithmInfo;
  const Details details = MakeSystemsRecord();
  const auto with_signals = [&](const Names& names) { return MakeInfo(GetParam(), details, names); };
  Layout<Self> layout(with_signals({L"z", L"a"}));
  layout.Field("algo_type_", &Self::GetKind)
      .Below(4, "complete_directions_pair_", Directions(1, 2))
      .Field("design_group_map_", &Self::GetDesignGroups)
      .Field("additional_data_", [](const Self&) { return kAdditionalData; })
      .Since(5, "signal_info_container_", &Self::GetSignals, [&](Self& record) { record = with_signals({}); })
      .Since(7, "signal_info_names_", &Self::GetSignalNames,
             [&](Self& record) {
               if (!record.GetSignals().empty()) record = with_signals({L"a", L"z"});
             })
      .Below(6, "reli_iteration_infos_", std::vector<RealsByName>{{{L"beta", 3.0}}})
      .Below(6, "desig_iteration_map_", std::map<std::uint64_t, Ids>{{1, {CHierachicalId(1) / 2}}});
  if (GetParam() != Self::eKind::kMetamodel) layout.Below(6, "zor_cv_indexes_", CVIndexes{{L"r", {0, 1}}});
  layout.Field("detailed_info_", &Self::GetDetailedInfo).ExpectEveryVersionIsRead();
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, OldAlgorithmInformation,
                         ::testing::Values(AlgorithmInfo::eKind::kMetamodel, AlgorithmInfo::eKind::kNone),
                         [](const auto& kind) {
                           return kind.param == AlgorithmInfo::eKind::kMetamodel ? "Metamodel" : "Other";
                         });

}  // namespace
}  // namespace kestrel::testing
