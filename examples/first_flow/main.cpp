#include <talm_flow/adapters/database.h>
#include <talm_flow/command.h>
#include <talm_flow/host/reference_host.h>
#include <talm_flow/name.h>

#include <iostream>

int main() {
  using namespace talm_flow;
  auto database = adapters::Open("sqlite::memory:");
  database->CreateTables();
  host::ReferenceHost host;

  const char* definition =
      "//\r\nVer:Flow_V600\r\nFlowBegin\r\nFlowRemark:Adds two numbers\r\nStepBegin\r\nFlowNo:1\r\nParentNo:0\r\n"
      "Serial:1\r\nRemark:Add\r\nCommand:C_39\r\nParameterBegin\r\nC_39_1:Global_sum\r\nC_39_2:1+2*3\r\n"
      "ParameterEnd\r\nFlowEnd\r\n";
  (void)Name(host.services()).FlowAdd(*database, "Sum", "me", definition);
  Command(host.services()).FlowExecute(*database, 1, 0, 0, "me", "127.0.0.1", 0, 0);
  std::cout << Command(host.services()).GetVariableValue(*database, 0, 0, "Global_sum", 0, 0) << '\n';  // 7
}
