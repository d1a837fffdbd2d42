#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/failing_connection.h"
#include "support/invocation.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FlowTest : public testing::Test {
 protected:
  /// A flow of assignment steps that note in the variable `path` which of them ran.
  void NotingStep(int flow_no, int parent_no) {
    world_.Step(7, flow_no, parent_no, "C_39");
    world_.Parameter(7, flow_no, "C_39_1", "Global_path");
    world_.Parameter(7, flow_no, "C_39_2", "Global_path+\"s" + std::to_string(flow_no) + " \"");
  }
  std::string Path() {
    return world_.Row("select VariableValue from WorkFlowVariable where VariableName='Global_path'");
  }
  void Start() { command_.FlowExecute(world_.connection(), 7, 12, 345, "李雷", "10.0.0.7", 0, 0); }

  World world_;
  Command command_{world_.services()};
};

TEST_F(FlowTest, AFlowWithoutStepOneWritesNothing) {
  world_.Step(7, 2, 1, "C_60");
  Start();
  EXPECT_THAT(world_.trace(), ElementsAre("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=7 and FlowNo=1"));
  EXPECT_EQ(world_.Row("select count(*) from WorkFlowExecuteID"), "0");
}

TEST_F(FlowTest, StartingHandsOverTheDescribedStatements) {
  world_.Step(7, 1, 0, "C_73");
  command_.FlowExecute(world_.connection(), 7, 12, 345, "O'Neil", "10.0.0.7", 3, 4);
  EXPECT_THAT(
      world_.trace(),
      ElementsAre(
          "Select Top 1 FlowNo From WorkFlowConstruction where FlowID=7 and FlowNo=1",
          "Insert Into WorkFlowExecuteID (TableID,DataID,FlowID,Operator, IpAddress, OtherTableID, OtherDataID) Values "
          "(12,345,7,'O''Neil','10.0.0.7',3,4)",
          "SELECT @@IDENTITY AS ExecuteID", "update WorkFlowExecuteID set RootExecuteID=1 where ExecuteID=1",
          "Select Top 1 Command from WorkFlowConstruction where FlowID=7 and FlowNo=1",
          "update WorkFlowChildRec set ExecuteParent=0 where ChildExecuteID=1",
          "select Top 10000 flowno from WorkFlowConstruction where flowid=7 and parentno=1 order by ID",
          "Select Top 1 * From WorkFlowExecuteID Where ExecuteID=1",
          "select Top 1 ID from WorkFlowChildRec where ParentExecuteID in (select Top 100000 ExecuteID From "
          "WorkFlowExecuteID where RootExecuteID=1)",
          "select Top 1 DataAppID from DataApp where (Status=0 or Status=1) and ExecuteID in (select Top 100000 "
          "ExecuteID From WorkFlowExecuteID where RootExecuteID=1)",
          "select Top 1 ID from InUnitSub where (Status=0 or Status=1) and ExecuteID in (select Top 100000 ExecuteID "
          "From WorkFlowExecuteID where RootExecuteID=1)",
          "select Top 1 ID from WorkFlowExecute where ((Command='C_15' and Times>HaveExeTimes) or (Command='C_86' and "
          "HaveExeTimes=0)) and ExecuteID in (select Top 100000 ExecuteID From WorkFlowExecuteID where "
          "RootExecuteID=1)",
          "delete from WorkFlowExecuteTimes where ExecuteID in (select Top 100000 ExecuteID From WorkFlowExecuteID "
          "where RootExecuteID=1)",
          "delete from WorkFlowVariable where RootExecuteID=1", "delete from WorkFlowExecuteID where RootExecuteID=1"));
}

TEST_F(FlowTest, NumbersGoIntoTheStartAsTheyWereGiven) {
  world_.Step(7, 1, 0, "C_73");
  command_.FlowExecute(world_.connection(), "7", "012", 345.0, "", "", "0", "0");
  EXPECT_EQ(world_.trace().at(1),
            "Insert Into WorkFlowExecuteID (TableID,DataID,FlowID,Operator, IpAddress, OtherTableID, OtherDataID) "
            "Values (012,345,7,'','',0,0)");
}

