#pragma once

#include <boost/thread/shared_mutex.hpp>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <typeindex>
#include <vector>

#include "persistence/archive/persistent.h"
#include "support/linear_algebra.h"
#include "surrogates/surrogate2_settings_base.h"

namespace kestrel::math::metamodel {

namespace ModelType {
/// The class of a candidate; 4 and 5 are further kinds without a build path.
enum eModelType : std::int32_t { kNone = 0, kPolynomial = 1, kMLS = 2, kKriging = 3, kASCMO = 4, kCustom = 5 };
}  // namespace ModelType

/// What tells one candidate from another, as a value to look up: model class, kind of settings, variable selection,
/// order, kernel type, main terms, interactions, and the kinds of the coordinate, value and limit transformation.
using CandidateKey = std::tuple<ModelType::eModelType, std::type_index, Selection, std::uint64_t, std::int32_t,
                                Selection, Selection, eTransformation, eTransformation, eTransformation>;

CandidateKey MakeCandidateKey(ModelType::eModelType type, const SurrogateSettingsBase& settings);

/// The record of one evaluated candidate: model class, settings and measures.
struct SubspaceResults {
  struct Measures {
    double CoD = 0.0;        ///< R2 of the fit
    double CoDadj = 0.0;     ///< adjusted R2 of the fit
    double CoP = 0.0;        ///< R2 of the cross validation
    double CoPadj = 0.0;     ///< adjusted R2 of the cross validation
    double CoDtest = 0.0;    ///< R2 on separate test samples, when there are any
    double predError = 0.0;  ///< what the search minimises: SSE / SST of the cross validation, not limited
  };

  SubspaceResults() = default;
  SubspaceResults(ModelType::eModelType type, const SurrogateSettingsBase& settings, const Measures& measures);
  SubspaceResults(const SubspaceResults& other);
  SubspaceResults& operator=(const SubspaceResults& other);
  SubspaceResults(SubspaceResults&&) = default;
  SubspaceResults& operator=(SubspaceResults&&) = default;

  /// True if both have settings and these have the same `CandidateKey`. Fitted parameters are not compared.
  bool CompareSettings(const SubspaceResults& other) const;
  bool CompareSettings(ModelType::eModelType type, const SurrogateSettingsBase& settings) const;

  /// The model as a text for reports, "undefined" for what is not known.
  std::wstring GetModelString() const;

  /// Set bits of the variable selection; 0 without settings.
  std::uint64_t GetNumberVariables() const;

  bool operator==(const SubspaceResults& other) const;

  ModelType::eModelType model_type = ModelType::kNone;
  std::unique_ptr<SurrogateSettingsBase> settings;
  Measures measures;
  Matrix singleCoPs;  ///< of the best result: one row per input, first-order and total effect, each times CoP

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// Collects the results of all responses; response tasks add to it concurrently.
class SubspaceResultContainer {
 public:
  SubspaceResultContainer() = default;

  void AddSubspaceResult(const std::wstring& response_name, const SubspaceResults& result);
  std::shared_ptr<SubspaceResultContainer> Clone() const;
  bool operator==(const SubspaceResultContainer& other) const { return results_ == other.results_; }

  /// Read after the tasks have ended.
  const std::map<std::wstring, std::vector<SubspaceResults>>& GetResults() const { return results_; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  boost::shared_mutex mutex_;
  std::map<std::wstring, std::vector<SubspaceResults>> results_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::SubspaceResults, "kestrel::math::metamodel::SubspaceResults")
BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::SubspaceResultContainer,
                        "kestrel::math::metamodel::SubspaceResultContainer")
