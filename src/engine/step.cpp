#include "engine/step.h"

#include <charconv>

#include "engine/parameters.h"
#include "expr/evaluator.h"

namespace talm_flow::engine {

std::string Step::Stored(int k) const {
  // "C_" n "_" k, put together on the stack: this is read several times in every step.
  char name[16];
  char* end = name + row_.name.copy(name, sizeof name);
  *end++ = '_';
  end = std::to_chars(end, name + sizeof name, k).ptr;
  return GetParameterData(session_, call_.FlowID, call_.FlowNo, {name, static_cast<std::size_t>(end - name)});
}

std::string Step::Evaluate(std::string_view expression) const {
  return expr::GetVariableValue(session_, {call_.ExecuteID, call_.RootExecuteID, call_.TableID, call_.DataID},
                                expression);
}

void Step::StoreVariable(std::string_view name, std::string_view value) const {
  expr::UpdateVariableValue(session_, call_.ExecuteID, call_.RootExecuteID, name, value);
}

}  // namespace talm_flow::engine
