#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/small_stack.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

/// What no definition may do, however deep, cyclic or self-starting: crash the process or run out of stack.
class NestingTest : public testing::Test {
 protected:
  void Flow(int flow_id) {
    world_.Run("Insert Into WorkFlowName (FlowID,FlowName,Creater) Values (" + std::to_string(flow_id) + ",'f','c')");
  }
  /// Adds a step whose command counts its runs in a global variable.
  void Counting(int flow_no, int parent_no) {
    world_.Step(7, flow_no, parent_no, "C_39");
    world_.Parameter(7, flow_no, "C_39_1", "Global_n");
    world_.Parameter(7, flow_no, "C_39_2", "Global_n+1");
  }
  void CountFromZero() {
    world_.Run(
        "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values "
        "(0,0,'Global_n','0')");
  }
  std::string Count() { return world_.Row("select VariableValue from WorkFlowVariable where VariableName='Global_n'"); }
  void StartOnSmallStack() {
    // Below the trace, which would keep millions of texts.
    RunOnSmallStack([this] { Command(world_.services()).FlowExecute(world_.database(), 7, 12, 345, "a", "b", 0, 0); });
  }

  World world_;
};

TEST_F(NestingTest, AChainOfAllStepNumbersRunsOnASmallStack) {
  world_.Run("begin");
  CountFromZero();
  Counting(1, 0);
  for (int step = 2; step < 32767; ++step) world_.Step(7, step, step - 1, "none");
  Counting(32767, 32766);
  world_.Run("commit");
  StartOnSmallStack();
  EXPECT_EQ(Count(), "2");
}

TEST_F(NestingTest, ALoopOfHundredsOfStepsRunsTwoHundredTimesOnASmallStack) {
  world_.Run("begin");
  CountFromZero();
  Counting(1, 0);
  for (int step = 2; step < 300; ++step) world_.Step(7, step, step - 1, "none");
  world_.Step(7, 300, 299, "C_16");
  world_.Parameter(7, 300, "C_16_1", "1");
  world_.Run("commit");
  StartOnSmallStack();
  EXPECT_EQ(Count(), "201");
}

TEST_F(NestingTest, ACyclicTreeEndsInAnError) {
  world_.Step(7, 1, 0, "none");
  world_.Step(7, 2, 1, "none");
  world_.Step(7, 3, 2, "none");
  world_.Run("update WorkFlowConstruction set ParentNo=3 where FlowNo=2");
  world_.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Command) Values (7,2,1,'none')");
  try {
    StartOnSmallStack();
    FAIL();
  } catch (const NestingError& error) {
    EXPECT_THAT(error.what(), HasSubstr("flow 7"));
  }
}

TEST_F(NestingTest, AJumpBeginsTheCountOfLevelsAnew) {
  // Twice down 20,000 levels with one jump back: more levels in all than a tree may have.
  world_.Run("begin");
  CountFromZero();
  world_.Step(7, 1, 0, "none");
  Counting(2, 1);
  for (int step = 3; step < 20000; ++step) world_.Step(7, step, step - 1, "none");
  world_.Step(7, 20000, 19999, "C_11");
  world_.Parameter(7, 20000, "C_11_1", "Global_n");
  world_.Parameter(7, 20000, "C_11_2", "<");
  world_.Parameter(7, 20000, "C_11_3", "2");
  world_.Step(7, 20001, 20000, "C_16");
  world_.Parameter(7, 20001, "C_16_1", "2");
  world_.Run("commit");
  StartOnSmallStack();
  EXPECT_EQ(Count(), "2");
}

TEST_F(NestingTest, AThousandChildFlowsInsideEachOtherWork) {
  world_.Run("begin");
  CountFromZero();
  for (int flow = 7; flow <= 1007; ++flow) {
    Flow(flow);
    world_.Step(flow, 1, 0, "C_18");
    world_.Parameter(flow, 1, "C_18_1", std::to_string(flow + 1));
  }
  world_.Run("update WorkFlowConstruction set Command='none' where FlowID=1007");
  Counting(2, 1);
  world_.Run("commit");
  StartOnSmallStack();
  EXPECT_EQ(Count(), "1");
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecuteID"), "0");
}

TEST_F(NestingTest, AFlowThatStartsItselfEndsInAnErrorBeforeTheInsert) {
  Flow(7);
  world_.Step(7, 1, 0, "C_18");
  world_.Parameter(7, 1, "C_18_1", "7");
  try {
    StartOnSmallStack();
    FAIL();
  } catch (const NestingError& error) {
    EXPECT_THAT(error.what(), HasSubstr("step 1 of flow 7 starts flow 7"));
  }
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecuteID"), "1001");
}

TEST_F(NestingTest, ChildFlowsOneAfterAnotherAreNotNested) {
  world_.Run("begin");
  CountFromZero();
  Flow(8);
  world_.Step(7, 1, 0, "none");
  for (int step = 2; step <= 1500; ++step) {
    world_.Step(7, step, 1, "C_18");
    world_.Parameter(7, step, "C_18_1", "8");
  }
  Counting(1501, 1500);
  world_.Run("commit");
  StartOnSmallStack();
  EXPECT_EQ(Count(), "1");
}

}  // namespace
}  // namespace talm_flow::test
