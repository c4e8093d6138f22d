#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <stdexcept>

#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "support/stored.h"
#include "surrogates/sample_data.h"
#include "surrogates/stored_records.h"
#include "surrogates/surrogate_registration.h"

/// What holds of every surrogate that is stored and read.
namespace kestrel::math::metamodel {

inline const Matrix kPoints = testing::RandomPoints(40, 2, 1);
inline const Vector kValues =
    (kPoints.col(0).array().exp() + kPoints.col(1).array()).matrix() + testing::Noise(40, 0.1, 2);
inline const Matrix kQuery = testing::RandomPoints(300, 2, 3);

inline Subsets Fifths() {
  Subsets subsets;
  for (std::uint64_t i = 0; i < 40; ++i) subsets.push_back(i % 5);
  return subsets;
}

/// Of models with error estimates.
inline void ExpectSameBits(const SurrogateBase& a, const SurrogateBase& b) {
  using testing::MatrixNear;
  EXPECT_TRUE(a == b);
  EXPECT_TRUE(MatrixNear(a.Approximate(kQuery), b.Approximate(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(a.Approximate(), b.Approximate(), 0.0));
  EXPECT_TRUE(MatrixNear(a.ApproximateGradients(kQuery), b.ApproximateGradients(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(a.ApproximateErrors(kQuery), b.ApproximateErrors(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(a.ApproximateLeaveOneOut(), b.ApproximateLeaveOneOut(), 0.0));
  EXPECT_TRUE(MatrixNear(a.ApproximateCrossValidation(Fifths()), b.ApproximateCrossValidation(Fifths()), 0.0));
  EXPECT_EQ(a.Str(), b.Str());
  EXPECT_EQ(a.GetFunctionStr({}), b.GetFunctionStr({}));
}

/// A model whose sample is kept elsewhere asks for it, and takes no other.
inline void ExpectToAskForItsSample(SurrogateBase& cleared, const SurrogateBase& whole) {
  const std::function<void()> calls[] = {
      [&] { cleared.Approximate(); },
      [&] { cleared.ApproximateLeaveOneOut(); },
      [&] { cleared.ApproximateCrossValidation(); },
      [&] { cleared.ApproximateCrossValidation(Fifths()); },
      [&] { cleared.ApproximateGradients(kQuery); },
      [&] { cleared.ApproximateErrors(kQuery); },
      [&] { cleared.BuildErrors(); },
      [&] { cleared.BuildErrors(Fifths()); },
  };
  for (const auto& call : calls) EXPECT_THROW(call(), std::logic_error) << "call " << &call - calls;
  EXPECT_TRUE(testing::MatrixNear(cleared.Approximate(kQuery), whole.Approximate(kQuery), 0.0));
  EXPECT_THROW(cleared.Approximate(kQuery.leftCols(1)), utils::runtime_error);
  const Matrix& points = whole.GetSupportPoints();
  const Vector& values = whole.GetResponseValues();
  EXPECT_THROW(cleared.RestoreSupportsAfterSerialize(points.topRows(39), values.head(39)), utils::runtime_error);
  EXPECT_THROW(cleared.RestoreSupportsAfterSerialize(points.leftCols(1), values), utils::runtime_error);
  EXPECT_THROW(cleared.RestoreSupportsAfterSerialize(points, values.head(39)), utils::runtime_error);
  cleared.RestoreSupportsAfterSerialize(points, values);
  ExpectSameBits(cleared, whole);
}

/// Reads what it stores, with and without the sample. @param surrogate  built on 40 samples of two inputs.
inline void ExpectStoredToTheBit(const SurrogateBase& surrogate) {
  surrogate_classes_registration_policy();
  const auto model = surrogate.Clone();
  ASSERT_TRUE(model->BuildErrors(Fifths()));
  ExpectSameBits(*model->Clone(), *model);
  const auto read = testing::RoundTrip<SurrogateBase>(*model);
  ExpectSameBits(*read, *model);
  EXPECT_TRUE(read->Build());  // it is built already
  ExpectSameBits(*read, *model);
  const auto cleared = model->Clone();
  cleared->ClearSupportsForSerialize();
  const auto read_without = testing::RoundTrip<SurrogateBase>(*cleared);
  ExpectToAskForItsSample(*cleared, *model);
  ExpectToAskForItsSample(*read_without, *model);
}

/// The sample and its scaling as files hold them.
template <unsigned kVersion>
void FillSample(StoredBase<kVersion>& base) {
  base.points_ = kPoints;
  base.values_ = kValues;
  base.trans_coord_ = CreateTransformation(eTransformation::kMinMax, {});
  base.trans_coord_->Build(kPoints);
  base.points_trans_reduced_ = base.trans_coord_->ScaleForward(kPoints);
}

template <class Record>
struct Spoilt {
  const char* name;
  std::function<void(Record&)> spoil;
};

/// The record is read to a model that predicts as `same` does, and refused once it is spoilt.
template <class Model, class Record>
void ExpectRefused(Record (*make)(), const SurrogateBase& same, std::initializer_list<Spoilt<Record>> cases) {
  Model read((Matrix()), Vector());
  ASSERT_NO_THROW(testing::Load(testing::Store(make()), read));
  EXPECT_TRUE(testing::MatrixNear(read.Approximate(kQuery), same.Approximate(kQuery), 0.0));
  for (const auto& c : cases) {
    Record record = make();
    c.spoil(record);
    EXPECT_ANY_THROW(testing::Load(testing::Store(record), read)) << c.name;
  }
}

}  // namespace kestrel::math::metamodel
