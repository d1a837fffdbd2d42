#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using CatalogueTest = DesignTest;

class BlankNameTest : public DesignTest, public ::testing::WithParamInterface<Value> {};

constexpr std::string_view kAllFlows = "select FlowID,FlowName,Creater,Remark from WorkFlowName order by FlowID";

TEST_F(CatalogueTest, AddInsertsOneRowWithTheTextsAsLiterals) {
  EXPECT_EQ(name.Add(db, "O'Neil's flow", "Ann", "请假"), 0);
  EXPECT_THAT(
      world.trace(),
      ElementsAre("Insert Into WorkFlowName (FlowName, Creater, Remark) Values( 'O''Neil''s flow','Ann','请假')"));
  EXPECT_THAT(world.Rows(kAllFlows), ElementsAre("1|O'Neil's flow|Ann|请假"));
}

TEST_F(CatalogueTest, AddKeepsTheBlanksOfANameThatIsNotBlank) {
  EXPECT_EQ(name.Add(db, "  a ", "", ""), 0);
  EXPECT_EQ(world.Row("select FlowName from WorkFlowName"), "  a ");
}

TEST_F(CatalogueTest, AddTakesANumberAsAName) {
  EXPECT_EQ(name.Add(db, 12, Value(), 1.5), 0);
  EXPECT_THAT(world.Rows(kAllFlows), ElementsAre("1|12||1.5"));
}

TEST_F(CatalogueTest, ATabIsNoBlank) {
  EXPECT_EQ(name.Add(db, "\t", "", ""), 0);
  EXPECT_EQ(world.Row("select FlowName from WorkFlowName"), "\t");
}

TEST_P(BlankNameTest, IsRefusedByEveryWritingOperationBeforeAnythingIsWritten) {
  Flow(1, "Leave", "Ann", "r");
  EXPECT_EQ(name.Add(db, GetParam(), "c", "r"), 1);
  EXPECT_EQ(name.Update(db, 1, GetParam(), "c", "r"), 2);
  EXPECT_EQ(name.Update(db, 99, GetParam(), "c", "r"), 2) << "the name is tested before the flow";
  EXPECT_EQ(name.FlowAdd(db, GetParam(), "c", "\r\nVer:Flow_V600\r\n"), 1);
  EXPECT_THAT(world.trace(), IsEmpty());
  EXPECT_EQ(name.FlowSave(db, 99, GetParam(), "c", "\r\nVer:Flow_V600\r\n"), 1) << "the flow is tested before the name";
  EXPECT_EQ(name.FlowSave(db, 1, GetParam(), "c", "\r\nVer:Flow_V600\r\n"), 2);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=99",
                                         "Select Top 1 FlowID from WorkFlowName Where FlowID=1"));
  EXPECT_THAT(world.Rows(kAllFlows), ElementsAre("1|Leave|Ann|r"));
}

INSTANTIATE_TEST_SUITE_P(Names, BlankNameTest, ::testing::Values(Value(""), Value(" "), Value("   "), Value()));

TEST_F(CatalogueTest, UpdateWritesAllThreeColumns) {
  Flow(1, "Leave", "Ann", "old");
  Flow(2, "Other", "Bob", "stays");
  EXPECT_EQ(name.Update(db, 1, "离开", "Cy's", "new"), 0);
  EXPECT_THAT(world.trace(),
              ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=1",
                          "Update WorkFlowName Set FlowName='离开',Creater='Cy''s',Remark='new' Where FlowID=1"));
  EXPECT_THAT(world.Rows(kAllFlows), ElementsAre("1|离开|Cy's|new", "2|Other|Bob|stays"));
}

TEST_F(CatalogueTest, UpdateOfAnUnknownFlowChangesNothing) {
  EXPECT_EQ(name.Update(db, 7, "n", "c", "r"), 1);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=7"));
}

