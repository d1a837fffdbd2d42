/// Hosts against all three nodes of a cluster at once: flows that are started through one node are approved through the
/// next, while one node is killed and comes back. Run by `make test-cluster`.
///
/// Environment: TALM_FLOW_CLUSTER names the folder in which tools/cluster has started the nodes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "adapters/odbc_handles.h"
#include "db/schema.h"
#include "office.h"
#include "support/places.h"
#include "support/rows.h"
#include "support/run_program.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::test {
namespace {

using Clock = std::chrono::steady_clock;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kNodes = 3;
constexpr int kFlow = 7;
constexpr int kFlowsOfNode = 30;
constexpr int kAllFlows = kNodes * kFlowsOfNode;
/// Everything ends before this, or fails.
constexpr std::chrono::seconds kLimit{240};
constexpr std::chrono::milliseconds kPause{20};

std::string ClusterFolder() {
  const char* const folder = std::getenv("TALM_FLOW_CLUSTER");
  return folder == nullptr ? std::string() : std::filesystem::absolute(folder).string();
}

std::string NodeUrl(int node) {
  std::ifstream urls(ClusterFolder() + "/urls");
  const std::string name = "node" + std::to_string(node) + "=";
  for (std::string line; std::getline(urls, line);) {
    if (line.starts_with(name)) return line.substr(name.size());
  }
  throw std::runtime_error("TALM_FLOW_CLUSTER names no folder of a running cluster");
}

/// Several processes meet at one row: many attempts, short pauses.
host::Repetition Patience() {
  host::Repetition repetition;
  repetition.attempts = 200;
  repetition.longest_pause = host::Repetition::Pause(100);
  return repetition;
}

/// A host on one node, which connects again when the node goes away.
class Host {
 public:
  explicit Host(int node) : url_(NodeUrl(node)), end_(Clock::now() + kLimit) {}

  /// Does `work` on a connection, on a new one after a lost connection or when the node is not ready.
  template <typename Work>
  auto OnConnection(Work work) {
    for (;;) {
      try {
        if (!database_) database_ = adapters::Open(url_);
        return work(*database_);
      } catch (const DatabaseError& error) {
        if (!IsOfTheConnection(error) || Clock::now() > end_) throw;
        database_.reset();
        std::this_thread::sleep_for(kPause);
      }
    }
  }

  /// One unit of work, which is done unless it has been: after a lost connection nobody knows, so it is asked for.
  template <typename Done, typename Work>
  void Once(Done is_done, Work work) {
    OnConnection([&](adapters::Database& database) {
      host::UnitOfWork(database, Patience()).Run([&] {
        if (!is_done(database)) work(database);
      });
    });
  }

  [[nodiscard]] bool HasTime() const { return Clock::now() < end_; }
  [[nodiscard]] Command& command() { return command_; }

 private:
  static bool IsOfTheConnection(const DatabaseError& error) {
    constexpr std::array kConnectionErrors = {1047, 2002, 2003, 2006, 2013};
    const adapters::OdbcState state = adapters::StateOf(error);
    return state.sql_state.starts_with("08") ||
           std::find(kConnectionErrors.begin(), kConnectionErrors.end(), state.native) != kConnectionErrors.end();
  }

