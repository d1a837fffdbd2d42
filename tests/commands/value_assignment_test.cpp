#include "commands/value_command.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

const std::vector<Operation> kAsStored = {
    {22, &Command::C_22}, {23, &Command::C_23}, {24, &Command::C_24}, {25, &Command::C_25}, {26, &Command::C_26},
    {27, &Command::C_27}, {28, &Command::C_28}, {29, &Command::C_29}, {30, &Command::C_30}, {75, &Command::C_75}};
const std::vector<Operation> kEvaluated = {{39, &Command::C_39}, {40, &Command::C_40}, {41, &Command::C_41},
                                           {42, &Command::C_42}, {43, &Command::C_43}, {44, &Command::C_44}};
const std::vector<Operation> kIfNumeric = {
    {55, &Command::C_55}, {56, &Command::C_56}, {57, &Command::C_57}, {58, &Command::C_58}};

class AssignmentTest : public ValueCaseTest {};

TEST_P(AssignmentTest, WritesTheValue) { ExpectWritten(); }

INSTANTIATE_TEST_SUITE_P(AsStored, AssignmentTest,
                         ::testing::ValuesIn(Runs(kAsStored, {{{"target", "n+1"}, "n+1"},
                                                              {{"target", "\"quoted\""}, "\"quoted\""},
                                                              {{"target", ""}, ""},
                                                              {{"target"}, ""},
                                                              {{"target", "  O'Brien 😀 "}, "  O'Brien 😀 "},
                                                              {{"target", "'); drop table DataApp --"},
                                                               "'); drop table DataApp --"}})));

INSTANTIATE_TEST_SUITE_P(Evaluated, AssignmentTest,
                         ::testing::ValuesIn(Runs(kEvaluated, {{{"target", "n+1"}, "6"},
                                                               {{"target", "\"n+1\""}, "n+1"},
                                                               {{"target", "text"}, "a,b,c"},
                                                               {{"target", "unknown"}, ""},
                                                               {{"target", ""}, ""},
                                                               {{"target"}, ""},
                                                               {{"target", "\"O'Brien 😀\""}, "O'Brien 😀"},
                                                               {{"target", "DataID_Submit"}, "TableID:12,DataID:345"},
                                                               {{"target", "1/0"}, "除数为0"},
                                                               {{"target", "-3"}, "缺少运算数"}})));

INSTANTIATE_TEST_SUITE_P(IfNumeric, AssignmentTest,
                         ::testing::ValuesIn(Runs(kIfNumeric, {{{"target", "n*2"}, "10"},
                                                               {{"target", "007"}, "007"},
                                                               {{"target", "\" 1,000.50 \""}, " 1,000.50 "},
                                                               {{"target", "\"-3\""}, "-3"},
                                                               {{"target", "text"}, std::nullopt},
                                                               {{"target", "empty"}, std::nullopt},
                                                               {{"target", ""}, std::nullopt},
                                                               {{"target", "moment"}, std::nullopt},
                                                               {{"target", "1/0"}, std::nullopt},
                                                               {{"target", "\"0x10\""}, std::nullopt},
                                                               {{"target", "\"１２\""}, std::nullopt}})));

class AssignmentTraceTest : public ValueCommandTest {};

TEST_F(AssignmentTraceTest, ATextAsStoredIsReadAndWritten) {
  const Operation operation{22, &Command::C_22};
  RunStep(operation, {"target", "n+1"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(operation, 1), ReadingOf(operation, 2), ReadingOf("target"),
                                   InsertingOf("target", "n+1")));
}

TEST_F(AssignmentTraceTest, AnExpressionIsEvaluatedBetweenReadingAndWriting) {
  const Operation operation{39, &Command::C_39};
  Given("target", "old");
  RunStep(operation, {"target", "n+1"});
  EXPECT_THAT(trace(),
              ElementsAre(ReadingOf(operation, 1), ReadingOf(operation, 2), ReadingOf("n"), ReadingOf("target"),
                          "Update WorkFlowVariable set VariableValue='6' Where VariableName='target' And "
                          "RootExecuteID=901"));
}

TEST_F(AssignmentTraceTest, AValueThatIsNotNumericEndsTheCommandBeforeTheVariableIsLookedAt) {
  const Operation operation{55, &Command::C_55};
  Given("target", "old");
  RunStep(operation, {"target", "text"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(operation, 1), ReadingOf(operation, 2), ReadingOf("text")));
  EXPECT_EQ(Variable(), "old");
}

TEST_F(AssignmentTraceTest, AnArgumentOfTheCallIsWrittenAsItIs) {
  const Operation operation{62, &Command::C_62};
  call().operator_name = "O'Brien + 1";
  RunStep(operation, {"target"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(operation, 1), ReadingOf("target"), InsertingOf("target", "O'Brien + 1")));
}

TEST_F(AssignmentTraceTest, AMissingArgumentIsTheEmptyText) {
  call().operator_name = Value();
  call().ip_address = Value();
  RunStep({62, &Command::C_62}, {"target"});
  RunStep({63, &Command::C_63}, {"address"});
  EXPECT_EQ(Variable(), "");
  EXPECT_EQ(Variable("address"), "");
}

TEST_F(AssignmentTraceTest, TheTargetsNameSelectsTheScope) {
  const Operation operation{22, &Command::C_22};
  call().execute_id = 902;
  RunStep(operation, {"Private_x", "mine"});
  RunStep(operation, {"Global_x", "everybody's"});
  EXPECT_THAT(world().Rows("Select RootExecuteID,ExecuteID,VariableName,VariableValue From WorkFlowVariable Where "
                           "VariableName Like '%_x'"),
              ElementsAre("901|902|Private_x|mine", "0|0|Global_x|everybody's"));
}

TEST_F(AssignmentTraceTest, AStepWithoutParametersWritesTheNamelessVariable) {
  RunStep({22, &Command::C_22}, {});
  EXPECT_EQ(Variable(""), "");
}

TEST_F(AssignmentTraceTest, AnExpressionWithTooManyTokensEndsTheCommand) {
  EXPECT_THROW(RunStep({39, &Command::C_39}, {"target", std::string(102, '+')}), SubscriptError);
  EXPECT_EQ(Variable(), std::nullopt);
}

}  // namespace
}  // namespace talm_flow::test
