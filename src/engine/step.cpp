#include "engine/step.h"

#include "engine/parameters.h"
#include "expr/evaluator.h"

namespace talm_flow::engine {

std::string Step::Stored(int k) const {
  // "C_" n "_" k: short enough to need no allocation.
  std::string name(row_.name);
  name += '_';
  name += static_cast<char>('0' + k);
  return GetParameterData(session_, call_.FlowID, call_.FlowNo, name);
}

std::string Step::Evaluate(std::string_view expression) const {
  return expr::GetVariableValue(session_, {call_.ExecuteID, call_.RootExecuteID, call_.TableID, call_.DataID},
                                expression);
}

void Step::StoreVariable(std::string_view name, std::string_view value) const {
  expr::UpdateVariableValue(session_, call_.ExecuteID, call_.RootExecuteID, name, value);
}

}  // namespace talm_flow::engine
