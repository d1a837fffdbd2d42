// How many rows a query is asked for, at the limit and one beyond: the row behind the last is never seen.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "support/invocation.h"
#include "support/rows.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/construction.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

constexpr std::size_t kMost = 10000;
constexpr std::size_t kMostOfMany = 100000;

std::size_t Count(std::string_view text, std::string_view sought) {
  std::size_t count = 0;
  for (auto at = text.find(sought); at != std::string_view::npos; at = text.find(sought, at + 1)) ++count;
  return count;
}

class RowLimitsTest : public testing::Test {
 protected:
  /// Inserts `count` rows, the text "#" in the values standing for the row's number from 1.
  void Insert(std::string_view into, std::string_view values, std::size_t count) {
    world_.database().Begin();
    for (std::size_t row = 1; row <= count; ++row) {
      std::string given(values);
      for (auto at = given.find('#'); at != std::string::npos; at = given.find('#')) {
        given.replace(at, 1, std::to_string(row));
      }
      world_.Run("Insert Into " + std::string(into) + " Values (" + given + ")");
    }
    world_.database().Commit();
  }

  [[nodiscard]] std::string DefinitionText() {
    return InOut(world_.services()).MakeConstructionBak(world_.connection(), 1);
  }

  [[nodiscard]] std::string LatestApproval() {
    return Command(world_.services()).GetVariableValue(world_.connection(), 901, 901, "DataID_PerApp", 12, 345);
  }

  /// Runs a command as step 1 of flow 7.
  template <typename Handler>
  void RunStep(Handler handler) {
    Invocation call;
    InvocationContext context = call.On(world_.connection());
    (Command(world_.services()).*handler)(context);
  }

  World world_;
};

TEST_F(RowLimitsTest, TheCatalogueGivesTenThousandFlows) {
  Name names(world_.services());
  // Numbered so that their names stand in the order of their numbers.
  Insert("WorkFlowName (FlowID,FlowName)", "#,100000+#", kMost);
  EXPECT_EQ(RemainingRows(*names.GetRs(world_.connection())).size(), kMost);
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('the last')");
  const auto rows = RemainingRows(*names.GetRs(world_.connection()));
  EXPECT_EQ(rows.size(), kMost);
  const std::string list = names.FlowSelect(world_.connection(), "n", 0, 1, 0, 0, "");
  EXPECT_EQ(Count(list, "</option>"), kMost);
  EXPECT_EQ(list.find("the last"), std::string::npos);
}

TEST_F(RowLimitsTest, AFlowHasTenThousandInputParameters) {
  Construction construction(world_.services());
  world_.Run("Insert Into WorkFlowName (FlowID,FlowName,Remark) Values (1,'n','')");
  Insert("WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent)", "1,'t#',#,1,''", kMost);
  const std::string all = construction.GetParameterIDStr(world_.connection(), 1);
  EXPECT_EQ(Count(all, ","), kMost - 1);
  const std::string form = construction.DisplayInputParameter(world_.connection(), 1, 2, "");
  const std::string arrays = construction.CreateFlowArr(world_.connection(), 1);
  const std::string text = DefinitionText();
  EXPECT_EQ(Count(arrays, "FlowFunctionInputArr.push("), kMost);
  EXPECT_EQ(Count(text, "\r\nFunctionParameterBegin\r\n"), kMost);
  Value title = "the last";
  construction.AddInputParameter(world_.connection(), 1, title, kMost + 1, 1, "");
  EXPECT_EQ(construction.GetParameterIDStr(world_.connection(), 1), all);
  EXPECT_EQ(construction.DisplayInputParameter(world_.connection(), 1, 2, ""), form);
  EXPECT_EQ(construction.CreateFlowArr(world_.connection(), 1), arrays);
  EXPECT_EQ(DefinitionText(), text);
  EXPECT_EQ(construction.InputParameterSelect(world_.connection(), 1, "n", 0, 1, 0, 0, "").find("the last"),
            std::string::npos);
}

