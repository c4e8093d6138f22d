#pragma once

#include <memory>
#include <string>
#include <vector>

#include "persistence/archive/persistent.h"
#include "support/linear_algebra.h"

namespace kestrel::math::transform {

/// A map of a sample matrix to another scale and back: fitted once by `Build`, then applied any number of times.
/// Matrices have one row per sample and one column per variable. Scaling in a state that needs a build raises
/// std::logic_error "can not transform - build first".
class Transform {
 public:
  virtual ~Transform() = default;

  /// Fits the transformation and returns true; a refusal is a std::runtime_error and leaves the object as it was.
  virtual bool Build(const MatrixIn& data) = 0;
  virtual Matrix ScaleForward(const MatrixIn& data) const = 0;
  virtual Matrix ScaleBackward(const MatrixIn& data) const = 0;

  /// The values from which an equal, unbuilt transformation can be made.
  virtual std::vector<double> GetParameters() const = 0;
  virtual std::wstring Str() const = 0;

  /// NaN members make two objects unequal; a built and an unbuilt object are never equal.
  virtual bool operator==(const Transform& other) const = 0;
  virtual std::unique_ptr<Transform> Clone() const = 0;

  bool GetNeedBuild() const { return need_build_; }

  /// True unless the transformation is fitted to another number of columns, which scaling does not compare.
  bool AcceptsColumns(Index columns) const;

 protected:
  Transform() = default;
  Transform(const Transform&) = default;
  Transform& operator=(const Transform&) = default;

  void RequireBuilt() const;

  bool need_build_ = true;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

}  // namespace kestrel::math::transform

BOOST_CLASS_EXPORT_KEY2(kestrel::math::transform::Transform, "kestrel::math::transform::Transform")
