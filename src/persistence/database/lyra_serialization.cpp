#include <boost/make_shared.hpp>
#include <map>
#include <sstream>

#include "datatypes/results/zor_information.h"
#include "persistence/archive/archives.h"
#include "persistence/database/lyra.h"

namespace kestrel::algorithm::datatypes {
namespace {

using boost::serialization::make_nvp;

/// Lives in an archive's helper collection and keeps there, until the archive is closed, what was written in the place
/// of the live algorithm information: objects are identified by their address, so none may be freed before. The live
/// one is kept with it, because its address is the key.
class AlgorithmInfoHolder {
 public:
  static void* HelperId() {
    static char id = 0;
    return &id;
  }

  template <class MakeCopy>
  const boost::shared_ptr<AlgorithmInfo>& CopyOf(const boost::shared_ptr<AlgorithmInfo>& live, MakeCopy make_copy) {
    auto& [kept, copy] = copies_[live.get()];
    if (!copy) {
      copy = make_copy();
      kept = live;
    }
    return copy;
  }

 private:
  using LiveAndCopy = std::pair<boost::shared_ptr<AlgorithmInfo>, boost::shared_ptr<AlgorithmInfo>>;
  std::map<const AlgorithmInfo*, LiveAndCopy> copies_;
};

std::string ToBytes(const LYRA::DesignIds& ids) {
  std::ostringstream bytes;
  portable_binary_oarchive archive(bytes, 0);
  archive << ids;
  return bytes.str();
}

LYRA::DesignIds FromBytes(const std::string& bytes) {
  std::istringstream stream(bytes);
  portable_binary_iarchive archive(stream, portable_binary_archive_impl::kThrowOnMismatch);
  LYRA::DesignIds ids;
  archive >> ids;
  return ids;
}

/// Optimization parameters of old files do not say whether they are ordinal or nominal; they are continuous.
void ResetKinds(ParameterManager& parameters) {
  using eDetKind = ParameterManager::eDetKind;
  std::vector<std::wstring> names;
  for (const Parameter& parameter : parameters.GetParameters()) {
    const eDetKind kind = parameter.GetDetKind();
    const bool discrete = kind == eDetKind::kOrdinalDiscrete || kind == eDetKind::kNominalDiscrete;
    if (parameter.IsOptimization() && !discrete) names.push_back(parameter.GetName());
  }
  for (const std::wstring& name : names) parameters.SetKind(name, eDetKind::kContinuous);
}

}  // namespace

MetaData LYRA::StampedMetaData() const {
  MetaData data = meta_data_;
  StampMetaData(data);
  data[meta_data::md_id_deactivated_designs] = ToBytes(deactivated_designs_);
  return data;
}

template <class Archive>
void LYRA::SaveAlgorithmInfo(Archive& archive) const {
  if (!algorithm_info_ || !algorithm_info_->GetDetailedInfo()) {
    archive << make_nvp("algorithm_info_", algorithm_info_);
    return;
  }
  auto& holder = archive.template get_helper<AlgorithmInfoHolder>(AlgorithmInfoHolder::HelperId());
  const auto& copy = holder.CopyOf(algorithm_info_, [this] {
    return algorithm_info_->CopyWithoutSupportData(design_container_, parameter_manager_);
  });
  archive << make_nvp("algorithm_info_", copy);
}

template <class Archive>
void LYRA::save(Archive& archive, unsigned int) const {
  const MetaData data = StampedMetaData();
  archive << make_nvp("parameter_manager_", parameter_manager_);
  archive << make_nvp("design_container_", design_container_);
  archive << make_nvp("reference_design_", reference_design_);
  SaveAlgorithmInfo(archive);
  archive << make_nvp("meta_data_", data);
  archive << make_nvp("validated_best_designs_", validated_best_designs_);
  archive << make_nvp("approx_design_container_", approx_design_container_);
  archive << make_nvp("nominal_design_", nominal_design_);
  archive << make_nvp("image_path_map_", image_path_map_);
  archive << make_nvp("process_path_map_", process_path_map_);
  archive << make_nvp("criteria_", criteria_);
}

template <class Archive>
void LYRA::LoadFields(Archive& archive) {
  SurrogateInfoContainer old_surrogates;
  if (version_ < 9) archive >> make_nvp("surrogate_infos_", old_surrogates);
  archive >> make_nvp("parameter_manager_", parameter_manager_);
  archive >> make_nvp("design_container_", design_container_);
  bool old_is_consistent = false;
  if (version_ < 10) archive >> make_nvp("is_consistent_", old_is_consistent);
  archive >> make_nvp("reference_design_", reference_design_);
  if (version_ >= 2) archive >> make_nvp("algorithm_info_", algorithm_info_);
  if (version_ >= 3) archive >> make_nvp("meta_data_", meta_data_);
  TakeDeactivatedDesigns();
  if (version_ >= 4) archive >> make_nvp("validated_best_designs_", validated_best_designs_);
  if (version_ >= 5) archive >> make_nvp("approx_design_container_", approx_design_container_);
  if (version_ >= 6) archive >> make_nvp("nominal_design_", nominal_design_);
  if (version_ >= 7) archive >> make_nvp("image_path_map_", image_path_map_);
  if (version_ >= 7) archive >> make_nvp("process_path_map_", process_path_map_);
  if (version_ >= 13) archive >> make_nvp("criteria_", criteria_);
  RepairAfterReading(std::move(old_surrogates));
}

template <class Archive>
void LYRA::load(Archive& archive, unsigned int version) {
  *this = LYRA();
  version_ = version;
  LoadFields(archive);
}

void LYRA::TakeDeactivatedDesigns() {
  const auto entry = meta_data_.find(meta_data::md_id_deactivated_designs);
  if (entry == meta_data_.end()) return;
  const std::string& bytes = entry->second;
  if (!PortableBinaryArchiveCheck(bytes.data(), bytes.size())) return;
  try {
    deactivated_designs_ = FromBytes(bytes);
  } catch (const std::exception&) {
    // The entry is free text of the file: what is no list of ids deactivates nothing.
  }
}

void LYRA::RepairAfterReading(SurrogateInfoContainer old_surrogates) {
  if (!algorithm_info_ && !design_container_.empty()) {
    algorithm_info_ = boost::make_shared<AlgorithmInfo>(AlgorithmInfo::eKind::kMetamodel);
  }
  ZORInformation* const zor = algorithm_info_ ? algorithm_info_->GetZORInfo() : nullptr;
  if (zor != nullptr && zor->surrogate_infos_.empty()) zor->surrogate_infos_ = std::move(old_surrogates);
  if (version_ <= 7) {
    ResetKinds(parameter_manager_);
    if (zor != nullptr) ResetKinds(zor->parameter_manager_);
  }
  const auto details = algorithm_info_ ? algorithm_info_->GetDetailedInfo() : nullptr;
  if (details && version_ < 12) details->UpdateUsedDesignHIds(design_container_, parameter_manager_);
  if (details && version_ >= 14) details->RestoreSupportData(design_container_, parameter_manager_);
  if (criteria_.empty()) criteria_ = DesignManager::GetCompleteDummyCriteria(design_container_, false);
}

template <class Archive>
void LYRA::serialize(Archive& archive, unsigned int version) {
  boost::serialization::split_member(archive, *this, version);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::LYRA)
