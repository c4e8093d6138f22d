#pragma once

#include <boost/mpl/int.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/version.hpp>

#include <optional>

/// std::optional in the layout of boost::optional: class version 1, "initialized", then "value" if there is one.
namespace boost::serialization {

template <class T>
struct version<std::optional<T>> {
  using tag = mpl::integral_c_tag;
  using type = mpl::int_<1>;
  static constexpr int value = 1;
};

/// Not split into `save` and `load`: overload resolution among the engine's `load` would instantiate std::optional of
/// an incomplete type.
template <class Archive, class T>
void serialize(Archive& archive, std::optional<T>& optional, unsigned /*version*/) {
  bool initialized = optional.has_value();
  archive& make_nvp("initialized", initialized);
  if constexpr (Archive::is_loading::value) {
    if (!initialized) {
      optional.reset();
    } else if (!optional.has_value()) {
      optional.emplace();
    }
  }
  if (initialized) archive& make_nvp("value", *optional);
}

}  // namespace boost::serialization
