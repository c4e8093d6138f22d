#include "persistence/database/lyra.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>
#include <vector>

#include "datatypes/design_functions.h"
#include "datatypes/name_index.h"
#include "datatypes/parameter_bounds.h"
#include "persistence/database/lyra_file.h"
#include "persistence/database/lyra_lock.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using Bounds = std::pair<double, double>;

bool HasFiniteNumbers(const Design& design) {
  const auto& parameters = design.GetParameters().GetSequence();
  return std::all_of(parameters.begin(), parameters.end(), [](const auto& parameter) {
    const std::optional<double> number = NumberOf(parameter.second);
    return !parameter.second.IsUninitialized() && (!number || std::isfinite(*number));
  });
}

void Extend(Bounds& bounds, double number) {
  bounds.first = std::min(bounds.first, number);
  bounds.second = std::max(bounds.second, number);
}

}  // namespace

void LYRA::SaveToFile(const LYRA& lyra, const std::string& path) {
  lyra.CheckConsistency();
  const boost::filesystem::path parent = boost::filesystem::path(path).parent_path();
  if (!parent.empty() && !boost::filesystem::exists(parent)) boost::filesystem::create_directories(parent);
  const detail::PathWriteLock lock(path);
  SaveToFilePimpl(lyra, path);
}

void LYRA::SaveToFilePimpl(const LYRA& lyra, const std::string& path) {
  LYRAFile file(path);
  LYRAFile::FailureInfo failure;
  if (file.Write(lyra, failure)) return;
  boost::format text("Error while writing \"%1%\": %2%");
  throw std::runtime_error((text % path % LYRAFile::FailureInfo::toString(failure.state)).str());
}

void LYRA::CheckConsistency() const {
  if (design_container_.empty()) return;
  for (const std::wstring& name : GetParameterNames()) {
    if (parameter_manager_.ContainsParameter(name) != 0) continue;
    throw utils::runtime_error(L"Parameter \"" + name + L"\" does not exist in manager.");
  }
}

bool LYRA::IsConsistent() const {
  if (design_container_.empty()) return true;
  const std::vector<std::wstring> names = GetParameterNames();
  return std::all_of(names.begin(), names.end(),
                     [&](const std::wstring& name) { return parameter_manager_.ContainsParameter(name) != 0; });
}

AlgorithmInfo::eSamplingType LYRA::GetSamplingType() const {
  return algorithm_info_ ? algorithm_info_->GetSamplingType() : AlgorithmInfo::eSamplingType{};
}

std::vector<std::wstring> LYRA::GetParameterNames() const { return getParameterNames(design_container_); }

std::vector<std::wstring> LYRA::GetResponseNames() const { return getResponseNames(design_container_); }

LYRA::BoundsByName LYRA::GetParameterSamplingBounds() const {
  NameIndex known;
  std::vector<BoundsByName::value_type> sampled;  // in the order of `known`
  for (const Design& design : design_container_) {
    if (deactivated_designs_.count(design.GetId()) != 0 || !HasFiniteNumbers(design)) continue;
    std::size_t position = NameIndex::kUnknown;
    for (const auto& [name, entry] : design.GetParameters()) {
      const std::optional<double> number = NumberOf(entry);
      if (!number || std::isnan(*number)) continue;
      position = known.Find(name, position + 1);
      if (position == NameIndex::kUnknown) {
        position = sampled.size();
        known.Append(name);
        sampled.emplace_back(name, Bounds(*number, *number));
      } else {
        Extend(sampled[position].second, *number);
      }
    }
  }
  return {sampled.begin(), sampled.end()};
}

LYRA::BoundsByName LYRA::GetParameterBounds() const {
  BoundsByName bounds;
  for (const Parameter& parameter : parameter_manager_.GetParameters()) {
    if (const auto numbers = NumberBoundsOf(parameter)) bounds[parameter.GetName()] = *numbers;
  }
  return bounds;
}

DesignManager LYRA::GetFilteredDesignContainer() const {
  if (deactivated_designs_.empty()) return design_container_;
  std::vector<Design> active;
  std::copy_if(design_container_.begin(), design_container_.end(), std::back_inserter(active),
               [&](const Design& design) { return deactivated_designs_.count(design.GetId()) == 0; });
  return DesignManager(std::move(active));
}

bool LYRA::AttachFilePath(const boost::uuids::uuid& id, LYRAAttachedPath path, eAttachment kind) {
  AttachedPaths& paths = kind == eAttachment::kImage ? image_path_map_ : process_path_map_;
  return paths.emplace(id, std::move(path)).second;
}

bool LYRA::RemoveFilePath(const boost::uuids::uuid& id) {
  return image_path_map_.erase(id) + process_path_map_.erase(id) != 0;
}

const LYRAAttachedPath* LYRA::GetAttachedFileData(const boost::uuids::uuid& id) const {
  for (const AttachedPaths* const paths : {&image_path_map_, &process_path_map_}) {
    const auto found = paths->find(id);
    if (found != paths->end()) return &found->second;
  }
  return nullptr;
}

const LYRA::AttachedPaths& LYRA::GetAttachedPaths(eAttachment kind) const {
  return kind == eAttachment::kImage ? image_path_map_ : process_path_map_;
}

}  // namespace kestrel::algorithm::datatypes
