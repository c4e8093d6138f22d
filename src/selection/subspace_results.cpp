#include "selection/subspace_results.h"

#include <boost/format.hpp>
#include <boost/thread/lock_guard.hpp>
#include <typeinfo>
#include <utility>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/matrix_equality.h"

namespace kestrel::math::metamodel {
namespace {

constexpr wchar_t kUndefined[] = L"undefined";

// Kernel types as settings number them.
constexpr std::int32_t kAnisotropicExponential = 1;
constexpr std::int32_t kIsotropicExponential = 101;
constexpr std::int32_t kIsotropicRegularized = 102;

std::unique_ptr<SurrogateSettingsBase> CloneSettings(const std::unique_ptr<SurrogateSettingsBase>& settings) {
  return settings ? settings->Clone() : nullptr;
}

bool SameSettings(const std::unique_ptr<SurrogateSettingsBase>& a, const std::unique_ptr<SurrogateSettingsBase>& b) {
  return a && b ? *a == *b : !a && !b;
}

bool SameMeasures(const SubspaceResults::Measures& a, const SubspaceResults::Measures& b) {
  return SameValue(a.CoD, b.CoD) && SameValue(a.CoDadj, b.CoDadj) && SameValue(a.CoP, b.CoP) &&
         SameValue(a.CoPadj, b.CoPadj) && SameValue(a.CoDtest, b.CoDtest) && SameValue(a.predError, b.predError);
}

const wchar_t* WeightName(std::int32_t kernel_type) {
  switch (kernel_type) {
    case kIsotropicExponential: return L"exponential";
    case kIsotropicRegularized: return L"regularized";
    default: return kUndefined;
  }
}

const wchar_t* KernelName(std::int32_t kernel_type) {
  switch (kernel_type) {
    case kAnisotropicExponential: return L"anisotropic";
    case kIsotropicExponential: return L"isotropic";
    default: return kUndefined;
  }
}

// The text up to what all kinds end with; empty for a kind without one.
std::wstring ModelText(ModelType::eModelType type, const SurrogateSettingsBase& settings) {
  switch (type) {
    case ModelType::kPolynomial:
      return (boost::wformat(L"Linear Regression of order %1% (") % settings.GetOrder()).str() +
             (settings.GetInteractionSelection().any() ? L"with mixed terms" : L"no mixed terms");
    case ModelType::kMLS:
      return (boost::wformat(L"Moving Least Squares of order %1% (") % settings.GetOrder()).str() +
             WeightName(settings.GetKernelType()) + L" weight";
    case ModelType::kKriging: return std::wstring(L"Kriging (") + KernelName(settings.GetKernelType()) + L" kernel";
    default: return {};
  }
}

// Settings are stored through a plain pointer, and each record owns its own: one that is in the file already is
// refused.
std::unique_ptr<SurrogateSettingsBase> LoadSettings(portable_binary_iarchive& archive) {
  archive.check_annotation("settings");
  const auto pointee = archive.LoadPointee<SurrogateSettingsBase>();
  if (pointee.address != nullptr && !pointee.created) {
    using boost::archive::archive_exception;
    throw archive_exception(archive_exception::pointer_conflict);
  }
  return std::unique_ptr<SurrogateSettingsBase>(static_cast<SurrogateSettingsBase*>(pointee.address));
}

}  // namespace

CandidateKey MakeCandidateKey(ModelType::eModelType type, const SurrogateSettingsBase& settings) {
  return {type,
          std::type_index(typeid(settings)),
          settings.GetVariableSelection(),
          settings.GetOrder(),
          settings.GetKernelType(),
          settings.GetMainTermSelection(),
          settings.GetInteractionSelection(),
          settings.GetCoordTransformation(),
          settings.GetValueTransformation(),
          settings.GetLimitTransformation()};
}

SubspaceResults::SubspaceResults(ModelType::eModelType type, const SurrogateSettingsBase& model_settings,
                                 const Measures& model_measures)
    : model_type(type), settings(model_settings.Clone()), measures(model_measures) {}

SubspaceResults::SubspaceResults(const SubspaceResults& other)
    : model_type(other.model_type),
      settings(CloneSettings(other.settings)),
      measures(other.measures),
      singleCoPs(other.singleCoPs) {}

SubspaceResults& SubspaceResults::operator=(const SubspaceResults& other) { return *this = SubspaceResults(other); }

bool SubspaceResults::CompareSettings(const SubspaceResults& other) const {
  return other.settings && CompareSettings(other.model_type, *other.settings);
}

bool SubspaceResults::CompareSettings(ModelType::eModelType type, const SurrogateSettingsBase& other) const {
  return settings && MakeCandidateKey(model_type, *settings) == MakeCandidateKey(type, other);
}

std::wstring SubspaceResults::GetModelString() const {
  const std::wstring text = settings ? ModelText(model_type, *settings) : std::wstring();
  if (text.empty()) return kUndefined;
  return text + (settings->GetValueTransformation() == eTransformation::kBoxCox ? L", BoxCox)" : L")");
}

std::uint64_t SubspaceResults::GetNumberVariables() const {
  return settings ? settings->GetVariableSelection().count() : 0;
}

bool SubspaceResults::operator==(const SubspaceResults& other) const {
  return model_type == other.model_type && SameSettings(settings, other.settings) &&
         SameMeasures(measures, other.measures) && SameEntries(singleCoPs, other.singleCoPs);
}

void SubspaceResultContainer::AddSubspaceResult(const std::wstring& response_name, const SubspaceResults& result) {
  const boost::lock_guard<boost::shared_mutex> lock(mutex_);
  results_[response_name].push_back(result);
}

std::shared_ptr<SubspaceResultContainer> SubspaceResultContainer::Clone() const {
  auto copy = std::make_shared<SubspaceResultContainer>();
  copy->results_ = results_;
  return copy;
}

template <class Archive>
void SubspaceResults::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("model_type", model_type);
  if constexpr (Archive::is_loading::value) {
    persistence::RequireEnumerator(model_type, ModelType::kCustom, L"Stored result: unknown model type.");
    settings = LoadSettings(archive);
  } else {
    const SurrogateSettingsBase* const stored = settings.get();
    archive << make_nvp("settings", stored);
  }
  archive& make_nvp("CoD", measures.CoD);
  archive& make_nvp("CoDadj", measures.CoDadj);
  archive& make_nvp("CoP", measures.CoP);
  archive& make_nvp("CoPadj", measures.CoPadj);
  archive& make_nvp("CoDtest", measures.CoDtest);
  archive& make_nvp("predError", measures.predError);
  archive& make_nvp("singleCoPs", singleCoPs);
}

template <class Archive>
void SubspaceResultContainer::serialize(Archive& archive, const unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("results_", results_);
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::SubspaceResults)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::SubspaceResultContainer)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::SubspaceResults)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::SubspaceResultContainer)
