#include "properties.h"

namespace talm_flow::fuzz {

std::span<const Property> Properties() {
  static constexpr Property kProperties[] = {
      {"condition", CheckCondition},       {"conversion", CheckConversion},
      {"definition", CheckDefinitionText}, {"drawing", CheckDrawing},
      {"expression", CheckExpression},     {"quoting", CheckQuoting},
      {"reference", CheckReference},       {"rpc", CheckRpc},
      {"statement", CheckStatement},       {"statement_text", CheckStatementText},
  };
  return kProperties;
}

}  // namespace talm_flow::fuzz
