/// How the engine goes about the statements: every operation and every command is called, every statement that reaches
/// the engine is collected as it is prepared, and its plan is read. None may walk through a table that grows with use,
/// or sort what is not bounded by an instance, a record or a definition.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/sqlite_database.h"
#include "support/places.h"
#include "support/temporary_folder.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"
#include "talm_flow/late_bound.h"
#include "talm_flow/name.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

using Texts = std::vector<std::string>;

const std::string kRecord = "\"TableID:12,DataID:345\"";
const std::string kOtherRecord = "\"TableID:12,DataID:346\"";

/// Parameters with which a command comes to its statements; the others come there with the usual ones.
const std::map<std::string, Texts, std::less<>> kParameters = {
    {"C_1", {kRecord, "\"News\"", "\"a,b\""}},
    {"C_2", {kRecord, "\"a,@all\"", "13", "\"Title\"", "", "", "24", "\"Please\""}},
    {"C_3", {kRecord, "\"a,b\"", "13", "\"Title\"", "", "", "\"Please\""}},
    {"C_4", {kRecord, "\"Doc\"", "\"fileid:1\""}},
    {"C_5", {kRecord, "\"Doc\"", "\"fileid:1\""}},
    {"C_6", {kRecord, "\"a,b\"", "1"}},
    {"C_7", {"12", "0"}},
    {"C_8", {kRecord, "1"}},
    {"C_9", {kRecord, "1", "13"}},
    {"C_10", {"12", "0"}},
    {"C_11", {"a", "=", "1"}},
    {"C_12", {kRecord}},
    {"C_13", {kRecord}},
    {"C_14", {kRecord}},
    {"C_15", {"5", "5", "1"}},
    {"C_16", {"4"}},
    {"C_17", {"1"}},
    {"C_18", {"8", "1", "p,q"}},
    {"C_20", {"\"a b\"", "\"x\""}},
    {"C_21", {"\"a b\"", "\"x\"", "\"y\""}},
    {"C_47", {"v", kRecord, "\"Title\""}},
    {"C_49", {"v", kRecord}},
    {"C_50", {"v", "12"}},
    {"C_54", {"v", "\"a,@all\""}},
    {"C_70", {"1", "1"}},
    {"C_76", {kOtherRecord, kRecord}},
    {"C_77", {"12", "name=\"kim\"", "v"}},
    {"C_79", {"12", "name=\"kim\"", "\"name\"", "v"}},
    {"C_80", {"\"x\""}},
    {"C_86", {"\"2026-02-01\"", "1"}},
    {"C_89", {kRecord}},
    {"C_90", {kRecord, "Open", "v"}},
    {"C_91", {"5", "Open", "p", "v"}},
    {"C_97", {kRecord, "\"Title\"", "\"a,b\"", "\"Title\"", "", "", "24", "\"Please\""}}};
const Texts kUsualParameters = {"v", "DataID_PerApp", "1", "1", "v", "v", "v", "v"};

/// What an argument of an operation is, by its name; 1 for others.
const std::map<std::string, Value, std::less<>> kArguments = {
    {"FlowID", 7},      {"FlowNo", 3},         {"ExecuteID", 901},  {"RootExecuteID", 901},
    {"TableID", 12},    {"DataID", 345},       {"FlowName", "new"}, {"Express", "a+1"},
    {"StrContent", ""}, {"VariableName", "a"}, {"Operator", "kim"}};

/// A statement of the engine, and the lines of its plan.
struct Plan {
  std::string text;
  Texts lines;

  [[nodiscard]] bool Has(std::string_view part) const {
    return std::any_of(lines.begin(), lines.end(),
                       [part](const std::string& line) { return line.find(part) != std::string::npos; });
  }
};