TEST_F(CatalogueTest, DelRemovesTheFlowItsStepsItsParametersAndItsInstancesVariables) {
  for (const int flow : {1, 2}) {
    Flow(flow, "f");
    world.Step(flow, 1, 0, "C_1");
    world.Parameter(flow, 1, "C_1_1", "x");
    Input(flow, "t", 1, 1, "");
    const std::string id = std::to_string(flow);
    world.Run("Insert Into WorkFlowExecuteID (ExecuteID,FlowID,RootExecuteID) Values (" + id + "0," + id + "," + id +
              "0)");
    world.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (" + id + "0," +
              id + "0,'v','x')");
  }
  EXPECT_EQ(name.Del(db, 1), 0);
  EXPECT_THAT(
      world.trace(),
      ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=1", "Delete From WorkFlowName Where FlowID=1",
                  "Delete From WorkFlowVariable Where RootExecuteID in (select ExecuteID from "
                  "WorkFlowExecuteID where FlowID=1)",
                  "Delete From WorkFlowConstruction Where FlowID=1", "Delete From WorkFlowParameter Where FlowID=1"));
  EXPECT_THAT(world.Rows("select FlowID from WorkFlowName"), ElementsAre("2"));
  EXPECT_THAT(world.Rows("select RootExecuteID from WorkFlowVariable"), ElementsAre("20"));
  EXPECT_THAT(world.Rows("select FlowID from WorkFlowConstruction"), ElementsAre("2"));
  EXPECT_THAT(world.Rows("select FlowID from WorkFlowParameter"), ElementsAre("2"));
  EXPECT_THAT(world.Rows("select FlowID from WorkFlowFunctionInput"), ElementsAre("1", "2"));
  EXPECT_THAT(world.Rows("select FlowID from WorkFlowExecuteID"), ElementsAre("1", "2"));
}

TEST_F(CatalogueTest, DelOfAnUnknownFlowDeletesNothing) {
  world.Step(1, 1, 0, "C_1");
  EXPECT_EQ(name.Del(db, 1), 1);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=1"));
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction"), "1");
}

TEST_F(CatalogueTest, SingleColumnsComeAsTexts) {
  Flow(4, "Leave", "Ann", "说明");
  EXPECT_EQ(name.GetFlowName(db, 4), "Leave");
  EXPECT_EQ(name.GetCreater(db, "4"), "Ann");
  EXPECT_EQ(name.GetRemark(db, 4.0), "说明");
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowName from WorkFlowName Where FlowID=4",
                                         "Select Top 1 Creater from WorkFlowName Where FlowID=4",
                                         "Select Top 1 Remark from WorkFlowName Where FlowID=4"));
}

TEST_F(CatalogueTest, SingleColumnsOfAnUnknownFlowAreEmpty) {
  EXPECT_EQ(name.GetFlowName(db, 4), "");
  EXPECT_EQ(name.GetCreater(db, 4), "");
  EXPECT_EQ(name.GetRemark(db, 4), "");
}

TEST_F(CatalogueTest, ANullColumnIsNoText) {
  world.Run("Insert Into WorkFlowName (FlowID) Values (3)");
  EXPECT_THROW((void)name.GetFlowName(db, 3), ConversionError);
  EXPECT_THROW((void)name.GetCreater(db, 3), ConversionError);
  EXPECT_THROW((void)name.GetRemark(db, 3), ConversionError);
}

TEST_F(CatalogueTest, GetAllReadsTheColumnsAsTheyAre) {
  world.Run("Insert Into WorkFlowName (FlowID,FlowName,Creater) Values (3,'Leave','Ann')");
  Value flow_name = 1;
  Value creater = 2;
  Value remark = 3;
  EXPECT_TRUE(name.GetAll(db, 3, flow_name, creater, remark));
  EXPECT_EQ(flow_name, Value("Leave"));
  EXPECT_EQ(creater, Value("Ann"));
  EXPECT_TRUE(remark.IsNull());
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 * from WorkFlowName Where FlowID=3"));
}

TEST_F(CatalogueTest, GetAllOfAnUnknownFlowGivesThreeEmptyTexts) {
  Value flow_name = 1;
  Value creater;
  Value remark = "old";
  EXPECT_FALSE(name.GetAll(db, 3, flow_name, creater, remark));
  EXPECT_EQ(flow_name, Value(""));
  EXPECT_EQ(creater, Value(""));
  EXPECT_EQ(remark, Value(""));
}

TEST_F(CatalogueTest, FlowExistsTellsWhetherThereIsARow) {
  Flow(4, "Leave");
  EXPECT_TRUE(name.FlowExists(db, 4));
  EXPECT_FALSE(name.FlowExists(db, 5));
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=4",
                                         "Select Top 1 FlowID from WorkFlowName Where FlowID=5"));
}

