#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/failing_connection.h"
#include "support/invocation.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class FlowControlTest : public testing::Test {
 protected:
  void Noting(int flow_id, int flow_no, int parent_no) {
    world_.Step(flow_id, flow_no, parent_no, "C_39");
    world_.Parameter(flow_id, flow_no, "C_39_1", "Global_path");
    world_.Parameter(flow_id, flow_no, "C_39_2",
                     "Global_path+\"f" + std::to_string(flow_id) + "." + std::to_string(flow_no) + " \"");
  }
  std::string Path() {
    return world_.Row("select VariableValue from WorkFlowVariable where VariableName='Global_path'");
  }
  void Start(int flow_id = 7) { command_.FlowExecute(world_.connection(), flow_id, 12, 345, "李雷", "10.0.0.7", 0, 0); }
  void Flow(int flow_id) {
    world_.Run("Insert Into WorkFlowName (FlowID,FlowName,Creater) Values (" + std::to_string(flow_id) + ",'f','c')");
  }
  InvocationContext Context() { return call_.On(world_.connection()); }

  World world_;
  Command command_{world_.services()};
  Invocation call_;
};

// ---- C_11 -----------------------------------------------------------------------------------------------------------

TEST_F(FlowControlTest, AConditionGivesItsResultAndReadsItsParametersInOrder) {
  world_.Parameter(7, 1, "C_11_1", "9+1");
  world_.Parameter(7, 1, "C_11_2", ">");
  world_.Parameter(7, 1, "C_11_3", "limit");
  world_.Run(
      "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (901,901,'limit','9')");
  auto context = Context();
  EXPECT_TRUE(command_.C_11(context));
  EXPECT_THAT(world_.trace(),
              ElementsAre("Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='C_11_1' And FlowID=7 "
                          "And FlowNo=1",
                          "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='C_11_2' And FlowID=7 "
                          "And FlowNo=1",
                          "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='C_11_3' And FlowID=7 "
                          "And FlowNo=1",
                          "Select Top 1 VariableValue From WorkFlowVariable Where VariableName='limit' And "
                          "RootExecuteID=901"));
  world_.Run("update WorkFlowVariable set VariableValue='10'");
  EXPECT_FALSE(command_.C_11(context));
}

TEST_F(FlowControlTest, AConditionWithoutParametersFails) {
  auto context = Context();
  EXPECT_FALSE(command_.C_11(context));
}

// ---- C_15 -----------------------------------------------------------------------------------------------------------

struct TimerCase {
  const char* runs;
  const char* interval;
  const char* expected;
};

class TimerTest : public FlowControlTest, public testing::WithParamInterface<TimerCase> {};

TEST_P(TimerTest, TakesItsNumbersAsStoredElseEvaluatedElseZero) {
  world_.Step(7, 5, 1, "none");
  world_.Run(
      "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (901,901,'n','4')");
  world_.Parameter(7, 1, "C_15_1", GetParam().runs);
  world_.Parameter(7, 1, "C_15_2", GetParam().interval);
  world_.Parameter(7, 1, "C_15_3", "5");
  auto context = Context();
  command_.C_15(context);
  EXPECT_EQ(world_.Row("select ExecuteID,FlowNo,Command,Times,Interval,HaveExeTimes from WorkFlowExecute"),
            std::string("901|5|C_15|") + GetParam().expected + "|0");
}

INSTANTIATE_TEST_SUITE_P(Numbers, TimerTest,
                         testing::Values(TimerCase{"3", "60", "3|60"}, TimerCase{"-3", "-60", "3|60"},
                                         TimerCase{"n+1", "\"7\"", "5|7"}, TimerCase{"x", "\"y\"", "0|0"},
                                         TimerCase{"", "", "0|0"}, TimerCase{"2.5", "3.5", "2|4"}));

TEST_F(FlowControlTest, ASecondTimerForAStepDoesNothing) {
  world_.Step(7, 5, 1, "none");
  world_.Parameter(7, 1, "C_15_1", "3");
  world_.Parameter(7, 1, "C_15_2", "60");
  world_.Parameter(7, 1, "C_15_3", "5");
  auto context = Context();
  command_.C_15(context);
  EXPECT_EQ(world_.trace().back(),
            "insert into WorkFlowExecute (ExecuteID,FlowNo,Command,Times,Interval) Values (901,5,'C_15',3,60)");
  command_.C_15(context);
  EXPECT_EQ(world_.trace().back(),
            "select Top 1 ID from WorkFlowExecute where ExecuteID=901 and FlowNo=5 and Command='C_15'");
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecute"), "1");
}

