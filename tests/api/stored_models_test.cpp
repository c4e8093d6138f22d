#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "handle.h"
#include "support/temporary_folder.h"

namespace zor_test {
namespace {

using Bytes = std::string;

Bytes Store(const Handle& handle) {
  void* buffer = nullptr;
  std::size_t size = 0;
  EXPECT_EQ(zor_write_db_buf(handle.get(), &buffer, &size), zor_success) << LastError(handle);
  Bytes bytes(static_cast<const char*>(buffer), size);
  zor_release_buf(buffer);
  return bytes;
}

Handle Load(const Bytes& bytes) {
  zor_handle_t handle = MakeHandle().release();
  const Handle earlier(handle);
  EXPECT_EQ(zor_read_db_buf(&handle, bytes.data(), bytes.size()), zor_success) << LastError(earlier);
  return handle == earlier.get() ? Handle() : Handle(handle);
}

/// The time of writing, "2026-01-31T12:00:00.000000", is the one thing that differs between two writes.
Bytes WithoutTimes(Bytes bytes) {
  const std::string pattern = "dddd-dd-ddTdd:dd:dd.dddddd";
  const auto matches = [](char sign, char byte) { return sign == 'd' ? byte >= '0' && byte <= '9' : sign == byte; };
  for (auto begin = bytes.begin(); begin != bytes.end();) {
    begin = std::search(begin, bytes.end(), pattern.begin(), pattern.end(),
                        [&](char byte, char sign) { return matches(sign, byte); });
    if (begin != bytes.end()) begin = std::fill_n(begin, pattern.size(), '-');
  }
  return bytes;
}

/// Bit patterns, so that NaN equals NaN and -0 differs from 0.
std::vector<std::uint64_t> Bits(const std::vector<double>& values) {
  std::vector<std::uint64_t> bits(values.size());
  std::memcpy(bits.data(), values.data(), values.size() * sizeof(double));
  return bits;
}

/// Everything that a built handle answers, as one list of numbers.
std::vector<double> Answers(const Handle& handle, const Table& table) {
  std::vector<double> all;
  const auto take = [&](std::size_t count, auto&& call) {
    std::vector<double> values(count, std::nan(""));
    EXPECT_EQ(call(values.data()), zor_success) << LastError(handle);
    all.insert(all.end(), values.begin(), values.end());
  };
  const auto* points = table.inputs.data();
  const uint32_t rows = table.designs;
  take(rows * table.num_outputs, [&](double* v) { return zor_solve(handle.get(), points, v, rows); });
  take(2 * table.num_inputs, [&](double* v) { return zor_get_input_bounds(handle.get(), v); });
  for (int32_t k = 0; k < static_cast<int32_t>(table.num_outputs); ++k) {
    take(rows * table.num_inputs,
         [&](double* v) { return zor_calculate_gradients_per_output(handle.get(), k, points, rows, v); });
    take(rows * 4, [&](double* v) { return zor_calculate_errors_per_output(handle.get(), k, points, rows, v); });
    take(rows, [&](double* v) { return zor_calculate_density_per_output(handle.get(), k, points, rows, v, rows); });
    take(rows, [&](double* v) { return zor_calculate_cv_values_per_output(handle.get(), k, v); });
    take(1, [&](double* v) { return zor_get_cop_per_output(handle.get(), k, v); });
    take(table.num_inputs, [&](double* v) { return zor_get_single_cop_per_output(handle.get(), k, v); });
  }
  return all;
}

std::string ModelText(const Handle& handle, int32_t output) {
  char* text = nullptr;
  std::size_t length = 0;
  EXPECT_EQ(zor_get_model_str_per_output(handle.get(), output, &text, &length), zor_success);
  std::string model(text, length);
  zor_release_buf(text);
  return model;
}

TEST(StoredModel, AnswersEveryCallWithTheSameBits) {
  Table table = MakeTable(40, 4, 3);
  table.Output(7, 1) = std::nan("");  // one response on fewer designs
  const Handle built = MakeBuilt(table);
  const Handle read = Load(Store(built));
  ASSERT_TRUE(read);
  EXPECT_EQ(Bits(Answers(built, table)), Bits(Answers(read, table)));
  EXPECT_EQ(ModelText(built, 1), ModelText(read, 1));
  std::vector<uint32_t> groups(table.designs);
  EXPECT_EQ(zor_get_cv_indexes_per_output(read.get(), 2, groups.data()), zor_success);
  const char* name = nullptr;
  EXPECT_EQ(zor_get_output_name(read.get(), 2, &name), zor_success);
  EXPECT_STREQ(name, "y2");
}

TEST(StoredModel, IsWrittenAgainWithTheSameBytes) {
  const Table table = MakeTable(30, 3, 2);
  const Handle built = MakeBuilt(table);
  const Bytes first = Store(built);
  const Handle read = Load(first);
  ASSERT_TRUE(read);
  EXPECT_EQ(WithoutTimes(Store(read)), WithoutTimes(first));
  EXPECT_EQ(WithoutTimes(Store(built)), WithoutTimes(first)) << "writing has changed the record";
  EXPECT_EQ(Bits(Answers(built, table)), Bits(Answers(read, table)));
}

TEST(StoredModel, KeepsAHandleThatIsNotBuilt) {
  const Handle handle = MakeHandle();
  EXPECT_EQ(zor_set_input_count(handle.get(), 7), zor_success);
  EXPECT_EQ(zor_set_max_coi(handle.get(), 0.25), zor_success);
  const Handle read = Load(Store(handle));
  ASSERT_TRUE(read);
  uint32_t count = 0;
  double max_coi = 0.0;
  EXPECT_EQ(zor_get_input_count(read.get(), &count), zor_success);
  EXPECT_EQ(zor_get_max_coi(read.get(), &max_coi), zor_success);
  EXPECT_EQ(count, 7u);
  EXPECT_EQ(max_coi, 0.25);
  EXPECT_FALSE(IsBuilt(read));
}

TEST(StoredModel, OfAHandleWithoutNamesPredicts) {
  const Table table = MakeTable(30, 2, 1);
  const Handle handle = MakeHandle();
  SetCounts(handle, table);
  ASSERT_EQ(Build(handle, table), zor_success);
  const Handle read = Load(Store(handle));
  ASSERT_TRUE(read);
  std::vector<double> a(table.designs);
  std::vector<double> b(table.designs);
  EXPECT_EQ(zor_solve(handle.get(), table.inputs.data(), a.data(), table.designs), zor_success);
  EXPECT_EQ(zor_solve(read.get(), table.inputs.data(), b.data(), table.designs), zor_success);
  EXPECT_EQ(Bits(a), Bits(b));
}

TEST(StoredModel, GoesToAFileAndBack) {
  const kestrel::TemporaryFolder folder;
  const std::string path = folder.Path("Träger β.zor");
  const Table table = MakeTable(30, 2, 1);
  const Handle built = MakeBuilt(table);
  ASSERT_EQ(zor_write_db_file(built.get(), path.c_str()), zor_success) << LastError(built);
  EXPECT_EQ(WithoutTimes(folder.Read("Träger β.zor")), WithoutTimes(Store(built)));
  zor_handle_t handle = nullptr;
  ASSERT_EQ(zor_read_db_file(&handle, path.c_str()), zor_success);
  const Handle read(handle);
  EXPECT_EQ(Bits(Answers(built, table)), Bits(Answers(read, table)));
}

struct WriteCase {
  const char* path;
  const char* text;
};

TEST(StoredModel, ReportsWhatItCannotWrite) {
  const Handle built = MakeBuilt(MakeTable(30, 2, 1));
  for (const WriteCase& c :
       {WriteCase{"/dev/full", "output stream error"},
        WriteCase{"/nonexistent/model.zor", "Could not open \"/nonexistent/model.zor\": No such file or directory"},
        WriteCase{"/", "Could not open \"/\": Is a directory"}}) {
    EXPECT_EQ(zor_write_db_file(built.get(), c.path), zor_calculation_error) << c.path;
    EXPECT_EQ(LastError(built), c.text);
  }
  EXPECT_EQ(zor_write_db_file(built.get(), nullptr), zor_calculation_error);
  EXPECT_EQ(zor_write_db_file(nullptr, "model.zor"), zor_invalid_handle);
}

TEST(StoredModel, RefusesWhatIsNone) {
  const kestrel::TemporaryFolder folder;
  const std::string fifo = folder.Path("fifo");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const std::string whole = Store(MakeBuilt(MakeTable(20, 2, 1)));
  const std::string paths[] = {folder.Path("missing"),
                               folder.Path(""),
                               fifo,
                               "/dev/zero",
                               folder.Write("empty", ""),
                               folder.Write("text", "a,b\n1,2\n"),
                               folder.Write("magic", "KBA"),
                               folder.Write("half", whole.substr(0, whole.size() / 2)),
                               folder.Write("other", "LYRA" + whole)};
  for (const std::string& path : paths) {
    const Handle earlier = MakeHandle();
    zor_handle_t handle = earlier.get();
    EXPECT_EQ(zor_read_db_file(&handle, path.c_str()), zor_handle_init_failed) << path;
    EXPECT_EQ(handle, earlier.get()) << "a failed read leaves the handle";
    EXPECT_NE(LastError(earlier), "") << path;
    handle = nullptr;
    EXPECT_EQ(zor_read_db_file(&handle, path.c_str()), zor_handle_init_failed) << path;
    EXPECT_EQ(handle, nullptr);
  }
  EXPECT_EQ(zor_read_db_file(nullptr, paths[0].c_str()), zor_handle_init_failed);
}

TEST(MonitoringFile, IsWrittenAndDescribed) {
  const kestrel::TemporaryFolder folder;
  const std::string path = folder.Path("new/run.lyra");
  const Handle built = MakeBuilt(MakeTable(30, 2, 2));
  ASSERT_EQ(zor_write_monitoring_file(built.get(), path.c_str()), zor_success) << LastError(built);
  char* text = nullptr;
  std::size_t length = 0;
  ASSERT_EQ(zor_describe_monitoring_file(path.c_str(), &text, &length), zor_success);
  const std::string description(text, length);
  zor_release_buf(text);
  for (const char* const piece : {"\"filename\":\"run.lyra\"", "\"lyra\":14", "\"responses\":[\"y0\",\"y1\"]",
                                  "\"total\":30", "\"name\":\"x1\"", "\"response\":\"y1\""}) {
    EXPECT_NE(description.find(piece), std::string::npos) << piece << " in " << description;
  }
  EXPECT_EQ(zor_write_monitoring_file(MakeHandle().get(), path.c_str()), zor_not_built);
  EXPECT_EQ(zor_write_monitoring_file(built.get(), "/dev/full"), zor_calculation_error);
  EXPECT_NE(LastError(built), "");
}

TEST(MonitoringFile, TellsWhyItCannotBeDescribed) {
  char* text = nullptr;
  std::size_t length = 0;
  ASSERT_EQ(zor_describe_monitoring_file("/nonexistent/run.lyra", &text, &length), zor_handle_init_failed);
  EXPECT_EQ(std::string(text, length), "Error while reading \"/nonexistent/run.lyra\": file not found");
  zor_release_buf(text);
}

TEST(Report, ComesWithTheModelsAndIsNotStored) {
  const Handle built = MakeBuilt(MakeTable(30, 2, 1));
  const auto report = [](const Handle& handle) {
    char* text = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(zor_get_report(handle.get(), &text, &length), zor_success);
    std::string copy(text, length);
    zor_release_buf(text);
    return copy;
  };
  EXPECT_NE(report(built).find(" Best Metamodels "), std::string::npos);
  EXPECT_EQ(report(Load(Store(built))), "");
}

}  // namespace
}  // namespace zor_test
