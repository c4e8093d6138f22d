#include "monitoring_info.h"

#include <json/json.h>

#include <limits>
#include <memory>
#include <vector>

#include "errors.h"
#include "json.h"
#include "numbers.h"
#include "text.h"
#include "text_table.h"

namespace kestrel::cli {

namespace {

/// The readers below are lenient: what is not there or of another type is an empty value.
const Json::Value& Member(const Json::Value& object, const char* key) {
  return object.isObject() ? object[key] : Json::Value::nullSingleton();
}

std::string Text(const Json::Value& value) { return value.isString() ? value.asString() : std::string(); }

double Real(const Json::Value& value) {
  return value.isNumeric() ? value.asDouble() : std::numeric_limits<double>::quiet_NaN();
}

std::string Digits(const Json::Value& value) { return value.isUInt64() ? std::to_string(value.asUInt64()) : "?"; }

Json::Value Parsed(const std::string& description) {
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  Json::Value root;
  std::string faults;
  if (!reader->parse(description.data(), description.data() + description.size(), &root, &faults) || !root.isObject()) {
    throw WorkError("The description of the monitoring file is no JSON object: " + Escaped(faults));
  }
  return root;
}

/// On one line. The reader has bounded the depth.
std::string Written(const Json::Value& value) {
  std::vector<std::string> pieces;
  switch (value.type()) {
    case Json::objectValue:
      for (const std::string& key : value.getMemberNames())
        pieces.push_back(JsonText(key) + ": " + Written(value[key]));
      return "{" + Joined(pieces, ", ") + "}";
    case Json::arrayValue:
      for (const Json::Value& element : value) pieces.push_back(Written(element));
      return JsonArray(pieces);
    case Json::stringValue: return JsonText(value.asString());
    case Json::realValue: return JsonNumber(value.asDouble());
    default: return value.isNull() ? "null" : value.asString();  // whole numbers, true and false
  }
}

/// The same, with a line for each element of an array.
std::string WrittenMember(const Json::Value& value) {
  if (!value.isArray()) return Written(value);
  std::vector<std::string> elements;
  for (const Json::Value& element : value) elements.push_back(Written(element));
  return JsonLines(elements);
}

/// One line per value, called by its path: "version.file  1".
void AddValues(const std::string& path, const Json::Value& value, std::vector<Cells>& lines) {
  if (!value.isObject()) {
    lines.push_back({path, value.isString() ? value.asString() : Written(value)});
    return;
  }
  for (const std::string& key : value.getMemberNames()) {
    AddValues(path.empty() ? key : path + "." + key, value[key], lines);
  }
}

std::vector<Cells> HeaderLines(const Json::Value& header) {
  std::vector<Cells> lines = {{"header", "value"}};
  AddValues("", header, lines);
  return lines;
}

std::vector<Cells> ParameterLines(const Json::Value& parameters) {
  std::vector<Cells> lines = {{"parameter", "lower bound", "upper bound"}};
  for (const Json::Value& parameter : parameters) {
    lines.push_back({Text(Member(parameter, "name")), ExactText(Real(Member(parameter, "lower"))),
                     ExactText(Real(Member(parameter, "upper")))});
  }
  return lines;
}

std::vector<Cells> ModelLines(const Json::Value& models) {
  std::vector<Cells> lines = {{"response", "model", "CoP"}};
  for (const Json::Value& model : models) {
    lines.push_back(
        {Text(Member(model, "response")), Text(Member(model, "model")), RoundedText(Real(Member(model, "cop")), 4)});
  }
  return lines;
}

}  // namespace

void PrintMonitoringInfo(std::ostream& stream, const std::string& description) {
  const Json::Value root = Parsed(description);
  const Json::Value& designs = root["designs"];
  stream << "Monitoring file with " << Digits(Member(designs, "total"))
         << " designs: " << Digits(Member(designs, "succeeded")) << " succeeded, " << Digits(Member(designs, "failed"))
         << " failed, " << Digits(Member(designs, "pending")) << " pending.\n";
  std::vector<std::string> responses;
  for (const Json::Value& response : root["responses"]) responses.push_back(Escaped(Text(response)));
  if (!responses.empty()) stream << "Responses: " << Joined(responses, ", ") << ".\n";
  for (const auto& lines :
       {HeaderLines(root["header"]), ParameterLines(root["parameters"]), ModelLines(root["models"])}) {
    stream << '\n';
    PrintTable(stream, lines);
  }
}

void PrintMonitoringInfoJson(std::ostream& stream, const std::string& description) {
  const Json::Value root = Parsed(description);
  stream << "{\n  \"kind\": \"monitoring_file\"";
  for (const std::string& key : root.getMemberNames()) {
    stream << ",\n  " << JsonText(key) << ": " << WrittenMember(root[key]);
  }
  stream << "\n}\n";
}

}  // namespace kestrel::cli
