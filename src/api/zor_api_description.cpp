#include <boost/numeric/conversion/cast.hpp>
#include <string>
#include <vector>

#include "api/barrier.h"
#include "api/buffers.h"
#include "support/strings.h"
#include "zor_api.h"

// The description of the problem: counts, names and importance.

namespace {

using kestrel::api::Guarded;
using kestrel::api::GuardedChange;
using kestrel::api::RequirePointer;
using kestrel::api::Target;
using Names = std::vector<std::string>;

uint32_t GetNumber(uint64_t stored, uint32_t* number) {
  Target(number) = boost::numeric_cast<uint32_t>(stored);
  return zor_success;
}

uint32_t SetNames(zor_handle_t handle, Names ZOR::*member, const char* const* names, uint32_t count) {
  return GuardedChange(handle, [&](ZOR& record) {
    Names& stored = record.*member;
    stored.clear();
    if (count > 0) RequirePointer(names);
    for (uint32_t i = 0; i < count; ++i) {
      const std::wstring wide = names[i] == nullptr ? std::wstring() : kestrel::string::widen(names[i]);
      const std::string name = kestrel::string::narrow(wide);
      if (!kestrel::string::detail::CheckVariableNameDefault(wide, true)) {
        record.SetLastError("'" + name + "' is not a valid name.");
        return zor_invalid_name;
      }
      stored.push_back(name);
    }
    return zor_success;
  });
}

uint32_t GetNameCount(zor_handle_t handle, Names ZOR::*member, uint32_t* count) {
  return Guarded(handle, [&](const ZOR& record) { return GetNumber((record.*member).size(), count); });
}

uint32_t GetName(zor_handle_t handle, Names ZOR::*member, uint32_t index, const char** name) {
  return Guarded(handle, [&](const ZOR& record) {
    const Names& stored = record.*member;
    if (index >= stored.size()) return zor_index_out_of_range;
    Target(name) = stored[index].c_str();
    return zor_success;
  });
}

}  // namespace

// The results per output are all dropped with the models, so a new count has none to size anew.

uint32_t zor_set_input_count(zor_handle_t handle, uint32_t count) {
  return GuardedChange(handle, [&](ZOR& record) {
    record.num_inputs_ = count;
    return zor_success;
  });
}

uint32_t zor_get_input_count(zor_handle_t handle, uint32_t* count) {
  return Guarded(handle, [&](const ZOR& record) { return GetNumber(record.num_inputs_, count); });
}

uint32_t zor_set_output_count(zor_handle_t handle, uint32_t count) {
  return GuardedChange(handle, [&](ZOR& record) {
    record.num_outputs_ = count;
    return zor_success;
  });
}

uint32_t zor_get_output_count(zor_handle_t handle, uint32_t* count) {
  return Guarded(handle, [&](const ZOR& record) { return GetNumber(record.num_outputs_, count); });
}

uint32_t zor_set_input_names(zor_handle_t handle, const char* const* names, uint32_t count) {
  return SetNames(handle, &ZOR::input_names_, names, count);
}

uint32_t zor_get_input_name_count(zor_handle_t handle, uint32_t* count) {
  return GetNameCount(handle, &ZOR::input_names_, count);
}

uint32_t zor_get_input_name(zor_handle_t handle, uint32_t index, const char** name) {
  return GetName(handle, &ZOR::input_names_, index, name);
}

uint32_t zor_set_output_names(zor_handle_t handle, const char* const* names, uint32_t count) {
  return SetNames(handle, &ZOR::output_names_, names, count);
}

uint32_t zor_get_output_name_count(zor_handle_t handle, uint32_t* count) {
  return GetNameCount(handle, &ZOR::output_names_, count);
}

uint32_t zor_get_output_name(zor_handle_t handle, uint32_t index, const char** name) {
  return GetName(handle, &ZOR::output_names_, index, name);
}

uint32_t zor_set_info_important(zor_handle_t handle, const uint32_t* importance) {
  return GuardedChange(handle, [&](ZOR& record) {
    if (record.num_inputs_ > 0) RequirePointer(importance);
    std::vector<uint64_t> values;
    for (uint64_t i = 0; i < record.num_inputs_; ++i) {
      if (importance[i] > zor_mandatory) {
        record.SetLastError(
            "Information of input importancy must be 0 for unimportant input, 1 for selectable input or 2 for "
            "mandatory input.");
        return zor_unknown_input_enum;
      }
      values.push_back(importance[i]);
    }
    record.settings_.SetImportantInfo(std::move(values));
    return zor_success;
  });
}

uint32_t zor_get_info_important(zor_handle_t handle, uint32_t* importance) {
  return Guarded(handle, [&](const ZOR& record) {
    kestrel::api::WriteValues(record.settings_.info_important_, importance);
    return zor_success;
  });
}

uint32_t zor_set_outputs_in_parallel_count(zor_handle_t handle, uint32_t count) {
  return Guarded(handle, [&](ZOR& record) {
    const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
    record.number_parallel_outputs_ = count;
    return zor_success;
  });
}

uint32_t zor_get_outputs_in_parallel_count(zor_handle_t handle, uint32_t* count) {
  return Guarded(handle, [&](const ZOR& record) { return GetNumber(record.number_parallel_outputs_, count); });
}
