#include "api/monitoring_description.h"

#include <json/json.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

#include "datatypes/results/zor_information.h"
#include "persistence/database/lyra.h"
#include "persistence/database/lyra_file.h"
#include "support/strings.h"

namespace kestrel::api {
namespace {

using algorithm::LYRAFile;
using algorithm::datatypes::LYRA;
using algorithm::datatypes::ZORInformation;

Json::Value Text(const std::wstring& text) { return string::narrow(text); }

/// JSON knows neither NaN nor infinities.
Json::Value Number(double value) { return std::isfinite(value) ? Json::Value(value) : Json::Value(); }

/// The reader of the file has found that it is valid.
Json::Value Parsed(const std::string& json) {
  Json::Value value;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  reader->parse(json.data(), json.data() + json.size(), &value, nullptr);
  return value;
}

Json::Value DescribeParameters(const LYRA& lyra) {
  Json::Value parameters(Json::arrayValue);
  const LYRA::BoundsByName bounds = lyra.GetParameterBounds();
  for (const auto& parameter : lyra.GetParameterManager().GetParameters()) {
    Json::Value entry;
    entry["name"] = Text(parameter.GetName());
    const auto found = bounds.find(parameter.GetName());
    entry["lower"] = found == bounds.end() ? Json::Value() : Number(found->second.first);
    entry["upper"] = found == bounds.end() ? Json::Value() : Number(found->second.second);
    parameters.append(std::move(entry));
  }
  return parameters;
}

Json::Value DescribeResponses(const LYRA& lyra) {
  Json::Value responses(Json::arrayValue);
  if (lyra.GetDesignContainer().empty()) return responses;
  for (const std::wstring& name : lyra.GetResponseNames()) responses.append(Text(name));
  return responses;
}

Json::Value DescribeDesigns(const LYRA& lyra) {
  const auto stats = lyra.GetDesignContainer().GetStats();
  Json::Value designs;
  designs["total"] = Json::UInt64(stats.total_);
  designs["succeeded"] = Json::UInt64(stats.succeeded_);
  designs["failed"] = Json::UInt64(stats.failed_);
  designs["pending"] = Json::UInt64(stats.pending_);
  return designs;
}

Json::Value DescribeModels(const LYRA& lyra) {
  Json::Value models(Json::arrayValue);
  const auto& algorithm = lyra.GetAlgorithmInfo();
  const ZORInformation* const information = algorithm ? std::as_const(*algorithm).GetZORInfo() : nullptr;
  if (information == nullptr) return models;
  for (const auto& info : information->GetSurrogateInfos().GetInfos()) {
    Json::Value entry;
    entry["response"] = Text(info.GetResponseComponentName());
    entry["model"] = info.GetSurrogate() ? Text(info.GetSurrogate()->Name()) : Json::Value();
    const auto& appraisal = info.GetAppraisalData();
    entry["cop"] = appraisal.HasCoP() ? Number(appraisal.GetCoP()) : Json::Value();
    models.append(std::move(entry));
  }
  return models;
}

}  // namespace

std::string DescribeMonitoringFile(const std::filesystem::path& path) {
  const LYRAFile file(path.string());
  LYRAFile::FailureInfo failure;
  LYRA lyra;
  std::string header;
  if (!file.ReadHeader(header, failure) || !file.Read(lyra, failure)) {
    throw std::runtime_error("Error while reading \"" + path.u8string() +
                             "\": " + LYRAFile::FailureInfo::toString(failure.state));
  }
  Json::Value description;
  description["header"] = Parsed(header);
  description["parameters"] = DescribeParameters(lyra);
  description["responses"] = DescribeResponses(lyra);
  description["designs"] = DescribeDesigns(lyra);
  description["models"] = DescribeModels(lyra);
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, description);
}

}  // namespace kestrel::api
