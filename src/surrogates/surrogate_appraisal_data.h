#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "persistence/archive/persistent.h"
#include "support/linear_algebra.h"

namespace kestrel::math::metamodel {

/// The quality of a surrogate that travels with it: coefficient of prognosis (CoP), of determination (CoD) and its
/// adjusted form, the single CoP and the first-order index of each input. NaN until set.
class AppraisalData {
 public:
  void SetCoP(double cop) { cop_ = cop; }
  void SetCoD(double cod) { cod_ = cod; }
  void SetCoDAdj(double cod_adjusted) { codadj_ = cod_adjusted; }
  void SetSingleCoPs(Vector values) { single_cop_ = std::move(values); }
  void SetFirstOrderIndices(Vector values) { first_order_indices_ = std::move(values); }
  /// Grows the vector to hold `index`; new entries are NaN.
  void SetSingleCoP(std::uint64_t index, double value);

  bool HasCoP() const { return !std::isnan(cop_); }
  /// Raises utils::runtime_error "CoP is not valid." without one.
  double GetCoP() const;
  double GetCoD() const { return cod_; }
  double GetCoDAdj() const { return codadj_; }
  /// Both raise utils::runtime_error "Single CoP is not valid." for an index out of range and for NaN.
  double GetSingleCoP(std::uint64_t index) const;
  double GetFirstOrderIndex(std::uint64_t index) const;
  const Vector& GetSingleCoPs() const { return single_cop_; }
  const Vector& GetFirstOrderIndices() const { return first_order_indices_; }

  /// Every field; a NaN equals a NaN.
  bool operator==(const AppraisalData& other) const;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  double cop_ = std::numeric_limits<double>::quiet_NaN();
  double cod_ = std::numeric_limits<double>::quiet_NaN();
  double codadj_ = std::numeric_limits<double>::quiet_NaN();
  Vector single_cop_;
  Vector first_order_indices_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_VERSION(kestrel::math::metamodel::AppraisalData, 1)
BOOST_CLASS_TRACKING(kestrel::math::metamodel::AppraisalData, boost::serialization::track_always)
