#include "support/definitions.h"

namespace talm_flow::test {

std::string WithCrLf(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\n') result += '\r';
    result += c;
  }
  return result;
}

std::string Text(std::string_view steps) {
  return WithCrLf("//\nVer:Flow_V600\nFlowBegin\nFlowRemark:\n" + std::string(steps) + "FlowEnd\n");
}

std::string StepLines(int number, int parent, std::string_view command, std::string_view parameters) {
  return "StepBegin\nFlowNo:" + std::to_string(number) + "\nParentNo:" + std::to_string(parent) +
         "\nSerial:1\nRemark:\n" + "Command:" + std::string(command) + "\nParameterBegin\n" + std::string(parameters) +
         "ParameterEnd\n";
}

std::string Assigning(std::string_view expression) {
  return Text(StepLines(1, 0, "C_39", "C_39_1:result\nC_39_2:" + std::string(expression) + "\n"));
}

std::string Codes(const Findings& findings) {
  std::string codes;
  for (const auto& finding : findings) {
    if (!codes.empty()) codes += ' ';
    codes += finding.code;
  }
  return codes;
}

}  // namespace talm_flow::test
