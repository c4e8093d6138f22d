#include "statistics/transform/transform_base.h"

#include <stdexcept>

namespace kestrel::math::transform {

void Transform::RequireBuilt() const {
  if (need_build_) throw std::logic_error("can not transform - build first");
}

}  // namespace kestrel::math::transform
