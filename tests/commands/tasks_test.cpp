#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/scene.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNoticeInsert =
    "Insert Into DataNotice (Sort,TableID,DataID,Recver,NoticeTitle) Values(2,12,345,";
constexpr const char* kApprovalInsert =
    "Insert Into DataApp (ExecuteID,AppedTableID,AppedDataID,Appover,WaitTime,FlowNo,ButtonText,EditEnable,AppTableID,"
    "NoticInf) Values(901,12,345,";
constexpr const char* kAttentionInsert =
    "Insert Into DataAtt (ExecuteID,AttedTableID,AttedDataID,AttName,FlowNo,ButtonText,EditEnable,AttTableID,NoticInf) "
    "Values(901,12,345,";
constexpr const char* kFillInInsert =
    "Insert Into InUnitSub (ExecuteID,TableID,DataID,InUnitID,InPuter,WaitTime,FlowNo,ButtonText,EditEnable,NoticInf) "
    "Values(901,12,345,'Title',";
constexpr const char* kWaitInsert =
    "Insert Into WorkFlowExecute (ExecuteID,DataAppID,FlowNo,Command,WaitTime,Appover) Values(901,";

/// The three commands that give tasks, with parameters that fit; what differs stands in one place.
struct TaskCommand {
  std::string name;
  Scene::Operation operation;
  Texts parameters;
  std::size_t title, button, edit_flag, information, people;  // positions among the parameters, from 0
  std::string table, person_column, usual_button;
};

const TaskCommand kApproval = {
    "C_2",
    &Command::C_2,
    {std::string(kRecord), "\"a,b\"", "\"TableID:13\"", "\"Title\"", "\"Sign\"", "1", "24", "\"Please\""},
    3,
    4,
    5,
    7,
    1,
    "DataApp",
    "Appover",
    "审批"};
const TaskCommand kAttention = {
    "C_3",
    &Command::C_3,
    {std::string(kRecord), "\"a,b\"", "\"TableID:13\"", "\"Title\"", "\"Sign\"", "1", "\"Please\""},
    3,
    4,
    5,
    6,
    1,
    "DataAtt",
    "AttName",
    "附加"};
const TaskCommand kFillIn = {
    "C_97",
    &Command::C_97,
    {std::string(kRecord), "\"title\"", "\"a,b\"", "\"Title\"", "\"Sign\"", "1", "24", "\"Please\""},
    3,
    4,
    5,
    7,
    2,
    "InUnitSub",
    "InPuter",
    "填写"};

class TaskCommandTest : public ::testing::TestWithParam<TaskCommand> {
 protected:
  /// Runs the command with one of its parameters replaced. @returns a column of the rows it wrote.
  Texts ColumnAfter(const std::string& column, std::size_t position, const std::string& parameter) {
    Texts parameters = GetParam().parameters;
    parameters[position] = parameter;
    scene_.Run(GetParam().operation, GetParam().name, parameters);
    return scene_.Rows("Select " + column + " From " + GetParam().table);
  }

  Scene scene_;
};

INSTANTIATE_TEST_SUITE_P(All, TaskCommandTest, ::testing::Values(kApproval, kAttention, kFillIn),
                         [](const auto& test) { return test.param.name; });

TEST_P(TaskCommandTest, PeopleAreTrimmedAndEmptyNamesLeftOut) {
  const std::string list = GetParam().name == "C_2" ? "\"a, ,,b\"" : "\" a , ,,b \"";
  EXPECT_THAT(ColumnAfter(GetParam().person_column, GetParam().people, list), ElementsAre("a", "b"));
  EXPECT_THAT(scene_.Rows("Select Recver From DataNotice"), ElementsAre("a", "b"));
}

TEST_P(TaskCommandTest, AListWithoutNamesWritesNothing) {
  for (const char* list : {"", "\"\"", "\" , ,\"", "nobody_has_set_this"}) {
    EXPECT_THAT(ColumnAfter(GetParam().person_column, GetParam().people, list), IsEmpty()) << list;
    EXPECT_THAT(scene_.Statements(), IsEmpty()) << list;
  }
}

TEST_P(TaskCommandTest, WithoutATitleTasksComeWithoutNotices) {
  EXPECT_THAT(ColumnAfter(GetParam().person_column, GetParam().title, "\"\""), ElementsAre("a", "b"));
  EXPECT_THAT(scene_.Rows("Select * From DataNotice"), IsEmpty());
}

