#include "selection/zor2.h"

#include <utility>

#include "selection/subspace_filters.h"

namespace kestrel::math::metamodel {

void DefaultProgressCallable(float /*fraction*/) {}

Zor::Zor(const MatrixIn& inputs, const VectorIn& response, std::vector<std::wstring> input_names,
         std::wstring response_name) {
  context_.inputs = inputs;
  context_.response = response;
  context_.input_names = std::move(input_names);
  context_.response_name = std::move(response_name);
  context_.settings = ZORSettings(static_cast<std::uint64_t>(inputs.cols()));
  context_.importance = IndexVector::Ones(inputs.cols());
  context_.log = std::make_shared<utils::log::LogDummy>();
}

void Zor::Initialize(const ZORSettings& settings) { context_.settings = settings; }

void Zor::SetInfoImportant(std::vector<std::uint64_t> importance) {
  CheckImportanceSize(static_cast<Index>(importance.size()), context_.inputs.cols());
  context_.settings.SetImportantInfo(std::move(importance));
}

void Zor::SetLog(std::shared_ptr<utils::log::LogBase> log) {
  context_.log = log ? std::move(log) : std::make_shared<utils::log::LogDummy>();
  if (context_.inputs.rows() == context_.response.size()) return;
  Log().Error() << L"ZOR needs same number of support points (" << context_.inputs.rows() << L") and values ("
                << context_.response.size() << L")";
}

std::vector<bool> Zor::GetActiveInputs() const {
  std::vector<bool> active;
  for (const std::uint64_t importance : context_.importance) active.push_back(importance != 0);
  return active;
}

}  // namespace kestrel::math::metamodel