TEST_F(FlowControlTest, TheSmallestNumberHasNoAbsoluteValue) {
  world_.Parameter(7, 1, "C_15_1", "-2147483648");
  auto context = Context();
  EXPECT_THROW(command_.C_15(context), OverflowError);
}

// ---- Step numbers of timers and jumps -------------------------------------------------------------------------------

class TargetStepTest : public FlowControlTest, public testing::WithParamInterface<const char*> {};

TEST_P(TargetStepTest, AStepThatIsNoNumberOrNotThereMakesTheCommandDoNothing) {
  for (const char* name : {"C_15_3", "C_16_1", "C_17_1", "C_86_2"}) world_.Parameter(7, 1, name, GetParam());
  world_.Parameter(7, 1, "C_86_1", "\"2026-02-01\"");
  world_.Run("Insert Into WorkFlowExecute (ExecuteID,FlowNo,Command) Values (901,5,'C_2')");
  auto context = Context();
  command_.C_15(context);
  command_.C_16(context);
  command_.C_17(context);
  command_.C_86(context);
  EXPECT_EQ(world_.Row("select count(*), min(Command) from WorkFlowExecute"), "1|C_2");
}

INSTANTIATE_TEST_SUITE_P(Unfit, TargetStepTest, testing::Values("", "x", "5", "\"1\"", "0", "-1"));

TEST_F(FlowControlTest, AStepNumberIsRoundedToItsWholeNumber) {
  Noting(7, 2, 1);
  world_.Parameter(7, 1, "C_16_1", " 1.7 ");
  auto context = Context();
  command_.C_16(context);
  EXPECT_EQ(Path(), "f7.2 ");
  world_.Parameter(7, 3, "C_16_1", "3000000000");
  call_.flow_no = 3;
  EXPECT_THROW(command_.C_16(context), OverflowError);
}

// ---- C_16 -----------------------------------------------------------------------------------------------------------

TEST_F(FlowControlTest, AJumpRunsItsTargetInPlaceOfItsChildren) {
  Noting(7, 1, 0);
  world_.Step(7, 2, 1, "C_16");
  world_.Parameter(7, 2, "C_16_1", "5");
  Noting(7, 3, 2);
  Noting(7, 4, 1);
  Noting(7, 5, 9);
  Noting(7, 6, 5);
  Start();
  EXPECT_EQ(Path(), "f7.1 f7.5 f7.6 f7.4 ");
}

TEST_F(FlowControlTest, AJumpToItselfDoesNothing) {
  world_.Step(7, 1, 0, "C_16");
  world_.Parameter(7, 1, "C_16_1", "1");
  Start();
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecuteID"), "0");
}

TEST_F(FlowControlTest, ALoopRunsTwoHundredTimesAndStopsSilently) {
  world_.Step(7, 1, 0, "C_39");
  world_.Parameter(7, 1, "C_39_1", "Global_n");
  world_.Parameter(7, 1, "C_39_2", "Global_n+1");
  world_.Run(
      "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (0,0,'Global_n','0')");
  world_.Step(7, 2, 1, "C_16");
  world_.Parameter(7, 2, "C_16_1", "1");
  Start();
  EXPECT_EQ(world_.Row("select VariableValue from WorkFlowVariable where VariableName='Global_n'"), "201");
}

TEST_F(FlowControlTest, TheDispatcherCountsRunsOfJumpsAndMomentsOnly) {
  world_.Step(7, 1, 0, "C_86");
  world_.Step(7, 2, 1, "C_15");
  world_.Step(7, 3, 2, "C_16");
  world_.Step(7, 4, 1, "C_97");  // refuses its empty record
  world_.Run("Insert Into DataApp (ExecuteID) Values (1)");
  Start();
  EXPECT_THAT(world_.Rows("select FlowNo,Times from WorkFlowExecuteTimes"), ElementsAre("1|1", "3|1"));
}

TEST_F(FlowControlTest, AMomentThatHasRunTooOftenIsSkippedButItsChildrenRun) {
  Noting(7, 2, 1);
  world_.Step(7, 1, 0, "C_86");
  world_.Parameter(7, 1, "C_86_1", "\"2026-02-01\"");
  world_.Parameter(7, 1, "C_86_2", "2");
  world_.Run("insert into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) Values (901,1,200)");
  auto context = Context();
  command_.FlowExecuteByExecuteID(context);
  EXPECT_EQ(Path(), "f7.2 ");
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecute"), "0");
  EXPECT_EQ(world_.Row("select Times from WorkFlowExecuteTimes"), "200");
}

