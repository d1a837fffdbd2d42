#include "support/flow_host.h"

#include <optional>
#include <utility>

#include "talm_flow/command.h"
#include "talm_flow/conversion.h"

namespace talm_flow::test {
namespace {

/// The first row of a query, by columns.
std::optional<std::vector<Value>> FirstRow(Connection& connection, std::string_view query) {
  const auto rows = connection.Open(query);
  if (rows->AtEnd()) return std::nullopt;
  std::vector<Value> fields;
  for (std::size_t i = 0; i < rows->ColumnCount(); ++i) fields.push_back(rows->FieldAt(i));
  return fields;
}

/// What the sum of a call's statements is about does not matter here.
template <typename Body>
SweptCall Calling(Body body) {
  return [body](Connection& connection, const host::Services& services) {
    Command command(services);
    return body(command, connection);
  };
}

}  // namespace

FlowHost::FlowHost(World& world)
    : FlowHost(world, [&world](const SweptCall& call) { (void)call(world.connection(), world.services()); }) {}

void FlowHost::Start(int flow) {
  perform_(Calling([=](Command& command, Connection& connection) {
    command.FlowExecute(connection, flow, 12, 1, "zhao", "10.0.0.5", 16, 1);
    return std::string();
  }));
}

bool FlowHost::SettleOne() { return Approve() || FillIn() || RunTimer(); }

bool FlowHost::Settle(int most) {
  for (int i = 0; i < most; ++i) {
    if (!SettleOne()) return true;
  }
  return false;
}

bool FlowHost::Approve() {
  constexpr int kEveryWhich = 3;
  const auto task = FirstRow(world_.database(),
                             "Select Top 1 DataAppID,ExecuteID,FlowNo,AppTableID From DataApp Where Status<2 And "
                             "ExecuteID In (Select ExecuteID From WorkFlowExecuteID) Order By DataAppID");
  if (!task) return false;
  const Value& number = (*task)[0];
  const std::string form = "TableData" + JoinedText((*task)[3]);
  world_.Run("Insert Into " + form + " (name,inputtime) Values ('boss','2026-02-01 08:00:00')");
  const Value record = world_.Row("Select Top 1 ID From " + form + " Order By ID Desc");
  perform_(Calling([&](Command& command, Connection& connection) {
    command.ChangeAppStatusToFinish(connection, number, record);
    return std::string();
  }));
  if (ToInt32(number) % kEveryWhich != 0) {
    world_.Run("Update DataApp Set Status=3 Where DataAppID=" + JoinedText(number));
  }
  bool others_wait = false;
  perform_(Calling([&](Command& command, Connection& connection) {
    others_wait = command.NotAppExists(connection, number);
    return std::string(others_wait ? "1" : "0");
  }));
  if (!others_wait) Resume((*task)[1], (*task)[2]);
  return true;
}

bool FlowHost::FillIn() {
  const auto task = FirstRow(world_.database(),
                             "Select Top 1 ID,ExecuteID,FlowNo From InUnitSub Where Status<2 And ExecuteID In (Select "
                             "ExecuteID From WorkFlowExecuteID) Order By ID");
  if (!task) return false;
  perform_(Calling([&](Command& command, Connection& connection) {
    command.ChangeInUnitSubStatusToFinish(connection, (*task)[0]);
    return std::string();
  }));
  Resume((*task)[1], (*task)[2]);
  return true;
}

bool FlowHost::RunTimer() {
  const auto timer = FirstRow(
      world_.database(),
      "Select Top 1 ID,ExecuteID,FlowNo From WorkFlowExecute Where ((Command='C_15' And Times>HaveExeTimes) Or "
      "(Command='C_86' And HaveExeTimes=0)) And ExecuteID In (Select ExecuteID From WorkFlowExecuteID) Order By ID");
  if (!timer) return false;
  world_.Run("Update WorkFlowExecute Set HaveExeTimes=HaveExeTimes+1 Where ID=" + JoinedText((*timer)[0]));
  RunStep((*timer)[1], (*timer)[2]);
  return true;
}

void FlowHost::Resume(const Value& instance, const Value& step) {
  perform_(Calling([&](Command& command, Connection& connection) {
    command.FlowExecuteAfter(connection, instance, step);
    return std::string();
  }));
  End(instance);
}

void FlowHost::RunStep(const Value& instance, const Value& step) {
  auto row = FirstRow(world_.database(),
                      "Select Top 1 RootExecuteID,TableID,DataID,FlowID,Operator,IpAddress,OtherTableID,OtherDataID "
                      "From WorkFlowExecuteID Where ExecuteID=" +
                          JoinedText(instance));
  perform_(Calling([&](Command& command, Connection& connection) {
    auto fields = *row;
    Value execute = instance;
    Value number = step;
    InvocationContext context{connection, execute,   number,    fields[0], fields[1], fields[2],
                              fields[3],  fields[4], fields[5], fields[6], fields[7]};
    command.FlowExecuteByExecuteID(context);
    return std::string();
  }));
  End(instance);
}

void FlowHost::End(const Value& instance) {
  perform_(Calling([&](Command& command, Connection& connection) {
    command.EndFlow(connection, instance);
    return std::string();
  }));
}

}  // namespace talm_flow::test
