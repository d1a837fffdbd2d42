// What the component trusts its callers with, and what it does not.

#include <gtest/gtest.h>

#include <string>

#include "support/invocation.h"
#include "support/world.h"
#include "talm_flow/command.h"

namespace talm_flow::test {
namespace {

class TrustTest : public testing::Test {
 protected:
  TrustTest() {
    world_.Step(7, 1, 0, "C_86");
    for (int task = 0; task < 3; ++task) world_.Run("Insert Into DataApp (Status) Values (0)");
  }

  std::string Evaluate(std::string_view expression) {
    return command_.GetVariableValue(world_.connection(), 901, 901, expression, 12, 345);
  }

  void SetVariable(std::string_view name, std::string_view value) {
    command_.UpdateVariableValue(world_.connection(), 901, 901, name, value);
  }

  World world_;
  Command command_{world_.services()};
};

TEST_F(TrustTest, ANumberArgumentIsAPieceOfTheStatement) {
  command_.ChangeAppStatusToFinish(world_.connection(), "1 or 1=1", 0);
  EXPECT_EQ(world_.Row("Select count(*) From DataApp Where Status=2"), "3");
}

TEST_F(TrustTest, NoArgumentAddsAStatement) {
  EXPECT_THROW(command_.ChangeAppStatusToFinish(world_.connection(), "1; delete from DataApp", 0), DatabaseError);
  EXPECT_EQ(world_.Row("Select count(*) From DataApp Where Status=0"), "3");
}

TEST_F(TrustTest, AMomentCannotLeaveItsQuotes) {
  for (const char* moment : {"2026-01-31'", "2026-01-31'),(1,1,'C_15','x", "'||Command||'"}) {
    SetVariable("moment", moment);
    world_.Run("Delete From WorkFlowParameter");
    world_.Parameter(7, 1, "C_86_1", "moment");
    world_.Parameter(7, 1, "C_86_2", "1");
    Invocation call;
    InvocationContext context = call.On(world_.connection());
    command_.C_86(context);
    EXPECT_EQ(world_.Row("Select count(*) From WorkFlowExecute"), "0") << moment;
  }
}

TEST_F(TrustTest, AValueWithoutMarkersStaysAValue) {
  SetVariable("secret", "42");
  for (const char* value : {"secret", "\"+secret+\"", "x')+(secret", "'); delete from DataApp --", "1+secret"}) {
    SetVariable("typed", value);
    EXPECT_EQ(Evaluate("typed+\"!\""), std::string(value) + "!");
    EXPECT_EQ(Evaluate("typed"), value);
  }
  EXPECT_EQ(world_.Row("Select count(*) From DataApp"), "3");
}

TEST_F(TrustTest, AValueWithMarkersReadsOtherVariables) {
  SetVariable("secret", "word");
  SetVariable("typed", "aMkStr_End+secret+MkStr_Beginb");
  EXPECT_EQ(Evaluate("typed+\"!\""), "awordb!");
  EXPECT_EQ(Evaluate("typed"), "aMkStr_End+secret+MkStr_Beginb");
}

TEST_F(TrustTest, TheTextOfALinkIsMarkup) {
  SetVariable("typed", "<b>x</b>");
  world_.Parameter(7, 1, "C_90_1", "DataID_Submit");
  world_.Parameter(7, 1, "C_90_2", "typed");
  world_.Parameter(7, 1, "C_90_3", "link");
  Invocation call;
  InvocationContext context = call.On(world_.connection());
  command_.C_90(context);
  EXPECT_NE(Evaluate("link").find("><b>x</b></A>"), std::string::npos);
}

}  // namespace
}  // namespace talm_flow::test