TEST_F(CatalogueTest, AFlowNumberThatIsNoneFailsWithTheDatabasesError) {
  EXPECT_THROW((void)name.FlowExists(db, "1 2"), DatabaseError);
  EXPECT_THROW((void)name.GetFlowName(db, "1; delete from WorkFlowName"), DatabaseError);
  EXPECT_THROW((void)name.Del(db, ""), DatabaseError);
}

TEST_F(CatalogueTest, MaxFlowIDIsTheHighestNumber) {
  EXPECT_EQ(name.MaxFlowID(db), 0);
  Flow(9, "a");
  Flow(4, "z");
  EXPECT_EQ(name.MaxFlowID(db), 9);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName order by FlowID desc",
                                         "Select Top 1 FlowID from WorkFlowName order by FlowID desc"));
}

TEST_F(CatalogueTest, GetRsHandsTheCatalogueOverByName) {
  Flow(1, "b");
  Flow(2, "a");
  Flow(3, "B");
  const auto rows = name.GetRs(db);
  std::vector<std::string> names;
  for (; !rows->AtEnd(); rows->MoveNext()) names.push_back(ToText(rows->Field("FlowName")));
  EXPECT_THAT(names, ElementsAre("B", "a", "b"));
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 10000 * from WorkFlowName Order By FlowName"));
}

TEST_F(CatalogueTest, GetRsOfAnEmptyCatalogueStandsAtItsEnd) { EXPECT_TRUE(name.GetRs(db)->AtEnd()); }

TEST_F(CatalogueTest, FlowAddLoadsTheTextIntoTheNewestFlow) {
  Flow(6, "older");
  const std::string text = "//\r\nVer:Flow_V600\r\nFlowRemark:r\r\nStepBegin\r\nFlowNo:1\r\nCommand:C_1\r\nFlowEnd\r\n";
  EXPECT_EQ(name.FlowAdd(db, "Leave", "A'nn", text), 0);
  EXPECT_THAT(
      world.trace(),
      ElementsAre("Insert Into WorkFlowName (FlowName, Creater) Values( 'Leave','A''nn')",
                  "Select Top 1 FlowID from WorkFlowName order by FlowID desc",
                  "Select Top 1 FlowID from WorkFlowName Where FlowID=7",
                  "delete from WorkFlowConstruction where FlowID=7", "delete from WorkFlowParameter where FlowID=7",
                  "delete from WorkFlowFunctionInput where FlowID=7",
                  "update WorkFlowName set Remark='r' where flowid=7",
                  "Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values( "
                  "7,1,0,0,'','C_1')"));
  EXPECT_EQ(world.Row("select FlowName,Creater,Remark from WorkFlowName where FlowID=7"), "Leave|A'nn|r");
}

TEST_F(CatalogueTest, FlowAddKeepsTheRowOfARefusedText) {
  EXPECT_EQ(name.FlowAdd(db, "Leave", "Ann", "no version"), 2);
  EXPECT_THAT(world.Rows(kAllFlows), ElementsAre("1|Leave|Ann|NULL"));
}

TEST_F(CatalogueTest, FlowSaveRenamesTheFlowAndReplacesItsStructure) {
  Flow(2, "old", "old", "old");
  world.Step(2, 5, 0, "C_5");
  EXPECT_EQ(name.FlowSave(db, 2, "new", "Bob", "//\r\nVer:Flow_V600\r\n"), 0);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=2",
                                         "update WorkFlowName set FlowName='new',Creater='Bob' where flowid=2",
                                         "Select Top 1 FlowID from WorkFlowName Where FlowID=2",
                                         "delete from WorkFlowConstruction where FlowID=2",
                                         "delete from WorkFlowParameter where FlowID=2",
                                         "delete from WorkFlowFunctionInput where FlowID=2"));
  EXPECT_THAT(world.Rows(kAllFlows), ElementsAre("2|new|Bob|old"));
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction"), "0");
}

TEST_F(CatalogueTest, FlowSaveKeepsTheNewNameOfARefusedText) {
  Flow(2, "old", "old", "old");
  world.Step(2, 5, 0, "C_5");
  EXPECT_EQ(name.FlowSave(db, 2, "new", "Bob", "Ver:Flow_V600\r\n"), 3);
  EXPECT_THAT(world.Rows(kAllFlows), ElementsAre("2|new|Bob|old"));
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction"), "1");
}

}  // namespace
}  // namespace talm_flow::test
