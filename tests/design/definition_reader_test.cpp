#include <cstddef>

#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

/// Loads into flow 5.
class DefinitionReaderTest : public DesignTest {
 protected:
  DefinitionReaderTest() { Flow(5, "target", "Ann", "old remark"); }

  /// Reads the lines, each ended, behind a comment and the version.
  std::int16_t Load(std::string_view lines) {
    return in_out.CreatFlow(db, 5, "//\r\nVer:Flow_V600\r\n" + std::string(lines));
  }

  /// What reached the database behind the check and the three deletions.
  std::vector<std::string> Loading() const {
    return world.trace().size() < 4 ? world.trace() : std::vector(world.trace().begin() + 4, world.trace().end());
  }

  std::string ErrorOf(std::string_view lines) {
    try {
      (void)Load(lines);
    } catch (const ArgumentError& error) {
      return error.what();
    }
    return "no ArgumentError";
  }
};

TEST_F(DefinitionReaderTest, AnUnknownFlowIsRefusedAndNothingChanges) {
  EXPECT_EQ(in_out.CreatFlow(db, 6, "no version either"), 1);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=6"));
}

class NoVersionTest : public DefinitionReaderTest, public ::testing::WithParamInterface<Value> {};

TEST_P(NoVersionTest, TheTextIsRefusedAndNothingChanges) {
  world.Step(5, 1, 0, "C_1");
  EXPECT_EQ(in_out.CreatFlow(db, 5, GetParam()), 2);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=5"));
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction"), "1");
}

INSTANTIATE_TEST_SUITE_P(Texts, NoVersionTest,
                         ::testing::Values(Value(""), Value(), Value(600),
                                           Value("Ver:Flow_V600\r\nFlowBegin\r\nFlowEnd\r\n"),
                                           Value("//\r\nVer:Flow_V600"), Value("//\r\nVer:Flow_V601\r\n"),
                                           Value("//\nVer:Flow_V600\n"), Value("//\r\n Ver:Flow_V600\r\n"),
                                           Value("//\r\nver:flow_v600\r\n")));

TEST_F(DefinitionReaderTest, AVersionAloneEmptiesTheFlow) {
  for (const int flow : {4, 5}) {
    world.Step(flow, 1, 0, "C_1");
    world.Parameter(flow, 1, "C_1_1", "x");
    Input(flow, "t", 1, 1, "");
  }
  EXPECT_EQ(Load(""), 0);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName Where FlowID=5",
                                         "delete from WorkFlowConstruction where FlowID=5",
                                         "delete from WorkFlowParameter where FlowID=5",
                                         "delete from WorkFlowFunctionInput where FlowID=5"));
  for (const char* table : {"WorkFlowConstruction", "WorkFlowParameter", "WorkFlowFunctionInput"}) {
    EXPECT_THAT(world.Rows("select FlowID from " + std::string(table)), ElementsAre("4"));
  }
  EXPECT_EQ(world.Row("select Remark from WorkFlowName where FlowID=5"), "old remark");
}

TEST_F(DefinitionReaderTest, AWholeDefinitionIsLoadedInTheOrderOfTheText) {
  EXPECT_EQ(
      Load("FlowBegin\r\n////c\r\nFlowRemark:De'mo\r\nsecond line\r\n//c\r\nStepBegin\r\nFlowNo:1\r\nParentNo:0\r\n"
           "Serial:1\r\nRemark:Approve\r\nCommand:C_2\r\n//c\r\nParameterBegin\r\nC_2_1:first value\r\n"
           "C_2_2:line one\r\nline two\r\nParameterEnd\r\nStepEnd\r\n//c\r\nFunctionParameterBegin\r\n"
           "InputTitle:Amount\r\nOrderNo:1\r\nSort:2\r\nClassContent:\r\nFunctionParameterEnd\r\nFlowEnd\r\n"
           "StepBegin\r\nFlowNo:9\r\n"),
      0);
  EXPECT_THAT(
      Loading(),
      ElementsAre(
          "update WorkFlowName set Remark='De''mo\r\nsecond line' where flowid=5",
          "Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values( "
          "5,1,0,1,'Approve','C_2')",
          "Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values( 5,1,'C_2_1','first "
          "value')",
          "Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values( 5,1,'C_2_2','line "
          "one\r\nline two')",
          "Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values( "
          "5,'Amount',1,2,'')"));
  EXPECT_EQ(world.Row("select FlowName,Creater,Remark from WorkFlowName"), "target|Ann|De'mo\r\nsecond line");
  EXPECT_THAT(world.Rows("select FlowID,FlowNo,ParentNo,Serial,Remark,Command from WorkFlowConstruction"),
              ElementsAre("5|1|0|1|Approve|C_2"));
  EXPECT_THAT(world.Rows("select FlowID,FlowNo,ParameterName,ParameterData from WorkFlowParameter"),
              ElementsAre("5|1|C_2_1|first value", "5|1|C_2_2|line one\r\nline two"));
  EXPECT_THAT(world.Rows("select FlowID,InputTitle,OrderNo,Sort,ClassContent from WorkFlowFunctionInput"),
              ElementsAre("5|Amount|1|2|"));
}