TEST_P(TaskCommandTest, TitlesAreCutTo100Characters) {
  ColumnAfter("*", GetParam().title, Marked(Repeated("汉😀", 75)));
  EXPECT_EQ(scene_.Rows("Select NoticeTitle From DataNotice").front(), Repeated("汉😀", 50));
}

TEST_P(TaskCommandTest, InformationIsCutTo100Characters) {
  EXPECT_EQ(ColumnAfter("NoticInf", GetParam().information, Marked(Repeated("😀", 101))).front(), Repeated("😀", 100));
}

TEST_P(TaskCommandTest, ButtonTextIsTheValueElseTheParameterElseTheUsualOne) {
  const std::string usual = GetParam().usual_button;
  const std::pair<std::string, std::string> cases[] = {{"\"Press\"", "Press"},
                                                       {"press_me", "press_me"},
                                                       {"", usual},
                                                       {"button", "From the variable"},
                                                       {"\"\"", "\"\""},
                                                       {"1+1", "2"},
                                                       {Marked(Repeated("字", 60)), Repeated("字", 50)},
                                                       {Repeated("名", 51), Repeated("名", 50)}};
  scene_.SetVariable("button", "From the variable");
  for (const auto& [parameter, button] : cases) {
    scene_.world().Run("Delete From " + GetParam().table);
    EXPECT_EQ(ColumnAfter("ButtonText", GetParam().button, parameter).front(), button) << parameter;
  }
}

TEST_P(TaskCommandTest, EditFlagIsOneOrZero) {
  const std::pair<std::string, std::string> cases[] = {{"1", "1"},     {"0", "0"},      {"", "0"},    {"\"1\"", "1"},
                                                       {"\"0\"", "0"}, {"yes", "1"},    {"no", "0"},  {"2", "0"},
                                                       {"01", "0"},    {"\" 1\"", "0"}, {"2-1", "1"}, {"\"x\"", "0"}};
  scene_.SetVariable("yes", "1");
  scene_.SetVariable("no", "no");
  for (const auto& [parameter, flag] : cases) {
    scene_.world().Run("Delete From " + GetParam().table);
    EXPECT_EQ(ColumnAfter("EditEnable", GetParam().edit_flag, parameter).front(), flag) << parameter;
  }
}

TEST_P(TaskCommandTest, ARecordThatDoesNotFitEndsItBeforeAnotherParameterIsRead) {
  for (const char* record : {"", "12", "\"TableID:12\"", "\"TableID:12,DataID:0\"", "\"TableID:12,DataID:999\"",
                             "\"TableID:99,DataID:345\"", "TableID:12,DataID:345"}) {
    ColumnAfter("*", 0, record);
    EXPECT_THAT(scene_.Trace(), ElementsAre("read " + GetParam().name + "_1")) << record;
  }
}

TEST_P(TaskCommandTest, ATableNumberBeyond16BitsRaisesOverflow) {
  EXPECT_THROW(ColumnAfter("*", 0, "\"TableID:40000,DataID:1\""), OverflowError);
  EXPECT_THAT(scene_.Trace(), ElementsAre("read " + GetParam().name + "_1"));
}

TEST_P(TaskCommandTest, HostileTextsAreStoredAsTheyAre) {
  const std::string hostile = "'); Delete From DataApp;--\"?\r\n\t\x01 @x :y $1 %_[]\\";
  Texts parameters = GetParam().parameters;
  for (const std::size_t position : {GetParam().title, GetParam().button, GetParam().information}) {
    parameters[position] = Marked(hostile);
  }
  parameters[GetParam().people] = Marked("o'Neil\"?");
  scene_.Run(GetParam().operation, GetParam().name, parameters);
  EXPECT_THAT(scene_.Rows("Select " + GetParam().person_column + ",ButtonText,NoticInf From " + GetParam().table),
              ElementsAre("o'Neil\"?|" + hostile + "|" + hostile));
  EXPECT_THAT(scene_.Rows("Select Recver,NoticeTitle From DataNotice"), ElementsAre("o'Neil\"?|" + hostile));
  EXPECT_THAT(scene_.Rows("Select ID From TableData12"), ElementsAre("345", "346"));
}

TEST_P(TaskCommandTest, AHundredThousandCharactersAreCutNotRefused) {
  EXPECT_EQ(ColumnAfter("NoticInf", GetParam().information, Marked(Repeated("'", 100000))).front(), Repeated("'", 100));
}

