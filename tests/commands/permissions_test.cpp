#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/scene.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kRecordParameter(kRecord);

/// A flag's stored text, and what it counts as when the variables "yes" and "no" hold "1" and "no".
const std::pair<std::string, bool> kFlags[] = {{"1", true},      {"0", false},  {"", false},   {"\"1\"", true},
                                               {"\"0\"", false}, {"yes", true}, {"no", false}, {"2", false},
                                               {"01", false},    {"2-1", true}, {"1.0", false}};

void SetFlagVariables(Scene& scene) {
  scene.SetVariable("yes", "1");
  scene.SetVariable("no", "no");
}

TEST(EditRightTest, TheFlagGrantsOrRevokes) {
  for (const auto& [parameter, granted] : kFlags) {
    Scene scene;
    SetFlagVariables(scene);
    scene.Run(&Command::C_6, "C_6", {kRecordParameter, "\"a, ,b,\"", parameter});
    if (granted) {
      EXPECT_THAT(scene.Trace(), ElementsAre("read C_6_1", "read C_6_2", "read C_6_3",
                                             "Insert Into DataAllowEdit (TableID,DataID,Name) Values (12,345,'a')",
                                             "Insert Into DataAllowEdit (TableID,DataID,Name) Values (12,345,'b')"))
          << parameter;
    } else {
      EXPECT_THAT(scene.Trace(), ElementsAre("read C_6_1", "read C_6_2", "read C_6_3",
                                             "delete from DataAllowEdit where TableID=12 and dataid=345 and Name='a'",
                                             "delete from DataAllowEdit where TableID=12 and dataid=345 and Name='b'"))
          << parameter;
    }
  }
}

TEST(EditRightTest, OnlyTheNamedPeopleLoseTheRightToThisRecord) {
  Scene scene;
  scene.Run(&Command::C_6, "C_6", {kRecordParameter, "\"a,b\"", "1"});
  scene.Run(&Command::C_6, "C_6", {"\"TableID:12,DataID:346\"", "\"a\"", "1"});
  scene.Run(&Command::C_6, "C_6", {kRecordParameter, "\"a\"", "0"});
  EXPECT_THAT(scene.Rows("Select TableID,DataID,Name From DataAllowEdit"), ElementsAre("12|345|b", "12|346|a"));
}

TEST(EditRightTest, HostileNamesAreTextLikeAnyOther) {
  const std::string name = "' Or 'a'='a";
  Scene scene;
  scene.Run(&Command::C_6, "C_6", {kRecordParameter, "\"a\"", "1"});
  scene.Run(&Command::C_6, "C_6", {kRecordParameter, Marked(name), "0"});
  EXPECT_THAT(scene.Rows("Select Name From DataAllowEdit"), ElementsAre("a"));
  scene.Run(&Command::C_6, "C_6", {kRecordParameter, Marked(name), "1"});
  EXPECT_THAT(scene.Rows("Select Name From DataAllowEdit"), ElementsAre("a", name));
}

TEST(EditRightTest, WithoutNamesNothingIsWritten) {
  for (const char* names : {"", "\" , \"", "unset"}) {
    Scene scene;
    scene.Run(&Command::C_6, "C_6", {kRecordParameter, names, "1"});
    EXPECT_THAT(scene.Statements(), IsEmpty()) << names;
  }
}

TEST(AllowAddingTest, TheFlagIsSetOnTheTable) {
  for (const auto& [parameter, allowed] : kFlags) {
    const std::string flag = allowed ? "1" : "0";
    Scene scene;
    SetFlagVariables(scene);
    scene.Run(&Command::C_7, "C_7", {"\"TableID:12\"", parameter});
    EXPECT_THAT(scene.Trace(),
                ElementsAre("read C_7_1", "read C_7_2", "Update TableName Set AddEnable=" + flag + " Where TableID=12"))
        << parameter;
    EXPECT_THAT(scene.Rows("Select TableID,AddEnable From TableName"), ElementsAre("12|" + flag, "13|1"));
  }
}

/// Commands that begin with a form table.
struct TableCommand {
  std::string name;
  Scene::Operation operation;
  Texts further;
};

