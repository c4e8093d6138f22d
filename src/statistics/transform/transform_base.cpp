#include "statistics/transform/transform_base.h"

#include <stdexcept>

#include "statistics/transform/transform_boxcox.h"

namespace kestrel::math::transform {

void Transform::RequireBuilt() const {
  if (need_build_) throw std::logic_error("can not transform - build first");
}

bool Transform::AcceptsColumns(Index columns) const {
  if (dynamic_cast<const TransBoxCox*>(this) != nullptr) return columns <= 1;
  const auto* minmax = dynamic_cast<const TransMinMax*>(this);
  return minmax == nullptr || need_build_ || minmax->GetNumberColumns() == columns;
}

}  // namespace kestrel::math::transform