class QueryPlanTest : public testing::Test {
 protected:
  QueryPlanTest() {
    world_.database().CreateFormTable(12,
                                      {{"Title", "InputText"}, {"Doc", "UpLoadFile"}, {"Sign", "InputDigitalSign"}});
    world_.database().CreateFormTable(13, {{"Opinion", "InputText"}});
    for (const char* const statement :
         {"Insert Into TableData12 (ID,name,inputtime,Title) Values (345,'kim','2026-01-02 03:04:05','T')",
          "Insert Into TableData12 (ID,name,inputtime) Values (346,'lee','2026-01-03 00:00:00')",
          "Insert Into TableData13 (ID,inputtime) Values (1,'2026-01-03 00:00:00')",
          "Insert Into UserGroup (GroupName,UserName) Values ('all','a,b')",
          "Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (7,'flow','kim','')",
          "Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (8,'child','kim','')",
          "Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort) Values (7,'p',1,1)",
          "Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID,TableID,DataID,FlowID) Values (900,900,12,345,7)",
          "Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID,TableID,DataID,FlowID) Values (901,901,12,345,7)",
          "Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (900,1,901)",
          "Insert Into WorkFlowExecute (ExecuteID,DataAppID,FlowNo) Values (901,1,1)",
          "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (901,901,'a','1')",
          "Insert Into DataApp (ExecuteID,FlowNo,AppedTableID,AppedDataID,AppTableID,AppDataID,RelatingID,NoticInf) "
          "Values (901,1,12,345,13,1,1,'')",
          "Insert Into InUnitSub (ExecuteID,FlowNo,NoticInf) Values (901,1,'')",
          "Insert Into DataAtt (AttedTableID,AttedDataID,AttTableID,AttDataID,NoticInf) Values (12,345,13,1,'')",
          "Insert Into DataAnswer (TableID,DataID,AnswerTableID,AnswerDataID) Values (12,345,13,1)",
          "Insert Into DataRec (TableID,DataID,Recver,Status) Values (12,345,'b',1)",
          "Insert Into TableFile (TableID,DataID,InUnitID,FileName) Values (12,346,'Doc','a')",
          "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID) Values (7,12,'Sign',346)"}) {
      world_.Run(statement);
    }
    world_.Step(7, 1, 0, "C_2");
    world_.Step(7, 2, 1, "C_22");
    world_.Step(7, 3, 2, "C_22");
    world_.Step(7, 4, 3, "C_22");
    world_.Step(8, 1, 0, "C_22");
    world_.Parameter(7, 1, "C_18_1", "8");
    world_.Parameter(7, 1, "C_18_3", "p,q");
    const auto collect = [](unsigned, void* texts, void* statement, void*) {
      if (const char* const text = sqlite3_sql(static_cast<sqlite3_stmt*>(statement))) {
        static_cast<std::set<std::string>*>(texts)->insert(text);
      }
      return 0;
    };
    sqlite3_trace_v2(engine(), SQLITE_TRACE_STMT, collect, &texts_);
  }
  ~QueryPlanTest() override { sqlite3_trace_v2(engine(), 0, nullptr, nullptr); }

  [[nodiscard]] sqlite3* engine() { return static_cast<SqliteDatabase&>(world_.database()).engine(); }

  /// Calls an operation and takes back what it changed.
  void Call(const late_bound::Operation& operation) {
    std::vector<late_bound::Argument> arguments;
    for (std::size_t i = 0; i < operation.MinArguments(); ++i) {
      const auto known = kArguments.find(operation.ArgumentName(i));
      arguments.emplace_back(known == kArguments.end() ? Value(1) : known->second);
      if (operation.ArgumentName(i) == "FileName") arguments.back() = folder_.File("text");
      if (operation.ArgumentName(i) == "Definition") arguments.back() = "";
    }
    world_.database().Begin();
    SetParameters(operation.name);
    (void)late_bound::Call(operation, world_.connection(), world_.services(), arguments);
    world_.database().Rollback();
  }

