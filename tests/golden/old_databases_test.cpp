#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include "datatypes/results/zor_information.h"
#include "golden/monitoring_files.h"
#include "golden/read_golden.h"
#include "support/old_layout.h"

// Databases of every class version that the format ever had.

namespace kestrel::testing {
namespace {

using namespace algorithm::datatypes;

TEST(OldAttachedPaths, AreRead) {
  using Self = LYRAAttachedPath;
  Self full("folder/run.py", L"script", true);
  full.SetArguments(L"-v", true);
  Layout<Self>(full)
      .Field("path_", &Self::GetPath)
      .Field("title_", &Self::GetTitle)
      .Field("isPathFix_", &Self::IsPathFix)
      .Since(1, "arguments_", &Self::GetArguments, [](Self& record) { record.SetArguments(L"", true); })
      .Since(2, "autoInsertPlaceholders_", &Self::AutoInsertPlaceholders,
             [](Self& record) { record.SetArguments(record.GetArguments(), false); })
      .ExpectEveryVersionIsRead(full);
}

/// Its reference value is an integer, as of a parameter whose kind nobody has set.
Parameter MakeOldParameter() {
  Parameter parameter;
  const Parameter real(L"old", Parameter::eKind::kOptimization);
  ReadToTheEnd(StoreOld<0, boost::serialization::track_never>([&](FieldWriter& field) {
                 const CDesignEntry integer = 3;
                 field("name_", real.GetName())("active_", true)("const_", false);
                 field("rprop_", real.GetRandomProperties())("dprops_", real.GetDeterministicProperties());
                 field("reference_value_", integer)("mutable_map_", std::map<MutableMember, bool>());
               }),
               parameter);
  return parameter;
}

LYRA MakeFullLyra() {
  LYRA lyra = MakeMetamodelLyra();
  lyra.GetParameterManager().AddParameter(MakeOldParameter());
  lyra.GetAlgorithmInfo()->GetZORInfo()->parameter_manager_ = std::as_const(lyra).GetParameterManager();
  return lyra;
}

void LeaveNoAttachedPaths(LYRA& lyra) {
  for (const LYRA::eAttachment kind : {LYRA::eAttachment::kImage, LYRA::eAttachment::kProcess}) {
    const LYRA::AttachedPaths paths = lyra.GetAttachedPaths(kind);
    for (const auto& path : paths) lyra.RemoveFilePath(path.first);
  }
}

/// The surrogates of a file without algorithm information make it one of a metamodel run.
void MakeInfoOfSurrogates(LYRA& lyra) {
  auto info = boost::make_shared<AlgorithmInfo>(AlgorithmInfo::eKind::kMetamodel);
  info->GetZORInfo()->surrogate_infos_ = lyra.GetAlgorithmInfo()->GetZORInfo()->surrogate_infos_;
  lyra.SetAlgorithmInfo(info);
}

/// Free meta data with the deactivated designs among them, as they are stored.
MetaData StoredMetaData(const LYRA& lyra) {
  MetaData data = lyra.GetMetaData();
  data[meta_data::md_id_deactivated_designs] = Store(lyra.GetDeactivatedDesigns());
  return data;
}

Layout<LYRA> LyraLayout(const LYRA& full) {
  using Self = LYRA;
  const auto path_map = [](LYRA::eAttachment kind) {
    return [=](const Self& lyra) -> const auto& { return lyra.GetAttachedPaths(kind); };
  };
  Layout<LYRA> layout(full);
  layout.Below(9, "surrogate_infos_", full.GetAlgorithmInfo()->GetZORInfo()->GetSurrogateInfos())
      .Field(
          "parameter_manager_", [](const Self& lyra) -> const auto& { return lyra.GetParameterManager(); })
      .Field(
          "design_container_", [](const Self& lyra) -> const auto& { return lyra.GetDesignContainer(); })
      .Below(10, "is_consistent_", false)
      .Field("reference_design_", &Self::GetReferenceDesign)
      .Since(2, "algorithm_info_", &Self::GetAlgorithmInfo, MakeInfoOfSurrogates)
      .Since(3, "meta_data_", StoredMetaData,
             [](Self& lyra) {
               lyra.ClearMetaData();
               lyra.SetDeactivatedDesigns({});
             })
      .Since(4, "validated_best_designs_", &Self::GetValidatedBestDesigns,
             [](Self& lyra) { lyra.SetValidatedBestDesigns({}); })
      .Since(5, "approx_design_container_", &Self::GetApproxDesignContainer,
             [](Self& lyra) { lyra.SetApproxDesignContainer({}); })
      .Since(6, "nominal_design_", &Self::GetNominalDesign, [](Self& lyra) { lyra.SetNominalDesign({}); })
      .Since(7, "image_path_map_", path_map(LYRA::eAttachment::kImage), LeaveNoAttachedPaths)
      .Since(7, "process_path_map_", path_map(LYRA::eAttachment::kProcess), LeaveNoAttachedPaths)
      .Since(13, "criteria_", &Self::GetCriteria, [](Self& lyra) {
        lyra.SetCriteria(DesignManager::GetCompleteDummyCriteria(std::as_const(lyra).GetDesignContainer(), false));
      });
  return layout;
}

/// Beside what a file lacks, reading repairs what the first versions said in another way.
template <unsigned kVersion>
void ExpectLyraIsRead() {
  SCOPED_TRACE("version " + std::to_string(kVersion));
  const LYRA full = MakeFullLyra();
  const Layout<LYRA> layout = LyraLayout(full);
  LYRA read;
  EXPECT_NO_THROW(ReadToTheEnd(layout.Bytes<kVersion>(), read));
  const SurrogateInfo& info = read.GetAlgorithmInfo()->GetZORInfo()->GetSurrogateInfos().GetInfos().at(0);
  EXPECT_EQ(info.GetSurrogate()->GetNumberPoints(), 4);
  EXPECT_EQ(info.GetUsedHIds().size(), kVersion < 12 ? 4u : 2u) << "what was stored, or the designs of the sample";
  EXPECT_EQ(read.GetVersion(), kVersion);
  EXPECT_TRUE(read.GetCriteria().Contains(L"goal")) << "of the file or of its designs";

  LYRA expected = layout.Expected(kVersion);
  if (kVersion <= 7) {
    const auto kind = ParameterManager::eDetKind::kContinuous;
    expected.GetParameterManager().SetKind(L"old", kind);
    if (kVersion >= 2) expected.GetAlgorithmInfo()->GetZORInfo()->parameter_manager_.SetKind(L"old", kind);
  }
  EXPECT_EQ(read.GetDeactivatedDesigns(), expected.GetDeactivatedDesigns());
  for (LYRA* const lyra : {&read, &expected})
    lyra->SetDeactivatedDesigns({});  // equal sets may differ in their buckets
  EXPECT_TRUE(WithoutStamps(Store(read)) == WithoutStamps(Store(expected)));
}

template <unsigned... kVersions>
void ExpectLyrasAreRead(std::integer_sequence<unsigned, kVersions...>) {
  (ExpectLyraIsRead<kVersions>(), ...);
}

TEST(OldDatabases, AreRead) { ExpectLyrasAreRead(std::make_integer_sequence<unsigned, Layout<LYRA>::kPresent>()); }

}  // namespace
}  // namespace kestrel::testing