TEST_F(RowLimitsTest, ADefinitionTextHoldsTenThousandSteps) {
  world_.Run("Insert Into WorkFlowName (FlowID,FlowName,Remark) Values (1,'n','')");
  Insert("WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command)", "1,#,#-1,#,'','C_73'", kMost);
  const std::string text = DefinitionText();
  EXPECT_EQ(Count(text, "\r\nStepBegin\r\n"), kMost);
  world_.Step(1, kMost + 1, 1, "C_74");
  EXPECT_EQ(DefinitionText(), text);
}

TEST_F(RowLimitsTest, AScriptHoldsTenThousandSteps) {
  Insert("WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command)", "1,#,#-1,#,'','C_73'", kMost);
  Construction construction(world_.services());
  const std::string arrays = construction.CreateFlowArr(world_.connection(), 1);
  EXPECT_EQ(Count(arrays, "FlowStepArr.push("), kMost);
  world_.Step(1, kMost + 1, 1, "C_74");
  EXPECT_EQ(construction.CreateFlowArr(world_.connection(), 1), arrays);
}

TEST_F(RowLimitsTest, ADefinitionTextHoldsTenThousandParametersOfAStep) {
  world_.Run("Insert Into WorkFlowName (FlowID,FlowName,Remark) Values (1,'n','')");
  world_.Step(1, 1, 0, "C_22");
  Insert("WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData)", "1,1,'C_22_2','p#'", kMost);
  const std::string text = DefinitionText();
  EXPECT_EQ(Count(text, "\r\nC_22_2:"), kMost);
  Construction construction(world_.services());
  const std::string drawing = construction.DisplayFlow(world_.connection(), 1, 1, "f");
  const std::string arrays = construction.CreateFlowArr(world_.connection(), 1);
  EXPECT_EQ(Count(arrays, "FlowCommandParameterArr.push("), kMost);
  world_.Parameter(1, 1, "C_22_2", "the last");
  EXPECT_EQ(DefinitionText(), text);
  EXPECT_EQ(construction.CreateFlowArr(world_.connection(), 1), arrays);
  EXPECT_EQ(construction.DisplayFlow(world_.connection(), 1, 1, "f"), drawing);
}

TEST_F(RowLimitsTest, AHundredThousandChildFlowStepsAreFollowed) {
  Insert("WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData)", "1,#,'C_18_1','2'", kMostOfMany - 1);
  world_.Parameter(1, 1, "C_18_1", "3");
  world_.Parameter(1, 1, "C_18_1", "4");
  EXPECT_EQ(Construction(world_.services()).GetChildFlowIDStrByFlowID(world_.connection(), 1), "2,3");
}

TEST_F(RowLimitsTest, TenThousandParametersOfChildFlowsAreNamed) {
  world_.Parameter(1, 1, "C_18_1", "2");
  Insert("WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData)", "2,#,'C_22_1','v#'", kMost);
  Construction construction(world_.services());
  const std::string names = construction.GetVarNameStrByFlowID(world_.connection(), 1);
  EXPECT_EQ(Count(names, ","), kMost - 1);
  world_.Parameter(2, 1, "C_22_1", "the_last");
  EXPECT_EQ(construction.GetVarNameStrByFlowID(world_.connection(), 1), names);
}

TEST_F(RowLimitsTest, TheLatestApprovalIsSoughtAmongTenThousand) {
  for (const char* form : {"13", "14"}) {
    world_.database().CreateFormTable(std::stoi(form), {});
    world_.Run("Insert Into TableData" + std::string(form) + " (inputtime) Values ('2026-01-" + form + "')");
  }
  world_.Run("Insert Into TableData13 (inputtime) Values ('2026-01-31')");
  world_.Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (901,901)");
  // The forms with higher numbers are read first: that of form 13, which is later, as the last one.
  world_.Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (901,13,2)");
  Insert("DataApp (ExecuteID,AppTableID,AppDataID)", "901,14,1", kMost - 1);
  EXPECT_EQ(LatestApproval(), "TableID:13,DataID:2");
  world_.Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (901,14,1)");
  EXPECT_EQ(LatestApproval(), "TableID:14,DataID:1");
}

