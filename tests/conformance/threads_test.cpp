/// Several threads, each on a connection of its own: the library keeps nothing that they share, so each has what it
/// would have alone. Under the thread sanitizer this also tells of any memory that two of them touch.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <barrier>
#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "db/schema.h"
#include "support/places.h"
#include "support/rows.h"
#include "support/run_program.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/command.h"
#include "talm_flow/construction.h"
#include "talm_flow/conversion.h"
#include "talm_flow/definition_check.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/host/tracing_connection.h"
#include "talm_flow/host/unit_of_work.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

constexpr std::size_t kThreads = 4;

/// Runs `work` on threads that begin together, and raises again what one of them raised.
void RunTogether(const std::function<void(std::size_t)>& work) {
  std::barrier begin(static_cast<std::ptrdiff_t>(kThreads));
  std::vector<std::exception_ptr> raised(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      begin.arrive_and_wait();
      try {
        work(i);
      } catch (...) {
        raised[i] = std::current_exception();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::exception_ptr& error : raised) {
    if (error) std::rethrow_exception(error);
  }
}

/// The first of them is the child flow that others start by its number.
constexpr std::string_view kExamples[] = {"budget_check", "all_commands", "leave_request", "purchase", "reminder"};

/// The open tasks of a kind: number, instance, step.
std::vector<std::vector<Value>> OpenTasks(Connection& connection, const std::string& table, const std::string& key) {
  std::vector<std::vector<Value>> tasks;
  const auto rows = connection.Open("Select " + key + ",ExecuteID,FlowNo From " + table +
                                    " Where Status=0 And ExecuteID<>0 Order By " + key);
  for (; !rows->AtEnd(); rows->MoveNext()) tasks.push_back({rows->FieldAt(0), rows->FieldAt(1), rows->FieldAt(2)});
  return tasks;
}

/// Finishes what waits, round after round, as people do.
void FinishTasks(Connection& connection, Command& command) {
  constexpr int kMostRounds = 10;
  for (int round = 0; round < kMostRounds; ++round) {
    for (const auto& task : OpenTasks(connection, "DataApp", "DataAppID")) {
      command.ChangeAppStatusToFinish(connection, task[0], 1);
      command.FlowExecuteAfter(connection, task[1], task[2]);
      command.EndFlow(connection, task[1]);
    }
    for (const auto& task : OpenTasks(connection, "InUnitSub", "ID")) {
      command.ChangeInUnitSubStatusToFinish(connection, task[0]);
      command.FlowExecuteAfter(connection, task[1], task[2]);
      command.EndFlow(connection, task[1]);
    }
  }
}

void MakeForms(adapters::Database& database) {
  database.CreateTables();
  for (const int form : {12, 13, 14}) {
    database.CreateFormTable(form, {{"Days", "InputNum"}, {"Reason", "InputTextArea"}, {"Result", "InputText"}});
    (void)database.Execute("Insert Into TableData" + std::to_string(form) +
                           " (name,inputtime,Days) Values ('kim','2026-01-30 08:00:00',5)");
  }
}

/// Every example from its text to its end, what it is drawn and written out as, all statements, and all rows that are
/// left.
std::string RunExamples() {
  const auto database = adapters::Open("sqlite::memory:");
  MakeForms(*database);
  std::string seen;
  host::TracingConnection connection(*database, [&](std::string_view text) { seen.append(text) += '\n'; });
  host::ReferenceHost host({.fixed_clock = MakeDateTime(2026, 1, 31, 9, 5, 0)});
  const auto services = host.services();
  for (const std::string_view example : kExamples) {
    const std::string definition = ReadFile(SourcePath("examples/flows/" + std::string(example) + ".flow"));
    seen += std::to_string(CheckDefinition(definition).size());
    (void)Name(services).FlowAdd(connection, example, "kim", definition);
  }
  Command command(services);
  for (const std::string& flow : RowsOf(*database, "Select FlowID From WorkFlowName")) {
    command.FlowExecute(connection, flow, 12, 1, "kim", "127.0.0.1", 0, 0);
    seen += Construction(services).DisplayFlow(connection, flow, 1, "F");
    seen += InOut(services).MakeConstructionBak(connection, flow);
  }
  FinishTasks(connection, command);
  for (const db::Table& table : db::Tables()) {
    seen.append(table.name) += '\n';
    for (const std::string& row : RowsOf(*database, "Select * From " + std::string(table.name))) seen += row + '\n';
  }
  return seen;
}

TEST(ThreadsTest, EachThreadHasWhatItWouldHaveAlone) {
  const std::string alone = RunExamples();
  ASSERT_THAT(alone, ::testing::HasSubstr("Insert Into DataApp"));
  std::vector<std::string> seen(kThreads);
  RunTogether([&](std::size_t i) { seen[i] = RunExamples(); });
  for (const std::string& one : seen) EXPECT_EQ(one, alone);
}

TEST(ThreadsTest, ConnectionsToOneDatabaseTakeTurns) {
  constexpr int kRuns = 10;
  constexpr int kMostAttempts = 1000;
  const TemporaryFolder folder;
  const std::string url = "sqlite:" + folder.File("shared.db");
  {
    const auto database = adapters::Open(url);
    database->CreateTables();
    (void)database->Execute("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Command) Values (7,1,0,'C_39')");
    (void)database->Execute(
        "Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values "
        "(7,1,'C_39_1','Global_runs')");
    (void)database->Execute(
        "Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values "
        "(7,1,'C_39_2','Global_runs+1')");
    (void)database->Execute("Insert Into WorkFlowVariable (VariableName,VariableValue) Values ('Global_runs','0')");
  }
  RunTogether([&](std::size_t) {
    const auto database = adapters::Open(url);
    host::ReferenceHost host;
    Command command(host.services());
    host::Repetition patience;
    patience.attempts = kMostAttempts;
    for (int run = 0; run < kRuns; ++run) {
      host::UnitOfWork(*database, patience).Run([&] {
        command.FlowExecute(*database, 7, 12, 1, "kim", "127.0.0.1", 0, 0);
      });
    }
  });
  const auto database = adapters::Open(url);
  EXPECT_THAT(RowsOf(*database, "Select VariableValue From WorkFlowVariable"),
              ::testing::ElementsAre(std::to_string(kRuns * kThreads)));
  EXPECT_THAT(RowsOf(*database, "Select * From WorkFlowExecuteID"), ::testing::IsEmpty());
}

}  // namespace
}  // namespace talm_flow::test
