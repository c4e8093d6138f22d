#include "statistics/transform/transform_limits.h"

#include <boost/format.hpp>
#include <stdexcept>

#include "persistence/archive/archives.h"

namespace kestrel::math::transform {

bool TransLimits::Build(const MatrixIn&) {
  if (lower_limit_ >= upper_limit_) throw std::runtime_error("Minimum limit should be less than maximum.");
  need_build_ = false;
  return true;
}

Matrix TransLimits::ScaleBackward(const MatrixIn& data) const {
  RequireBuilt();
  return data.unaryExpr(
      [this](double x) {  // by comparisons that fail, so that a NaN passes and a NaN limit limits nothing
        const double raised = x < lower_limit_ ? lower_limit_ : x;
        return raised > upper_limit_ ? upper_limit_ : raised;
      });
}

std::wstring TransLimits::Str() const {
  return L"Limits (" + (boost::wformat(L"%1%, ") % lower_limit_).str() + (boost::wformat(L"%1%") % upper_limit_).str() +
         L")";
}

bool TransLimits::operator==(const Transform& other) const {
  if (need_build_ != other.GetNeedBuild()) return false;
  const auto* limits = dynamic_cast<const TransLimits*>(&other);
  return limits != nullptr && lower_limit_ == limits->lower_limit_ && upper_limit_ == limits->upper_limit_;
}

std::unique_ptr<Transform> TransLimits::Clone() const { return std::make_unique<TransLimits>(*this); }

template <class Archive>
void TransLimits::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("Transform", boost::serialization::base_object<Transform>(*this));
  archive& make_nvp("lower_limit_", lower_limit_);
  archive& make_nvp("upper_limit_", upper_limit_);
}

}  // namespace kestrel::math::transform

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::transform::TransLimits)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::transform::TransLimits)