class TableCommandTest : public ::testing::TestWithParam<TableCommand> {};
INSTANTIATE_TEST_SUITE_P(All, TableCommandTest,
                         ::testing::Values(TableCommand{"C_7", &Command::C_7, {"0"}},
                                           TableCommand{"C_10", &Command::C_10, {}},
                                           TableCommand{"C_77", &Command::C_77, {"", "found"}},
                                           TableCommand{"C_79", &Command::C_79, {"", "\"name\"", "found"}}),
                         [](const auto& test) { return test.param.name; });

TEST_P(TableCommandTest, ATableThatDoesNotFitEndsItBeforeAnotherParameterIsRead) {
  for (const char* table : {"", "0", "\"TableID:0\"", "\"TableID:99\"", "99", "\"x\"", "TableID:12", "\"DataID:12\"",
                            "\"TableID:12 Or 1=1\"", "\"TableID:5000000000\""}) {
    Scene scene;
    Texts parameters = {table};
    parameters.insert(parameters.end(), GetParam().further.begin(), GetParam().further.end());
    scene.Run(GetParam().operation, GetParam().name, parameters);
    EXPECT_THAT(scene.Trace(), ElementsAre("read " + GetParam().name + "_1")) << table;
    EXPECT_THAT(scene.Rows("Select AddEnable From TableName"), ElementsAre("1", "1"));
    EXPECT_THAT(scene.Rows("Select * From TableOperation"), IsEmpty());
    EXPECT_EQ(scene.Variable("found"), "none");
  }
}

TEST(AllowTransferTest, TheFlagIsInsertedForARecordWithoutProperties) {
  for (const auto& [parameter, allowed] : kFlags) {
    const std::string flag = allowed ? "1" : "0";
    Scene scene;
    SetFlagVariables(scene);
    scene.Run(&Command::C_8, "C_8", {kRecordParameter, parameter});
    EXPECT_THAT(scene.Trace(),
                ElementsAre("read C_8_1", "read C_8_2", "select Top 1 ID From DataPro Where TableID=12 and DataID=345",
                            "Insert Into DataPro (TableID,DataID,TranEnable) Values (12,345," + flag + ")"))
        << parameter;
  }
}

TEST(AllowTransferTest, TheFlagIsUpdatedForARecordWithProperties) {
  for (const auto& [parameter, allowed] : kFlags) {
    const std::string flag = allowed ? "1" : "0";
    Scene scene;
    SetFlagVariables(scene);
    scene.world().Run("Insert Into DataPro (TableID,DataID,TranEnable) Values (12,345,5)");
    scene.world().Run("Insert Into DataPro (TableID,DataID,TranEnable) Values (12,346,5)");
    scene.Run(&Command::C_8, "C_8", {kRecordParameter, parameter});
    EXPECT_THAT(scene.Statements(),
                ElementsAre("select Top 1 ID From DataPro Where TableID=12 and DataID=345",
                            "Update DataPro Set TranEnable=" + flag + " Where TableID=12 and DataID=345"))
        << parameter;
    EXPECT_THAT(scene.Rows("Select DataID,TranEnable From DataPro"), ElementsAre("345|" + flag, "346|5"));
  }
}

TEST(AllowAnswersTest, AllowingNamesTheAnswerForm) {
  Scene scene;
  scene.Run(&Command::C_9, "C_9", {kRecordParameter, "1", "\"TableID:13\""});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_9_1", "read C_9_2", "read C_9_3",
                                         "select Top 1 ID From DataPro Where TableID=12 and DataID=345",
                                         "Insert Into DataPro (TableID,DataID,AnswerEnable,AnswerTableID) Values "
                                         "(12,345,1,13)"));
  scene.Run(&Command::C_9, "C_9", {kRecordParameter, "\"1\"", "12"});
  EXPECT_THAT(scene.Statements(),
              ElementsAre("select Top 1 ID From DataPro Where TableID=12 and DataID=345",
                          "Update DataPro Set AnswerEnable=1,AnswerTableID=12 Where TableID=12 and DataID=345"));
  EXPECT_THAT(scene.Rows("Select TableID,DataID,AnswerEnable,AnswerTableID,TranEnable From DataPro"),
              ElementsAre("12|345|1|12|0"));
}

