#include "statistics/transform/transform_base.h"

#include <stdexcept>

#include "persistence/archive/archives.h"
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

template <class Archive>
void Transform::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("need_build_", need_build_);
}

}  // namespace kestrel::math::transform

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::transform::Transform)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::transform::Transform)
