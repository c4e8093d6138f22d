#include "datatypes/correlation_matrix.h"

#include <cmath>
#include <iterator>
#include <set>
#include <tuple>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

bool IsCoefficient(double correlation) { return std::abs(correlation) <= 1.0; }

}  // namespace

TriangularIndex::TriangularIndex(std::wstring a, std::wstring b) : first_(std::move(a)), second_(std::move(b)) {
  if (second_ < first_) std::swap(first_, second_);
}

bool TriangularIndex::operator==(const TriangularIndex& other) const {
  return first_ == other.first_ && second_ == other.second_;
}

bool TriangularIndex::operator<(const TriangularIndex& other) const {
  return std::tie(first_, second_) < std::tie(other.first_, other.second_);
}

double CorrelationMatrix::Get(const std::wstring& a, const std::wstring& b) const {
  if (a == b) return 1.0;
  const auto found = correlations_.find(TriangularIndex(a, b));
  return found == correlations_.end() ? 0.0 : found->second;
}

void CorrelationMatrix::Set(const std::wstring& a, const std::wstring& b, double correlation) {
  if (!IsCoefficient(correlation) || (a == b && correlation != 1.0)) {
    throw utils::runtime_error(L"The correlation between \"" + a + L"\" and \"" + b + L"\" cannot be " +
                               std::to_wstring(correlation) + L".");
  }
  if (a != b) correlations_[TriangularIndex(a, b)] = correlation;
}

void CorrelationMatrix::Remove(const std::wstring& name) {
  for (auto pair = correlations_.begin(); pair != correlations_.end();) {
    pair = pair->first.Contains(name) ? correlations_.erase(pair) : std::next(pair);
  }
}

math::Matrix CorrelationMatrix::Build(const std::vector<std::wstring>& names) const {
  if (std::set<std::wstring>(names.begin(), names.end()).size() != names.size()) {
    throw utils::runtime_error(L"Build correlation matrix impossible with not unique names");
  }
  const auto size = static_cast<math::Index>(names.size());
  math::Matrix matrix(size, size);
  for (math::Index j = 0; j < size; ++j) {
    for (math::Index i = 0; i < size; ++i) {
      matrix(i, j) = Get(names[static_cast<std::size_t>(i)], names[static_cast<std::size_t>(j)]);
    }
  }
  return matrix;
}

template <class Archive>
void TriangularIndex::serialize(Archive& archive, unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("first_", first_);
  archive& boost::serialization::make_nvp("second_", second_);
  if constexpr (Archive::is_loading::value) {
    persistence::RequireStored(!(second_ < first_), L"The names of a stored correlation are not in their order.");
  }
}

template <class Archive>
void CorrelationMatrix::serialize(Archive& archive, unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("correlations_", correlations_);
  if constexpr (Archive::is_loading::value) {
    for (const auto& [names, correlation] : correlations_) {
      persistence::RequireStored(IsCoefficient(correlation), L"A stored correlation is outside -1 to 1.");
    }
  }
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::TriangularIndex)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::CorrelationMatrix)
