#include <memory>
#include <sstream>
#include <utility>

#include "api/barrier.h"
#include "api/buffers.h"
#include "build/zor_handler.h"
#include "support/log.h"
#include "support/strings.h"
#include "zor_api.h"

// The build of the models. A table that cannot be taken in leaves the models of an earlier build alone.

namespace {

using kestrel::math::Matrix;

uint32_t BuildModels(ZOR& record, const Matrix& inputs, const Matrix& outputs) {
  using kestrel::utils::log::LogLevel;
  const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
  record.ClearResults();
  ZOR::HandlerData data = record.BuildHandlerData(inputs, outputs);
  kestrel::zor::ZORCombinedSettings settings = record.GetCombinedSettings(data);
  std::wostringstream messages;
  kestrel::utils::log::BasicStreamLog log(messages);
  if (!settings.Check(log, true)) {
    record.SetLastError(kestrel::string::narrow(messages.str()));
    return zor_settings_check_failed;
  }
  const auto report = std::make_shared<kestrel::utils::log::VectorLog>();
  const auto report_log =
      std::make_shared<kestrel::utils::log::LevelFilterLog>(report, static_cast<int>(LogLevel::kInformation));
  kestrel::zor::CZORHandler handler(report_log, std::move(data.parameters), std::move(data.designs), {},
                                    std::move(settings));
  handler.Build();
  record.FillZORData(handler.GetLYRA());
  record.zorsolver_.InitializeSolver(handler.TakeLYRA(), {});
  for (const auto& [level, text] : report->GetEntries()) record.report_ += kestrel::string::narrow(text) + "\n";
  record.built_ = true;
  return zor_success;
}

}  // namespace

uint32_t zor_build(zor_handle_t handle, const double* samples, uint32_t designs) {
  return kestrel::api::Guarded(handle, [&](ZOR& record) {
    const uint64_t columns = record.num_inputs_ + record.num_outputs_;
    const Matrix inputs = kestrel::api::ReadRows(samples, designs, record.num_inputs_, columns);
    const double* const first_output = samples == nullptr ? nullptr : samples + record.num_inputs_;
    const Matrix outputs = kestrel::api::ReadRows(first_output, designs, record.num_outputs_, columns);
    return BuildModels(record, inputs, outputs);
  });
}

uint32_t zor_build_split(zor_handle_t handle, const double* inputs, const double* outputs, uint32_t designs) {
  return kestrel::api::Guarded(handle, [&](ZOR& record) {
    const Matrix input_rows = kestrel::api::ReadRows(inputs, designs, record.num_inputs_);
    const Matrix output_rows = kestrel::api::ReadRows(outputs, designs, record.num_outputs_);
    return BuildModels(record, input_rows, output_rows);
  });
}
