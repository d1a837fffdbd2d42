// Variables, expressions and conditions as a caller reaches them: with loosely typed arguments.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/world.h"
#include "talm_flow/command.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PublicExpressionsTest : public ::testing::Test {
 protected:
  std::string Evaluate(const Value& expression) {
    return command_.GetVariableValue(world_.connection(), 7, 5, expression, 12, 345);
  }

  World world_;
  Command command_{world_.services()};
};

TEST_F(PublicExpressionsTest, AVariableThatIsWrittenCanBeRead) {
  command_.UpdateVariableValue(world_.connection(), 7, 5, "x", "O'Brien");
  EXPECT_EQ(Evaluate("\"Dear \"+x"), "Dear O'Brien");
}

TEST_F(PublicExpressionsTest, ValuesOfAnyKindAreWrittenAsTheirTexts) {
  const std::vector<std::pair<Value, std::string>> cases = {
      {5, "5"}, {2.5, "2.5"}, {1e20, "1E+20"}, {true, "True"}, {false, "False"}, {Value(), ""}, {"text", "text"}};
  for (const auto& [value, text] : cases) {
    command_.UpdateVariableValue(world_.connection(), 7, 5, "x", value);
    EXPECT_EQ(Evaluate("x"), text);
  }
}

TEST_F(PublicExpressionsTest, AnInstanceGivenAsATextGoesIntoTheStatementAsItIs) {
  command_.UpdateVariableValue(world_.connection(), "7", "5", "x", "1");
  EXPECT_THAT(world_.trace(),
              ElementsAre("Select Top 1 VariableValue From WorkFlowVariable Where VariableName='x' And "
                          "RootExecuteID=5",
                          "insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) values "
                          "(5,7,'x','1')"));
}

TEST_F(PublicExpressionsTest, AnExpressionMayBeGivenAsANumber) {
  EXPECT_EQ(Evaluate(12), "12");
  EXPECT_EQ(Evaluate(12.5), "12.5");
  EXPECT_EQ(Evaluate(-3), "缺少运算数");
  EXPECT_EQ(Evaluate(Value()), "");
}

TEST_F(PublicExpressionsTest, TheScopeOfAName) {
  EXPECT_EQ(command_.GetVarTypeByName("Private_x"), 2);
  EXPECT_EQ(command_.GetVarTypeByName("Global_x"), 3);
  EXPECT_EQ(command_.GetVarTypeByName("x"), 1);
  EXPECT_EQ(command_.GetVarTypeByName(5), 1);
  EXPECT_EQ(command_.GetVarTypeByName(Value()), 1);
  EXPECT_THAT(world_.trace(), IsEmpty());
}

TEST_F(PublicExpressionsTest, SplittingAConditionReplacesWhatTheArrayHeld) {
  std::vector<std::string> tokens = {"old", "older", "oldest", "more"};
  command_.ExpressToArr("A=1", tokens);
  EXPECT_THAT(tokens, ElementsAre("a", "=", "1"));
  command_.ExpressToArr(Value(), tokens);
  EXPECT_THAT(tokens, IsEmpty());
}

}  // namespace
}  // namespace talm_flow::test
