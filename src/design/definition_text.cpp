#include "design/definition_text.h"

namespace talm_flow::design {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Whether the line begins with "C_" n "_" k ":", n from 1 to 98 and k from 1 to 8, in plain digits.
bool BeginsWithParameterName(std::string_view line) {
  constexpr std::size_t kShortest = 6;  // "C_1_1:"
  if (line.size() < kShortest || line[1] != '_' || !IsDigit(line[2]) || line[2] == '0') return false;
  std::size_t at = 3;
  if (IsDigit(line[at])) {
    if (line[2] == '9' && line[at] == '9') return false;
    ++at;
  }
  return line.size() >= at + 3 && line[at] == '_' && line[at + 1] >= '1' && line[at + 1] <= '8' && line[at + 2] == ':';
}

template <std::size_t count>
Attributes<count> ReadAttributes(std::string_view text, const std::array<std::string_view, count>& keys) {
  Attributes<count> read;
  while (true) {
    const auto [value, rest] = SeparateValue(text);
    std::size_t i = 0;
    while (i < count && !value.starts_with(keys[i])) ++i;
    if (i == count) return read;
    read.values[i] = value.substr(keys[i].size());
    read.back = text = rest;
  }
}

}  // namespace

Parted SeparateLine(std::string_view text) {
  const std::size_t end = text.find(kLineEnd);
  if (end == std::string_view::npos) return {text, {}};
  return {text.substr(0, end), text.substr(end + kLineEnd.size())};
}

Parted SeparateValue(std::string_view text) {
  auto [value, rest] = SeparateLine(text);
  while (!rest.empty()) {
    const auto [line, behind] = SeparateLine(rest);
    if (IsSeparateLine(line)) break;
    // The lines of a value stand in the text as they are joined: with one line end between them.
    value = text.substr(0, value.size() + kLineEnd.size() + line.size());
    rest = behind;
  }
  return {value, rest};
}

bool IsSeparateLine(std::string_view line) {
  if (line.empty()) return false;
  const auto begins = [line](const auto... keys) { return (line.starts_with(keys) || ...); };
  switch (line[0]) {
    case '/':
      return begins("//");
    case 'C':
      return BeginsWithParameterName(line) || begins("Command:", "ClassContent:");
    case 'F':
      return begins("FlowNo:", "FlowBegin", kFlowRemarkKey, "FlowEnd", "FunctionParameterBegin",
                    "FunctionParameterEnd");
    case 'I':
      return begins("InputTitle:");
    case 'O':
      return begins("OrderNo:");
    case 'P':
      return begins("ParentNo:", "ParameterBegin", "ParameterEnd");
    case 'R':
      return begins("Remark:");
    case 'S':
      return begins("StepBegin", "Serial:", "Sort:", "StepEnd");
    case 'V':
      return begins("Ver:");
    default:
      return false;
  }
}

bool IsFlowRemark(std::string_view value) { return value.starts_with(kFlowRemarkKey); }

Attributes<5> GetStepValue(std::string_view text) {
  return ReadAttributes<5>(text, {"FlowNo:", "ParentNo:", "Serial:", "Remark:", "Command:"});
}

Attributes<4> GetFunctionValue(std::string_view text) {
  return ReadAttributes<4>(text, {"InputTitle:", "OrderNo:", "Sort:", "ClassContent:"});
}

}  // namespace talm_flow::design
