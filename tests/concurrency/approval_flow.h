#pragma once

/// The flow that the hosts run who work at the same time, and how much they do.

#include <cstdlib>
#include <string>
#include <vector>

#include "support/databases.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::test {

/// The chosen database, where several processes can open it.
[[nodiscard]] inline std::string SharedDatabase() {
  const std::string chosen = ChosenDatabase();
  return chosen == "sqlite" ? "sqlite_file" : chosen;
}

/// The whole count when TALM_FLOW_SOAK is set, else the small one.
[[nodiscard]] inline int Bounded(int small, int whole) {
  return std::getenv("TALM_FLOW_SOAK") != nullptr ? whole : small;
}

/// Form 12 with the unit Days, form 13, and flow 1: an approval by kim and lee, then a fill-in by ann, both with a time
/// limit, then an assignment.
inline void MakeApprovalFlow(adapters::Database& database) {
  const auto run = [&](const std::string& text) { (void)database.Execute(text); };
  database.CreateFormTable(12, {{"Days", "InputNum"}});
  database.CreateFormTable(13, {{"Opinion", "InputText"}});
  run("Insert Into WorkFlowName (FlowName) Values ('approval')");
  const auto step = [&](int number, const std::string& command, const std::vector<std::string>& parameters) {
    run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (1," +
        std::to_string(number) + "," + std::to_string(number - 1) + ",0,'','" + command + "')");
    for (std::size_t k = 0; k < parameters.size(); ++k) {
      run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (1," +
          std::to_string(number) + ",'" + command + "_" + std::to_string(k + 1) + "','" + parameters[k] + "')");
    }
  };
  step(1, "C_2", {"DataID_Submit", "\"kim,lee\"", "\"TableID:13\"", "\"Please\"", "\"Approve\"", "1", "48", "\"\""});
  step(2, "C_97", {"DataID_Submit", "\"Days\"", "\"ann\"", "\"Please\"", "\"Fill in\"", "1", "48", "\"\""});
  step(3, "C_22", {"done", "yes"});
}

}  // namespace talm_flow::test