// ---- C_17, C_86 -----------------------------------------------------------------------------------------------------

TEST_F(FlowControlTest, CancellingRemovesTheWaitingRowsOfTheStepInThisInstance) {
  world_.Step(7, 5, 1, "none");
  world_.Parameter(7, 1, "C_17_1", "5");
  for (const char* row : {"(901,5,'C_15')", "(901,5,'C_2')", "(901,6,'C_15')", "(902,5,'C_15')"}) {
    world_.Run(std::string("Insert Into WorkFlowExecute (ExecuteID,FlowNo,Command) Values ") + row);
  }
  auto context = Context();
  command_.C_17(context);
  EXPECT_EQ(world_.trace().back(), "delete from WorkFlowExecute where ExecuteID=901 and FlowNo=5");
  EXPECT_THAT(world_.Rows("select ExecuteID,FlowNo from WorkFlowExecute"), ElementsAre("901|6", "902|5"));
}

TEST_F(FlowControlTest, AMomentIsStoredAsItsText) {
  world_.Step(7, 5, 1, "none");
  world_.Parameter(7, 1, "C_86_1", "\"2026-2-1 8:30\"+1");
  world_.Parameter(7, 1, "C_86_2", "5");
  auto context = Context();
  command_.C_86(context);
  EXPECT_EQ(
      world_.trace().back(),
      "insert into WorkFlowExecute (ExecuteID,FlowNo,Command,InputTime) Values (901,5,'C_86','2026/2/1 9:30:00')");
  EXPECT_EQ(world_.Row("select HaveExeTimes from WorkFlowExecute"), "0");
}

TEST_F(FlowControlTest, AMomentThatIsNoDateWritesNothing) {
  world_.Step(7, 5, 1, "none");
  world_.Parameter(7, 1, "C_86_1", "\"2026-2-30\"");
  world_.Parameter(7, 1, "C_86_2", "5");
  auto context = Context();
  command_.C_86(context);
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecute"), "0");
}

// ---- Child flows ----------------------------------------------------------------------------------------------------

TEST_F(FlowControlTest, AChildFlowThatRunsToItsEndLetsItsParentGoOnAtOnce) {
  Flow(8);
  Noting(7, 1, 0);
  world_.Step(7, 2, 1, "C_18");
  world_.Parameter(7, 2, "C_18_1", "8");
  Noting(7, 3, 2);
  Noting(7, 4, 1);
  Noting(8, 1, 0);
  Noting(8, 2, 1);
  Start();
  EXPECT_EQ(Path(), "f7.1 f8.1 f8.2 f7.3 f7.4 ");
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecuteID"), "0");
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowChildRec"), "0");
}

TEST_F(FlowControlTest, StartingAChildHandsOverTheDescribedStatements) {
  Flow(8);
  world_.Parameter(7, 1, "C_18_1", "8");
  world_.Step(8, 1, 0, "C_74");
  call_.execute_id = 50;
  auto context = Context();
  EXPECT_TRUE(command_.C_18(context));
  EXPECT_THAT(
      world_.trace(),
      ElementsAre(
          "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='C_18_1' And FlowID=7 And FlowNo=1",
          "Select Top 1 FlowID from WorkFlowName Where FlowID=8",
          "Insert Into WorkFlowExecuteID (TableID,DataID, FlowID, Operator, RootExecuteID, IpAddress, OtherTableID, "
          "OtherDataID) Values (12,345,8,'李雷',901,'10.0.0.7',0,0)",
          "SELECT @@IDENTITY AS ExecuteID",
          "Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (50,1,1)",
          "Select Top 1 Command from WorkFlowConstruction where FlowID=8 and FlowNo=1",
          "update WorkFlowChildRec set ExecuteParent=1 where ChildExecuteID=1",
          "select Top 10000 flowno from WorkFlowConstruction where flowid=8 and parentno=1 order by ID",
          "select Top 1 DataAppID from DataApp where ExecuteID=1 and (status=0 or status=1)",
          "select Top 1 ID from InUnitSub where ExecuteID=1 and (status=0 or status=1)",
          "select Top 1 ID from WorkFlowChildRec where ParentExecuteID=1",
          "Select Top 1 ExecuteParent From WorkFlowChildRec where ChildExecuteID=1",
          "delete from WorkFlowChildRec where ChildExecuteID=1"));
}

