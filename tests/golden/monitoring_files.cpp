#include "golden/monitoring_files.h"

#include <boost/make_shared.hpp>
#include <boost/uuid/uuid_generators.hpp>
#include <sstream>

#include "datatypes/criterion.h"
#include "golden/detail_records.h"
#include "golden/stored_model_files.h"
#include "persistence/database/lyra_file.h"
#include "support/old_record.h"
#include "values/variant_builders.h"

namespace kestrel::testing {
namespace {

namespace datatypes = algorithm::datatypes;
namespace values = math::test;
using datatypes::AlgorithmInfo;
using datatypes::CHierachicalId;
using datatypes::Criterion;
using datatypes::Design;
using datatypes::LYRA;
using datatypes::Parameter;
using datatypes::RandomProperties;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

datatypes::ParameterManager MakeParameters() {
  datatypes::ParameterManager parameters;
  Parameter a(L"a", Parameter::eKind::kMixed);
  a.SetBoundaries(-1.0, 2.0);
  a.SetRandomProperties(RandomProperties::FromMoments(RandomProperties::eType::NORMAL, {0.5, 0.25}));
  a.SetUnit(L"mm");
  a.SetOrigin(L"drawing");
  a.SetId(CHierachicalId(1) / 2);
  a.SetMutable(datatypes::MutableMember::kConst, false);
  Parameter b(L"b");
  b.SetDetKind(Parameter::eDetKind::kOrdinalDiscrete, {0.0, 0.5, 1.0});
  b.SetModifiable(false);
  Parameter sum(L"sum", Parameter::eKind::kStochastic);
  sum.SetDependencyExpression(L"a + b");
  sum.SetActive(false);
  for (Parameter* const parameter : {&a, &b, &sum}) parameters.AddParameter(*parameter);
  parameters.SetCorrelation(L"a", L"b", 0.5);
  return parameters;
}

datatypes::CriterionSequence MakeCriteria() {
  datatypes::CriterionSequence criteria(7);
  Criterion limit(enums::CriterionType::LIMIT_STATE_LESS, L"r", L"3");
  limit.SetValues(-1.0, 2.0, 3.0, false);
  criteria.Add(L"limit", limit);
  criteria.Add(L"goal", Criterion(enums::CriterionType::OBJECTIVE_MIN, L"r"));
  return criteria;
}

/// Responses of every type that a cell can have.
CDesignEntrySequence MakeResponses(double value) {
  CDesignEntrySequence responses(3);
  responses.Add(L"r", value);
  responses.Add(L"count", 3);
  responses.Add(L"none", CDesignEntry());
  responses.Add(L"text", L"Größe \U0001D54F");
  responses.Add(L"flag", true);
  responses.Add(L"endless", -kInfinity);
  responses.Add(L"complex", values::Scalar(1.0, -2.0));
  responses.Add(L"vector", values::Vector({1.0, 2.5}));
  responses.Add(L"matrix", values::Matrix2({1.0, 2.0, 3.0, 4.0}));
  responses.Add(L"signal", values::Signal2({0.0, 1.0}, {1.0, 2.0, 3.0, 4.0}));
  return responses;
}

/// r = 1 + 2 a - b and nothing else.
Design MakePlainDesign(std::uint64_t number, double a, double b) {
  Design design(CHierachicalId(1) / number);
  CDesignEntrySequence parameters;
  parameters.Add(L"a", a);
  parameters.Add(L"b", b);
  design.SetParameters(parameters);
  design.OverrideResponse(L"r", 1.0 + 2.0 * a - b);
  design.SetRunStatus(datatypes::eRunState::kDone);
  return design;
}

/// The same with everything that a design can hold.
Design MakeDesign(std::uint64_t number, double a, double b) {
  Design design = MakePlainDesign(number, a, b);
  design.OverrideResponses(MakeResponses(1.0 + 2.0 * a - b));
  design.SetCriteria(MakeCriteria());
  design.AddStatus(RunInfoMeta(eRunInfo::kFailed, L"solver", L"r", {L"first line", L"second line"}));
  design.SetActivationState(datatypes::eActivationStatus::kInactive);
  design.SetDuplicates(CHierachicalId(9));
  design.SetIteration(CHierachicalId(2) / 3);
  design.SetAlgorithmIteration(4);
  design.SetWorkflowId(Design::eAlgorithm::kMetamodel);
  design.SetApproximated(true);
  return design;
}

datatypes::DesignManager MakeDesigns(std::vector<Design> designs) {
  datatypes::DesignManager manager(std::move(designs));
  manager.UpdateStats(datatypes::DesignManager::eStatsAction::kRecount);
  return manager;
}

/// What no caller sets but files may hold.
void FillAdditionalData(AlgorithmInfo& info) {
  ReadOld<AlgorithmInfo, 7>(info, [&](FieldWriter& field) {
    field("algo_type_", info.GetKind())("design_group_map_", info.GetDesignGroups());
    field("additional_data_", std::map<std::wstring, std::wstring>{{L"key", L"value"}});
    field("signal_info_container_", info.GetSignals())("signal_info_names_", info.GetSignalNames());
    field("detailed_info_", info.GetDetailedInfo());
  });
}

boost::shared_ptr<AlgorithmInfo> MakeAlgorithmInfo(boost::shared_ptr<AlgorithmInfo::DetailedInformationBase> details) {
  auto info = boost::make_shared<AlgorithmInfo>(AlgorithmInfo::eKind::kMetamodel);
  info->SetDesignGroup(L"start", {CHierachicalId(1) / 1, CHierachicalId(1) / 2});
  info->SetSignal(L"s", MakeSignalRecord());
  FillAdditionalData(*info);
  details->SetSamplingType(enums::DOE::SOBOL_SEQUENCE);
  info->SetDetailedInfo(std::move(details));
  return info;
}

LYRA MakeLyra(boost::shared_ptr<AlgorithmInfo::DetailedInformationBase> details) {
  LYRA lyra;
  lyra.SetParameterManager(MakeParameters());
  lyra.SetDesignContainer(
      MakeDesigns({MakeDesign(1, 0, 0), MakePlainDesign(2, 1, 0), MakePlainDesign(3, 0, 1), MakePlainDesign(4, 1, 1)}));
  lyra.SetReferenceDesign(MakePlainDesign(5, 0.5, 0.5));
  lyra.SetNominalDesign(MakePlainDesign(6, 0.5, 1));
  lyra.SetValidatedBestDesigns(MakeDesigns({MakePlainDesign(7, 1, 0.5)}));
  lyra.SetApproxDesignContainer(MakeDesigns({MakePlainDesign(8, 0.5, 0)}));
  lyra.SetCriteria(MakeCriteria());
  lyra.SetAlgorithmInfo(MakeAlgorithmInfo(std::move(details)));
  lyra.SetMetaData(L"project", "bridge");
  lyra.SetDeactivatedDesigns({CHierachicalId(1) / 9});
  const boost::uuids::string_generator uuid;
  datatypes::LYRAAttachedPath script(std::filesystem::u8path("run.py"), L"script");
  script.SetArguments(L"-v", true);
  lyra.AttachFilePath(uuid("00112233-4455-6677-8899-aabbccddeeff"), script);
  lyra.AttachFilePath(uuid("ffeeddcc-bbaa-9988-7766-554433221100"),
                      datatypes::LYRAAttachedPath("plot.png", L"plot", true), LYRA::eAttachment::kImage);
  return lyra;
}

GoldenFile MakeFile(const std::string& name, const LYRA& lyra) {
  std::ostringstream stream;
  algorithm::LYRAFile::WriteFileHeader(stream, name);
  algorithm::LYRAFile::AppendLYRAObject(stream, lyra);
  return {"monitoring_file/" + name, stream.str()};
}

}  // namespace

LYRA MakeMetamodelLyra() { return MakeLyra(MakeZorRecord()); }
LYRA MakeSystemsLyra() { return MakeLyra(MakeSystemsRecord()); }
LYRA MakeOptimizationLyra() { return MakeLyra(MakeOptimizationRecord()); }
LYRA MakeReliabilityLyra() { return MakeLyra(MakeReliabilityRecord()); }

std::vector<GoldenFile> MakeMonitoringFiles() {
  return {MakeFile("metamodel.lyra", MakeMetamodelLyra()), MakeFile("systems.lyra", MakeSystemsLyra()),
          MakeFile("optimization.lyra", MakeOptimizationLyra()), MakeFile("reliability.lyra", MakeReliabilityLyra())};
}

std::vector<GoldenFile> MakeGoldenFiles() {
  std::vector<GoldenFile> files = MakeStoredModelFiles();
  for (GoldenFile& file : MakeMonitoringFiles()) files.push_back(std::move(file));
  return files;
}

}  // namespace kestrel::testing
