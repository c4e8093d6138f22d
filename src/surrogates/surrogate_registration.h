#pragma once

namespace kestrel::math::metamodel {

/// Makes sure that every surrogate and kernel class is linked and registered with the archives before a stored model is
/// read through a pointer to its base: constructs and drops one object of each.
void surrogate_classes_registration_policy();
void surrogate_classes_registration_base_policy();

}  // namespace kestrel::math::metamodel
