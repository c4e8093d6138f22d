#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

#include "support/matrix_compare.h"
#include "support/raised_text.h"
#include "surrogates/kernels/kernel_base.h"
#include "surrogates/kernels/kernel_constant_influence.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;

Vector One(double value) { return Vector::Constant(1, value); }

TEST(Kernels, SayWhatTheyAre) {
  struct Case {
    Kernel::eType type;
    bool correlation, weight, constant, isotropic;
    const wchar_t* text;
  };
  const Case cases[] = {
      {Kernel::kConstInflExp, true, true, true, false, L"Constant influence, anisotropic, exponential"},
      {Kernel::kConstInflIsoExp, true, true, true, true, L"Constant influence, isotropic, exponential"},
      {Kernel::kConstInflIsoReg, false, true, true, true, L"Constant influence, isotropic, regularized"},
      {Kernel::kNodalInflExp, true, true, false, false, L"Nodal influence, exponential"},
  };
  for (const Case& c : cases) {
    const auto kernel = CreateKernel(c.type, One(3.0));
    EXPECT_EQ(kernel->IsCorrelation(), c.correlation);
    EXPECT_EQ(kernel->IsWeight(), c.weight);
    EXPECT_EQ(kernel->IsConstantInfluence(), c.constant);
    EXPECT_EQ(kernel->IsIsotropic(), c.isotropic);
    EXPECT_EQ(kernel->Str(), c.text);
    EXPECT_EQ(kernel->GetParameterNames(), std::vector<std::wstring>{L"Influence radius"});
    EXPECT_EQ(kernel->clone()->GetParameters(), kernel->GetParameters());
    EXPECT_EQ(CreateKernel(c.type, Vector())->clone()->GetParameters().size(), 0);
  }
  EXPECT_THROW(CreateKernel(static_cast<Kernel::eType>(2), One(1.0)), std::logic_error);
}

TEST(Kernels, FallToAThousandthAtTheRadius) {
  const double radius = 2.5;
  const Matrix support = (Matrix(2, 2) << 0.0, 0.0, 1.5, -2.0).finished();  // the second at distance 2.5
  const Vector expected = (Vector(2) << 1.0, 0.001).finished();
  const Vector origin = Vector::Zero(2);
  EXPECT_TRUE(
      MatrixNear(CreateKernel(Kernel::kConstInflIsoExp, One(radius))->EvaluatePoint(origin, support), expected, 1e-12));
  EXPECT_TRUE(
      MatrixNear(CreateKernel(Kernel::kConstInflExp, Vector::Constant(2, radius))->EvaluatePoint(origin, support),
                 expected, 1e-12));
  EXPECT_TRUE(
      MatrixNear(CreateKernel(Kernel::kNodalInflExp, One(2.9))->EvaluatePoint(origin, support), expected, 1e-12));
  const auto regularized = CreateKernel(Kernel::kConstInflIsoReg, One(radius));
  EXPECT_NEAR(regularized->EvaluateDistance(0.0), 1e10, 2.0);
  EXPECT_EQ(regularized->EvaluateDistance(radius * radius * 1.0001), 0.0);
  EXPECT_NEAR(regularized->EvaluateDistance(radius * radius / 4.0),
              std::pow(0.25 + 1e-5, -2.0) - std::pow(1.0 + 1e-5, -2.0), 1e-12);
}

TEST(Kernels, StretchEachInputByItsOwnRadius) {
  const KernelConstInflExp kernel((Vector(2) << 1.0, 4.0).finished());
  const Vector difference = (Vector(2) << 0.5, 2.0).finished();
  EXPECT_NEAR(kernel.CalculateKernelFromDiffVec(difference), std::exp(std::log(0.001) * 0.5), 1e-12);
}

TEST(Kernels, EvaluateManyPointsAsTheDifferencesSay) {
  const Matrix support = testing::RandomPoints(21, 3, 1);
  const Matrix points = testing::RandomPoints(5, 3, 2);
  const KernelConstInflExp anisotropic((Vector(3) << 0.5, 1.0, 4.0).finished());
  const KernelConstInflIsoExp isotropic(One(1.3));
  const KernelConstInflIsoReg regularized(One(1.3));
  for (const KernelConstInfl* kernel :
       std::initializer_list<const KernelConstInfl*>{&anisotropic, &isotropic, &regularized}) {
    Matrix values(21, 5);
    kernel->EvaluatePoints(points, support, values);
    for (Index q = 0; q < 5; ++q) {
      for (Index i = 0; i < 21; ++i) {
        const double expected = kernel->CalculateKernelFromDiffVec((points.row(q) - support.row(i)).transpose());
        EXPECT_NEAR(values(i, q), expected, 1e-13 * expected);
      }
    }
  }
  EXPECT_EQ(isotropic.EvaluateDistances(Vector::Constant(4, 1e6)), Vector::Zero(4));  // far points weigh nothing
}

TEST(Kernels, NodalRadiusReachesTheKthNeighbour) {
  const auto kernel = CreateKernel(Kernel::kNodalInflExp, One(3.0));
  const Matrix support = (Matrix(5, 1) << 9.0, -1.0, 4.0, 2.0, 7.0).finished();
  const Vector weights = kernel->EvaluatePoint(Vector::Zero(1), support);
  EXPECT_NEAR(weights[2], 0.001, 1e-15);  // 4 is the third nearest to 0
  EXPECT_NEAR(weights[1], std::pow(0.001, 1.0 / 16.0), 1e-14);
  const Matrix coincident = Matrix::Zero(2, 1);
  EXPECT_TRUE(std::isnan(kernel->EvaluatePoint(Vector::Zero(1), coincident)[0]));
}

TEST(Kernels, RefuseParametersOutOfRange) {
  struct Case {
    Kernel::eType type;
    double bad;
    double good;
    const wchar_t* text;
  };
  const Case cases[] = {
      {Kernel::kConstInflExp, 0.0, 1e-3, L"KernelConstInflExp: parameter must be greater zero"},
      {Kernel::kConstInflIsoExp, 0.0, 1e-3, L"KernelConstInflIsoExp: parameter must be greater zero"},
      {Kernel::kConstInflIsoReg, -1.0, 1e-3, L"KernelConstInflIsoReg: parameter must be greater zero"},
      {Kernel::kNodalInflExp, 0.999, 1.0, L"KernelNodalInflExp: parameter must be greater or equal one"},
  };
  for (const Case& c : cases) {
    const auto kernel = CreateKernel(c.type, One(c.good));
    EXPECT_EQ(testing::RaisedText([&] { CreateKernel(c.type, One(c.bad)); }), c.text);
    EXPECT_EQ(testing::RaisedText([&] { kernel->SetParameters(Vector()); }),
              L"KernelConstInflExp: undefined parameter");
    EXPECT_EQ(testing::RaisedText([&] { kernel->SetParameters(Vector::Ones(2)); }),
              L"Kernel: Invalid size of parameter vector");
    EXPECT_EQ(kernel->GetParameters(), One(c.good));
  }
  for (const auto type : {Kernel::kConstInflExp, Kernel::kNodalInflExp}) {
    EXPECT_EQ(testing::RaisedText([&] { CreateKernel(type, One(2.0))->EvaluateDistance(1.0); }),
              L"EvaluateDistance works only for isotropic kernels");
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
