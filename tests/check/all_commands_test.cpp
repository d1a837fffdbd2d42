// The example flow that uses every command, run to its end on the reference host. all_commands.txt tells the rows of all
// tables: those that were there before, and of every stage those that came (+) and went (-).

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/definitions.h"
#include "support/places.h"
#include "support/rows.h"
#include "support/run_program.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

constexpr int kBudgetCheck = 1;
constexpr int kAllCommands = 2;
constexpr int kParent = 3;

std::string SourceFile(const std::string& path) { return ReadFile(SourcePath(path)); }

struct TableRows {
  std::string columns;
  std::vector<std::string> rows;
};

/// Every table, by name.
std::map<std::string, TableRows> Tables(World& world) {
  std::map<std::string, TableRows> tables;
  for (const auto& name : TableNames(world.database())) {
    auto& table = tables[name];
    const auto rows = world.database().Open("select * from " + name);
    for (std::size_t i = 0; i < rows->ColumnCount(); ++i) {
      table.columns += (i > 0 ? "|" : "") + std::string(rows->ColumnName(i));
    }
    rows->Close();
    table.rows = world.Rows("select * from " + name);
  }
  return tables;
}

/// The rows that only the first list has, each behind a sign.
std::string RowsOnlyIn(const std::vector<std::string>& rows, const std::vector<std::string>& others, char sign) {
  const std::multiset<std::string> known(others.begin(), others.end());
  std::string text;
  for (const auto& row : rows) {
    if (!known.contains(row)) text += std::string("  ") + sign + " " + row + "\n";
  }
  return text;
}

class AllCommandsTest : public testing::Test {
 protected:
  AllCommandsTest() {
    MakeForms();
    MakeData();
    MakeFlows();
    definitions_ = Definitions();
    Note("before");
  }

  void MakeForms() {
    auto& database = world_.database();
    database.CreateFormTable(12, {{"Title", "InputText"},
                                  {"Amount", "InputNum"},
                                  {"Due", "InputTime"},
                                  {"Notes", "InputTextArea"},
                                  {"Result", "InputText"},
                                  {"Files", "UpLoadFile"},
                                  {"Seal", "InputElectroSeal"}});
    database.CreateFormTable(13, {{"Opinion", "InputTextArea"}});
    database.CreateFormTable(14, {{"Invoice", "InputText"}});
    database.CreateFormTable(15, {{"Answer", "InputText"}});
    database.CreateFormTable(16, {{"Offer", "InputText"}});
    world_.Run("Update TableName Set Sort=1 Where TableID=16");
  }

  void MakeData() {
    for (const char* statement :
         {"Insert Into TableData12 (name,inputtime,Title,Amount) Values ('zhao','2026-01-30 08:00:00','Laptops',1200)",
          "Insert Into TableData12 (name,inputtime,Title) Values ('archive','2026-01-01 00:00:00','Kept')",
          "Insert Into TableData12 (name,inputtime,Title,Amount) Values ('zhao','2026-01-29 08:00:00','Chairs',80)",
          "Insert Into TableData15 (name,inputtime,Answer) Values ('lee','2026-01-30 09:00:00','Which model?')",
          "Insert Into TableData16 (name,inputtime,Offer) Values ('shop','2026-01-28 09:00:00','Three laptops')",
          "Insert Into DataAnswer (TableID,DataID,AnswerTableID,AnswerDataID) Values (12,1,15,1)",
          "Insert Into TableFile (TableID,DataID,InUnitID,FileContent,FileName,Size,FileType) "
          "Values (16,1,'Offer','PDF','offer.pdf',3,'pdf')",
          "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID,InputName) Values (7,16,'Offer',1,'shop')",
          "Insert Into UserGroup (GroupName,UserName) Values ('board','kim')",
          "Insert Into UserGroup (GroupName,UserName) Values ('board','lee')",
          "Insert Into DataApp (ExecuteID,AppedTableID,AppedDataID,Appover,FlowNo,Status) Values (0,12,2,'old',1,0)",
          "Insert Into DataApp (ExecuteID,AppedTableID,AppedDataID,Appover,FlowNo,Status) Values (0,12,2,'old',1,2)",
          "Insert Into WorkFlowExecute (ExecuteID,DataAppID,FlowNo,Command) Values (0,1,1,'C_2')"}) {
      world_.Run(statement);
    }
  }

  void MakeFlows() {
    Name names(world_.services());
    const auto add = [&](const char* name, const std::string& text) {
      ASSERT_EQ(names.FlowAdd(world_.connection(), name, "kim", text), 0);
    };
    add("Budget check", SourceFile("examples/flows/budget_check.flow"));
    add("All commands", SourceFile("examples/flows/all_commands.flow"));
    // The flow that starts it, and gets its result.
    add("Parent", Text(StepLines(1, 0, "C_18", "C_18_1:2\nC_18_3:outcome\n") +
                       StepLines(2, 1, "C_80", "C_80_1:\"The parent goes on: \"+outcome\n")));
  }

