// A small host, as somebody would write it who has just found the library.

#include <talm_flow/adapters/database.h>
#include <talm_flow/command.h>
#include <talm_flow/error.h>
#include <talm_flow/host/reference_host.h>
#include <talm_flow/name.h>

#include <iostream>
#include <string>

namespace {

std::string KindOfFailure(talm_flow::adapters::Database& database) {
  try {
    (void)database.Execute("no statement at all");
  } catch (const talm_flow::DatabaseError& error) {
    return error.Kind();
  }
  return "nothing";
}

}  // namespace

int main() {
  const auto database = talm_flow::adapters::Open("sqlite::memory:");
  database->CreateTables();
  talm_flow::host::ReferenceHost host;
  const char* const definition =
      "//"
      "\r\nVer:Flow_V600\r\nFlowBegin\r\nFlowRemark:\r\nStepBegin\r\nFlowNo:1\r\nParentNo:0\r\nSerial:1\r\nRemark:\r\n"
      "Command:C_39\r\nParameterBegin\r\nC_39_1:Global_product\r\nC_39_2:6*7\r\nParameterEnd\r\nFlowEnd\r\n";
  (void)talm_flow::Name(host.services()).FlowAdd(*database, "Product", "kim", definition);
  talm_flow::Command command(host.services());
  command.FlowExecute(*database, 1, 0, 0, "kim", "127.0.0.1", 0, 0);
  std::cout << command.GetVariableValue(*database, 0, 0, "Global_product", 0, 0) << ' ' << KindOfFailure(*database)
            << '\n';
}
