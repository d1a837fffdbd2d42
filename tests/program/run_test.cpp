#include "program/talmflow.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class RunTest : public TalmflowTest {
 protected:
  RunTest() {
    (void)Succeed({"init"});
    (void)Succeed({"form", "add", "12", "--unit", "REASON:InputText", "--unit", "DAYS:InputNum"});
    (void)Succeed({"form", "add", "13", "--unit", "OPINION:InputText"});
    (void)Succeed({"record", "add", "12", "DAYS=3"});
    (void)Succeed({"record", "add", "13", "OPINION=fine"});
  }

  void Import(const std::string& name, const std::vector<StepText>& steps) const {
    Write(name + ".txt", Definition(steps));
    (void)Load(name + ".txt");
  }
  std::string Start(const std::string& flow) const {
    return Succeed({"run", flow, "--record", "12/1", "--operator", "kim"});
  }
};

const StepText kApproval = {1, 0, "C_2", {"DataID_Submit", "\"lee,max\"", "\"TableID:13\"", "", "\"Look\""}, "Boss"};
const StepText kNote = {2, 1, "C_22", {"after", "went on"}, ""};
const StepText kFillIn = {1, 0, "C_97", {"DataID_Submit", "\"REASON\"", "\"lee\""}, "Why"};

TEST_F(RunTest, AFlowThatWaitsForNothingEnds) {
  Import("note", {{1, 0, "C_22", {"Global_x", "y"}}});
  EXPECT_EQ(Start("note"), "Instance 1 has ended.\n");
  EXPECT_EQ(Start("1"), "Instance 2 has ended.\n");
  EXPECT_EQ(Rows("select VariableValue from WorkFlowVariable"), nlohmann::json::parse(R"([{"VariableValue":"y"}])"));
}

TEST_F(RunTest, AFlowThatWaitsTellsForWhat) {
  Import("leave", {kApproval});
  EXPECT_EQ(Start("leave"),
            "Instance 1 waits for\n"
            "  Task  Kind      Person  Record  Instance  Flow  Step  Caption  Button  Notice  Status\n"
            "  A1    approval  lee     12/1    1         1     1     Boss     Look            open\n"
            "  A2    approval  max     12/1    1         1     1     Boss     Look            open\n");
}

TEST_F(RunTest, TheStandingIsGivenAsJson) {
  Import("leave", {kFillIn});
  auto standing =
      SucceedJson({"run", "leave", "--record", "12/1", "--operator", "kim", "--ip", "10.0.0.7", "--other", "13/1"});
  EXPECT_EQ(standing["instance"], 1);
  EXPECT_EQ(standing["flow"], 1);
  EXPECT_EQ(standing["ended"], false);
  EXPECT_EQ(standing["timers"], nlohmann::json::array());
  ASSERT_EQ(standing["tasks"].size(), 1U);
  EXPECT_EQ(standing["tasks"][0]["task"], "F1");
  EXPECT_EQ(standing["tasks"][0]["kind"], "fill-in REASON");
  EXPECT_EQ(standing["tasks"][0]["person"], "lee");
  EXPECT_EQ(Rows("select Operator,IpAddress,OtherTableID,OtherDataID from WorkFlowExecuteID"),
            nlohmann::json::parse(R"([{"Operator":"kim","IpAddress":"10.0.0.7","OtherTableID":13,"OtherDataID":1}])"));
}

TEST_F(RunTest, WhatCannotRunIsToldAndWritesNothing) {
  Import("leave", {kApproval});
  Import("empty", {});
  EXPECT_EQ(Fail(1, {"run", "trip", "--record", "12/1", "--operator", "kim"}),
            "talmflow: there is no flow named \"trip\"\n");
  EXPECT_EQ(Fail(1, {"run", "empty", "--record", "12/1", "--operator", "kim"}),
            "talmflow: flow 2 \"empty\" has no step 1, so there is nothing to run\n");
  EXPECT_EQ(Fail(1, {"run", "leave", "--record", "12/9", "--operator", "kim"}),
            "talmflow: the record 12/9 does not exist\n");
  EXPECT_EQ(Fail(1, {"run", "leave", "--record", "12/1", "--other", "13/9", "--operator", "kim"}),
            "talmflow: the record 13/9 does not exist\n");
  EXPECT_EQ(Fail(1, {"run", "leave", "--record", "x", "--operator", "kim"}),
            "talmflow: \"x\" is no record; write TABLE/DATA, as in 12/345\n");
  EXPECT_EQ(Succeed({"instances"}), "There are no instances.\n");
}

TEST_F(RunTest, AnErrorNamesFlowAndStepAndTakesEverythingBack) {
  Import("broken", {{1, 0, "C_22", {"x", "1"}}, {5, 1, "C_39", {"y", "10^400"}}});
  EXPECT_THAT(Fail(1, {"run", "broken", "--record", "12/1", "--operator", "kim"}),
              StartsWith("talmflow: in flow 1 at step 5: "));
  EXPECT_EQ(Succeed({"instances"}), "There are no instances.\n");
  EXPECT_EQ(Succeed({"variables"}), "There are no variables.\n");
}

