#include "datatypes/random_properties.h"

#include <cmath>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "persistence/archive/serialize_fields.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

std::vector<double> ParametersOf(enums::RandomVariable::eType type, const std::vector<double>& moments) {
  if (moments.size() < 2) {
    throw utils::runtime_error(L"A distribution that is given by moments needs a mean and a standard deviation.");
  }
  return ParametersFromMoments(type, moments[0], moments[1]);
}

}  // namespace

RandomProperties RandomProperties::FromParameters(eType type, std::vector<double> params) {
  const RVMoments moments = algorithm::MakeRandomVariable(type, params)->Moments();
  RandomProperties properties;
  properties.type_ = type;
  properties.kind_ = eKind::kByParameters;
  properties.params_ = std::move(params);
  for (const double moment : {moments.mean, moments.stddev, moments.skewness, moments.kurtosis}) {
    if (!std::isfinite(moment)) break;  // the higher ones do not exist either
    properties.moments_.push_back(moment);
  }
  properties.validated_ = true;
  return properties;
}

RandomProperties RandomProperties::FromMoments(eType type, std::vector<double> moments) {
  RandomProperties properties = FromParameters(type, ParametersOf(type, moments));
  properties.kind_ = eKind::kByMoments;
  properties.moments_ = std::move(moments);
  return properties;
}

void RandomProperties::SetCOV(double cov) {
  if (!std::isfinite(cov) || !(cov > 0.0)) {
    throw utils::runtime_error(L"A coefficient of variation must be a positive finite number.");
  }
  if (kind_ == eKind::kByMoments && moments_.size() >= 2) {
    std::vector<double> moments = moments_;
    moments[1] = cov * std::abs(moments[0]);
    *this = FromMoments(type_, std::move(moments));
  }
  has_set_cov_ = true;
  cov_ = cov;
}

void RandomProperties::ResetCOV() {
  has_set_cov_ = false;
  cov_ = 0.0;
}

double RandomProperties::GetCOV() const {
  if (!has_set_cov_) {
    throw utils::runtime_error(L"The random property doesn't have a Coefficient of variation (COV) defined.");
  }
  return cov_;
}

std::unique_ptr<RV_Base> RandomProperties::MakeRandomVariable() const {
  if (!IsStochastic()) throw utils::runtime_error(L"The random property doesn't have a distribution.");
  const bool only_moments = kind_ == eKind::kByMoments && params_.empty();
  return algorithm::MakeRandomVariable(type_, only_moments ? ParametersOf(type_, moments_) : params_);
}

std::unique_ptr<RV_Base> RandomProperties::MakeRandomVariableAround(double mean) const {
  const double stddev = has_set_cov_ ? cov_ * std::abs(mean) : MakeRandomVariable()->Moments().stddev;
  return algorithm::MakeRandomVariable(type_, ParametersFromMoments(type_, mean, stddev));
}

bool RandomProperties::operator==(const RandomProperties& other) const {
  bool equal = true;
  ForEachField([&](const char*, auto field, unsigned) { equal = equal && this->*field == other.*field; });
  return equal;
}

template <class Visit>
void RandomProperties::ForEachField(Visit visit) {
  visit("type_", &RandomProperties::type_, 0u);
  visit("kind_", &RandomProperties::kind_, 0u);
  visit("params_", &RandomProperties::params_, 0u);
  visit("moments_", &RandomProperties::moments_, 0u);
  visit("has_set_cov_", &RandomProperties::has_set_cov_, 3u);
  visit("cov_", &RandomProperties::cov_, 3u);
  visit("validated_", &RandomProperties::validated_, 4u);
}

template <class Archive>
void RandomProperties::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
  if constexpr (Archive::is_loading::value) {
    persistence::RequireEnumerator(type_, eType::LAMBDA, L"A stored distribution is of an unknown type.");
    persistence::RequireEnumerator(kind_, eKind::kByMoments, L"A stored distribution is of an unknown kind.");
  }
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::RandomProperties)
