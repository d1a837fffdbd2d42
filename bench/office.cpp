#include "office.h"

#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::bench {
namespace {

std::string Literal(std::string_view text) {
  std::string literal = "'";
  for (const char c : text) literal.append(c == '\'' ? 2 : 1, c);
  return literal + '\'';
}

}  // namespace

Office::Office(std::string_view url) : database_(adapters::Open(url)) {
  database_->CreateTables();
  database_->CreateFormTable(12, {{"Days", "InputNum"}, {"Result", "InputText"}});
  database_->CreateFormTable(13, {{"Opinion", "InputTextArea"}});
  Run("Insert Into TableData12 (name,inputtime,Days) Values ('kim','2026-01-31 09:00:00',5)");
}

void Office::Step(int flow_id, int flow_no, int parent_no, std::string_view command) {
  Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (" +
      std::to_string(flow_id) + "," + std::to_string(flow_no) + "," + std::to_string(parent_no) + ",0,''," +
      Literal(command) + ")");
}

void Office::Parameter(int flow_id, int flow_no, std::string_view name, std::string_view data) {
  Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (" + std::to_string(flow_id) +
      "," + std::to_string(flow_no) + "," + Literal(name) + "," + Literal(data) + ")");
}

void Office::AddChain(int flow_id, int steps) {
  for (int step = 1; step <= steps; ++step) {
    Step(flow_id, step, step - 1, "C_22");
    Parameter(flow_id, step, "C_22_1", "v" + std::to_string(step % 10));
    Parameter(flow_id, step, "C_22_2", "value");
  }
}

void Office::AddApprovalFlow(int flow_id) {
  AddChain(flow_id, 10);
  Step(flow_id, 11, 10, "C_2");
  const char* const parameters[] = {
      "DataID_Submit",      "\"lee\"", "\"TableID:13\"", "\"Please approve\"", "\"Approve\"", "1", "48",
      "\"A request waits\""};
  int k = 0;
  for (const char* data : parameters) Parameter(flow_id, 11, "C_2_" + std::to_string(++k), data);
  for (int step = 12; step <= 13; ++step) {
    Step(flow_id, step, step - 1, "C_22");
    Parameter(flow_id, step, "C_22_1", "w" + std::to_string(step));
    Parameter(flow_id, step, "C_22_2", "value");
  }
}

void Office::AddLoop(int flow_id) {
  Step(flow_id, 1, 0, "C_22");
  Parameter(flow_id, 1, "C_22_1", "v");
  Parameter(flow_id, 1, "C_22_2", "value");
  Step(flow_id, 2, 1, "C_16");
  Parameter(flow_id, 2, "C_16_1", "1");
}

void Office::AddParent(int flow_id, int child_flow_id, int children) {
  Run("Insert Into WorkFlowName (FlowID,FlowName) Values (" + std::to_string(child_flow_id) + ",'child')");
  AddChain(child_flow_id, 1);
  Step(flow_id, 1, 0, "C_22");
  Parameter(flow_id, 1, "C_22_1", "v");
  Parameter(flow_id, 1, "C_22_2", "value");
  for (int child = 2; child <= children + 1; ++child) {
    Step(flow_id, child, 1, "C_18");
    Parameter(flow_id, child, "C_18_1", std::to_string(child_flow_id));
  }
}

void Office::Start(Connection& connection, int flow_id) {
  command_.FlowExecute(connection, flow_id, 12, 1, "kim", "127.0.0.1", 0, 0);
}

Office::Task Office::NewestTask(Connection& connection) {
  const auto row =
      connection.Unobserved().Open("Select Top 1 DataAppID,ExecuteID,FlowNo From DataApp Order By DataAppID Desc");
  return {row->Field("DataAppID"), row->Field("ExecuteID"), row->Field("FlowNo")};
}

void Office::Finish(Connection& connection, const Task& task) {
  command_.ChangeAppStatusToFinish(connection, task.task, 0);
}

void Office::Resume(Connection& connection, const Task& task) {
  command_.FlowExecuteAfter(connection, task.instance, task.step);
}

void Office::End(Connection& connection, const Task& task) { command_.EndFlow(connection, task.instance); }

void Office::RunApproval(Connection& connection, int flow_id, bool in_transactions) {
  const auto call = [&](const auto& body) {
    if (in_transactions) {
      host::UnitOfWork(*database_).Run(body);
    } else {
      body();
    }
  };
  call([&] { Start(connection, flow_id); });
  const Task task = NewestTask(connection);
  call([&] { Finish(connection, task); });
  call([&] { Resume(connection, task); });
  call([&] { End(connection, task); });
}

}  // namespace talm_flow::bench
