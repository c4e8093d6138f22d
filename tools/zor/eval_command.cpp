#include "eval_command.h"

#include <cstdint>

#include "criteria.h"
#include "handle.h"

namespace kestrel::cli {

namespace {

void TellFunctions(std::ostream& out) {
  const Handle handle;
  char* text = nullptr;
  std::size_t length = 0;
  handle.Check(zor_describe_functions(handle.get(), &text, &length));
  out << TakeText(text, length);
}

std::vector<const char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<const char*> pointers;
  for (const std::string& text : texts) pointers.push_back(text.c_str());
  return pointers;
}

}  // namespace

void RunEval(const EvalArguments& arguments, std::ostream& out) {
  if (arguments.functions) return TellFunctions(out);
  std::vector<std::string> names;
  std::vector<std::string> texts;
  for (const std::string& object : arguments.objects) {
    auto [name, text] = SplitAtEquals("--set", object);
    names.push_back(std::move(name));
    texts.push_back(std::move(text));
  }
  const Handle handle;
  char* value = nullptr;
  std::size_t length = 0;
  handle.Check(zor_evaluate_expression(handle.get(), arguments.expression.c_str(), Pointers(names).data(),
                                       Pointers(texts).data(), static_cast<std::uint32_t>(names.size()), &value,
                                       &length));
  out << TakeText(value, length) << '\n';
}

}  // namespace kestrel::cli
