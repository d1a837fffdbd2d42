// Commands that put a value into a variable as it is. Several numbers do the same so that a designer can offer them as
// different kinds of step.

#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/value.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {

namespace {

Outcome AssignAsStored(Step& step) {
  const std::string target = step.Stored(1);
  step.StoreVariable(target, step.Stored(2));
  return Outcome::Done();
}

std::optional<std::string> Itself(const Step&, std::string_view value) { return std::string(value); }

std::optional<std::string> IfNumeric(const Step&, std::string_view value) {
  if (!IsNumeric(value)) return std::nullopt;
  return std::string(value);
}

Outcome AssignArgument(Step& step, const Value& argument) {
  step.StoreVariable(step.Stored(1), JoinedText(argument));
  return Outcome::Done();
}

}  // namespace

Outcome C_22(Step& step) { return AssignAsStored(step); }
Outcome C_23(Step& step) { return AssignAsStored(step); }
Outcome C_24(Step& step) { return AssignAsStored(step); }
Outcome C_25(Step& step) { return AssignAsStored(step); }
Outcome C_26(Step& step) { return AssignAsStored(step); }
Outcome C_27(Step& step) { return AssignAsStored(step); }
Outcome C_28(Step& step) { return AssignAsStored(step); }
Outcome C_29(Step& step) { return AssignAsStored(step); }
Outcome C_30(Step& step) { return AssignAsStored(step); }
Outcome C_75(Step& step) { return AssignAsStored(step); }

Outcome C_39(Step& step) { return WriteComputed(step, Itself); }
Outcome C_40(Step& step) { return WriteComputed(step, Itself); }
Outcome C_41(Step& step) { return WriteComputed(step, Itself); }
Outcome C_42(Step& step) { return WriteComputed(step, Itself); }
Outcome C_43(Step& step) { return WriteComputed(step, Itself); }
Outcome C_44(Step& step) { return WriteComputed(step, Itself); }

Outcome C_55(Step& step) { return WriteComputed(step, IfNumeric); }
Outcome C_56(Step& step) { return WriteComputed(step, IfNumeric); }
Outcome C_57(Step& step) { return WriteComputed(step, IfNumeric); }
Outcome C_58(Step& step) { return WriteComputed(step, IfNumeric); }

Outcome C_62(Step& step) { return AssignArgument(step, step.call().Operator); }
Outcome C_63(Step& step) { return AssignArgument(step, step.call().IpAddress); }

}  // namespace talm_flow::commands