TEST_F(RunTest, ADatabaseErrorNamesTheStatementToo) {
  Import("timer", {{1, 0, "C_8", {"DataID_Submit", "1"}}});
  (void)Rows("alter table DataPro rename column TranEnable to Gone");
  const auto complaint = Fail(1, {"run", "timer", "--record", "12/1", "--operator", "kim"});
  EXPECT_THAT(complaint, StartsWith("talmflow: in flow 1 at step 1: the database refused the statement \""));
  EXPECT_THAT(complaint, HasSubstr("TranEnable"));
}

TEST_F(RunTest, WithoutATransactionWhatWasWrittenBeforeAnErrorStays) {
  Import("broken", {{1, 0, "C_22", {"x", "1"}}, {5, 1, "C_39", {"y", "10^400"}}});
  (void)Fail(1, {"--no-transaction", "run", "broken", "--record", "12/1", "--operator", "kim"});
  EXPECT_EQ(SucceedJson({"variables"})[0]["name"], "x");
}

TEST_F(RunTest, TheFlowGoesOnWhenEveryApproverHasApproved) {
  Import("leave", {kApproval, kNote, {3, 2, "C_97", {"DataID_Submit", "\"REASON\"", "\"kim\""}}});
  (void)Start("leave");
  EXPECT_EQ(Succeed({"approve", "A1", "--form", "13/1"}),
            "A1 is approved.\n"
            "The flow goes on when the others of the step have approved too: A2 (max)\n");
  EXPECT_EQ(Rows("select Status,AppDataID from DataApp where DataAppID=1"),
            nlohmann::json::parse(R"([{"Status":2,"AppDataID":1}])"));
  EXPECT_EQ(Succeed({"variables"}), "There are no variables.\n");

  EXPECT_THAT(Succeed({"approve", "2"}), StartsWith("A2 is approved.\nInstance 1 waits for\n"));
  EXPECT_EQ(SucceedJson({"variables", "1"}),
            nlohmann::json::parse(R"([{"scope":"tree","instance":1,"root":1,"name":"after","value":"went on"}])"));
  EXPECT_EQ(Succeed({"finish", "F1"}), "F1 is finished.\nInstance 1 has ended.\n");
  EXPECT_EQ(Succeed({"instances"}), "There are no instances.\n");
}

TEST_F(RunTest, OneApprovalIsEnoughWhenItIsToldSo) {
  Import("leave", {kApproval, kNote});
  (void)Start("leave");
  auto report = SucceedJson({"approve", "A2", "--any"});
  EXPECT_EQ(report["task"], "A2");
  EXPECT_EQ(report["outcome"], "approved");
  EXPECT_EQ(report["went_on"], true);
  EXPECT_EQ(report["ended"], false);
  EXPECT_EQ(report["tasks"][0]["task"], "A1");
  EXPECT_EQ(SucceedJson({"variables"})[0]["value"], "went on");
}

TEST_F(RunTest, APositiveOutcomeIsSeenByTheFlow) {
  Import("leave", {{1, 0, "C_2", {"DataID_Submit", "\"lee\"", "\"TableID:13\""}}, {2, 1, "C_68", {"Global_agreed"}}});
  (void)Start("leave");
  EXPECT_EQ(Succeed({"approve", "A1", "--positive"}),
            "A1 is approved with the positive outcome.\nInstance 1 has ended.\n");
  EXPECT_EQ(SucceedJson({"variables"})[0]["value"], "1");
  EXPECT_EQ(SucceedJson({"tasks", "--all"})[0]["status"], "positive");
}

TEST_F(RunTest, TasksThatCannotBeFinishedAreTold) {
  Import("leave", {kApproval});
  Import("why", {kFillIn});
  (void)Start("leave");
  (void)Start("why");
  EXPECT_EQ(Fail(1, {"approve", "A9"}), "talmflow: there is no task A9\n");
  EXPECT_EQ(Fail(1, {"approve", "9"}), "talmflow: there is no task 9\n");
  EXPECT_EQ(Fail(1, {"approve", "1"}), "talmflow: the task 1 may be A1 or F1; write which\n");
  EXPECT_EQ(Fail(1, {"approve", "Ax"}), "talmflow: \"Ax\" is no task; write A12 for an approval, F3 for a fill-in\n");
  EXPECT_EQ(Fail(1, {"approve", "F1"}), "talmflow: F1 is a fill-in; finish it with: talmflow finish F1\n");
  EXPECT_EQ(Fail(1, {"finish", "2"}), "talmflow: A2 is an approval; give it with: talmflow approve A2\n");
  EXPECT_EQ(Fail(1, {"approve", "A1", "--form", "12/1"}),
            "talmflow: --form: A1 is filled in with the form 13, not 12\n");
  EXPECT_EQ(Fail(1, {"approve", "A1", "--form", "13/9"}), "talmflow: the record 13/9 does not exist\n");
  (void)Succeed({"approve", "A1"});
  EXPECT_EQ(Fail(1, {"approve", "A1"}), "talmflow: the task A1 is already finished\n");
  (void)Succeed({"finish", "F1"});
  EXPECT_EQ(Fail(1, {"finish", "F1"}), "talmflow: the task F1 is already finished\n");
}

