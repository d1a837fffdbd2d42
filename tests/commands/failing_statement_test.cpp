#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/scene.h"
#include "support/failing_connection.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using Texts = std::vector<std::string>;

const std::string kRecordParameter(kRecord);

/// A command in a situation in which it writes.
struct Situation {
  std::string name;
  Scene::Operation operation;
  Texts parameters;
  Texts before{};
};

Texts WholeDatabase(Scene& scene) {
  Texts rows;
  for (const char* table : {"DataApp", "DataAtt", "InUnitSub", "DataNotice", "DataRec", "WorkFlowExecute",
                            "WorkFlowVariable", "HandSetSend", "EmailSend", "OperationRec", "DataAllowEdit", "DataPro",
                            "DataAnswer", "TableName", "TablePicData", "TableFile", "TableData12", "TableData13"}) {
    rows.push_back(table);
    for (std::string& row : scene.Rows(std::string("Select * From ") + table)) rows.push_back(std::move(row));
  }
  return rows;
}

void Prepare(Scene& scene, const Situation& situation) {
  for (const std::string& statement : situation.before) scene.world().Run(statement);
  scene.SetParameters(situation.name, situation.parameters);
  scene.world().ForgetTrace();
}

class FailingStatementTest : public ::testing::TestWithParam<Situation> {};

INSTANTIATE_TEST_SUITE_P(
    All, FailingStatementTest,
    ::testing::Values(
        Situation{"C_1",
                  &Command::C_1,
                  {kRecordParameter, "\"News\"", "\"a,b\""},
                  {"Insert Into DataRec (TableID,DataID,Recver,Status) Values (12,345,'b',1)"}},
        Situation{"C_2", &Command::C_2, {kRecordParameter, "\"a,b\"", "13", "\"Title\"", "", "", "24", "\"Please\""}},
        Situation{"C_3", &Command::C_3, {kRecordParameter, "\"a,b\"", "13", "\"Title\"", "", "", "\"Please\""}},
        Situation{"C_4", &Command::C_4, {kRecordParameter, "\"Title\"", "\"x\""}},
        Situation{"C_5",
                  &Command::C_5,
                  {kRecordParameter, "\"Doc\"", ""},
                  {"Insert Into TableFile (TableID,DataID,InUnitID,FileName) Values (12,345,'Doc','a')"}},
        Situation{"C_6", &Command::C_6, {kRecordParameter, "\"a,b\"", "1"}},
        Situation{"C_7", &Command::C_7, {"12", "0"}}, Situation{"C_8", &Command::C_8, {kRecordParameter, "1"}},
        Situation{"C_9", &Command::C_9, {kRecordParameter, "1", "13"}},
        Situation{"C_12",
                  &Command::C_12,
                  {kRecordParameter},
                  {"Insert Into TableData13 (ID) Values (1)", "Insert Into TableData13 (ID) Values (2)",
                   "Insert Into DataApp (AppedTableID,AppedDataID,AppTableID,AppDataID) Values (12,345,13,1)",
                   "Insert Into DataApp (AppedTableID,AppedDataID,AppTableID,AppDataID) Values (12,345,13,2)"}},
        Situation{"C_13",
                  &Command::C_13,
                  {kRecordParameter},
                  {"Insert Into TableData13 (ID) Values (1)",
                   "Insert Into DataAnswer (TableID,DataID,AnswerTableID,AnswerDataID) Values (12,345,13,1)"}},
        Situation{"C_14",
                  &Command::C_14,
                  {kRecordParameter},
                  {"Insert Into TableData13 (ID) Values (1)",
                   "Insert Into DataAtt (AttedTableID,AttedDataID,AttTableID,AttDataID) Values (12,345,13,1)"}},
        Situation{"C_20", &Command::C_20, {"\"a b\"", "\"x\""}},
        Situation{"C_21", &Command::C_21, {"\"a b\"", "\"x\"", "\"y\""}}, Situation{"C_68", &Command::C_68, {"agreed"}},
        Situation{"C_76",
                  &Command::C_76,
                  {"\"TableID:12,DataID:346\"", kRecordParameter},
                  {"Update TableData12 Set Title='T',Memo='M',Amount=1,Day='2026-01-31' Where ID=346",
                   "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID) Values (7,12,'Sign',346)"}},
        Situation{"C_77", &Command::C_77, {"12", "name=who", "found"}},
        Situation{"C_79", &Command::C_79, {"12", "name=who", "\"name\"", "found"}},
        Situation{"C_80", &Command::C_80, {"\"x\""}},
        Situation{"C_89",
                  &Command::C_89,
                  {kRecordParameter},
                  {"Insert Into DataApp (AppedTableID,AppedDataID) Values (12,345)",
                   "Insert Into WorkFlowExecute (ExecuteID,DataAppID) Values (901,1)"}},
        Situation{"C_90", &Command::C_90, {kRecordParameter, "Open", "link"}},
        Situation{"C_91", &Command::C_91, {"5", "Open", "p", "link"}},
        Situation{"C_97",
                  &Command::C_97,
                  {kRecordParameter, "\"Title\"", "\"a,b\"", "\"Title\"", "", "", "24", "\"Please\""}},
        Situation{"C_98", &Command::C_98, {"agreed"}}),
    [](const auto& test) { return test.param.name; });

TEST_P(FailingStatementTest, ReachesTheCallerAndLeavesWhatWasWrittenBefore) {
  Scene undisturbed;
  Prepare(undisturbed, GetParam());
  undisturbed.RunOn(undisturbed.world().connection(), GetParam().operation);
  const Texts statements = undisturbed.world().trace();
  ASSERT_FALSE(statements.empty());

  Scene scene;
  Prepare(scene, GetParam());
  // Runs the same statements one at a time, to compare with after each.
  Scene replayed;
  Prepare(replayed, GetParam());
  for (std::size_t failing = 1; failing <= statements.size(); ++failing) {
    scene.world().database().Begin();
    FailingConnection connection(scene.world().connection(), failing);
    try {
      scene.RunOn(connection, GetParam().operation);
      FAIL() << "nothing failed at statement " << failing;
    } catch (const DatabaseError& error) {
      EXPECT_STREQ(error.what(), "the statement was made to fail");
    }
    EXPECT_EQ(connection.count(), failing);
    EXPECT_EQ(WholeDatabase(scene), WholeDatabase(replayed)) << statements[failing - 1];
    scene.world().database().Rollback();
    replayed.world().Run(statements[failing - 1]);
  }
  EXPECT_EQ(WholeDatabase(undisturbed), WholeDatabase(replayed));
}

}  // namespace
}  // namespace talm_flow::test
