#include <memory>
#include <utility>
#include <vector>

#include "api/barrier.h"
#include "api/buffers.h"
#include "support/strings.h"
#include "surrogates/surrogate2_base.h"
#include "zor_api.h"

// What a build left: quality, kind and description of the models, and their values at their own designs.

namespace {

using kestrel::api::GuardedResult;
using kestrel::api::Target;
using kestrel::api::WithEntry;
using kestrel::api::WriteValues;
using kestrel::math::metamodel::Subsets;
using SurrogatePointer = std::shared_ptr<kestrel::math::metamodel::SurrogateBase>;

/// Writes one value of an output.
template <class Entry, class Value>
uint32_t GetValue(zor_handle_t handle, std::vector<Entry> ZOR::*member, int32_t output, Value* value) {
  return GuardedResult(handle, [&](const ZOR& record) {
    return WithEntry(record.*member, output, [&](const Entry& entry) {
      Target(value) = static_cast<Value>(entry);
      return zor_success;
    });
  });
}

/// Writes the list of values of an output.
template <class Value>
uint32_t GetValues(zor_handle_t handle, std::vector<std::vector<Value>> ZOR::*member, int32_t output, Value* values) {
  return GuardedResult(handle, [&](const ZOR& record) {
    return WithEntry(record.*member, output, [&](const std::vector<Value>& entries) {
      WriteValues(entries, values);
      return zor_success;
    });
  });
}

}  // namespace

uint32_t zor_calculate_cv_values_per_output(zor_handle_t handle, int32_t output, double* values) {
  return GuardedResult(handle, [&](const ZOR& record) {
    const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
    return WithEntry(record.cv_indexes_per_output_, output, [&](const std::vector<uint32_t>& indexes) {
      return WithEntry(record.surrogate_per_output_, output, [&](const SurrogatePointer& surrogate) {
        WriteValues(surrogate->ApproximateCrossValidation(Subsets(indexes.begin(), indexes.end())), values);
        return zor_success;
      });
    });
  });
}

uint32_t zor_get_cop_per_output(zor_handle_t handle, int32_t output, double* cop) {
  return GetValue(handle, &ZOR::cop_per_output_, output, cop);
}

uint32_t zor_get_single_cop_per_output(zor_handle_t handle, int32_t output, double* cops) {
  return GetValues(handle, &ZOR::single_cops_per_output_, output, cops);
}

uint32_t zor_get_model_per_output(zor_handle_t handle, int32_t output, uint32_t* type) {
  return GetValue(handle, &ZOR::model_per_output_, output, type);
}

uint32_t zor_get_model_str_per_output(zor_handle_t handle, int32_t output, char** text, size_t* length) {
  return GuardedResult(handle, [&](const ZOR& record) {
    return WithEntry(record.surrogate_per_output_, output, [&](const SurrogatePointer& surrogate) {
      kestrel::api::HandOut(kestrel::string::narrow(surrogate->Name()), text, length);
      return zor_success;
    });
  });
}

uint32_t zor_get_cv_indexes_per_output(zor_handle_t handle, int32_t output, uint32_t* indexes) {
  return GetValues(handle, &ZOR::cv_indexes_per_output_, output, indexes);
}

uint32_t zor_get_input_bounds(zor_handle_t handle, double* bounds) {
  return GuardedResult(handle, [&](const ZOR& record) {
    double* target = &Target(bounds);
    for (const auto& [lower, upper] : record.GetSamplingBounds()) {
      *target++ = lower;
      *target++ = upper;
    }
    return zor_success;
  });
}

uint32_t zor_get_report(zor_handle_t handle, char** text, size_t* length) {
  return GuardedResult(handle, [&](const ZOR& record) {
    kestrel::api::HandOut(record.report_, text, length);
    return zor_success;
  });
}