TEST(AllowAnswersTest, ForbiddingLeavesTheAnswerFormUnread) {
  Scene scene;
  scene.Run(&Command::C_9, "C_9", {kRecordParameter, "0", "\"TableID:13\""});
  EXPECT_THAT(scene.Trace(),
              ElementsAre("read C_9_1", "read C_9_2", "select Top 1 ID From DataPro Where TableID=12 and DataID=345",
                          "Insert Into DataPro (TableID,DataID,AnswerEnable) Values (12,345,0)"));
  EXPECT_THAT(scene.Rows("Select AnswerEnable,AnswerTableID From DataPro"), ElementsAre("0|NULL"));
  scene.world().Run("Update DataPro Set AnswerEnable=1,AnswerTableID=13");
  scene.Run(&Command::C_9, "C_9", {kRecordParameter, "maybe"});
  EXPECT_THAT(scene.Trace(),
              ElementsAre("read C_9_1", "read C_9_2", "select Top 1 ID From DataPro Where TableID=12 and DataID=345",
                          "Update DataPro Set AnswerEnable=0 Where TableID=12 and DataID=345"));
  EXPECT_THAT(scene.Rows("Select AnswerEnable,AnswerTableID From DataPro"), ElementsAre("0|13"));
}

TEST(AllowAnswersTest, AllowingWithoutAnAnswerFormThatFitsDoesNothing) {
  for (const char* form : {"", "\"TableID:99\"", "\"x\"", "0"}) {
    Scene scene;
    scene.Run(&Command::C_9, "C_9", {kRecordParameter, "1", form});
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_9_1", "read C_9_2", "read C_9_3")) << form;
    EXPECT_THAT(scene.Rows("Select * From DataPro"), IsEmpty());
  }
}

TEST(TableOperationTest, TheHostOperatesInTheNameOfTheSystem) {
  Scene scene;
  scene.Run(&Command::C_10, "C_10", {"12"});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_10_1"));
  EXPECT_THAT(scene.Rows("Select TableID,Operator,InputTime From TableOperation"),
              ElementsAre("12|系统|2026-01-31 09:05:00"));
}

/// Commands that begin with a record which the host must accept and have no test of that of their own.
class RecordCommandTest : public ::testing::TestWithParam<TableCommand> {};
INSTANTIATE_TEST_SUITE_P(
    All, RecordCommandTest,
    ::testing::Values(TableCommand{"C_1", &Command::C_1, {"\"News\"", "\"a\""}},
                      TableCommand{"C_4", &Command::C_4, {"\"Title\"", "\"x\""}},
                      TableCommand{"C_5", &Command::C_5, {"\"Title\"", "\"x\""}},
                      TableCommand{"C_6", &Command::C_6, {"\"a\"", "1"}}, TableCommand{"C_8", &Command::C_8, {"1"}},
                      TableCommand{"C_9", &Command::C_9, {"0"}}, TableCommand{"C_12", &Command::C_12, {}},
                      TableCommand{"C_13", &Command::C_13, {}}, TableCommand{"C_14", &Command::C_14, {}},
                      TableCommand{"C_76", &Command::C_76, {kRecordParameter}},
                      TableCommand{"C_89", &Command::C_89, {}}),
    [](const auto& test) { return test.param.name; });

TEST_P(RecordCommandTest, ARecordThatDoesNotFitEndsItBeforeAnotherParameterIsRead) {
  for (const char* record :
       {"", "12", "\"TableID:12\"", "\"TableID:12,DataID:0\"", "\"TableID:12,DataID:999\"", "\"TableID:99,DataID:345\"",
        "TableID:12,DataID:345", "\"TableID:12,DataID:345 Or 1=1\"", "unset"}) {
    Scene scene;
    Texts parameters = {record};
    parameters.insert(parameters.end(), GetParam().further.begin(), GetParam().further.end());
    scene.Run(GetParam().operation, GetParam().name, parameters);
    EXPECT_THAT(scene.Trace(), ElementsAre("read " + GetParam().name + "_1")) << record;
  }
}

}  // namespace
}  // namespace talm_flow::test