/// The commands with a time limit.
class TimedTaskTest : public TaskCommandTest {};
INSTANTIATE_TEST_SUITE_P(All, TimedTaskTest, ::testing::Values(kApproval, kFillIn),
                         [](const auto& test) { return test.param.name; });

TEST_P(TimedTaskTest, TheTimeLimitIsAnAbsoluteWholeNumber) {
  const std::pair<std::string, std::string> cases[] = {{"24", "24"},
                                                       {"-5", "5"},
                                                       {"2.5", "2"},
                                                       {"3.5", "4"},
                                                       {"1,000", "1000"},
                                                       {" 7 ", "7"},
                                                       {"\"-8\"", "8"},
                                                       {"hours", "48"},
                                                       {"6*2", "12"},
                                                       {"2147483647", "2147483647"},
                                                       {"-2147483647", "2147483647"}};
  scene_.SetVariable("hours", "48");
  for (const auto& [parameter, limit] : cases) {
    scene_.world().Run("Delete From " + GetParam().table);
    scene_.world().Run("Delete From WorkFlowExecute");
    EXPECT_THAT(ColumnAfter("WaitTime", 6, parameter), ElementsAre(limit, limit)) << parameter;
    EXPECT_THAT(scene_.Rows("Select WaitTime,Command,Appover,ExecuteID,FlowNo From WorkFlowExecute"),
                ElementsAre(limit + "|" + GetParam().name + "|a|901|3", limit + "|" + GetParam().name + "|b|901|3"));
  }
}

TEST_P(TimedTaskTest, WithoutATimeLimitNothingWaitsForTheScheduler) {
  for (const char* parameter : {"", "0", "-0", "0.5", "\"abc\"", "unset", "1/0", "\"\""}) {
    scene_.world().Run("Delete From " + GetParam().table);
    EXPECT_THAT(ColumnAfter("WaitTime", 6, parameter), ElementsAre("0", "0")) << parameter;
    EXPECT_THAT(scene_.Rows("Select * From WorkFlowExecute"), IsEmpty()) << parameter;
  }
}

TEST_P(TimedTaskTest, ATimeLimitThatFits32BitsOnlyWithItsSignRaisesOverflow) {
  for (const char* parameter : {"-2147483648", "2147483648", "\"-3000000000\"", "1e300"}) {
    EXPECT_THROW(ColumnAfter("*", 6, parameter), OverflowError) << parameter;
  }
  EXPECT_THAT(scene_.Rows("Select * From " + GetParam().table), IsEmpty());
}

TEST(ApprovalTest, EachApproverGetsANoticeATaskAndAWait) {
  Scene scene;
  scene.Run(&Command::C_2, "C_2", kApproval.parameters);
  EXPECT_THAT(
      scene.Trace(),
      ElementsAre("read C_2_1", "read C_2_2", "read C_2_3", "read C_2_4", "read C_2_5", "read C_2_6", "read C_2_7",
                  "read C_2_8", kNoticeInsert + std::string("'a','Title')"),
                  kApprovalInsert + std::string("'a',24,3,'Sign',1,13,'Please')"),
                  "Select Top 1 DataAppID From DataApp Order By DataAppID Desc",
                  "Update DataApp Set RelatingID=1 Where DataAppID=1", kWaitInsert + std::string("1,3,'C_2',24,'a')"),
                  kNoticeInsert + std::string("'b','Title')"),
                  kApprovalInsert + std::string("'b',24,3,'Sign',1,13,'Please')"),
                  "Select Top 1 DataAppID From DataApp Order By DataAppID Desc",
                  "Update DataApp Set RelatingID=1 Where DataAppID=2", kWaitInsert + std::string("2,3,'C_2',24,'b')")));
  EXPECT_THAT(scene.Rows("Select DataAppID,RelatingID,Appover,Status,AppDataID From DataApp"),
              ElementsAre("1|1|a|0|0", "2|1|b|0|0"));
}

TEST(ApprovalTest, ApproversMayBeNamedByTheirGroup) {
  Scene scene;
  scene.world().Run("Insert Into UserGroup (GroupName,UserName) Values ('leaders','a')");
  scene.world().Run("Insert Into UserGroup (GroupName,UserName) Values ('leaders','b')");
  Texts parameters = kApproval.parameters;
  parameters[1] = "\"c;@leaders\"";
  scene.Run(&Command::C_2, "C_2", parameters);
  EXPECT_THAT(scene.Rows("Select Appover From DataApp"), ElementsAre("c", "a", "b"));
}

