#include <string>

#include "api/barrier.h"
#include "api/buffers.h"
#include "build/zorsolver.h"
#include "support/strings.h"
#include "zor_api.h"

// The evaluation of the models at new points. Out of bounds they raise: the caller gets the text.

namespace {

using kestrel::api::GuardedResult;
using kestrel::api::ReadRows;
using kestrel::api::WithEntry;
using kestrel::api::WriteRows;
using kestrel::math::Matrix;
using kestrel::zor::ZORSolver;
using Bounds = kestrel::zor::enums::eExtrapolationTypes;

constexpr bool kThrowing = true;
constexpr uint64_t kErrorValues = 4;    // of an error record, handed out as errors
constexpr uint64_t kDensityColumn = 4;  // the value behind them

uint32_t Solve(zor_handle_t handle, const double* inputs, double* outputs, uint32_t designs, bool extrapolate) {
  return GuardedResult(handle, [&](const ZOR& record) {
    const Matrix points = ReadRows(inputs, designs, record.num_inputs_);
    const Matrix values = record.zorsolver_.ApproximateResponses(
        points, extrapolate ? Bounds::kFree : Bounds::kSamplingBounds, kThrowing);
    return WriteRows(values, designs, 0, record.num_outputs_, outputs);
  });
}

/// One of the evaluations per response of the solver.
using Evaluation = Matrix (ZORSolver::*)(const kestrel::math::MatrixIn&, const std::wstring&, Bounds, bool) const;

Matrix EvaluateResponse(const ZOR& record, Evaluation evaluation, const std::string& name, const double* inputs,
                        uint32_t designs, Bounds bounds) {
  const Matrix points = ReadRows(inputs, designs, record.num_inputs_);
  return (record.zorsolver_.*evaluation)(points, kestrel::string::widen(name), bounds, kThrowing);
}

uint32_t CalculateGradients(zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs,
                            double* gradients, Bounds bounds) {
  return GuardedResult(handle, [&](const ZOR& record) {
    return WithEntry(record.output_names_, output, [&](const std::string& name) {
      const Matrix rows =
          EvaluateResponse(record, &ZORSolver::ApproximateGradientsPerResponse, name, inputs, designs, bounds);
      return WriteRows(rows, designs, 0, record.num_inputs_, gradients);
    });
  });
}

uint32_t CalculateErrors(zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs, double* errors,
                         Bounds bounds) {
  return GuardedResult(handle, [&](const ZOR& record) {
    return WithEntry(record.output_names_, output, [&](const std::string& name) {
      const Matrix rows =
          EvaluateResponse(record, &ZORSolver::ApproximateErrorsPerResponse, name, inputs, designs, bounds);
      return WriteRows(rows, designs, 0, kErrorValues, errors);
    });
  });
}

uint32_t CalculateDensity(zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs, double* density,
                          uint32_t capacity, Bounds bounds) {
  return GuardedResult(handle, [&](const ZOR& record) {
    return WithEntry(record.output_names_, output, [&](const std::string& name) {
      if (capacity == 0 || designs > capacity) return static_cast<uint32_t>(zor_size_mismatch);
      const Matrix rows =
          EvaluateResponse(record, &ZORSolver::ApproximateErrorsPerResponse, name, inputs, designs, bounds);
      return WriteRows(rows, designs, kDensityColumn, 1, density);
    });
  });
}

}  // namespace

uint32_t zor_solve(zor_handle_t handle, const double* inputs, double* outputs, uint32_t designs) {
  return Solve(handle, inputs, outputs, designs, false);
}

uint32_t zor_solve_extrapolate(zor_handle_t handle, const double* inputs, double* outputs, uint32_t designs) {
  return Solve(handle, inputs, outputs, designs, true);
}

uint32_t zor_calculate_gradients_per_output(zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs,
                                            double* gradients) {
  return CalculateGradients(handle, output, inputs, designs, gradients, Bounds::kSamplingBounds);
}

uint32_t zor_calculate_gradients_per_output_extrapolate(zor_handle_t handle, int32_t output, const double* inputs,
                                                        uint32_t designs, double* gradients) {
  return CalculateGradients(handle, output, inputs, designs, gradients, Bounds::kFree);
}

uint32_t zor_calculate_errors_per_output(zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs,
                                         double* errors) {
  return CalculateErrors(handle, output, inputs, designs, errors, Bounds::kSamplingBounds);
}

uint32_t zor_calculate_errors_per_output_extrapolate(zor_handle_t handle, int32_t output, const double* inputs,
                                                     uint32_t designs, double* errors) {
  return CalculateErrors(handle, output, inputs, designs, errors, Bounds::kFree);
}

uint32_t zor_calculate_density_per_output(zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs,
                                          double* density, uint32_t capacity) {
  return CalculateDensity(handle, output, inputs, designs, density, capacity, Bounds::kSamplingBounds);
}

uint32_t zor_calculate_density_per_output_extrapolate(zor_handle_t handle, int32_t output, const double* inputs,
                                                      uint32_t designs, double* density, uint32_t capacity) {
  return CalculateDensity(handle, output, inputs, designs, density, capacity, Bounds::kFree);
}
