#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ResumptionTest : public testing::Test {
 protected:
  ResumptionTest() {
    // Instance 1 of flow 7, and its child 2 of flow 8 that step 3 started.
    world_.Run(
        "Insert Into WorkFlowExecuteID "
        "(TableID,DataID,FlowID,Operator,RootExecuteID,IpAddress,OtherTableID,OtherDataID) "
        "Values (12,345,7,'a',1,'b',0,0)");
    world_.Run(
        "Insert Into WorkFlowExecuteID "
        "(TableID,DataID,FlowID,Operator,RootExecuteID,IpAddress,OtherTableID,OtherDataID) "
        "Values (12,345,8,'a',1,'b',0,0)");
    Noting(7, 3, 1);
    Noting(7, 4, 3);
    Noting(8, 1, 0);
    Noting(8, 2, 1);
  }
  void Noting(int flow_id, int flow_no, int parent_no) {
    world_.Step(flow_id, flow_no, parent_no, "C_39");
    world_.Parameter(flow_id, flow_no, "C_39_1", "path");
    world_.Parameter(flow_id, flow_no, "C_39_2",
                     "path+\"f" + std::to_string(flow_id) + "." + std::to_string(flow_no) + " \"");
  }
  void Link(int execute_parent) {
    world_.Run(
        "Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID,ExecuteParent) Values (1,3,2," +
        std::to_string(execute_parent) + ")");
  }
  std::string Path() { return world_.Row("select VariableValue from WorkFlowVariable where VariableName='path'"); }
  std::string Links() { return world_.Row("select count(*) from WorkFlowChildRec"); }

  World world_;
  Command command_{world_.services()};
};

TEST_F(ResumptionTest, AnInstanceThatIsGoneDoesNothing) {
  command_.FlowExecuteAfter(world_.connection(), 9, 1);
  EXPECT_THAT(world_.trace(), ElementsAre("Select Top 1 * From WorkFlowExecuteID Where ExecuteID=9"));
}

TEST_F(ResumptionTest, OnlyTheChildrenOfTheWaitingStepRun) {
  command_.FlowExecuteAfter(world_.connection(), 1, 3);
  EXPECT_EQ(Path(), "f7.4 ");
  EXPECT_EQ(world_.trace().back(), "select Top 1 * from WorkFlowChildRec where ChildExecuteID=1");
}

TEST_F(ResumptionTest, AFinishedChildLetsItsParentGoOnBelowTheStepThatStartedIt) {
  Link(1);
  command_.FlowExecuteAfter(world_.connection(), 2, 1);
  EXPECT_EQ(Path(), "f8.2 f7.4 ");
  EXPECT_EQ(Links(), "0");
}

TEST_F(ResumptionTest, AChildThatSaysSoLeavesItsParentWhereItIs) {
  Link(0);
  command_.FlowExecuteAfter(world_.connection(), 2, 1);
  EXPECT_EQ(Path(), "f8.2 ");
  EXPECT_EQ(Links(), "0");
}

TEST_F(ResumptionTest, AChildWithSomethingOpenKeepsItsLink) {
  Link(1);
  world_.Run("Insert Into DataApp (ExecuteID,FlowNo) Values (2,1)");
  command_.FlowExecuteAfter(world_.connection(), 2, 1);
  EXPECT_EQ(Path(), "f8.2 ");
  EXPECT_EQ(Links(), "1");
}

TEST_F(ResumptionTest, ResumingNeverRemovesAnInstance) {
  command_.FlowExecuteAfter(world_.connection(), 1, 3);
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecuteID"), "2");
}

TEST_F(ResumptionTest, TheParentLinkIsReadOrTheArgumentsBecomeEmpty) {
  Link(1);
  Value parent, step, flag;
  EXPECT_TRUE(command_.GetParentFlowParam(world_.connection(), 2, parent, step, flag));
  EXPECT_EQ(parent, Value(1));
  EXPECT_EQ(step, Value(3));
  EXPECT_EQ(flag, Value(1));
  EXPECT_FALSE(command_.GetParentFlowParam(world_.connection(), 1, parent, step, flag));
  EXPECT_EQ(parent, Value(""));
  EXPECT_EQ(step, Value(""));
  EXPECT_EQ(flag, Value(""));
}