struct Parameter {
  const char* lines;
  const char* rows;
};

class ParameterBlockTest : public DefinitionReaderTest, public ::testing::WithParamInterface<Parameter> {};

TEST_P(ParameterBlockTest, StoresNameAndData) {
  EXPECT_EQ(Load("StepBegin\r\nFlowNo:3\r\nParameterBegin\r\n" + std::string(GetParam().lines) + "ParameterEnd\r\n"),
            0);
  std::string stored;
  for (const std::string& row : world.Rows("select FlowNo,ParameterName,ParameterData from WorkFlowParameter")) {
    stored += row + ";";
  }
  EXPECT_EQ(stored, GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(Lines, ParameterBlockTest,
                         ::testing::Values(Parameter{"", ""}, Parameter{"C_3_1:a:b\r\n", "3|C_3_1|a:b;"},
                                           Parameter{"C_3_1:\r\n", "3|C_3_1|;"},
                                           Parameter{"C_3_1:a\r\nC_3_9:x\r\n", "3|C_3_1|a\r\nC_3_9:x;"},
                                           Parameter{"C_3_1:a\r\n//note: b\r\nC_3_2:c\r\n", "3|C_3_1|a;3|C_3_2|c;"},
                                           Parameter{"//note\r\nwith a second line\r\nC_3_2:c\r\n", "3|C_3_2|c;"},
                                           Parameter{"C_3_1:a\r\n\r\nb\r\n\r\n", "3|C_3_1|a\r\n\r\nb\r\n;"},
                                           Parameter{"C_3_1:a\r\nC_3_1:b\r\n", "3|C_3_1|a;3|C_3_1|b;"},
                                           Parameter{"C_3_1:O'Neil\r\n", "3|C_3_1|O'Neil;"},
                                           Parameter{"FlowNo:8\r\n", "3|FlowNo|8;"}));

TEST_F(DefinitionReaderTest, ParametersBelongToTheLastStep) {
  EXPECT_EQ(Load("StepBegin\r\nFlowNo:3\r\nStepBegin\r\nFlowNo:7\r\nParameterBegin\r\nC_1_1:a\r\nParameterEnd\r\n"
                 "ParameterBegin\r\nC_1_2:b\r\nParameterEnd\r\n"),
            0);
  EXPECT_THAT(world.Rows("select FlowNo,ParameterName,ParameterData from WorkFlowParameter"),
              ElementsAre("7|C_1_1|a", "7|C_1_2|b"));
}

TEST_F(DefinitionReaderTest, ParametersBeforeAnyStepBelongToStepZero) {
  EXPECT_EQ(Load("ParameterBegin\r\nC_1_1:a\r\nParameterEnd\r\n"), 0);
  EXPECT_THAT(world.Rows("select FlowNo,ParameterName,ParameterData from WorkFlowParameter"), ElementsAre("0|C_1_1|a"));
}

TEST_F(DefinitionReaderTest, AStepWithoutAttributesIsStepZeroAndTheRestStays) {
  EXPECT_EQ(Load("StepBegin\r\n//c\r\nFlowNo:4\r\nParameterBegin\r\nC_1_1:a\r\nParameterEnd\r\n"), 0);
  EXPECT_THAT(world.Rows("select FlowNo,ParentNo,Serial,Remark,Command from WorkFlowConstruction"),
              ElementsAre("0|0|0||"));
  EXPECT_THAT(world.Rows("select FlowNo,ParameterName from WorkFlowParameter"), ElementsAre("0|C_1_1"));
}

TEST_F(DefinitionReaderTest, AnInputParameterWithoutAttributesHasNoTitleAndTheRestStays) {
  EXPECT_EQ(Load("FunctionParameterBegin\r\nFunctionParameterEnd\r\nFlowRemark:r\r\n"), 0);
  EXPECT_THAT(world.Rows("select InputTitle,OrderNo,Sort,ClassContent from WorkFlowFunctionInput"),
              ElementsAre("|0|0|"));
  EXPECT_EQ(world.Row("select Remark from WorkFlowName"), "r");
}

TEST_F(DefinitionReaderTest, AttributesMayBeMissingRepeatedAndInAnyOrder) {
  EXPECT_EQ(Load("StepBegin\r\nCommand:C_9\r\nRemark:first\r\nsecond\r\nFlowNo:1\r\nFlowNo:2\r\nFlowEnd\r\n"), 0);
  EXPECT_THAT(world.Rows("select FlowNo,ParentNo,Serial,Remark,Command from WorkFlowConstruction"),
              ElementsAre("2|0|0|first\r\nsecond|C_9"));
}

TEST_F(DefinitionReaderTest, MarkersAreComparedWhole) {
  EXPECT_EQ(
      Load("StepBegin \r\nFlowNo:1\r\nStepBegin\r\n\r\nFlowNo:2\r\nstray\r\nFlowEnd!\r\nStepBegin\r\nFlowNo:3\r\n"), 0);
  EXPECT_THAT(world.Rows("select FlowNo from WorkFlowConstruction"), ElementsAre("3"));
}

TEST_F(DefinitionReaderTest, AnEmptyFirstLineEndsTheReading) {
  world.Step(5, 1, 0, "C_1");
  EXPECT_EQ(in_out.CreatFlow(db, 5, "\r\nVer:Flow_V600\r\nStepBegin\r\nFlowNo:1\r\n"), 0);
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction"), "0");
  EXPECT_THAT(Loading(), IsEmpty());
}

TEST_F(DefinitionReaderTest, TheLastRemarkStays) {
  EXPECT_EQ(Load("FlowRemark:a\r\nFlowRemark:b\r\nFlowEnd\r\nFlowRemark:c\r\n"), 0);
  EXPECT_EQ(world.Row("select Remark from WorkFlowName"), "b");
}

TEST_F(DefinitionReaderTest, NumbersGoInAsTheyWereRead) {
  EXPECT_EQ(Load("StepBegin\r\nFlowNo: 1+1\r\nParentNo:-0\r\nSerial:007\r\n"), 0);
  EXPECT_THAT(Loading(), ElementsAre("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) "
                                     "Values( 5, 1+1,-0,007,'','')"));
}

class BadNumberTest : public DefinitionReaderTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(BadNumberTest, FailsWithTheDatabasesErrorAndKeepsWhatWasLoaded) {
  EXPECT_THROW((void)Load("FlowRemark:new\r\nStepBegin\r\nFlowNo:1\r\n" + std::string(GetParam())), DatabaseError);
  EXPECT_EQ(world.Row("select Remark from WorkFlowName"), "new");
  EXPECT_EQ(world.Row("select count(*) from WorkFlowFunctionInput"), "0");
}

INSTANTIATE_TEST_SUITE_P(Lines, BadNumberTest,
                         ::testing::Values("FlowNo:x y\r\n", "FlowNo:\r\n", "ParentNo:1,2\r\n", "Serial:1);drop\r\n",
                                           "FlowNo:1\r\n\r\nx\r\n", "FunctionParameterBegin\r\nOrderNo:one two\r\n",
                                           "FunctionParameterBegin\r\nSort:\r\n"));

TEST_F(DefinitionReaderTest, AParameterLineWithoutAColonIsNamed) {
  const std::string lines = "StepBegin\r\nFlowNo:1\r\nParameterBegin\r\nC_1_1:a\r\nb\r\n";
  EXPECT_THAT(ErrorOf(lines + "FlowEnd\r\nrest\r\n"), HasSubstr("line 8 of the definition text, \"FlowEnd\","));
  EXPECT_THAT(world.Rows("select ParameterName,ParameterData from WorkFlowParameter"), ElementsAre("C_1_1|a\r\nb"))
      << "what was loaded before stays";
}

TEST_F(DefinitionReaderTest, ALongBadLineIsNamedByItsBeginning) {
  std::string line = "StepBegin";
  for (int i = 0; i < 200; ++i) line += "流";
  const std::string error = ErrorOf("ParameterBegin\r\n" + line + "\r\n");
  EXPECT_THAT(error, HasSubstr("line 4 of the definition text, \"StepBegin流"));
  EXPECT_THAT(error, HasSubstr("流...\","));
  EXPECT_LT(error.size(), 450U);
}

TEST_F(DefinitionReaderTest, AnUnclosedParameterBlockIsNamed) {
  for (const char* lines : {"ParameterBegin\r\n", "ParameterBegin\r\nC_1_1:a\r\n", "ParameterBegin\r\n//c\r\n"}) {
    const std::string error = ErrorOf(lines);
    EXPECT_THAT(error, HasSubstr("line 3 of the definition text, \"ParameterBegin\","));
    EXPECT_THAT(error, HasSubstr("not closed"));
  }
}

TEST_F(DefinitionReaderTest, TextsThatLookLikeStatementsStayTexts) {
  const std::string hostile = "'); delete from WorkFlowName; -- ? \" \\ $1 :a @b % _ \xE2\x80\xA8";
  EXPECT_EQ(Load("FlowRemark:" + hostile + "\r\nStepBegin\r\nFlowNo:1\r\nRemark:" + hostile + "\r\nCommand:" + hostile +
                 "\r\nParameterBegin\r\nC_1_1:" + hostile + "\r\nParameterEnd\r\n"),
            0);
  EXPECT_EQ(world.Row("select Remark from WorkFlowName"), hostile);
  EXPECT_EQ(world.Row("select Remark from WorkFlowConstruction"), hostile);
  EXPECT_EQ(world.Row("select Command from WorkFlowConstruction"), hostile);
  EXPECT_EQ(world.Row("select ParameterData from WorkFlowParameter"), hostile);
}

}  // namespace
}  // namespace talm_flow::test
