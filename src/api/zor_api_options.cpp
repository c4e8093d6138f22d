#include <algorithm>
#include <boost/numeric/conversion/cast.hpp>
#include <iterator>
#include <string_view>

#include "api/barrier.h"
#include "api/buffers.h"
#include "selection/zor2_settings.h"
#include "zor_api.h"

// The options: a setter and a getter for each row of option_list.inc.

namespace {

using kestrel::api::Guarded;
using kestrel::api::GuardedChange;
using kestrel::api::Target;
using kestrel::math::metamodel::ZORSettings;
namespace TestingType = kestrel::math::metamodel::TestingType;

// A kind of option: the type at the interface, which values a setter takes and a getter hands out, and the conversion.

/// Takes and hands out everything; the build tests the values.
struct AnyValue {
  static constexpr const char* kRefusal = "";
  static constexpr const char* kUnknown = "";
  template <class Value>
  static bool Accepts(Value) {
    return true;
  }
  template <class Value>
  static bool Knows(Value) {
    return true;
  }
};

struct Flag : AnyValue {
  using Wire = uint32_t;
  static constexpr const char* kRefusal = "Input must be zor_true or zor_false.";
  static bool Accepts(uint32_t value) { return value <= zor_true; }
  static uint32_t ToWire(bool value) { return value ? zor_true : zor_false; }
};

struct Testing {
  using Wire = uint32_t;
  static constexpr const char* kRefusal = "Input must be zor_cross_validation or zor_leave_one_out.";
  static constexpr const char* kUnknown = "Unknown testing type returned.";
  static bool Accepts(uint32_t value) { return value <= zor_leave_one_out; }
  static bool Knows(TestingType::eTestingType value) {
    return value == TestingType::kCrossValidation || value == TestingType::kLeaveOneOut;
  }
  static uint32_t ToWire(TestingType::eTestingType value) { return static_cast<uint32_t>(value); }
};

struct Count : AnyValue {
  using Wire = uint32_t;
  static uint32_t ToWire(uint64_t value) { return boost::numeric_cast<uint32_t>(value); }
};

struct Real : AnyValue {
  using Wire = double;
  static double ToWire(double value) { return value; }
};

template <class Kind, class Owner, class Value>
uint32_t SetOption(zor_handle_t handle, typename Kind::Wire value, void (Owner::*setter)(Value)) {
  if (handle != nullptr && !Kind::Accepts(value)) {
    handle->SetLastError(Kind::kRefusal);
    return zor_unknown_input_enum;
  }
  return GuardedChange(handle, [&](ZOR& record) {
    (record.settings_.*setter)(static_cast<Value>(value));
    return zor_success;
  });
}

template <class Kind, class Owner, class Value>
uint32_t GetOption(zor_handle_t handle, typename Kind::Wire* value, Value Owner::*member) {
  return Guarded(handle, [&](ZOR& record) {
    const Value stored = record.settings_.*member;
    if (!Kind::Knows(stored)) {
      record.SetLastError(Kind::kUnknown);
      return zor_unknown_return_enum;
    }
    Target(value) = Kind::ToWire(stored);
    return zor_success;
  });
}

/// The options that can be named, too.
struct ModelSwitch {
  std::string_view name;
  uint32_t (*set)(zor_handle_t, uint32_t);
  uint32_t (*get)(zor_handle_t, uint32_t*);
};

constexpr ModelSwitch kModelSwitches[] = {
    {"polynomials", zor_set_use_polynomials, zor_get_use_polynomials},
    {"mls", zor_set_use_mls, zor_get_use_mls},
    {"kriging", zor_set_use_kriging, zor_get_use_kriging},
    {"anisotropic_kriging", zor_set_use_anisotropic_kriging, zor_get_use_anisotropic_kriging},
};

/// Null, with the last error set, for any other name.
const ModelSwitch* FindModelSwitch(ZOR& record, const char* name) {
  const auto has_name = [name](const ModelSwitch& entry) { return name != nullptr && entry.name == name; };
  const auto* const entry = std::find_if(std::begin(kModelSwitches), std::end(kModelSwitches), has_name);
  if (entry != std::end(kModelSwitches)) return entry;
  record.SetLastError("Model type unknown. - Custum interface not enabled.");
  return nullptr;
}

}  // namespace

#define ZOR_OPTION(name, Kind, Setter, member)                      \
  uint32_t zor_set_##name(zor_handle_t handle, Kind::Wire value) {  \
    return SetOption<Kind>(handle, value, &ZORSettings::Setter);    \
  }                                                                 \
  uint32_t zor_get_##name(zor_handle_t handle, Kind::Wire* value) { \
    return GetOption<Kind>(handle, value, &ZORSettings::member);    \
  }
#include "option_list.inc"
#undef ZOR_OPTION

uint32_t zor_set_use_model_type(zor_handle_t handle, const char* name, uint32_t use) {
  return GuardedChange(handle, [&](ZOR& record) -> uint32_t {
    const ModelSwitch* const model = FindModelSwitch(record, name);
    if (model == nullptr) return zor_custom_not_enabled;
    return model->set(handle, use);
  });
}

uint32_t zor_get_use_model_type(zor_handle_t handle, const char* name, uint32_t* use) {
  return Guarded(handle, [&](ZOR& record) -> uint32_t {
    const ModelSwitch* const model = FindModelSwitch(record, name);
    if (model == nullptr) return zor_custom_not_enabled;
    return model->get(handle, use);
  });
}
