// Commands that work on lists: texts whose items a separator parts, and person expressions.

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/value.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::commands {

namespace {

std::optional<std::string> UserNames(const Step& step, std::string_view value) {
  return step.host().user_lists.UserNames(step.connection(), value);
}

std::optional<std::string> ItemCount(const Step&, std::string_view value) {
  return std::to_string(Split(value, ",").size());
}

/// Parameter k as the separator: "," stands for itself and for nothing given, any other text is an expression.
std::string SeparatorParameter(const Step& step, int k) {
  std::string separator = step.Stored(k);
  if (!separator.empty() && separator != ",") separator = step.Evaluate(separator);
  if (separator.empty()) separator = ",";
  return separator;
}

/// Parameter k as an item's position, from 1: a number as stored, else an expression, else the first.
std::int32_t ItemPositionParameter(const Step& step, int k) {
  const std::string stored = step.Stored(k);
  auto number = ParseNumber(stored);
  if (!number) number = ParseNumber(step.Evaluate(stored));
  const std::int32_t position = ToInt32(number.value_or(1));
  if (position == std::numeric_limits<std::int32_t>::min()) {
    throw OverflowError("the position " + std::to_string(position) + " has no absolute value in 32 bits");
  }
  if (position == 0) return 1;
  return position < 0 ? -position : position;
}

/// The item at a position, from 1; the empty text behind the last.
std::string_view Item(std::string_view list, std::string_view separator, std::int32_t position) {
  for (;;) {
    const auto end = list.find(separator);
    if (position == 1) return list.substr(0, end);
    if (end == std::string_view::npos) return {};
    list.remove_prefix(end + separator.size());
    --position;
  }
}

}  // namespace

Outcome C_54(Step& step) { return WriteComputed(step, UserNames); }
Outcome C_69(Step& step) { return WriteComputed(step, ItemCount); }

Outcome C_78(Step& step) {
  const std::string list = step.Evaluated(1);
  const std::string item = step.Evaluated(2);
  step.StoreVariable(step.Stored(3), step.host().common.InList(list, item) ? "1" : "0");
  return Outcome::Done();
}

Outcome C_87(Step& step) {
  const std::string list = step.Evaluated(1);
  const std::string separator = SeparatorParameter(step, 2);
  const std::int32_t position = ItemPositionParameter(step, 3);
  step.StoreVariable(step.Stored(4), Item(list, separator, position));
  return Outcome::Done();
}

Outcome C_88(Step& step) {
  const std::string list = step.Evaluated(1);
  const std::int32_t position = ItemPositionParameter(step, 2);
  step.StoreVariable(step.Stored(3), Item(list, ",", position));
  return Outcome::Done();
}

}  // namespace talm_flow::commands