  void CallAll() {
    for (const late_bound::Operation& operation : late_bound::Operations()) {
      SCOPED_TRACE(operation.name);
      ASSERT_NO_THROW(Call(operation));
    }
  }

  void RunExampleFlows() {
    for (const char* const name : {"budget_check", "leave_request", "purchase", "reminder"}) {
      std::ifstream file(test::SourcePath("examples/flows/") + name + ".flow", std::ios::binary);
      const std::string definition{std::istreambuf_iterator<char>(file), {}};
      ASSERT_FALSE(definition.empty()) << name;
      ASSERT_EQ(Name(world_.services()).FlowAdd(world_.connection(), name, "kim", definition), 0) << name;
      const Value flow_id = Name(world_.services()).MaxFlowID(world_.connection());
      Command(world_.services()).FlowExecute(world_.connection(), flow_id, 12, 345, "kim", "127.0.0.1", 0, 0);
    }
  }

  /// The plans of all statements that were run since the test began and can have one.
  [[nodiscard]] std::vector<Plan> Plans() {
    const std::set<std::string> texts = texts_;
    std::vector<Plan> plans;
    for (const std::string& text : texts) {
      constexpr std::array<std::string_view, 4> kPlanned = {"select", "insert", "update", "delete"};
      const bool planned = std::any_of(kPlanned.begin(), kPlanned.end(), [&](std::string_view word) {
        return EqualIgnoringAsciiCase(std::string_view(text).substr(0, word.size()), word);
      });
      if (planned && text.find("pragma_") == std::string::npos && text.find("sqlite_") == std::string::npos) {
        plans.push_back(PlanOf(text));
      }
    }
    return plans;
  }

  [[nodiscard]] Plan PlanOf(const std::string& text) {
    Plan plan{text, {}};
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(engine(), ("explain query plan " + text).c_str(), -1, &statement, nullptr), SQLITE_OK)
        << text << ": " << sqlite3_errmsg(engine());
    while (sqlite3_step(statement) == SQLITE_ROW) {
      plan.lines.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, 3)));
    }
    sqlite3_finalize(statement);
    return plan;
  }

 private:
  /// Makes step 3 of flow 7 one of the command, if the operation is one.
  void SetParameters(std::string_view operation) {
    constexpr std::string_view kClass = "Command.";
    if (!operation.starts_with("Command.C_")) return;
    const std::string_view command = operation.substr(kClass.size());
    const auto known = kParameters.find(command);
    int number = 0;
    for (const std::string& parameter : known == kParameters.end() ? kUsualParameters : known->second) {
      world_.Parameter(7, 3, std::string(command) + "_" + std::to_string(++number), parameter);
    }
  }

  test::World world_;
  test::TemporaryFolder folder_;
  std::set<std::string> texts_;
};

/// Statements that go through a table on purpose: the newest row is the first that an index, or the table itself, gives
/// from behind; the catalogue shows all flows; a search among a form's records is the flow author's own condition; a file is added
/// through a query of the first file, whichever it is.
bool MayScan(const Plan& plan) {
  const auto has = [&plan](std::string_view part) { return plan.text.find(part) != std::string::npos; };
  const bool newest = (has("Order By DataAppID Desc") || has("Order By ID Desc") || has("order by FlowID desc")) &&
                      has(" limit 1") && !has(" where ") && !has(" Where ");
  const bool catalogue = has("from WorkFlowName Order By FlowName") || has("From WorkFlowName Order By FlowName");
  const bool search = has(" TableData12");
  const bool to_add = plan.text == "Select * From TableFile order by TableFile.rowid limit 1";
  return (newest || catalogue || search || to_add) && !plan.Has("USE TEMP B-TREE");
}