TEST_F(FlowControlTest, AChildThatMarksItselfDoesNotResumeItsParent) {
  Flow(8);
  world_.Step(7, 1, 0, "C_18");
  world_.Parameter(7, 1, "C_18_1", "8");
  Noting(7, 2, 1);
  world_.Step(8, 1, 0, "C_73");
  Start();
  EXPECT_EQ(Path(), "");
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowChildRec"), "0");
}

TEST_F(FlowControlTest, AChildThatMarksItselfAgainResumesItsParent) {
  Flow(8);
  world_.Step(7, 1, 0, "C_18");
  world_.Parameter(7, 1, "C_18_1", "8");
  Noting(7, 2, 1);
  world_.Step(8, 1, 0, "C_73");
  world_.Step(8, 2, 1, "C_74");
  Start();
  EXPECT_EQ(Path(), "f7.2 ");
}

TEST_F(FlowControlTest, AChildThatWaitsKeepsItsLinkAndItsParentWaiting) {
  Flow(8);
  Noting(7, 2, 1);
  world_.Parameter(7, 1, "C_18_1", "8");
  world_.Step(8, 1, 0, "none");
  world_.Run("Insert Into DataApp (ExecuteID) Values (1)");
  auto context = Context();
  EXPECT_FALSE(command_.C_18(context));
  EXPECT_EQ(world_.Row("select ParentExecuteID,ParentFlowNo,ChildExecuteID,ExecuteParent from WorkFlowChildRec"),
            "901|1|1|1");
}

class BadChildFlowTest : public FlowControlTest, public testing::WithParamInterface<const char*> {};

TEST_P(BadChildFlowTest, WritesNothingAndStopsTheBranch) {
  world_.Step(7, 1, 0, "C_18");
  world_.Parameter(7, 1, "C_18_1", GetParam());
  Noting(7, 2, 1);
  auto context = Context();
  EXPECT_FALSE(command_.C_18(context));
  command_.FlowExecuteByExecuteID(context);
  EXPECT_EQ(Path(), "");
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecuteID"), "0");
}

INSTANTIATE_TEST_SUITE_P(Unfit, BadChildFlowTest, testing::Values("", "x", "9", "\"8\""));

// ---- C_70 -----------------------------------------------------------------------------------------------------------

struct HandBackCase {
  const char* names;
  const char* position;
  const char* expected;  // variable|value
};

class HandBackTest : public FlowControlTest, public testing::WithParamInterface<HandBackCase> {};