TEST(ApprovalTest, ASecondStepBeginsAGroupOfItsOwn) {
  Scene scene;
  scene.Run(&Command::C_2, "C_2", kApproval.parameters);
  scene.Run(&Command::C_2, "C_2", kApproval.parameters);
  EXPECT_THAT(scene.Rows("Select RelatingID From DataApp"), ElementsAre("1", "1", "3", "3"));
}

TEST(ApprovalTest, AFormThatDoesNotFitEndsItQuietly) {
  for (const char* form : {"", "\"TableID:0\"", "\"TableID:99\"", "99", "\"DataID:13\"", "\"13.7.1\""}) {
    Scene scene;
    Texts parameters = kApproval.parameters;
    parameters[2] = form;
    scene.Run(&Command::C_2, "C_2", parameters);
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_2_1", "read C_2_2", "read C_2_3")) << form;
  }
}

TEST(ApprovalTest, AFormMayBeGivenByItsBareNumber) {
  Scene scene;
  Texts parameters = kApproval.parameters;
  parameters[2] = "13";
  scene.Run(&Command::C_2, "C_2", parameters);
  EXPECT_THAT(scene.Rows("Select AppTableID From DataApp"), ElementsAre("13", "13"));
}

TEST(AttentionTest, EachPersonGetsANoticeAndATaskAndNothingWaits) {
  Scene scene;
  scene.Run(&Command::C_3, "C_3", kAttention.parameters);
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_3_1", "read C_3_3", "read C_3_2", "read C_3_4", "read C_3_5",
                                         "read C_3_6", "read C_3_7", kNoticeInsert + std::string("'a','Title')"),
                                         kAttentionInsert + std::string("'a',3,'Sign',1,13,'Please')"),
                                         kNoticeInsert + std::string("'b','Title')"),
                                         kAttentionInsert + std::string("'b',3,'Sign',1,13,'Please')")));
  EXPECT_THAT(scene.Rows("Select AttName,AttDataID From DataAtt"), ElementsAre("a|0", "b|0"));
}

TEST(AttentionTest, AFormThatDoesNotFitEndsItBeforeThePeopleAreRead) {
  for (const char* form : {"", "\"TableID:99\"", "\"x\""}) {
    Scene scene;
    Texts parameters = kAttention.parameters;
    parameters[2] = form;
    scene.Run(&Command::C_3, "C_3", parameters);
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_3_1", "read C_3_3")) << form;
  }
}

TEST(AttentionTest, PeopleAreNamesAsTheyStandNotGroups) {
  Scene scene;
  Texts parameters = kAttention.parameters;
  parameters[1] = "\"@leaders,a;b\"";
  scene.Run(&Command::C_3, "C_3", parameters);
  EXPECT_THAT(scene.Rows("Select AttName From DataAtt"), ElementsAre("@leaders", "a;b"));
}

TEST(FillInTest, EachPersonGetsANoticeATaskAndAWait) {
  Scene scene;
  scene.Run(&Command::C_97, "C_97", kFillIn.parameters);
  EXPECT_THAT(
      scene.Trace(),
      ElementsAre("read C_97_1", "read C_97_2", "read C_97_3", "read C_97_4", "read C_97_5", "read C_97_6",
                  "read C_97_7", "read C_97_8", kNoticeInsert + std::string("'a','Title')"),
                  kFillInInsert + std::string("'a',24,3,'Sign',1,'Please')"),
                  "Select Top 1 ID From InUnitSub Order By ID Desc", kWaitInsert + std::string("1,3,'C_97',24,'a')"),
                  kNoticeInsert + std::string("'b','Title')"),
                  kFillInInsert + std::string("'b',24,3,'Sign',1,'Please')"),
                  "Select Top 1 ID From InUnitSub Order By ID Desc", kWaitInsert + std::string("2,3,'C_97',24,'b')")));
  EXPECT_THAT(scene.Rows("Select ID,InUnitID,Status From InUnitSub"), ElementsAre("1|Title|0", "2|Title|0"));
}