TEST_F(RunTest, AFailingContinuationLeavesTheTaskOpen) {
  Import("leave", {{1, 0, "C_2", {"DataID_Submit", "\"lee\"", "\"TableID:13\""}}, {2, 1, "C_39", {"y", "10^400"}}});
  (void)Start("leave");
  EXPECT_THAT(Fail(1, {"approve", "A1"}), StartsWith("talmflow: in flow 1 at step 2: "));
  EXPECT_EQ(SucceedJson({"tasks"})[0]["status"], "open");
}

TEST_F(RunTest, TasksAreListedByPerson) {
  EXPECT_EQ(Succeed({"tasks"}), "There are no tasks.\n");
  Import("leave", {kApproval});
  Import("why", {kFillIn});
  (void)Start("leave");
  (void)Start("why");
  const auto names = [&](const Words& words) {
    std::string result;
    for (const auto& task : SucceedJson(words)) result += task["task"].get<std::string>() + " ";
    return result;
  };
  EXPECT_EQ(names({"tasks"}), "A1 A2 F1 ");
  EXPECT_EQ(names({"tasks", "--person", "lee"}), "A1 F1 ");
  EXPECT_EQ(names({"tasks", "--person", "o'neil"}), "");
  (void)Succeed({"approve", "A1"});
  EXPECT_EQ(names({"tasks"}), "A2 F1 ");
  EXPECT_EQ(names({"tasks", "--person", "lee", "--all"}), "A1 F1 ");
}

TEST_F(RunTest, InstancesAreListed) {
  Import("leave", {kApproval});
  (void)Start("leave");
  EXPECT_EQ(Succeed({"instances"}),
            "Instance  Root  Flow  Name   Record  Operator  Address    Open tasks\n"
            "1         1     1     leave  12/1    kim       127.0.0.1  2\n");
}

TEST_F(RunTest, AChildFlowWaitsInItsParentsTree) {
  Import("child", {{1, 0, "C_2", {"DataID_Submit", "\"lee\"", "\"TableID:13\""}},
                   {2, 1, "C_22", {"Private_mine", "1"}},
                   {3, 2, "C_2", {"DataID_Submit", "\"max\"", "\"TableID:13\""}}});
  Import("parent", {{1, 0, "C_18", {"1"}}, {2, 1, "C_22", {"Global_after", "yes"}}});
  EXPECT_THAT(Start("parent"), HasSubstr("A1    approval  lee     12/1    2"));
  (void)Succeed({"approve", "A1"});
  EXPECT_EQ(SucceedJson({"variables", "2"})[0]["name"], "Private_mine");
  EXPECT_EQ(Succeed({"variables", "1"}), "There are no variables.\n");
  EXPECT_EQ(Succeed({"approve", "A2"}), "A2 is approved.\nInstance 2 has ended.\n");
  EXPECT_EQ(SucceedJson({"variables"})[0]["name"], "Global_after");
}

TEST_F(RunTest, VariablesOfAnUnknownInstanceAreNoVariables) {
  EXPECT_EQ(Fail(1, {"variables", "5"}), "talmflow: there is no instance 5\n");
  EXPECT_EQ(Fail(1, {"variables", "x"}), "talmflow: \"x\" is no instance number\n");
}

TEST_F(RunTest, TimersAreListed) {
  EXPECT_EQ(Succeed({"timers"}), "There are no timers.\n");
  Import("timers", {{1, 0, "C_15", {"3", "60", "3"}}, {2, 1, "C_86", {"\"2026-02-01 08:00\"", "3"}}, {3, 9, "C_73"}});
  auto standing = SucceedJson({"run", "timers", "--record", "12/1", "--operator", "kim"});
  EXPECT_EQ(standing["ended"], false);
  EXPECT_EQ(standing["timers"].size(), 2U);
  (void)Rows("update WorkFlowExecute set HaveExeTimes=1");
  auto timers = SucceedJson({"timers"});
  ASSERT_EQ(timers.size(), 2U);
  EXPECT_EQ(timers[0], nlohmann::json::parse(R"({"timer":1,"instance":1,"step":3,"command":"C_15","runs":3,"done":1,
                                                 "interval":60,"moment":null,"live":true})"));
  EXPECT_EQ(timers[1]["moment"], "2026-02-01 08:00");
  EXPECT_EQ(timers[1]["live"], false);
}

}  // namespace
}  // namespace talm_flow::test
