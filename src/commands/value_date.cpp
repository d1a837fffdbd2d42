// Commands that work on dates.

#include <cstdint>
#include <optional>
#include <string>

#include "commands/handlers.h"
#include "commands/value.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {

namespace {

std::optional<std::string> InGeneralForm(const Step&, std::string_view value) {
  const auto moment = ParseDate(value);
  if (!moment) return std::nullopt;
  return GeneralDateText(*moment);
}

/// Writes a part of the date that parameter 1 holds, or of the current moment when it holds none.
Outcome WriteDatePart(Step& step, int DateParts::*part, std::size_t digits = 1) {
  const auto moment = ParseDate(step.Evaluated(1));
  const std::string target = step.Stored(2);
  std::string text = std::to_string(PartsOf(moment ? *moment : step.host().clock.Now()).*part);
  if (text.size() < digits) text.insert(0, digits - text.size(), '0');
  step.StoreVariable(target, text);
  return Outcome::Done();
}

}  // namespace

Outcome C_48(Step& step) { return WriteComputed(step, InGeneralForm); }

Outcome C_60(Step& step) {
  step.StoreVariable(step.Stored(1), GeneralDateText(step.host().clock.Now()));
  return Outcome::Done();
}

Outcome C_61(Step& step) {
  step.StoreVariable(step.Stored(1), ShortDateText(step.host().clock.Now()));
  return Outcome::Done();
}

Outcome C_81(Step& step) { return WriteDatePart(step, &DateParts::year, 4); }
Outcome C_82(Step& step) { return WriteDatePart(step, &DateParts::month); }
Outcome C_83(Step& step) { return WriteDatePart(step, &DateParts::day); }
Outcome C_84(Step& step) { return WriteDatePart(step, &DateParts::hour); }
Outcome C_85(Step& step) { return WriteDatePart(step, &DateParts::minute); }

Outcome C_92(Step& step) {
  const auto moment = ParseDate(step.Evaluated(1));
  const std::string target = step.Stored(2);
  if (moment) step.StoreVariable(target, std::to_string(PartsOf(*moment).weekday));
  return Outcome::Done();
}

}  // namespace talm_flow::commands