TEST_F(FlowTest, TheWalkIsDepthFirstInRowOrder) {
  NotingStep(1, 0);
  NotingStep(9, 1);
  NotingStep(2, 1);
  NotingStep(5, 9);
  NotingStep(4, 9);
  NotingStep(3, 2);
  Start();
  EXPECT_EQ(Path(), "s1 s9 s5 s4 s2 s3 ");
}

TEST_F(FlowTest, UnknownNamesRunNothingAndGoOn) {
  world_.Step(7, 1, 0, "c_2");
  world_.Step(7, 2, 1, "C_99");
  world_.Step(7, 3, 2, "C_02");
  world_.Step(7, 4, 3, "");
  NotingStep(5, 4);
  Start();
  EXPECT_EQ(Path(), "s5 ");
}

TEST_F(FlowTest, AWaitingStepDoesNotStopItsSiblings) {
  world_.Run("Insert Into TableName (TableID) Values (13)");
  NotingStep(1, 0);
  world_.Step(7, 2, 1, "C_97");
  NotingStep(3, 2);
  NotingStep(4, 1);
  Start();
  EXPECT_EQ(Path(), "s1 s4 ");
}

TEST_F(FlowTest, AConditionThatFailsStopsOnlyItsOwnSubtree) {
  NotingStep(1, 0);
  world_.Step(7, 2, 1, "C_11");
  world_.Parameter(7, 2, "C_11_1", "1");
  world_.Parameter(7, 2, "C_11_2", ">");
  world_.Parameter(7, 2, "C_11_3", "2");
  NotingStep(3, 2);
  world_.Step(7, 4, 1, "C_11");
  world_.Parameter(7, 4, "C_11_1", "2");
  world_.Parameter(7, 4, "C_11_2", ">");
  world_.Parameter(7, 4, "C_11_3", "1");
  NotingStep(5, 4);
  Start();
  EXPECT_EQ(Path(), "s1 s5 ");
}

TEST_F(FlowTest, TheTenThousandAndFirstChildIsNeverRun) {
  world_.Step(7, 1, 0, "none");
  world_.Run("begin");
  for (int child = 2; child <= 10001; ++child) world_.Step(7, child, 1, "none");
  NotingStep(10002, 1);
  world_.Run("commit");
  Start();
  EXPECT_EQ(Path(), "");
}

TEST_F(FlowTest, RunningAStepByItsInstanceRunsTheStepAndItsSubtree) {
  NotingStep(1, 0);
  NotingStep(2, 1);
  NotingStep(3, 2);
  Invocation call;
  call.flow_no = 2;
  auto context = call.On(world_.connection());
  command_.FlowExecuteByExecuteID(context);
  EXPECT_EQ(Path(), "s2 s3 ");
  EXPECT_EQ(world_.trace().front(), "Select Top 1 Command from WorkFlowConstruction where FlowID=7 and FlowNo=2");
}

TEST_F(FlowTest, AMissingStepDoesNothing) {
  Invocation call;
  call.flow_no = 5;
  auto context = call.On(world_.connection());
  command_.FlowExecuteByExecuteID(context);
  EXPECT_THAT(world_.trace(),
              ElementsAre("Select Top 1 Command from WorkFlowConstruction where FlowID=7 and FlowNo=5",
                          "select Top 10000 flowno from WorkFlowConstruction where flowid=7 and parentno=5 order by "
                          "ID"));
}

TEST_F(FlowTest, RunningTheChildrenLeavesTheStepItselfAlone) {
  NotingStep(1, 0);
  NotingStep(2, 1);
  NotingStep(3, 1);
  Invocation call;
  auto context = call.On(world_.connection());
  command_.NextCommand(context);
  EXPECT_EQ(Path(), "s2 s3 ");
}

TEST_F(FlowTest, AFailingStatementEndsTheCallAndLeavesWhatWasWritten) {
  NotingStep(1, 0);
  NotingStep(2, 1);
  FailingConnection counting(world_.connection(), 0);
  command_.FlowExecute(counting, 7, 12, 345, "a", "b", 0, 0);
  for (std::size_t failing = 1; failing <= counting.count(); ++failing) {
    World world;
    world.Step(7, 1, 0, "C_60");
    world.Parameter(7, 1, "C_60_1", "now");
    FailingConnection connection(world.database(), failing);
    try {
      Command(world.services()).FlowExecute(connection, 7, 12, 345, "a", "b", 0, 0);
      EXPECT_LT(connection.count(), failing);
    } catch (const DatabaseError& error) {
      EXPECT_STREQ(error.what(), "the statement was made to fail");
      EXPECT_EQ(connection.count(), failing);
      // The instance row is there from the second statement on.
      if (failing > 2) {
        EXPECT_EQ(world.Row("select count(*) from WorkFlowExecuteID"), "1") << failing;
      }
    }
  }
}

