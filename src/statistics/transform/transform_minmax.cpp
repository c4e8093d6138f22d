#include "statistics/transform/transform_minmax.h"

#include <boost/format.hpp>
#include <stdexcept>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "statistics/basic_statistics.h"

namespace kestrel::math::transform {
namespace {

// Equal lengths and entries; a NaN equals nothing.
bool Equal(const Vector& a, const Vector& b) { return a.size() == b.size() && (a.array() == b.array()).all(); }

// The vector's entry if it has exactly one.
std::wstring SingleEntry(const wchar_t* format, const Vector& vector) {
  return vector.size() == 1 ? (boost::wformat(format) % vector(0)).str() : std::wstring();
}

// The factor that brings the range of a column to the target range, 1 for a constant column.
double Scaling(const statistics::Range& range, double target_range) {
  constexpr double kConstantRange = 1e-12;
  if (statistics::IsNegligible(range, kConstantRange)) return 1.0;
  // In halves, because the range of huge values of both signs is no number any more.
  return 0.5 * target_range / (0.5 * range.highest - 0.5 * range.lowest);
}

}  // namespace

bool TransMinMax::Build(const MatrixIn& data) {
  if (data.rows() < 2 || data.cols() < 1) throw std::runtime_error("At least two points are required.");
  Vector scaling(data.cols());
  Vector lowest(data.cols());
  for (Index j = 0; j < data.cols(); ++j) {
    const statistics::Range range = statistics::RangeOf(data.col(j));
    lowest(j) = range.lowest;
    scaling(j) = Scaling(range, max_scaled_ - min_scaled_);
  }
  offset_forward_ = min_scaled_ - scaling.array() * lowest.array();
  offset_backward_ = lowest.array() - min_scaled_ / scaling.array();
  scaling_ = std::move(scaling);
  need_build_ = false;
  return true;
}

Matrix TransMinMax::ScaleForward(const MatrixIn& data) const {
  RequireBuilt();
  Matrix scaled = data;
  if (data.size() == 0) return scaled;
  for (Index j = 0; j < data.cols(); ++j)
    scaled.col(j).array() = data.col(j).array() * scaling_(j) + offset_forward_(j);
  return scaled;
}

Matrix TransMinMax::ScaleBackward(const MatrixIn& data) const {
  RequireBuilt();
  Matrix scaled = data;
  if (data.size() == 0) return scaled;
  for (Index j = 0; j < data.cols(); ++j)
    scaled.col(j).array() = data.col(j).array() / scaling_(j) + offset_backward_(j);
  return scaled;
}

std::wstring TransMinMax::Str() const {
  return L"MinMax ( " + (boost::wformat(L"%1%, ") % min_scaled_).str() + (boost::wformat(L"%1% )") % max_scaled_).str();
}

std::wstring TransMinMax::ParameterStr() const {
  return SingleEntry(L"%1% ", scaling_) + SingleEntry(L", %1% ", offset_forward_) +
         SingleEntry(L", %1% ", offset_backward_);
}

bool TransMinMax::operator==(const Transform& other) const {
  if (need_build_ != other.GetNeedBuild()) return false;
  const auto* minmax = dynamic_cast<const TransMinMax*>(&other);
  return minmax != nullptr && min_scaled_ == minmax->min_scaled_ && max_scaled_ == minmax->max_scaled_ &&
         Equal(scaling_, minmax->scaling_) && Equal(offset_forward_, minmax->offset_forward_) &&
         Equal(offset_backward_, minmax->offset_backward_);
}

std::unique_ptr<Transform> TransMinMax::Clone() const { return std::make_unique<TransMinMax>(*this); }

void TransMinMax::RequireConsistent() const {
  const bool same_lengths = offset_forward_.size() == scaling_.size() && offset_backward_.size() == scaling_.size();
  persistence::RequireStored(same_lengths && (need_build_ || scaling_.size() > 0),
                             L"Stored scaling: factors and offsets do not match.");
}

template <class Archive>
void TransMinMax::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("Transform", boost::serialization::base_object<Transform>(*this));
  archive& make_nvp("min_scaled_", min_scaled_);
  archive& make_nvp("max_scaled_", max_scaled_);
  archive& make_nvp("scaling_", scaling_);
  archive& make_nvp("offset_forward_", offset_forward_);
  archive& make_nvp("offset_backward_", offset_backward_);
  if constexpr (Archive::is_loading::value) RequireConsistent();
}

}  // namespace kestrel::math::transform

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::transform::TransMinMax)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::transform::TransMinMax)