// ---- Run counters ---------------------------------------------------------------------------------------------------

TEST(RunCounterTest, TheFirstRunInsertsAndLaterOnesCountUp) {
  World world;
  Command command(world.services());
  EXPECT_FALSE(command.IsExecuteOverTimes(world.connection(), 5, 3));
  command.AddExecuteTimes(world.connection(), 5, 3);
  command.AddExecuteTimes(world.connection(), 5, 3);
  EXPECT_THAT(world.trace(),
              ElementsAre("Select Top 1 Times from WorkFlowExecuteTimes where ExecuteID=5 And FlowNo=3",
                          "Select Top 1 Times from WorkFlowExecuteTimes where ExecuteID=5 And FlowNo=3",
                          "insert into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) Values (5,3,1)",
                          "Select Top 1 Times from WorkFlowExecuteTimes where ExecuteID=5 And FlowNo=3",
                          "update WorkFlowExecuteTimes set Times=Times+1 where ExecuteID=5 And FlowNo=3"));
  EXPECT_EQ(world.Row("select ExecuteID, FlowNo, Times from WorkFlowExecuteTimes"), "5|3|2");
}

TEST(RunCounterTest, TheCapIsReachedAtTwoHundredRuns) {
  World world;
  Command command(world.services());
  world.Run("insert into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) Values (5,3,199)");
  EXPECT_FALSE(command.IsExecuteOverTimes(world.connection(), 5, 3));
  command.AddExecuteTimes(world.connection(), 5, 3);
  EXPECT_TRUE(command.IsExecuteOverTimes(world.connection(), 5, 3));
}

// ---- Tasks ----------------------------------------------------------------------------------------------------------

TEST(TaskTest, FinishingAnApprovalMarksTheTaskAndItsWait) {
  World world;
  world.Run("Insert Into DataApp (ExecuteID,FlowNo) Values (1,2)");
  world.Run("Insert Into WorkFlowExecute (ExecuteID,FlowNo,DataAppID,Command) Values (1,2,1,'C_2')");
  Command(world.services()).ChangeAppStatusToFinish(world.connection(), 1, 77);
  EXPECT_THAT(world.trace(), ElementsAre("update DataApp set Status=2,AppDataID=77 where DataAppID=1",
                                         "update WorkFlowExecute set AppFinished=1 where DataAppID=1"));
  EXPECT_EQ(world.Row("select Status, AppDataID from DataApp"), "2|77");
  EXPECT_EQ(world.Row("select AppFinished from WorkFlowExecute"), "1");
}

TEST(TaskTest, FinishingAFillInMarksTheTaskAndItsWait) {
  World world;
  world.Run("Insert Into InUnitSub (ExecuteID,FlowNo) Values (1,2)");
  world.Run("Insert Into WorkFlowExecute (ExecuteID,FlowNo,DataAppID,Command) Values (1,2,1,'C_97')");
  Command(world.services()).ChangeInUnitSubStatusToFinish(world.connection(), 1);
  EXPECT_THAT(world.trace(), ElementsAre("update InUnitSub set Status=2 where ID=1",
                                         "update WorkFlowExecute set AppFinished=1 where DataAppID=1"));
  EXPECT_EQ(world.Row("select Status from InUnitSub"), "2");
}

TEST(TaskTest, AGroupIsOpenWhileAnyOfItsTasksIs) {
  World world;
  Command command(world.services());
  world.Run("Insert Into DataApp (ExecuteID,RelatingID,Status) Values (1,1,2)");
  world.Run("Insert Into DataApp (ExecuteID,RelatingID,Status) Values (1,1,0)");
  world.Run("Insert Into DataApp (ExecuteID,Status) Values (1,0)");
  EXPECT_TRUE(command.NotAppExists(world.connection(), 1));
  EXPECT_TRUE(command.NotAppExists(world.connection(), 2));
  world.Run("update DataApp set Status=2 where DataAppID=2");
  EXPECT_FALSE(command.NotAppExists(world.connection(), 1));
  world.ForgetTrace();
  EXPECT_FALSE(command.NotAppExists(world.connection(), 3)) << "a task without a group";
  EXPECT_FALSE(command.NotAppExists(world.connection(), 4)) << "an unknown task";
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 RelatingID From DataApp Where DataAppID=3",
                                         "Select Top 1 RelatingID From DataApp Where DataAppID=4"));
  world.ForgetTrace();
  (void)command.NotAppExists(world.connection(), 1);
  EXPECT_EQ(world.trace().back(), "Select Top 1 DataAppID From DataApp Where RelatingID=1 And Status<2");
}

