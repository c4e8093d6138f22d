#include "info_command.h"

#include "errors.h"
#include "library_info.h"
#include "model_file.h"
#include "model_info.h"
#include "monitoring_info.h"

namespace kestrel::cli {

namespace {

void TellLibrary(const InfoArguments& arguments, std::ostream& out) {
  const LibraryInfo info = CollectLibraryInfo();
  arguments.json ? PrintLibraryInfoJson(out, info) : PrintLibraryInfo(out, info);
}

void TellModel(const InfoArguments& arguments, std::ostream& out) {
  const ModelInfo info = CollectModelInfo(ReadStoredModel(arguments.file));
  arguments.json ? PrintModelInfoJson(out, info) : PrintModelInfo(out, info);
}

void TellMonitoringFile(const InfoArguments& arguments, std::ostream& out) {
  const std::string description = DescribeMonitoringFile(arguments.file);
  arguments.json ? PrintMonitoringInfoJson(out, description) : PrintMonitoringInfo(out, description);
}

}  // namespace

void RunInfo(const InfoArguments& arguments, std::ostream& out) {
  if (arguments.build) return TellLibrary(arguments, out);
  switch (KindOfFile(arguments.file)) {
    case FileKind::kStoredModel: TellModel(arguments, out); break;
    case FileKind::kMonitoringFile: TellMonitoringFile(arguments, out); break;
    case FileKind::kNeither: throw WorkError(arguments.file + ": Is neither a stored model nor a monitoring file.");
  }
}

}  // namespace kestrel::cli
