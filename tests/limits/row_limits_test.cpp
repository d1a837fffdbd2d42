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
  Insert("WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent)", "1,'t#',#,1,''", kMost);
  const std::string all = construction.GetParameterIDStr(world_.connection(), 1);
  EXPECT_EQ(Count(all, ","), kMost - 1);
  const std::string form = construction.DisplayInputParameter(world_.connection(), 1, 2, "");
  Value title = "the last";
  construction.AddInputParameter(world_.connection(), 1, title, kMost + 1, 1, "");
  EXPECT_EQ(construction.GetParameterIDStr(world_.connection(), 1), all);
  EXPECT_EQ(construction.DisplayInputParameter(world_.connection(), 1, 2, ""), form);
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

TEST_F(RowLimitsTest, ADefinitionTextHoldsTenThousandParametersOfAStep) {
  world_.Run("Insert Into WorkFlowName (FlowID,FlowName,Remark) Values (1,'n','')");
  world_.Step(1, 1, 0, "C_22");
  Insert("WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData)", "1,1,'C_22_2','p#'", kMost);
  const std::string text = DefinitionText();
  EXPECT_EQ(Count(text, "\r\nC_22_2:"), kMost);
  Construction construction(world_.services());
  const std::string drawing = construction.DisplayFlow(world_.connection(), 1, 1, "f");
  world_.Parameter(1, 1, "C_22_2", "the last");
  EXPECT_EQ(DefinitionText(), text);
  EXPECT_EQ(construction.DisplayFlow(world_.connection(), 1, 1, "f"), drawing);
}

TEST_F(RowLimitsTest, AHundredThousandChildFlowStepsAreFollowed) {
  Insert("WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData)", "1,#,'C_18_1','2'", kMostOfMany - 1);
  world_.Parameter(1, 1, "C_18_1", "3");
  world_.Parameter(1, 1, "C_18_1", "4");
  EXPECT_EQ(Construction(world_.services()).GetChildFlowIDStrByFlowID(world_.connection(), 1), "2,3");
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
  Invocation call;
  InvocationContext context = call.On(world_.connection());
  Command(world_.services()).C_12(context);
  EXPECT_EQ(world_.Rows("Select ID From TableData13"), std::vector<std::string>{"2"});
}

}  // namespace
}  // namespace talm_flow::test