TEST(FillInTest, TheUnitIsNamedByItsCodeOrItsReferenceInAnyCase) {
  for (const char* unit : {"\"Title\"", "\"TITLE\"", "\"inunitid:title\"", "\"InUnitID:Title\""}) {
    Scene scene;
    Texts parameters = kFillIn.parameters;
    parameters[1] = unit;
    scene.Run(&Command::C_97, "C_97", parameters);
    EXPECT_THAT(scene.Rows("Select InUnitID From InUnitSub"), ElementsAre("Title", "Title")) << unit;
  }
}

TEST(FillInTest, AUnitThatTheFormLacksEndsItQuietly) {
  for (const char* unit : {"", "title", "\"Opinion\"", "\"1x\"", "\"fileid:1\"", "\"Title' Or 1=1\""}) {
    Scene scene;
    Texts parameters = kFillIn.parameters;
    parameters[1] = unit;
    scene.Run(&Command::C_97, "C_97", parameters);
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_97_1", "read C_97_2")) << unit;
  }
}

/// How a task came out, by the task step's command above the asking step.
struct Answer {
  std::string name;
  Scene::Operation operation;
  std::string task_command, table, key;
};

class AnswerTest : public ::testing::TestWithParam<Answer> {
 protected:
  AnswerTest() {
    scene_.world().Step(7, 1, 0, "C_22");
    scene_.world().Step(7, 2, 1, GetParam().task_command);
    scene_.world().Step(7, 3, 2, GetParam().name);
  }
  void AddTask(int execute_id, int flow_no, const std::string& status) {
    scene_.world().Run("Insert Into " + GetParam().table + " (ExecuteID,FlowNo,Status) Values (" +
                       std::to_string(execute_id) + "," + std::to_string(flow_no) + "," + status + ")");
  }
  std::string Answered() {
    scene_.Run(GetParam().operation, GetParam().name, {"agreed"});
    return scene_.Variable("agreed");
  }

  Scene scene_;
};
INSTANTIATE_TEST_SUITE_P(All, AnswerTest,
                         ::testing::Values(Answer{"C_68", &Command::C_68, "C_2", "DataApp", "DataAppID"},
                                           Answer{"C_98", &Command::C_98, "C_98", "InUnitSub", "ID"}),
                         [](const auto& test) { return test.param.name; });

TEST_P(AnswerTest, OnlyStatus3CountsAsAgreed) {
  for (const auto& [status, answer] :
       {std::pair{"0", "0"}, {"1", "0"}, {"2", "0"}, {"3", "1"}, {"4", "0"}, {"Null", "0"}, {"-3", "0"}}) {
    scene_.world().Run("Delete From " + GetParam().table);
    AddTask(901, 2, status);
    EXPECT_EQ(Answered(), answer) << status;
  }
}

TEST_P(AnswerTest, TheNewestTaskOfTheStepInTheInstanceCounts) {
  AddTask(901, 2, "2");
  AddTask(901, 2, "3");
  AddTask(901, 5, "2");
  AddTask(902, 2, "2");
  EXPECT_EQ(Answered(), "1");
  EXPECT_THAT(scene_.Trace(),
              ::testing::Contains("select Top 1 Status from " + GetParam().table +
                                  " where ExecuteID=901 and FlowNo=2 Order by " + GetParam().key + " desc"));
}

TEST_P(AnswerTest, WithoutATaskTheAnswerIsNo) { EXPECT_EQ(Answered(), "0"); }

TEST_P(AnswerTest, WhereNoTaskStepStandsAboveStep0IsAsked) {
  scene_.world().Run("Update WorkFlowConstruction Set Command='C_22' Where FlowNo=2");
  AddTask(901, 2, "3");
  EXPECT_EQ(Answered(), "0");
  EXPECT_EQ(scene_.Statements().back(), "select Top 1 Status from " + GetParam().table +
                                            " where ExecuteID=901 and FlowNo=0 Order by " + GetParam().key + " desc");
}

TEST(FillInAnswerTest, BelowAFillInStepNothingIsFound) {
  Scene scene;
  scene.world().Step(7, 2, 0, "C_97");
  scene.world().Step(7, 3, 2, "C_98");
  scene.world().Run("Insert Into InUnitSub (ExecuteID,FlowNo,Status) Values (901,2,3)");
  scene.Run(&Command::C_98, "C_98", {"agreed"});
  EXPECT_EQ(scene.Variable("agreed"), "0");
}

}  // namespace
}  // namespace talm_flow::test