TEST_P(HandBackTest, WritesTheVariableAtThePositionOfTheParentsList) {
  world_.Run("Insert Into WorkFlowExecuteID (FlowID,RootExecuteID) Values (8,1)");
  world_.Run("Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (1,3,901)");
  world_.Parameter(8, 3, "C_18_3", GetParam().names);
  world_.Parameter(7, 1, "C_70_1", GetParam().position);
  world_.Parameter(7, 1, "C_70_2", "1+2");
  auto context = Context();
  command_.C_70(context);
  EXPECT_EQ(world_.Row("select VariableName, VariableValue from WorkFlowVariable"), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Positions, HandBackTest,
                         testing::Values(HandBackCase{"a|^|b|^|c", "2", "b|1+2"}, HandBackCase{"a", "1", "a|1+2"},
                                         HandBackCase{"a|^|b", "2.9", "b|1+2"}, HandBackCase{"a|^|b", "3", "|1+2"},
                                         HandBackCase{"a|^|b", "0", "|1+2"}, HandBackCase{"a|^|b", "-1", "|1+2"},
                                         HandBackCase{"a|^|b", "1e300", "|1+2"}, HandBackCase{"a|^|b", "x", ""},
                                         HandBackCase{"a|^|b", "", ""}, HandBackCase{"", "1", ""}));

class LongHandBackTest : public FlowControlTest {
 protected:
  /// Hands a value back to a list of empty names with one name, "last", at its end.
  void HandBack(std::size_t pieces, const char* position) {
    std::string names;
    for (std::size_t i = 1; i < pieces; ++i) names += "|^|";
    world_.Run("delete from WorkFlowVariable");
    world_.Run("delete from WorkFlowParameter");
    world_.Run("delete from WorkFlowExecuteID");
    world_.Run("delete from WorkFlowChildRec");
    world_.Run("Insert Into WorkFlowExecuteID (ExecuteID,FlowID,RootExecuteID) Values (1,8,1)");
    world_.Run("Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (1,3,901)");
    world_.Parameter(8, 3, "C_18_3", names + "last");
    world_.Parameter(7, 1, "C_70_1", position);
    world_.Parameter(7, 1, "C_70_2", "v");
    auto context = Context();
    command_.C_70(context);
  }
  std::string Written() { return world_.Row("select VariableName, VariableValue from WorkFlowVariable"); }
};

TEST_F(LongHandBackTest, CountsAsManyNamesAsSixteenBitsHold) {
  HandBack(32767, "32767");
  EXPECT_EQ(Written(), "last|v");
  HandBack(32767, "32768");
  EXPECT_EQ(Written(), "|v");
  HandBack(32768, "5");
  EXPECT_EQ(Written(), "|v");
}

TEST_F(LongHandBackTest, CountingPastSixteenBitsOverflowsWhateverPositionIsSought) {
  for (const char* position : {"32768", "50000", "0", "-1"}) {
    EXPECT_THROW(HandBack(32768, position), OverflowError) << position;
    EXPECT_EQ(Written(), "") << position;
  }
}

TEST_F(FlowControlTest, HandingBackReadsLinkParentListAndParametersInOrder) {
  world_.Run("Insert Into WorkFlowExecuteID (FlowID,RootExecuteID) Values (8,1)");
  world_.Run("Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (1,3,901)");
  auto context = Context();
  command_.C_70(context);
  EXPECT_THAT(
      world_.trace(),
      ElementsAre(
          "select Top 1 * from WorkFlowChildRec where ChildExecuteID=901",
          "select Top 1 FlowID from WorkFlowExecuteID where ExecuteID=1",
          "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='C_18_3' And FlowID=8 And FlowNo=3",
          "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='C_70_1' And FlowID=7 And FlowNo=1",
          "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='C_70_2' And FlowID=7 And FlowNo=1"));
}

TEST_F(FlowControlTest, HandingBackWithoutAParentWritesNothing) {
  world_.Parameter(7, 1, "C_70_1", "1");
  auto context = Context();
  command_.C_70(context);
  EXPECT_THAT(world_.trace(), ElementsAre("select Top 1 * from WorkFlowChildRec where ChildExecuteID=901"));
}

// ---- Failing statements ---------------------------------------------------------------------------------------------

TEST_F(FlowControlTest, AFailingStatementReachesTheCallerFromEveryCommand) {
  Flow(8);
  world_.Step(8, 1, 0, "C_74");
  world_.Step(7, 5, 1, "none");
  world_.Run("Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (901,3,901)");
  world_.Run("Insert Into WorkFlowExecuteID (ExecuteID,FlowID,RootExecuteID) Values (901,7,901)");
  for (const char* name : {"C_15_1", "C_15_2", "C_15_3", "C_16_1", "C_17_1", "C_86_2"})
    world_.Parameter(7, 1, name, "5");
  world_.Parameter(7, 1, "C_86_1", "\"2026-2-1\"");
  world_.Parameter(7, 1, "C_18_1", "8");
  world_.Parameter(7, 3, "C_18_3", "a");
  world_.Parameter(7, 1, "C_70_1", "1");
  using Operation = std::function<void(Command&, InvocationContext&)>;
  const std::vector<Operation> operations = {
      [](Command& c, InvocationContext& x) { (void)c.C_11(x); }, [](Command& c, InvocationContext& x) { c.C_15(x); },
      [](Command& c, InvocationContext& x) { c.C_16(x); },       [](Command& c, InvocationContext& x) { c.C_17(x); },
      [](Command& c, InvocationContext& x) { (void)c.C_18(x); }, [](Command& c, InvocationContext& x) { c.C_70(x); },
      [](Command& c, InvocationContext& x) { c.C_73(x); },       [](Command& c, InvocationContext& x) { c.C_74(x); },
      [](Command& c, InvocationContext& x) { c.C_86(x); }};
  auto& transaction = world_.database();
  transaction.Begin();
  for (std::size_t i = 0; i < operations.size(); ++i) {
    transaction.SetSavepoint();
    FailingConnection counting(world_.connection(), 0);
    auto context = call_.On(counting);
    operations[i](command_, context);
    const std::size_t count = counting.count();
    EXPECT_GT(count, 0U);
    transaction.RollbackToSavepoint();
    for (std::size_t failing = 1; failing <= count; ++failing) {
      transaction.SetSavepoint();
      FailingConnection connection(world_.connection(), failing);
      auto failing_context = call_.On(connection);
      EXPECT_THROW(operations[i](command_, failing_context), DatabaseError) << "operation " << i << " at " << failing;
      EXPECT_EQ(connection.count(), failing);
      transaction.RollbackToSavepoint();
    }
  }
  transaction.Rollback();
}

}  // namespace
}  // namespace talm_flow::test