TEST_F(RowLimitsTest, TheLatestApprovalIsSoughtInTenThousandInstancesOfATree) {
  world_.database().CreateFormTable(13, {});
  world_.Run("Insert Into TableData13 (inputtime) Values ('2026-01-31'),('2026-01-31')");
  Insert("WorkFlowExecuteID (ExecuteID,RootExecuteID)", "900+#,901", kMost);
  world_.Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (" + std::to_string(900 + kMost) + ",13,1)");
  EXPECT_EQ(LatestApproval(), "TableID:13,DataID:1");
  const std::string beyond = std::to_string(901 + kMost);
  world_.Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (" + beyond + ",901)");
  world_.Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (" + beyond + ",13,2)");
  EXPECT_EQ(LatestApproval(), "TableID:13,DataID:1");
}

TEST_F(RowLimitsTest, AHundredThousandInstancesOfATreeAreAskedWhetherTheyWait) {
  Insert("WorkFlowExecuteID (ExecuteID,RootExecuteID)", "900+#,901", kMostOfMany);
  const std::string last = std::to_string(900 + kMostOfMany);
  world_.Run("Insert Into InUnitSub (ExecuteID,Status) Values (" + last + ",0)");
  Command command(world_.services());
  command.EndFlow(world_.connection(), 901);
  EXPECT_EQ(world_.Row("Select count(*) From WorkFlowExecuteID"), std::to_string(kMostOfMany));
  const std::string beyond = std::to_string(901 + kMostOfMany);
  world_.Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (" + beyond + ",901)");
  world_.Run("Update InUnitSub Set ExecuteID=" + beyond);
  command.EndFlow(world_.connection(), 901);
  EXPECT_EQ(world_.Row("Select count(*) From WorkFlowExecuteID"), "0");
}

TEST_F(RowLimitsTest, TenThousandUnitsOfAFormAreCopied) {
  world_.database().CreateFormTable(12, {});
  world_.Run("Insert Into TableData12 (ID,name) Values (1,'kim')");
  world_.Run("Alter Table TableData12 Add Column Title Text");
  world_.Run("Update TableData12 Set Title='Laptops'");
  world_.Run("Insert Into TableData12 (ID,name) Values (2,'lee')");
  // Of a type that nobody copies, but for the last one.
  Insert("TableInUnitConstruction (TableID,InUnitID,InUnitType)", "12,'u#','none'", kMost - 1);
  const std::string title =
      "Insert Into TableInUnitConstruction (TableID,InUnitID,InUnitType) Values (12,'Title','InputText')";
  world_.Run(title);
  world_.Parameter(7, 1, "C_76_1", "\"TableID:12,DataID:1\"");
  world_.Parameter(7, 1, "C_76_2", "\"TableID:12,DataID:2\"");
  RunStep(&Command::C_76);
  EXPECT_EQ(world_.Row("Select Title From TableData12 Where ID=2"), "Laptops");
  world_.Run("Update TableData12 Set Title='' Where ID=2");
  world_.Run("Delete From TableInUnitConstruction Where InUnitID='Title'");
  world_.Run("Insert Into TableInUnitConstruction (TableID,InUnitID,InUnitType) Values (12,'more','none')");
  world_.Run(title);
  RunStep(&Command::C_76);
  EXPECT_EQ(world_.Row("Select Title From TableData12 Where ID=2"), "");
}

TEST_F(RowLimitsTest, AHundredThousandTasksLoseTheirFormRecords) {
  world_.database().CreateFormTable(12, {});
  world_.database().CreateFormTable(13, {});
  world_.Run("Insert Into TableData12 (ID) Values (345)");
  Insert("TableData13 (name)", "'#'", 2);
  const std::string task = "DataApp (AppedTableID,AppedDataID,AppTableID,AppDataID)";
  // Without a form record but for the last two.
  Insert(task, "12,345,13,0", kMostOfMany - 1);
  Insert(task, "12,345,13,#", 2);
  world_.Parameter(7, 1, "C_12_1", "DataID_Submit");
  RunStep(&Command::C_12);
  EXPECT_EQ(world_.Rows("Select ID From TableData13"), std::vector<std::string>{"2"});
}

}  // namespace
}  // namespace talm_flow::test
