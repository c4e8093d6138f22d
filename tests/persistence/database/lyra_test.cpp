#include "persistence/database/lyra.h"

#include <gtest/gtest.h>

#include <boost/uuid/uuid_generators.hpp>
#include <limits>

#include "datatypes/criterion.h"
#include "persistence/database/sample_lyra.h"
#include "support/old_record.h"
#include "support/stored.h"

namespace kestrel::algorithm::datatypes {
namespace {

using testing::FieldWriter;
using testing::Load;
using testing::MakeLyra;
using testing::ReadOld;
using testing::Store;

const boost::uuids::uuid kUuid = boost::uuids::string_generator()("00112233-4455-6677-8899-aabbccddeeff");

const math::metamodel::SurrogateBase& ModelOf(const LYRA& lyra) {
  return *lyra.GetAlgorithmInfo()->GetZORInfo()->GetSurrogateInfos().GetInfos().at(0).GetSurrogate();
}

LYRA Reread(const LYRA& lyra) {
  LYRA read;
  Load(Store(lyra), read);
  return read;
}

TEST(Lyra, ComesBackWithItsSurrogatesWhole) {
  LYRA lyra = MakeLyra();
  lyra.SetDeactivatedDesigns({CHierachicalId(3), CHierachicalId(5) / 1});
  lyra.SetMetaData(L"project", "bridge");
  LYRAAttachedPath script(std::filesystem::u8path("run.py"), L"script");
  script.SetArguments(L"-v", true);
  lyra.AttachFilePath(kUuid, script);
  lyra.AttachFilePath(boost::uuids::nil_uuid(), LYRAAttachedPath("plot.png", L"plot", true), LYRA::eAttachment::kImage);

  const LYRA read = Reread(lyra);
  EXPECT_EQ(read.GetDesignContainer().GetDesigns(), lyra.GetDesignContainer().GetDesigns());
  EXPECT_EQ(read.GetParameterManager(), lyra.GetParameterManager());
  EXPECT_TRUE(ModelOf(read) == ModelOf(lyra));
  EXPECT_EQ(read.GetDeactivatedDesigns(), lyra.GetDeactivatedDesigns());
  EXPECT_EQ(*read.GetAttachedFileData(kUuid), script);
  EXPECT_EQ(read.GetAttachedPaths(LYRA::eAttachment::kImage).size(), 1u);
  EXPECT_EQ(read.GetMetaData().at(L"project"), "bridge");
  EXPECT_EQ(read.GetMetaData().count(meta_data::md_id_qmk_version_str), 1u);
  EXPECT_EQ(read.GetVersion(), 14u);
  EXPECT_EQ(testing::FirstNameOutOfOrder(
                lyra, {"parameter_manager_", "design_container_", "reference_design_", "algorithm_info_", "meta_data_",
                       "validated_best_designs_", "approx_design_container_", "nominal_design_", "image_path_map_",
                       "process_path_map_", "criteria_"}),
            "");
}

TEST(Lyra, IsNotChangedByWriting) {
  const LYRA lyra = MakeLyra();
  const auto without_time = [&] {
    std::string bytes = Store(lyra);
    const std::size_t key = bytes.find("last_write_time");
    return bytes.replace(key + sizeof("last_write_time"), 40, "");
  };
  const std::string first = without_time();
  EXPECT_EQ(without_time(), first);
  EXPECT_EQ(ModelOf(lyra).GetNumberPoints(), 12);
  EXPECT_TRUE(lyra.GetMetaData().empty());
  EXPECT_TRUE(lyra.GetAlgorithmInfo()->GetZORInfo()->GetSurrogateInfos().GetInfos()[0].GetUsedHIds().empty());
}

TEST(Lyra, StoresSharedAlgorithmInformationOnce) {
  const LYRA first = MakeLyra();
  const LYRA second = first;
  std::stringstream stream;
  {
    portable_binary_oarchive archive(stream);
    archive << first << second;
  }
  portable_binary_iarchive archive(stream);
  LYRA read_first;
  LYRA read_second;
  archive >> read_first >> read_second;
  EXPECT_EQ(read_first.GetAlgorithmInfo(), read_second.GetAlgorithmInfo());
}

TEST(Lyra, IgnoresDeactivatedDesignsThatAreNoArchive) {
  const std::string cut_off("KBA\x04\x11\x00\x03\x00 and then nothing", 25);
  for (const std::string& entry : std::vector<std::string>{"", "none", "KBA", cut_off}) {
    LYRA read;
    ReadOld<LYRA, 3>(read, [&](FieldWriter& field) {
      const LYRA empty;
      const bool consistent = false;
      field("surrogate_infos_", SurrogateInfoContainer());
      field("parameter_manager_", empty.GetParameterManager());
      field("design_container_", empty.GetDesignContainer());
      field("is_consistent_", consistent)("reference_design_", empty.GetReferenceDesign());
      field("algorithm_info_", boost::shared_ptr<AlgorithmInfo>());
      field("meta_data_", MetaData{{meta_data::md_id_deactivated_designs, entry}});
    });
    EXPECT_TRUE(read.GetDeactivatedDesigns().empty());
    EXPECT_EQ(read.GetMetaData().size(), 1u);
    EXPECT_EQ(read.GetAlgorithmInfo(), nullptr);
    EXPECT_EQ(read.GetVersion(), 3u);
  }
}

TEST(Lyra, KnowsWhetherParametersAreMissing) {
  LYRA lyra;
  EXPECT_NO_THROW(lyra.CheckConsistency());
  lyra = MakeLyra();
  EXPECT_TRUE(lyra.IsConsistent());
  lyra.GetParameterManager().EraseParameter(L"b");
  EXPECT_FALSE(lyra.IsConsistent());
  try {
    lyra.CheckConsistency();
    ADD_FAILURE();
  } catch (const utils::runtime_error& error) {
    EXPECT_EQ(error.What(), L"Parameter \"b\" does not exist in manager.");
  }
}

TEST(Lyra, TakesSamplingBoundsFromActiveDesignsWithFiniteInputs) {
  math::Matrix points(5, 2);
  points << 1, 10, 2, 20, 3, 30, -9, std::numeric_limits<double>::infinity(), 99, 99;
  LYRA lyra;
  lyra.SetDesignContainer(CreateDesignsFromMatrices({L"a", L"b"}, points, {}, math::Matrix(5, 0)));
  lyra.SetDeactivatedDesigns({CHierachicalId(5)});
  const LYRA::BoundsByName expected{{L"a", {1.0, 3.0}}, {L"b", {10.0, 30.0}}};
  EXPECT_EQ(lyra.GetParameterSamplingBounds(), expected);
  EXPECT_EQ(lyra.GetFilteredDesignContainer().size(), 4u);
}

TEST(Lyra, GivesTheBoundsOfOptimizationParameters) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  using eDetKind = ParameterManager::eDetKind;
  LYRA lyra;
  ParameterManager& parameters = lyra.GetParameterManager();
  for (const wchar_t* name : {L"bounded", L"free", L"discrete", L"constant"}) parameters.AddParameter(Parameter(name));
  parameters.SetBoundaries(L"bounded", -1.0, 2.0);
  parameters.GetParameter(L"discrete").SetDetKind(eDetKind::kOrdinalDiscrete, {4.0, 2.0, 8.0});
  parameters.SetConst(L"constant", true);
  const LYRA::BoundsByName expected{
      {L"bounded", {-1.0, 2.0}}, {L"free", {-kInfinity, kInfinity}}, {L"discrete", {2.0, 8.0}}};
  EXPECT_EQ(lyra.GetParameterBounds(), expected);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