/// Whether an index narrows a table down to the rows of an instance, a task, a record, a definition, a name.
bool IsNarrowed(const std::string& line) {
  static constexpr std::array<std::string_view, 17> kNarrow = {
      "(rowid=?",      "ExecuteID=?",   "FlowID=?",   "DataAppID=?", "RelatingID=?",          "DataID=?",
      "AppedDataID=?", "AttedDataID=?", "TableID=?)", "InUnitID=?",  "VariableName=?",        "FlowName=?",
      "GroupName=?",   "FlowNo=?",      "ParentNo=?", "OrderNo=?",   "TableID=? AND InUnitID"};
  return std::any_of(kNarrow.begin(), kNarrow.end(),
                     [&line](std::string_view column) { return line.find(column) != std::string::npos; });
}

TEST_F(QueryPlanTest, NoStatementWalksThroughAGrowingTable) {
  CallAll();
  RunExampleFlows();
  const std::vector<Plan> plans = Plans();
  EXPECT_GT(plans.size(), 120U);
  for (const Plan& plan : plans) {
    for (const std::string& line : plan.lines) {
      const bool scans = line.starts_with("SCAN ") && line != "SCAN CONSTANT ROW";
      const bool fits = scans ? MayScan(plan) : !line.starts_with("SEARCH ") || IsNarrowed(line);
      EXPECT_TRUE(fits) << plan.text << "\n  " << line;
    }
  }
}

TEST_F(QueryPlanTest, TheStatementsOfEveryStepBindTheirWholeIndex) {
  CallAll();
  RunExampleFlows();
  const std::array<std::pair<std::string_view, std::string_view>, 8> expected = {
      {{"Select Command from WorkFlowConstruction where FlowID=? and FlowNo=?", "(FlowID=? AND FlowNo=?)"},
       {"select flowno from WorkFlowConstruction where flowid=? and parentno=? order by ID",
        "WorkFlowConstruction_FlowID_ParentNo_ID (FlowID=? AND ParentNo=?)"},
       {"Select ParameterData From WorkFlowParameter Where ParameterName=? And FlowID=? And FlowNo=?",
        "(FlowID=? AND FlowNo=? AND ParameterName=?)"},
       {"Select VariableValue From WorkFlowVariable Where VariableName=? And RootExecuteID=?",
        "(RootExecuteID=? AND VariableName=?)"},
       {"Update WorkFlowVariable set VariableValue=? Where VariableName=? And RootExecuteID=?",
        "(RootExecuteID=? AND VariableName=?)"},
       {"Select Times from WorkFlowExecuteTimes where ExecuteID=? And FlowNo=?", "(ExecuteID=? AND FlowNo=?)"},
       {"update WorkFlowExecute set AppFinished=? where DataAppID=?", "(DataAppID=?)"},
       {"Select Status from DataApp where ExecuteID=? and FlowNo=?", "(ExecuteID=? AND FlowNo=?)"}}};
  const std::vector<Plan> plans = Plans();
  for (const auto& [text, line] : expected) {
    const auto found = std::find_if(plans.begin(), plans.end(), [text = text](const Plan& plan) {
      return EqualIgnoringAsciiCase(std::string_view(plan.text).substr(0, text.size()), text);
    });
    if (found == plans.end()) {
      ADD_FAILURE() << "was not run: " << text;
      continue;
    }
    EXPECT_TRUE(found->Has(line)) << found->text << "\n  " << testing::PrintToString(found->lines);
    EXPECT_FALSE(found->Has("USE TEMP B-TREE")) << found->text;
  }
}

TEST_F(QueryPlanTest, AScanIsRecognised) {
  EXPECT_FALSE(MayScan(PlanOf("select ID from DataNotice where Recver='kim'")));
  EXPECT_FALSE(MayScan(PlanOf("select ID from WorkFlowExecute order by Command")));
  EXPECT_TRUE(PlanOf("select ID from WorkFlowExecute order by Command").Has("SCAN WorkFlowExecute"));
  EXPECT_FALSE(IsNarrowed(PlanOf("select FlowID from WorkFlowName where FlowID>5").lines.at(0)));
}

}  // namespace
}  // namespace talm_flow::adapters
