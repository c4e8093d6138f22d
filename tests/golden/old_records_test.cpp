#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <sstream>

#include "api/stored_record.h"
#include "golden/monitoring_files.h"
#include "golden/read_golden.h"
#include "support/old_record.h"

// Stored models of earlier versions, and such that contradict the database inside them.

namespace kestrel::testing {
namespace {

struct Release {
  void operator()(zor_handle_t handle) const { zor_release(handle); }
};
using Handle = std::unique_ptr<ZOR, Release>;
using Record = std::unique_ptr<ZOR>;

Record GoldenRecord(const char* name = "built.zor") {
  std::istringstream stream(Committed(std::string("stored_model/") + name));
  return api::LoadRecord(stream);
}

/// The bytes of a record of an earlier version with these fields.
template <unsigned Version>
std::string StoreOld(std::function<void(FieldWriter&)> write) {
  std::ostringstream stream;
  const OldRecord<Version> record{std::move(write)};
  const OldRecord<Version>* const pointer = &record;
  portable_binary_oarchive(stream, 0) << pointer;
  return stream.str();
}

std::string StoreVersion0(const ZOR& record) {
  return StoreOld<0>([&](FieldWriter& field) {
    field("number_parallel_outputs_", record.number_parallel_outputs_)("settings_", record.settings_);
    field("old_last_error_str", std::string("an old text"))("zorsolver_", record.zorsolver_);
  });
}

std::string StoreVersion1(const ZOR& record) {
  return StoreOld<1>([&](FieldWriter& field) {
    field("number_parallel_outputs_", record.number_parallel_outputs_)("settings_", record.settings_);
    field("num_inputs_", record.num_inputs_)("num_outputs_", record.num_outputs_);
    field("input_names_", record.input_names_)("output_names_", record.output_names_);
    field("old_last_error_str", std::string("an old text"));
    field("cop_per_output_", record.cop_per_output_)("single_cops_per_output_", record.single_cops_per_output_);
    field("model_per_output_", record.model_per_output_)("cv_indexes_per_output_", record.cv_indexes_per_output_);
    field("surrogate_per_output_", record.surrogate_per_output_)("zorsolver_", record.zorsolver_);
    field("built_", record.built_);
  });
}

Handle ReadBytes(const std::string& bytes) {
  zor_handle_t handle = nullptr;
  EXPECT_EQ(zor_read_db_buf(&handle, bytes.data(), bytes.size()), zor_success);
  return Handle(handle);
}

struct VersionCase {
  const char* name;
  std::string (*store)(const ZOR&);
};

class OldStoredModel : public ::testing::TestWithParam<VersionCase> {};

TEST_P(OldStoredModel, IsReadAsAPresentOne) {
  ::testing::internal::CaptureStderr();
  const Record record = GoldenRecord();
  const Handle read = ReadBytes(GetParam().store(*record));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "a name at the wrong place";
  ASSERT_TRUE(read && read->built_);
  EXPECT_STREQ(zor_get_last_error(read.get()), "");
  EXPECT_EQ(read->number_parallel_outputs_, 1u);
  EXPECT_TRUE(read->settings_ == record->settings_);
  EXPECT_EQ(read->num_inputs_, 2u);
  EXPECT_EQ(read->input_names_, record->input_names_);
  EXPECT_EQ(read->output_names_, record->output_names_);
  EXPECT_EQ(read->cop_per_output_, record->cop_per_output_);
  EXPECT_EQ(read->single_cops_per_output_, record->single_cops_per_output_);
  EXPECT_EQ(read->model_per_output_, record->model_per_output_);
  EXPECT_EQ(read->cv_indexes_per_output_, record->cv_indexes_per_output_);
  const double point[] = {3.0, 0.5};
  double predicted[2] = {};
  EXPECT_EQ(zor_solve(read.get(), point, predicted, 1), zor_success);
  EXPECT_NEAR(predicted[0], 6.5, 1e-12);
}

TEST_P(OldStoredModel, OfAHandleThatIsNotBuiltIsRead) {
  const Handle read = ReadBytes(GetParam().store(*GoldenRecord("not_built.zor")));
  ASSERT_TRUE(read);
  EXPECT_FALSE(read->built_);
  EXPECT_EQ(read->settings_.max_CoI_, 0.25);
}

INSTANTIATE_TEST_SUITE_P(EachVersion, OldStoredModel,
                         ::testing::Values(VersionCase{"Version0", StoreVersion0},
                                           VersionCase{"Version1", StoreVersion1}),
                         [](const auto& each) { return std::string(each.param.name); });

struct Contradiction {
  const char* name;
  const char* text;  ///< empty: the record is accepted
  void (*make)(ZOR&);
};

/// Designs as they are, but the details of a run of another kind.
void ReplaceDetails(ZOR& record) {
  algorithm::datatypes::LYRA lyra = record.zorsolver_.GetLYRA();
  lyra.SetAlgorithmInfo(MakeSystemsLyra().GetAlgorithmInfo());
  record.zorsolver_.InitializeSolver(lyra, "");
}

const Contradiction kContradictions[] = {
    {"None", "", [](ZOR&) {}},
    {"OfAHandleThatIsNotBuilt", "", [](ZOR& record) { record.built_ = false, record.num_inputs_ = 9; }},
    {"NoInputNames", "", [](ZOR& record) { record.input_names_.clear(); }},
    {"NumInputs", "Number of inputs does not match.", [](ZOR& record) { record.num_inputs_ = 3; }},
    {"InputNamesSize", "Input names do not match.", [](ZOR& record) { record.input_names_.pop_back(); }},
    {"InputName", "Input names do not match.", [](ZOR& record) { record.input_names_[1] = "c"; }},
    {"NumOutputs", "Number of outputs does not match.", [](ZOR& record) { record.num_outputs_ = 1; }},
    {"OutputNamesSize", "Output names do not match.", [](ZOR& record) { record.output_names_.push_back("c"); }},
    {"OutputName", "Output names do not match.", [](ZOR& record) { record.output_names_[0] = "Stress"; }},
    {"Information", "ZOR information missing.", ReplaceDetails},
    {"CoPsSize", "CoP does not match.", [](ZOR& record) { record.cop_per_output_.pop_back(); }},
    {"CoP", "CoP does not match.",
     [](ZOR& record) { record.cop_per_output_[1] = std::nextafter(record.cop_per_output_[1], 0.0); }},
    {"CoPThatIsNaN", "CoP does not match.", [](ZOR& record) { record.cop_per_output_[0] = std::nan(""); }},
    {"ModelType", "Model type does not match.",
     [](ZOR& record) { record.model_per_output_[1] = ZOR::ModelNumber{zor_model_kriging}; }},
    {"Surrogate", "Surrogate does not match.",
     [](ZOR& record) { record.surrogate_per_output_[0].swap(record.surrogate_per_output_[1]); }},
    {"SurrogateMissing", "Surrogate does not match.", [](ZOR& record) { record.surrogate_per_output_[1].reset(); }},
    {"SingleCoPsSize", "Single CoP do not match.",
     [](ZOR& record) { record.single_cops_per_output_[1].push_back(0.0); }},
    {"SingleCoP", "Current single CoP does not match.",
     [](ZOR& record) { record.single_cops_per_output_[1][0] += 1e-6; }},
    {"SingleCoPByRounding", "", [](ZOR& record) { record.single_cops_per_output_[1][0] *= 1.0 + 4e-16; }},
    {"CVIndexesSize", "Cross validation indexes do not match.",
     [](ZOR& record) { record.cv_indexes_per_output_[0].pop_back(); }},
    {"CVIndex", "Cross validation index does not match.",
     [](ZOR& record) { ++record.cv_indexes_per_output_[1].back(); }},
};

class ContradictoryModel : public ::testing::TestWithParam<Contradiction> {};

TEST_P(ContradictoryModel, IsRefusedWithItsText) {
  const Record record = GoldenRecord();
  GetParam().make(*record);
  std::ostringstream stream;
  api::StoreRecord(*record, stream);
  const std::string bytes = stream.str();

  zor_handle_t raw = nullptr;
  ASSERT_EQ(zor_create(&raw), zor_success);
  const Handle earlier(raw);
  const bool accepted = std::string(GetParam().text).empty();
  EXPECT_EQ(zor_read_db_buf(&raw, bytes.data(), bytes.size()), accepted ? zor_success : zor_handle_init_failed);
  EXPECT_STREQ(zor_get_last_error(earlier.get()), GetParam().text);
  EXPECT_EQ(raw != earlier.get(), accepted);
  const Handle read(raw == earlier.get() ? nullptr : raw);
}

INSTANTIATE_TEST_SUITE_P(EachField, ContradictoryModel, ::testing::ValuesIn(kContradictions),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace kestrel::testing
