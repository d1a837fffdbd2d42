#include <gtest/gtest.h>

#include "support/world.h"
#include "talm_flow/late_bound.h"

namespace talm_flow::late_bound {
namespace {

using test::World;

class CallTest : public testing::Test {
 protected:
  Result CallByName(std::string_view name, std::vector<Argument>& arguments) {
    return Call(Resolve(name), world_.connection(), world_.services(), arguments);
  }
  Value ValueOf(std::string_view name, std::vector<Argument> arguments) {
    return std::get<Value>(CallByName(name, arguments));
  }

  World world_;
};

TEST_F(CallTest, AnOperationWithoutAResultGivesNothing) {
  std::vector<Argument> arguments = {5, 1};
  const auto result = CallByName("Command.AddExecuteTimes", arguments);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(result));
  EXPECT_EQ(world_.Row("select ExecuteID,FlowNo,Times from WorkFlowExecuteTimes"), "5|1|1");
}

TEST_F(CallTest, ABooleanResultIsABoolean) { EXPECT_EQ(ValueOf("Name.FlowExists", {7}), Value(false)); }

TEST_F(CallTest, WholeNumberResultsAreWholeNumbers) {
  EXPECT_EQ(ValueOf("Name.Add", {"Leave", "kim", ""}), Value(0));
  EXPECT_EQ(ValueOf("Name.MaxFlowID", {}), Value(1));
  EXPECT_EQ(ValueOf("Command.GetVarTypeByName", {"Global_x"}), Value(3));
}

TEST_F(CallTest, ATextResultIsAText) {
  world_.Step(1, 1, 0, "C_22");
  EXPECT_EQ(ValueOf("Construction.GetCommand", {1, 1}), Value("C_22"));
}

TEST_F(CallTest, ARowSetResultIsLeftToTheCaller) {
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('Leave')");
  std::vector<Argument> none;
  const auto result = CallByName("Name.GetRs", none);
  const auto& rows = std::get<std::unique_ptr<RowSet>>(result);
  ASSERT_FALSE(rows->AtEnd());
  EXPECT_EQ(rows->Field("FlowName"), Value("Leave"));
}

TEST_F(CallTest, ByReferenceArgumentsAreWrittenBack) {
  world_.Run("Insert Into WorkFlowName (FlowName,Creater) Values ('Leave','kim')");
  std::vector<Argument> arguments = {1, "old", "old", "old"};
  EXPECT_EQ(std::get<Value>(CallByName("Name.GetAll", arguments)), Value(true));
  EXPECT_EQ(arguments[0].Single(), Value(1));
  EXPECT_EQ(arguments[1].Single(), Value("Leave"));
  EXPECT_EQ(arguments[2].Single(), Value("kim"));
  EXPECT_TRUE(arguments[3].Single().IsNull());
}

TEST_F(CallTest, AnOperationWithoutAConnectionTakesItsArgumentsFromTheFirst) {
  std::vector<Argument> arguments = {"TableID:12,DataID:345", nullptr, nullptr};
  EXPECT_EQ(std::get<Value>(CallByName("Command.SeparateTableIDAndDataID", arguments)), Value(true));
  EXPECT_EQ(arguments[1].Single(), Value(12));
  EXPECT_EQ(arguments[2].Single(), Value(345));
}

TEST_F(CallTest, AListArgumentIsEmptiedAndFilled) {
  std::vector<Argument> arguments = {"Name=1", List{"old"}};
  (void)CallByName("Command.ExpressToArr", arguments);
  ASSERT_TRUE(arguments[1].IsList());
  EXPECT_EQ(arguments[1].Items(), (List{"name", "=", "1"}));
}

TEST_F(CallTest, ASingleValueMayStandWhereAListIsWritten) {
  std::vector<Argument> arguments = {"a>b", nullptr};
  (void)CallByName("Command.ExpressToArr", arguments);
  EXPECT_EQ(arguments[1].Items(), (List{"a", ">", "b"}));
}

TEST_F(CallTest, AListWhereASingleValueBelongsIsRefused) {
  std::vector<Argument> arguments = {List{"7"}};
  EXPECT_THROW((void)CallByName("Name.FlowExists", arguments), ArgumentError);
  EXPECT_TRUE(world_.trace().empty());
}

TEST_F(CallTest, AnOptionalArgumentMayBeLeftOffOrGiven) {
  const std::vector<Argument> without = {"f", 0, 1, 0, 0, ""};
  auto with = without;
  with.emplace_back(" id=x");
  EXPECT_EQ(ValueOf("Name.FlowSelect", without), Value("<Select name=\"f\" size=1>\r\n</Select>"));
  EXPECT_EQ(ValueOf("Name.FlowSelect", with), Value("<Select name=\"f\" size=1 id=x>\r\n</Select>"));
}

TEST_F(CallTest, ACommandReceivesTheTenValuesInOrder) {
  world_.Step(3, 2, 1, "C_62");
  world_.Parameter(3, 2, "C_62_1", "who");
  std::vector<Argument> arguments = {41, 2, 40, 12, 345, 3, "kim", "10.0.0.1", 0, 0};
  (void)CallByName("Command.C_62", arguments);
  EXPECT_EQ(world_.Row("select RootExecuteID,ExecuteID,VariableName,VariableValue from WorkFlowVariable"),
            "40|41|who|kim");
}

TEST_F(CallTest, TheResultOfACommandThatHasOneIsGiven) {
  std::vector<Argument> arguments = {41, 2, 40, 12, 345, 3, "kim", "10.0.0.1", 0, 0};
  EXPECT_TRUE(std::get<Value>(CallByName("Command.C_11", arguments)).IsBoolean());
}

TEST_F(CallTest, NumbersAndTextsReachTheStatementAsTheyWereGiven) {
  (void)ValueOf("Construction.MaxFlowNo", {"7"});
  (void)ValueOf("Construction.MaxFlowNo", {7});
  EXPECT_EQ(world_.trace(), (std::vector<std::string>{
                                "Select top 1 FlowNo from WorkFlowConstruction where FlowID=7 order by FlowNo desc",
                                "Select top 1 FlowNo from WorkFlowConstruction where FlowID=7 order by FlowNo desc"}));
}

TEST_F(CallTest, ErrorsOfTheOperationReachTheCaller) {
  EXPECT_THROW((void)ValueOf("Name.FlowExists", {"no number"}), DatabaseError);
}

TEST_F(CallTest, TooFewArgumentsNameTheFirstThatIsMissing) {
  std::vector<Argument> arguments = {7, 12};
  try {
    (void)CallByName("Command.FlowExecute", arguments);
    FAIL() << "no error was raised";
  } catch (const ArgumentCountError& error) {
    EXPECT_STREQ(error.what(),
                 "Command.FlowExecute: the argument DataID is missing; expected "
                 "(FlowID,TableID,DataID,Operator,IpAddress,OtherTableID,OtherDataID)");
  }
  EXPECT_TRUE(world_.trace().empty());
}

TEST_F(CallTest, SurplusArgumentsAreCounted) {
  std::vector<Argument> arguments = {7, 1, 2};
  try {
    (void)CallByName("Name.FlowExists", arguments);
    FAIL() << "no error was raised";
  } catch (const ArgumentCountError& error) {
    EXPECT_STREQ(error.what(), "Name.FlowExists: 2 arguments too many; expected (FlowID)");
  }
}

}  // namespace
}  // namespace talm_flow::late_bound
