#pragma once

/// What a definition text holds, told in the order in which it stands there.

#include <cstddef>
#include <string_view>

#include "design/definition_text.h"

namespace talm_flow::design {

/// Reads a definition text in one pass. All views that the sink gets point into the text, so that it can tell where
/// they stand. The sink has
///   void Remark(std::string_view remark)                         the flow's remark, without its key
///   void Step(std::string_view begin, const Attributes<5>&)      `begin` is the line that opened the step
///   void Parameter(std::string_view name, std::string_view data) belongs to the last step
///   void InputParameter(std::string_view begin, const Attributes<4>&)
///   void NoParameter(std::string_view value)                     in a parameter block, without ":"
///   void NotClosed(std::string_view begin)                       the text ends inside the parameter block
///   void PassedOver(std::string_view value)                      comments, markers, and what stands nowhere
///   void End(std::string_view rest)                              the text behind the end
template <typename Sink>
class DefinitionParser {
 public:
  DefinitionParser(std::string_view text, Sink& sink) : rest_(text), sink_(sink) {}

  void Parse() {
    while (true) {
      const std::string_view value = Next();
      if (IsFlowRemark(value)) {
        sink_.Remark(value.substr(kFlowRemarkKey.size()));
      } else if (value == "StepBegin") {
        const auto step = GetStepValue(rest_);
        rest_ = step.back.value_or(rest_);
        sink_.Step(value, step);
      } else if (value == "ParameterBegin") {
        ParseParameters(value);
      } else if (value == "FunctionParameterBegin") {
        const auto input = GetFunctionValue(rest_);
        rest_ = input.back.value_or(rest_);
        sink_.InputParameter(value, input);
      } else if (value.empty() || value == "FlowEnd") {
        sink_.End(rest_);
        return;
      } else {
        sink_.PassedOver(value);
      }
    }
  }

 private:
  std::string_view Next() {
    const auto [value, rest] = SeparateValue(rest_);
    rest_ = rest;
    return value;
  }

  void ParseParameters(std::string_view begin) {
    while (true) {
      const std::string_view value = Next();
      if (value == "ParameterEnd") return;
      if (value.empty()) return sink_.NotClosed(begin);
      if (value.starts_with("//")) {
        sink_.PassedOver(value);
      } else if (const std::size_t colon = value.find(':'); colon == std::string_view::npos) {
        sink_.NoParameter(value);
      } else {
        sink_.Parameter(value.substr(0, colon), value.substr(colon + 1));
      }
    }
  }

  std::string_view rest_;
  Sink& sink_;
};

}  // namespace talm_flow::design
