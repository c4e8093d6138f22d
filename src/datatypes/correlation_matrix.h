#pragma once

#include <map>
#include <string>
#include <vector>

#include "persistence/archive/persistent.h"
#include "support/linear_algebra.h"

namespace kestrel::algorithm::datatypes {

/// An unordered pair of names: (a, b) and (b, a) are one key. The smaller name is the first.
class TriangularIndex {
 public:
  TriangularIndex() = default;
  TriangularIndex(std::wstring a, std::wstring b);

  const std::wstring& First() const { return first_; }
  const std::wstring& Second() const { return second_; }
  bool Contains(const std::wstring& name) const { return first_ == name || second_ == name; }

  bool operator==(const TriangularIndex& other) const;
  bool operator<(const TriangularIndex& other) const;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  std::wstring first_;
  std::wstring second_;
};

/// Correlation coefficients between named parameters; pairs that are not set are uncorrelated.
class CorrelationMatrix {
 public:
  /// 1 for a name with itself, 0 for a pair that is not set.
  double Get(const std::wstring& a, const std::wstring& b) const;
  /// Raises utils::runtime_error for a coefficient outside [-1, 1] and for another than 1 between a name and itself.
  void Set(const std::wstring& a, const std::wstring& b, double correlation);
  /// Drops all pairs with this name.
  void Remove(const std::wstring& name);

  bool empty() const { return correlations_.empty(); }
  const std::map<TriangularIndex, double>& GetCorrelations() const { return correlations_; }

  /// The symmetric matrix of unit diagonal over these names, in their order. Raises utils::runtime_error if a name
  /// stands there twice.
  math::Matrix Build(const std::vector<std::wstring>& names) const;

  bool operator==(const CorrelationMatrix& other) const { return correlations_ == other.correlations_; }
  bool operator!=(const CorrelationMatrix& other) const { return !(*this == other); }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  std::map<TriangularIndex, double> correlations_;
};

}  // namespace kestrel::algorithm::datatypes