  std::string url_;
  Clock::time_point end_;
  std::unique_ptr<adapters::Database> database_;
  host::ReferenceHost host_;
  Command command_{host_.services()};
};

bool Exists(Connection& connection, const std::string& query) { return !connection.Open(query)->AtEnd(); }

/// Starts the flows of a node, each on a record of its own.
void StartFlows(int node) {
  Host host(node);
  for (int record = node; record <= kAllFlows; record += kNodes) {
    host.Once(
        [&](Connection& connection) {
          return Exists(connection, "Select Top 1 DataAppID From DataApp Where AppedTableID=12 And AppedDataID=" +
                                        std::to_string(record));
        },
        [&](Connection& connection) {
          host.command().FlowExecute(connection, kFlow, 12, record, "kim", "127.0.0.1", 0, 0);
        });
  }
}

/// Approves through one node what was started through the one before.
void ApproveFlows(int node) {
  Host host(node);
  const int starter = node == 1 ? kNodes : node - 1;
  for (int record = starter; record <= kAllFlows; record += kNodes) {
    const std::string task =
        "Select Top 1 DataAppID,ExecuteID,FlowNo,Status From DataApp Where AppedTableID=12 And "
        "AppedDataID=" +
        std::to_string(record);
    while (!host.OnConnection([&](Connection& connection) { return Exists(connection, task); })) {
      if (!host.HasTime()) throw std::runtime_error("record " + std::to_string(record) + " has no task");
      std::this_thread::sleep_for(kPause);
    }
    host.Once([&](Connection& connection) { return connection.Open(task)->Field("Status") == Value(2); },
              [&](Connection& connection) {
                const auto row = connection.Open(task);
                host.command().ChangeAppStatusToFinish(connection, row->Field("DataAppID"), 0);
                host.command().FlowExecuteAfter(connection, row->Field("ExecuteID"), row->Field("FlowNo"));
                host.command().EndFlow(connection, row->Field("ExecuteID"));
              });
  }
}

/// Runs work in a process of its own. No connection may be open here.
template <typename Work>
pid_t InProcess(Work work) {
  const pid_t process = fork();
  if (process != 0) return process;
  try {
    work();
    _exit(0);
  } catch (const std::exception& error) {
    std::cerr << "a host failed: " << error.what() << '\n';
    _exit(1);
  }
}

void RunClusterScript(const std::string& action, int node) {
  const TemporaryFolder folder;
  const ProgramResult result =
      RunProgram(SourcePath("tools/cluster"), {action, ClusterFolder(), std::to_string(node)}, folder);
  ASSERT_EQ(result.status, 0) << result.err;
}

std::int64_t CountOf(const std::string& from) {
  const auto database = adapters::Open(NodeUrl(1));
  return database->Open("select count(*) as n from " + from)->Field("n").Whole();
}

/// Until so many flows are in a state, as node 1 sees it.
void WaitForFlows(const std::string& from, std::int64_t count) {
  const auto end = Clock::now() + kLimit;
  while (CountOf(from) < count) {
    ASSERT_LT(Clock::now(), end) << from;
    std::this_thread::sleep_for(kPause);
  }
}

void MakeOffice() {
  bench::Office office(NodeUrl(1));
  office.AddApprovalFlow(kFlow);
  office.Run("delete from TableData12");
  for (int record = 1; record <= kAllFlows; ++record) {
    office.Run("Insert Into TableData12 (ID,name,inputtime,Days) Values (" + std::to_string(record) +
               ",'kim','2026-01-31 09:00:00',5)");
  }
}

/// All rows of all tables, as one node has them.
std::vector<std::string> AllRows(int node) {
  const auto database = adapters::Open(NodeUrl(node));
  std::vector<std::string> lines;
  for (const db::Table& table : db::Tables()) {
    const std::string name(table.name);
    for (const std::string& row : RowsOf(*database, "select * from " + name)) lines.push_back(name + " " + row);
  }
  return lines;
}

TEST(ClusterTest, NothingIsLostOrDoubledWhenANodeDiesAndComesBack) {
  ASSERT_NO_FATAL_FAILURE(MakeOffice());
  std::vector<pid_t> processes;
  for (int node = 1; node <= kNodes; ++node) {
    processes.push_back(InProcess([node] { StartFlows(node); }));
    processes.push_back(InProcess([node] { ApproveFlows(node); }));
  }

  WaitForFlows("DataApp", kAllFlows / 4);
  RunClusterScript("kill", 3);
  WaitForFlows("DataApp", kAllFlows / 2);
  RunClusterScript("rejoin", 3);

  for (const pid_t process : processes) {
    int status = 0;
    ASSERT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }

  // Every record has one task, finished, and one notice of it; nothing of an instance is left behind.
  const auto database = adapters::Open(NodeUrl(1));
  const std::string all = std::to_string(kAllFlows);
  EXPECT_THAT(RowsOf(*database, "select count(*),count(distinct AppedDataID),sum(Status) from DataApp"),
              ElementsAre(all + "|" + all + "|" + std::to_string(2 * kAllFlows)));
  EXPECT_THAT(RowsOf(*database, "select count(*),count(distinct DataID) from DataNotice"),
              ElementsAre(all + "|" + all));
  for (const char* const table : {"WorkFlowExecuteID", "WorkFlowExecuteTimes", "WorkFlowVariable"}) {
    EXPECT_THAT(RowsOf(*database, "select * from " + std::string(table)), IsEmpty()) << table;
  }
  // What was read back as the highest key is the key of the own row.
  EXPECT_THAT(RowsOf(*database,
                     "select count(*),count(distinct w.ExecuteID) from WorkFlowExecute w join DataApp a on "
                     "a.DataAppID=w.DataAppID and a.ExecuteID=w.ExecuteID and a.RelatingID=a.DataAppID where "
                     "w.AppFinished=1"),
              ElementsAre(all + "|" + all));
  EXPECT_EQ(CountOf("WorkFlowExecute"), kAllFlows);

  const auto rows = AllRows(1);
  EXPECT_EQ(AllRows(2), rows);
  EXPECT_EQ(AllRows(3), rows);
}

TEST(ClusterTest, WorkWhoseTransactionVanishedUnseenIsDoneAgain) {
  const auto database = adapters::Open(NodeUrl(1));
  database->CreateTables();
  int runs = 0;
  host::UnitOfWork(*database, Patience()).Run([&] {
    (void)database->Execute("insert into DataTran (TableID) values (1)");
    // The connection takes it for something that concerns a savepoint.
    if (++runs == 1) (void)database->Execute("rollback work");
    (void)database->Execute("insert into DataTran (TableID) values (2)");
  });
  EXPECT_EQ(runs, 2);
  EXPECT_THAT(RowsOf(*database, "select TableID from DataTran"), ElementsAre("1", "2"));
  // Outside of units of work each statement is kept at once.
  (void)database->Execute("delete from DataTran");
  EXPECT_EQ(CountOf("DataTran"), 0);
}

TEST(ClusterTest, ATableMadeInAUnitOfWorkDoesNotEndIt) {
  const auto database = adapters::Open(NodeUrl(1));
  int runs = 0;
  host::UnitOfWork(*database, Patience()).Run([&] {
    ++runs;
    database->CreateFormTable(44, {{"Days", "InputNum"}});
    (void)database->Execute("create table if not exists Elsewhere (a int)");
    (void)database->Execute("insert into TableData44 (Days) values (5)");
  });
  EXPECT_EQ(runs, 1);
  EXPECT_THAT(RowsOf(*database, "select InUnitID from TableInUnitConstruction where TableID=44"), ElementsAre("Days"));
  EXPECT_EQ(CountOf("TableData44"), 1);
}

/// The last test: it leaves one node of three.
TEST(ClusterTest, TheMinorityAnswersErrors) {
  const auto database = adapters::Open(NodeUrl(1));
  RunClusterScript("kill", 2);
  RunClusterScript("kill", 3);
  const auto end = Clock::now() + kLimit;
  // A commit that was under way when the others vanished fails with an error of its own.
  constexpr std::string_view kUnderWay = "HY000:1180";
  std::string state;
  while ((state.empty() || state == kUnderWay) && Clock::now() < end) {
    try {
      host::UnitOfWork(*database).Run([&] { (void)database->Execute("insert into DataNotice (Sort) values (99)"); });
    } catch (const DatabaseError& error) {
      state = error.State();
      EXPECT_FALSE(database->MayBeRepeated(error)) << error.what();
    }
  }
  EXPECT_EQ(state, "08S01:1047");
}

}  // namespace
}  // namespace talm_flow::test