  /// Takes down what changed since the last time.
  void Note(const std::string& stage) {
    story_ += "==== " + stage + "\n";
    auto tables = Tables(world_);
    for (const auto& [name, table] : tables) {
      if (name == "WorkFlowConstruction" || name == "WorkFlowParameter") continue;
      const auto changes =
          RowsOnlyIn(known_[name].rows, table.rows, '-') + RowsOnlyIn(table.rows, known_[name].rows, '+');
      if (!changes.empty()) story_ += name + ": " + table.columns + "\n" + changes;
    }
    std::erase(story_, '\r');
    known_ = std::move(tables);
  }

  /// The tables of definitions, which no run may change.
  std::vector<std::string> Definitions() {
    std::vector<std::string> rows;
    for (const char* table : {"WorkFlowConstruction", "WorkFlowParameter", "WorkFlowFunctionInput", "WorkFlowName"}) {
      for (auto& row : world_.Rows(std::string("select * from ") + table)) rows.push_back(table + (" " + row));
    }
    return rows;
  }

  /// The number of the example's only step with a command.
  int StepOf(const std::string& command) {
    return std::stoi(
        world_.Row("select FlowNo from WorkFlowConstruction where FlowID=2 and Command='" + command + "'"));
  }

  void GoOn(int step) { command_.FlowExecuteAfter(world_.connection(), 2, step); }

  World world_;
  Command command_{world_.services()};
  std::map<std::string, TableRows> known_;
  std::vector<std::string> definitions_;
  std::string story_;
};

TEST_F(AllCommandsTest, LeavesExactlyTheRowsThatAreDue) {
  Connection& connection = world_.connection();
  command_.FlowExecute(connection, kParent, 12, 1, "zhao", "10.0.0.5", 16, 1);
  Note("after the start: a fill-in, two approvals and a timer wait");

  world_.Run("Update TableData12 Set Notes='Needed by spring' Where ID=1");
  command_.ChangeInUnitSubStatusToFinish(connection, 1);
  GoOn(StepOf("C_97"));
  Note("after the fill-in");

  world_.Run("Insert Into TableData14 (name,inputtime,Invoice) Values ('wang','2026-01-31 10:00:00','No 1')");
  world_.Run("Update DataAtt Set AttDataID=1");
  world_.Run("Insert Into TableData13 (name,inputtime,Opinion) Values ('kim','2026-01-31 11:00:00','Yes')");
  world_.Run("Insert Into TableData13 (name,inputtime,Opinion) Values ('lee','2026-01-31 10:30:00','Fine')");
  Note("after the invoice was attached and the opinions were written");
  command_.ChangeAppStatusToFinish(connection, 3, 1);
  EXPECT_TRUE(command_.NotAppExists(connection, 4));
  command_.ChangeAppStatusToFinish(connection, 4, 2);
  EXPECT_FALSE(command_.NotAppExists(connection, 4));
  world_.Run("Update DataApp Set Status=3 Where DataAppID=4");
  GoOn(StepOf("C_2"));
  Note("after the approvals: the flow has ended but for its timer, and its parent went on");

  command_.EndFlow(connection, 1);
  EXPECT_NE(world_.Row("select ExecuteID from WorkFlowExecuteID where ExecuteID=1"), "");
  world_.Run("Update WorkFlowExecute Set HaveExeTimes=1 Where Command='C_86'");
  Value execute = 2;
  Value step = world_.Row("select FlowNo from WorkFlowExecute where Command='C_86'");
  Value root = 1;
  Value table = 12;
  Value data = 1;
  Value flow = kAllCommands;
  Value user = "zhao";
  Value address = "10.0.0.5";
  Value other_table = 16;
  Value other_data = 1;
  InvocationContext call{connection, execute, step, root, table, data, flow, user, address, other_table, other_data};
  command_.FlowExecuteByExecuteID(call);
  command_.EndFlow(connection, 1);
  Note("after the deadline: the instances are gone");

  EXPECT_EQ(story_, SourceFile("tests/check/all_commands.txt"));
  EXPECT_EQ(Definitions(), definitions_);
}

TEST_F(AllCommandsTest, UsesEveryCommand) {
  std::set<std::string> used;
  for (const auto& row : world_.Rows("select distinct Command from WorkFlowConstruction where FlowID=2")) {
    used.insert(row);
  }
  for (int n = 1; n <= 98; ++n) EXPECT_TRUE(used.contains("C_" + std::to_string(n))) << n;
  EXPECT_EQ(used.size(), 98U);
}

TEST_F(AllCommandsTest, IsExportedAsItWasWritten) {
  InOut in_out(world_.services());
  EXPECT_EQ(in_out.MakeConstructionBak(world_.connection(), kAllCommands),
            SourceFile("examples/flows/all_commands.flow"));
  EXPECT_EQ(in_out.MakeConstructionBak(world_.connection(), kBudgetCheck),
            SourceFile("examples/flows/budget_check.flow"));
}

}  // namespace
}  // namespace talm_flow::test