TEST_F(FlowTest, ReadingAnInstanceGivesItsRow) {
  world_.Run(
      "Insert Into WorkFlowExecuteID (TableID,DataID,FlowID,Operator,RootExecuteID,IpAddress,OtherTableID,OtherDataID) "
      "Values (12,345,7,'李雷',1,'10.0.0.7',3,4)");
  Value root, table, data, flow, user, address, other_table, other_data;
  EXPECT_TRUE(command_.ExecuteIDExists(world_.connection(), 1, root, table, data, flow, user, address, other_table,
                                       other_data));
  EXPECT_EQ(root, Value(1));
  EXPECT_EQ(table, Value(12));
  EXPECT_EQ(data, Value(345));
  EXPECT_EQ(flow, Value(7));
  EXPECT_EQ(user, Value("李雷"));
  EXPECT_EQ(address, Value("10.0.0.7"));
  EXPECT_EQ(other_table, Value(3));
  EXPECT_EQ(other_data, Value(4));
  EXPECT_THAT(world_.trace(), ElementsAre("Select Top 1 * From WorkFlowExecuteID Where ExecuteID=1"));
}

TEST_F(FlowTest, ReadingAMissingInstanceLeavesTheArguments) {
  Value kept = "kept";
  EXPECT_FALSE(command_.ExecuteIDExists(world_.connection(), 1, kept, kept, kept, kept, kept, kept, kept, kept));
  EXPECT_EQ(kept, Value("kept"));
}

TEST_F(FlowTest, AParameterIsReadAsStored) {
  world_.Parameter(7, 2, "C_2_1", " a+b ");
  EXPECT_EQ(command_.GetParameterData(world_.connection(), 7, 2, "C_2_1"), " a+b ");
  EXPECT_EQ(command_.GetParameterData(world_.connection(), 7, 2, "C_2_2"), "");
  EXPECT_THAT(world_.trace(), ElementsAre("Select Top 1 ParameterData From WorkFlowParameter Where "
                                          "ParameterName='C_2_1' And FlowID=7 And FlowNo=2",
                                          "Select Top 1 ParameterData From WorkFlowParameter Where "
                                          "ParameterName='C_2_2' And FlowID=7 And FlowNo=2"));
}

TEST_F(FlowTest, AParameterThatIsNullHasNoText) {
  world_.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName) Values (7,2,'C_2_1')");
  EXPECT_THROW((void)command_.GetParameterData(world_.connection(), 7, 2, "C_2_1"), ConversionError);
}

TEST_F(FlowTest, ANumberThatIsNoneEndsInTheDatabasesError) {
  EXPECT_THROW((void)command_.GetParameterData(world_.connection(), "x y", 2, "C_2_1"), DatabaseError);
  EXPECT_THROW((void)command_.GetParameterData(world_.connection(), Value(), 2, "C_2_1"), DatabaseError);
}

// ---- Ending ---------------------------------------------------------------------------------------------------------

class EndFlowTest : public testing::Test {
 protected:
  EndFlowTest() {
    // A tree of two instances (1 and 2) and another one (3).
    world_.Run("Insert Into WorkFlowExecuteID (FlowID,RootExecuteID) Values (7,1)");
    world_.Run("Insert Into WorkFlowExecuteID (FlowID,RootExecuteID) Values (8,1)");
    world_.Run("Insert Into WorkFlowExecuteID (FlowID,RootExecuteID) Values (7,3)");
    for (const char* id : {"1", "2", "3"}) {
      world_.Run(std::string("Insert Into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) Values (") + id + ",1,1)");
    }
    world_.Run(
        "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (1,2,'a','b')");
    world_.Run(
        "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (3,3,'a','b')");
    world_.Run(
        "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values "
        "(0,0,'Global_a','b')");
  }
  std::string Left() {
    return world_.Row(
        "select (select count(*) from WorkFlowExecuteID), (select count(*) from WorkFlowExecuteTimes), "
        "(select count(*) from WorkFlowVariable)");
  }

