// Commands that work on texts. Positions and lengths count characters.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/value.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::commands {

namespace {

std::optional<std::string> WithoutOuterBlanks(const Step&, std::string_view value) {
  return std::string(TrimBlanks(value));
}
std::optional<std::string> InUpperCase(const Step&, std::string_view value) { return UpperCase(value); }
std::optional<std::string> InLowerCase(const Step&, std::string_view value) { return LowerCase(value); }

std::string FlagText(bool flag) { return flag ? "1" : "0"; }
std::optional<std::string> NumericFlag(const Step&, std::string_view value) { return FlagText(IsNumeric(value)); }
std::optional<std::string> DateFlag(const Step&, std::string_view value) { return FlagText(IsDate(value)); }

/// Parameter k, evaluated, as a whole number; nothing when it is not numeric.
std::optional<std::int32_t> NumberParameter(const Step& step, int k) {
  const auto number = ParseNumber(step.Evaluated(k));
  if (!number) return std::nullopt;
  return ToInt32(*number);
}

/// Parameter k as a position, counted from 0: by default, and at the least, the first.
std::size_t PositionParameter(const Step& step, int k) {
  const std::int32_t position = NumberParameter(step, k).value_or(1);
  return position < 1 ? 0 : static_cast<std::size_t>(position) - 1;
}

/// The first `count` occurrences replaced, all when `count` is negative.
std::string ReplaceSome(std::string_view text, std::string_view sought, std::string_view replacement,
                        std::int32_t count) {
  if (sought.empty()) return std::string(text);
  if (count < 0) return ReplaceAll(text, sought, replacement);
  std::string result;
  std::size_t done = 0;
  for (; count > 0; --count) {
    const auto found = text.find(sought, done);
    if (found == std::string_view::npos) break;
    result.append(text, done, found - done);
    result += replacement;
    done = found + sought.size();
  }
  result.append(text, done);
  return result;
}

/// The 1-based position of `sought` at or behind the 0-based `start`; 0 when it is not there.
std::size_t PositionOf(std::string_view text, std::string_view sought, std::size_t start) {
  const std::size_t offset = OffsetOfCharacter(text, start);
  if (offset == text.size()) return 0;
  const auto found = text.find(sought, offset);
  if (found == std::string_view::npos) return 0;
  return start + CharacterCount(text.substr(offset, found - offset)) + 1;
}

}  // namespace

Outcome C_59(Step& step) { return WriteComputed(step, WithoutOuterBlanks); }
Outcome C_64(Step& step) { return WriteComputed(step, InUpperCase); }
Outcome C_65(Step& step) { return WriteComputed(step, InLowerCase); }
Outcome C_66(Step& step) { return WriteComputed(step, NumericFlag); }
Outcome C_67(Step& step) { return WriteComputed(step, DateFlag); }

Outcome C_93(Step& step) {
  const std::string text = step.Evaluated(1);
  const std::string sought = step.Evaluated(2);
  const std::string replacement = step.Evaluated(3);
  const std::size_t start = PositionParameter(step, 4);
  const std::int32_t count = NumberParameter(step, 5).value_or(-1);
  const auto kept = std::string_view(text).substr(OffsetOfCharacter(text, start));
  step.StoreVariable(step.Stored(6), ReplaceSome(kept, sought, replacement, count));
  return Outcome::Done();
}

Outcome C_94(Step& step) {
  const std::string text = step.Evaluated(1);
  const std::size_t start = PositionParameter(step, 2);
  const std::int32_t length = NumberParameter(step, 3).value_or(0);
  std::string_view piece = std::string_view(text).substr(OffsetOfCharacter(text, start));
  if (length >= 1) piece = FirstCharacters(piece, static_cast<std::size_t>(length));
  step.StoreVariable(step.Stored(4), piece);
  return Outcome::Done();
}

Outcome C_95(Step& step) {
  const std::string text = step.Evaluated(1);
  step.StoreVariable(step.Stored(2), std::to_string(CharacterCount(text)));
  return Outcome::Done();
}

Outcome C_96(Step& step) {
  const std::string text = step.Evaluated(1);
  const std::string sought = step.Evaluated(2);
  const std::size_t start = PositionParameter(step, 3);
  step.StoreVariable(step.Stored(4), std::to_string(PositionOf(text, sought, start)));
  return Outcome::Done();
}

}  // namespace talm_flow::commands
