#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using ScriptArraysTest = DesignTest;

const std::string kDeclarations =
    "<Script>var FlowArr=new Array();var FlowBaseInfArr=new Array();var FlowFunctionInputArr=new Array();"
    "var PerFlowFunctionInputArr=new Array();var FlowStepArr=new Array();var PerFlowStepArr=new Array();"
    "var FlowCommandArr=new Array();var FlowCommandParameterArr=new Array();"
    "var FlowCommandPerParameterArr=new Array();"
    "FlowBaseInfArr[0]=\"\";FlowBaseInfArr[1]=\"\";FlowBaseInfArr[2]=\"\";";

TEST_F(ScriptArraysTest, AnUnknownFlowHasEmptyTextsAndLists) {
  EXPECT_EQ(
      construction.CreateFlowArr(db, 8),
      kDeclarations + "FlowArr[0]=FlowBaseInfArr;FlowArr[1]=FlowFunctionInputArr;FlowArr[2]=FlowStepArr;</Script>");
  EXPECT_THAT(world.trace(),
              ElementsAre("Select Top 1 * From WorkFlowName Where FlowID=8",
                          "Select Top 10000 * From WorkFlowFunctionInput Where FlowID=8 Order By OrderNo",
                          "Select Top 10000 * From WorkFlowConstruction Where FlowID=8 Order By FlowNo"));
}

TEST_F(ScriptArraysTest, AFlowIsToldWithItsInputParametersAndSteps) {
  Flow(1, "Leave", "Ann", "two\r\nlines \"quoted\" </script>");
  Input(1, "b\"", 2, 5, "x,\\y");
  Input(1, "a", 1, 1, "");
  world.Run(
      "Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (1,2,1,7,'r\"','C_5')");
  world.Run(
      "Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (1,1,0,0,'','C_2')");
  world.Parameter(1, 2, "C_5_1", "d\n\"e\"");
  world.Parameter(1, 2, "C_5_2", "");
  EXPECT_EQ(
      construction.CreateFlowArr(db, 1),
      kDeclarations +
          "FlowBaseInfArr[0]=\"Leave\";FlowBaseInfArr[1]=\"Ann\";"
          "FlowBaseInfArr[2]=\"two\\r\\nlines \\\"quoted\\\" \\x3C/script>\";FlowArr[0]=FlowBaseInfArr;"
          "PerFlowFunctionInputArr=new Array();PerFlowFunctionInputArr[0]=\"a\";PerFlowFunctionInputArr[1]=1;"
          "PerFlowFunctionInputArr[2]=\"\";FlowFunctionInputArr.push(PerFlowFunctionInputArr);"
          "PerFlowFunctionInputArr=new Array();PerFlowFunctionInputArr[0]=\"b\\\"\";PerFlowFunctionInputArr[1]=5;"
          "PerFlowFunctionInputArr[2]=\"x,\\\\y\";FlowFunctionInputArr.push(PerFlowFunctionInputArr);"
          "FlowArr[1]=FlowFunctionInputArr;"
          "PerFlowStepArr=new Array();PerFlowStepArr[0]=\"1\";PerFlowStepArr[1]=\"0\";PerFlowStepArr[2]=\"0\";"
          "PerFlowStepArr[3]=\"\";FlowCommandArr=new Array();FlowCommandArr[0]=\"C_2\";"
          "FlowCommandParameterArr=new Array();FlowCommandArr[1]=FlowCommandParameterArr;"
          "PerFlowStepArr[4]=FlowCommandArr;FlowStepArr.push(PerFlowStepArr);"
          "PerFlowStepArr=new Array();PerFlowStepArr[0]=\"2\";PerFlowStepArr[1]=\"1\";PerFlowStepArr[2]=\"7\";"
          "PerFlowStepArr[3]=\"r\\\"\";FlowCommandArr=new Array();FlowCommandArr[0]=\"C_5\";"
          "FlowCommandParameterArr=new Array();"
          "FlowCommandPerParameterArr=new Array();FlowCommandPerParameterArr[0]=\"C_5_1\";"
          "FlowCommandPerParameterArr[1]=\"d\\n\\\"e\\\"\";FlowCommandParameterArr.push(FlowCommandPerParameterArr);"
          "FlowCommandPerParameterArr=new Array();FlowCommandPerParameterArr[0]=\"C_5_2\";"
          "FlowCommandPerParameterArr[1]=\"\";FlowCommandParameterArr.push(FlowCommandPerParameterArr);"
          "FlowCommandArr[1]=FlowCommandParameterArr;PerFlowStepArr[4]=FlowCommandArr;"
          "FlowStepArr.push(PerFlowStepArr);FlowArr[2]=FlowStepArr;</Script>");
  EXPECT_THAT(world.trace(),
              ElementsAre("Select Top 1 * From WorkFlowName Where FlowID=1",
                          "Select Top 10000 * From WorkFlowFunctionInput Where FlowID=1 Order By OrderNo",
                          "Select Top 10000 * From WorkFlowConstruction Where FlowID=1 Order By FlowNo",
                          "Select Top 10000 * From WorkFlowParameter Where FlowID=1 And FlowNo=1",
                          "Select Top 10000 * From WorkFlowParameter Where FlowID=1 And FlowNo=2"));
}

TEST_F(ScriptArraysTest, NamesStandUnescaped) {
  Flow(1, "a\"b", "c\\d");
  EXPECT_THAT(construction.CreateFlowArr(db, 1), HasSubstr("FlowBaseInfArr[0]=\"a\"b\";FlowBaseInfArr[1]=\"c\\d\";"));
}

TEST_F(ScriptArraysTest, NullColumnsAddNothing) {
  world.Run("Insert Into WorkFlowName (FlowID) Values (1)");
  world.Run("Insert Into WorkFlowFunctionInput (FlowID) Values (1)");
  world.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo) Values (1,4)");
  world.Run("Insert Into WorkFlowParameter (FlowID,FlowNo) Values (1,4)");
  const std::string script = construction.CreateFlowArr(db, 1);
  EXPECT_THAT(script, HasSubstr("FlowBaseInfArr[0]=\"\";FlowBaseInfArr[1]=\"\";FlowBaseInfArr[2]=\"\";FlowArr[0]"));
  EXPECT_THAT(script, HasSubstr("PerFlowFunctionInputArr[0]=\"\";PerFlowFunctionInputArr[1]=;"
                                "PerFlowFunctionInputArr[2]=\"\";"));
  EXPECT_THAT(script, HasSubstr("PerFlowStepArr[0]=\"4\";PerFlowStepArr[1]=\"\";PerFlowStepArr[2]=\"\";"
                                "PerFlowStepArr[3]=\"\";FlowCommandArr=new Array();FlowCommandArr[0]=\"\";"));
  EXPECT_THAT(script, HasSubstr("FlowCommandPerParameterArr[0]=\"\";FlowCommandPerParameterArr[1]=\"\";"));
}

}  // namespace
}  // namespace talm_flow::test