  World world_;
  Command command_{world_.services()};
};

TEST_F(EndFlowTest, AnyMemberOfAFinishedTreeRemovesTheWholeTreeAndNothingElse) {
  command_.EndFlow(world_.connection(), 2);
  EXPECT_EQ(Left(), "1|1|2");
  EXPECT_EQ(world_.Row("select ExecuteID from WorkFlowExecuteID"), "3");
}

TEST_F(EndFlowTest, AnUnknownInstanceChangesNothing) {
  command_.EndFlow(world_.connection(), 9);
  EXPECT_THAT(world_.trace(), ElementsAre("Select Top 1 * From WorkFlowExecuteID Where ExecuteID=9"));
  EXPECT_EQ(Left(), "3|3|3");
}

struct Wait {
  const char* what;
  const char* row;
  bool keeps_tree;
  bool keeps_instance;  // as ChildFlowFinish sees instance 2
};

class EndFlowWaitTest : public EndFlowTest, public testing::WithParamInterface<Wait> {};

TEST_P(EndFlowWaitTest, KeepsTheTreeExactlyWhileSomethingInItWaits) {
  world_.Run(GetParam().row);
  command_.EndFlow(world_.connection(), 1);
  EXPECT_EQ(Left(), GetParam().keeps_tree ? "3|3|3" : "1|1|2") << GetParam().what;
}

TEST_P(EndFlowWaitTest, TheOneInstanceIsFinishedUnlessATaskOrAChildOfItIsOpen) {
  world_.Run(GetParam().row);
  EXPECT_EQ(command_.ChildFlowFinish(world_.connection(), 2), !GetParam().keeps_instance) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    Waits, EndFlowWaitTest,
    testing::Values(
        Wait{"a child link",
             "Insert Into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) Values (2,1,9)", true, true},
        Wait{"an open approval", "Insert Into DataApp (ExecuteID,FlowNo,Status) Values (2,1,0)", true, true},
        Wait{"a seen approval", "Insert Into DataApp (ExecuteID,FlowNo,Status) Values (2,1,1)", true, true},
        Wait{"a finished approval", "Insert Into DataApp (ExecuteID,FlowNo,Status) Values (2,1,2)", false, false},
        Wait{"an open fill-in", "Insert Into InUnitSub (ExecuteID,FlowNo,Status) Values (2,1,1)", true, true},
        Wait{"a finished fill-in", "Insert Into InUnitSub (ExecuteID,FlowNo,Status) Values (2,1,3)", false, false},
        Wait{"a live repeating timer",
             "Insert Into WorkFlowExecute (ExecuteID,FlowNo,Command,Times,HaveExeTimes) Values (2,1,'C_15',2,1)", true,
             false},
        Wait{"a repeating timer that is done",
             "Insert Into WorkFlowExecute (ExecuteID,FlowNo,Command,Times,HaveExeTimes) Values (2,1,'C_15',2,2)", false,
             false},
        Wait{"a timer for a moment", "Insert Into WorkFlowExecute (ExecuteID,FlowNo,Command) Values (2,1,'C_86')", true,
             false},
        Wait{"a time-out row of an approval",
             "Insert Into WorkFlowExecute (ExecuteID,FlowNo,Command) Values (2,1,'C_2')", false, false},
        Wait{"another tree's approval", "Insert Into DataApp (ExecuteID,FlowNo,Status) Values (3,1,0)", false, false}));

TEST_F(EndFlowTest, FinishedMeansThreeQueriesInOrderStoppingAtTheFirstRow) {
  EXPECT_TRUE(command_.ChildFlowFinish(world_.connection(), 2));
  EXPECT_THAT(world_.trace(),
              ElementsAre("select Top 1 DataAppID from DataApp where ExecuteID=2 and (status=0 or status=1)",
                          "select Top 1 ID from InUnitSub where ExecuteID=2 and (status=0 or status=1)",
                          "select Top 1 ID from WorkFlowChildRec where ParentExecuteID=2"));
  world_.Run("Insert Into DataApp (ExecuteID,FlowNo) Values (2,1)");
  world_.ForgetTrace();
  EXPECT_FALSE(command_.ChildFlowFinish(world_.connection(), 2));
  EXPECT_EQ(world_.trace().size(), 1U);
}

}  // namespace
}  // namespace talm_flow::test