TEST(TaskTest, NoticeInformationIsReadFromEachKindOfTask) {
  World world;
  Command command(world.services());
  world.Run("Insert Into DataApp (NoticInf) Values ('请审批')");
  world.Run("Insert Into InUnitSub (NoticInf) Values ('请填写')");
  world.Run("Insert Into DataAtt (NoticInf) Values ('请附加')");
  EXPECT_EQ(command.GetNoticInfFromDataApp(world.connection(), 1), "请审批");
  EXPECT_EQ(command.GetNoticInfFromInUnitSub(world.connection(), 1), "请填写");
  EXPECT_EQ(command.GetNoticInfFromDataAtt(world.connection(), 1), "请附加");
  EXPECT_EQ(command.GetNoticInfFromDataApp(world.connection(), 2), "");
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 NoticInf From DataApp Where DataAppID=1",
                                         "Select Top 1 NoticInf From InUnitSub Where ID=1",
                                         "Select Top 1 NoticInf From DataAtt Where DataAttID=1",
                                         "Select Top 1 NoticInf From DataApp Where DataAppID=2"));
  world.Run("update DataApp set NoticInf=null");
  EXPECT_EQ(command.GetNoticInfFromDataApp(world.connection(), 1), "");
}

// ---- The task step above --------------------------------------------------------------------------------------------

class NearestTaskTest : public testing::Test {
 protected:
  NearestTaskTest() {
    world_.Step(7, 1, 0, "C_2");
    world_.Step(7, 2, 1, "C_98");
    world_.Step(7, 3, 2, "C_68");
    world_.Step(7, 4, 9, "C_68");
  }
  World world_;
  Command command_{world_.services()};
};

TEST_F(NearestTaskTest, OnlyStepsAboveAreConsidered) {
  EXPECT_EQ(command_.GetFlowNoApprov(world_.connection(), 7, 1), 0);
  EXPECT_EQ(command_.GetFlowNoApprov(world_.connection(), 7, 2), 1);
  EXPECT_EQ(command_.GetFlowNoApprov(world_.connection(), 7, 3), 1);
  EXPECT_EQ(command_.GetFlowNoApprov(world_.connection(), 7, 4), 0) << "its parent has no row";
  EXPECT_EQ(command_.GetFlowNoApprov(world_.connection(), 7, 8), 0) << "no such step";
  EXPECT_EQ(command_.GetFlowNoInUnitSub(world_.connection(), 7, 3), 2);
  EXPECT_EQ(command_.GetFlowNoInUnitSub(world_.connection(), 7, 2), 0);
}

TEST_F(NearestTaskTest, TheWalkUpReadsParentAndCommandInTurn) {
  (void)command_.GetFlowNoApprov(world_.connection(), 7, 3);
  EXPECT_THAT(world_.trace(),
              ElementsAre("select Top 1 ParentNo from WorkFlowConstruction where FlowNo=3 and FlowID=7",
                          "select Top 1 Command,FlowNo from WorkFlowConstruction where FlowNo=2 and FlowID='7'",
                          "select Top 1 ParentNo from WorkFlowConstruction where FlowNo=2 and FlowID=7",
                          "select Top 1 Command,FlowNo from WorkFlowConstruction where FlowNo=1 and FlowID='7'"));
}

TEST_F(NearestTaskTest, ACycleOfParentsIsToldWithItsPlace) {
  world_.Step(8, 2, 3, "none");
  world_.Step(8, 3, 2, "none");
  try {
    (void)command_.GetFlowNoApprov(world_.connection(), 8, 2);
    FAIL();
  } catch (const NestingError& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("step 2 of flow 8"));
  }
}

}  // namespace
}  // namespace talm_flow::test
