#include "program/talmflow.h"

namespace talm_flow::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class DoctorTest : public TalmflowTest {
 protected:
  DoctorTest() {
    (void)Succeed({"init"});
    (void)Succeed({"form", "add", "12", "--unit", "Days:InputNum"});
    (void)Succeed({"form", "add", "13", "--unit", "Opinion:InputText"});
    Write(
        "leave.flow",
        Definition({{1, 0, "C_2", {"DataID_Submit", "\"kim\"", "\"TableID:13\"", "\"a\"", "\"b\"", "1", "48", "\"c\""}},
                    {2, 1, "C_97", {"DataID_Submit", "\"Days\"", "\"ann\"", "\"a\"", "\"b\"", "1", "48", "\"c\""}}}));
    (void)Succeed({"import", "leave.flow", "--name", "leave"});
    (void)Succeed({"record", "add", "12", "Days=1"});
    (void)Succeed({"run", "leave", "--record", "12/1", "--operator", "kim"});
  }

  void ExpectSound() const { EXPECT_EQ(Succeed({"doctor"}), "The database is sound.\n"); }

  /// What the doctor finds after a statement, one line a finding: severity, kind, table and problem.
  std::vector<std::string> After(const std::string& statement) const {
    (void)Rows(statement);
    const auto result = Talmflow({"doctor", "--json"});
    std::vector<std::string> lines;
    bool errors = false;
    for (const auto& finding : json::parse(result.out)) {
      EXPECT_NE(finding["advice"], "");
      errors = errors || finding["severity"] == "error";
      lines.push_back(finding["severity"].get<std::string>() + " " + finding["kind"].get<std::string>() + " " +
                      finding["table"].get<std::string>() + ": " + finding["problem"].get<std::string>());
    }
    EXPECT_EQ(result.status, errors ? 1 : 0);
    return lines;
  }
};

using testing::Contains;
using testing::ElementsAre;

TEST_F(DoctorTest, ASoundDatabaseHasNoFindings) {
  ExpectSound();
  EXPECT_EQ(Succeed({"doctor", "--json"}), "[]\n");
  (void)Succeed({"approve", "A1"});
  ExpectSound();
  (void)Succeed({"finish", "F1"});
  ExpectSound();
}

TEST_F(DoctorTest, FindingsAreToldWithAdvice) {
  (void)Rows("insert into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) values (77,1,1)");
  const auto result = Talmflow({"doctor"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out,
            "error, orphan: WorkFlowExecuteTimes: row 1 of an instance that does not exist\n"
            "    delete it: nothing reads it\n"
            "1 error, 0 warnings.\n");
}

TEST_F(DoctorTest, ManyRowsOfAKindAreOneFinding) {
  EXPECT_THAT(
      After("insert into WorkFlowExecuteTimes (ExecuteID) values (71),(72),(73),(74)"),
      ElementsAre("error orphan WorkFlowExecuteTimes: 4 rows (1, 2, 3 ...) of an instance that does not exist"));
  EXPECT_THAT(After("with recursive n(i) as (select 1 union all select i+1 from n where i<1000) insert into "
                    "WorkFlowExecuteTimes (ExecuteID) select 80 from n"),
              ElementsAre(HasSubstr("more than 1000 rows (1, 2, 3 ...)")));
}

TEST_F(DoctorTest, RowsWithoutAnOwnerAreOrphans) {
  const std::pair<const char*, const char*> cases[] = {
      {"insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName) values (77,77,'v')",
       "error orphan WorkFlowVariable: row 1 of an instance that does not exist"},
      {"insert into WorkFlowChildRec (ParentExecuteID,ChildExecuteID) values (1,77)",
       "error orphan WorkFlowChildRec: row 1 between instances of which one does not exist"},
      {"insert into WorkFlowExecute (ExecuteID,Command,Times) values (77,'C_15',3)",
       "error orphan WorkFlowExecute: row 2 which is a timer of an instance that does not exist"},
      {"insert into DataApp (ExecuteID) values (77)",
       "error orphan DataApp: row 2 which is an open approval of an instance that does not exist"},
      {"insert into InUnitSub (ExecuteID) values (77)",
       "error orphan InUnitSub: row 1 which is an open fill-in of an instance that does not exist"},
      {"insert into WorkFlowConstruction (FlowID,FlowNo) values (77,1)",
       "error orphan WorkFlowConstruction: row 3 which is a step of a flow that does not exist"},
      {"insert into WorkFlowParameter (FlowID,FlowNo) values (1,77)",
       "error orphan WorkFlowParameter: row 17 which is a parameter of a step that does not exist"},
      {"insert into WorkFlowFunctionInput (FlowID) values (77)",
       "error orphan WorkFlowFunctionInput: row 1 which is an input parameter of a flow that does not exist"},
      {"insert into TableName (TableID) values (77)", "error orphan TableName: the form 77 has no table TableData77"},
      {"create table TableData78 (ID integer primary key autoincrement, name text, inputtime text)",
       "warning orphan TableData78: the form 78 has no row in TableName"},
      {"insert into WorkFlowExecuteID (ExecuteID,RootExecuteID,FlowID) values (50,49,1)",
       "error orphan WorkFlowExecuteID: row 50 of a tree whose top instance does not exist"},
      {"delete from WorkFlowName", "error orphan WorkFlowExecuteID: 2 rows (1, 50) of a flow that does not exist"},
  };
  for (const auto& [statement, finding] : cases) EXPECT_THAT(After(statement), Contains(finding)) << statement;
}

TEST_F(DoctorTest, WhatIsDoneAndGlobalIsNoOrphan) {
  EXPECT_THAT(After("insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName) values (0,0,'Global_v')"),
              testing::IsEmpty());
  EXPECT_THAT(After("insert into DataApp (ExecuteID,Status) values (77,2)"), testing::IsEmpty());
  EXPECT_THAT(After("insert into WorkFlowExecute (ExecuteID,Command,Times,HaveExeTimes) values (77,'C_15',3,3)"),
              testing::IsEmpty());
}

TEST_F(DoctorTest, InstancesThatWaitForNothingAreStuck) {
  EXPECT_THAT(After("delete from DataApp"),
              ElementsAre("error stuck WorkFlowExecuteID: row 1 which is an instance in whose tree nothing waits",
                          "error stuck WorkFlowExecute: row 1 which waits for an approval that is gone or finished "
                          "already"));
  (void)Succeed({"call", "Command.EndFlow", "1"});
  ExpectSound();
}

TEST_F(DoctorTest, AFillInThatIsGoneIsMissed) {
  (void)Succeed({"approve", "A1"});
  EXPECT_THAT(
      After("update InUnitSub set Status=2"),
      Contains("error stuck WorkFlowExecute: row 2 which waits for a fill-in that is gone or finished already"));
}

TEST_F(DoctorTest, AChildThatWaitsForNothingHoldsItsParent) {
  (void)Rows("insert into WorkFlowExecuteID (ExecuteID,RootExecuteID,FlowID) values (2,1,1)");
  EXPECT_THAT(After("insert into WorkFlowChildRec (ParentExecuteID,ParentFlowNo,ChildExecuteID) values (1,1,2)"),
              ElementsAre("error stuck WorkFlowChildRec: row 1 whose child flow waits for nothing, while its parent "
                          "waits for the child"));
  EXPECT_THAT(After("insert into DataApp (ExecuteID) values (2)"), testing::IsEmpty());
}

TEST_F(DoctorTest, AnotherSchemaIsADrift) {
  EXPECT_THAT(After("drop index WorkFlowExecuteID_FlowID"),
              ElementsAre("error schema WorkFlowExecuteID: the index on (FlowID) is missing"));
  (void)Succeed({"init"});
  ExpectSound();
  EXPECT_THAT(After("create index Lonely on DataApp (Status)"),
              ElementsAre("warning schema DataApp: the index Lonely on (Status) is of no use known here"));
  (void)Rows("drop index Lonely");
  EXPECT_THAT(After("alter table DataTran drop column Remark"),
              ElementsAre("error schema DataTran: the column Remark is missing"));
  EXPECT_THAT(After("drop table DataTran"), ElementsAre("error schema DataTran: the table is missing"));
  EXPECT_THAT(After("create table DataTran (ID integer primary key autoincrement, TableID text, DataID integer default "
                    "7, TranName text, RecName text, Remark text, Mine blob)"),
              ElementsAre("error schema DataTran: the column TableID is of the kind \"text\", not \"integer\"",
                          "error schema DataTran: the column DataID is 7 by default, not Null"));
  (void)Rows("drop table DataTran");
  EXPECT_THAT(After("create table DataTran (ID integer, TableID integer, DataID integer, TranName text, RecName text, "
                    "Remark text)"),
              ElementsAre("error schema DataTran: the key is not the column ID"));
}

TEST_F(DoctorTest, RowsAreNotReadWhileATableIsMissing) {
  (void)Rows("insert into WorkFlowExecuteTimes (ExecuteID) values (77)");
  EXPECT_THAT(After("drop table WorkFlowVariable"), ElementsAre("error schema WorkFlowVariable: the table is missing"));
}

TEST_F(DoctorTest, AKeyThatWouldBeGivenTwiceIsAnError) {
  EXPECT_THAT(After("update sqlite_sequence set seq=0 where name='DataApp'"),
              ElementsAre("error key DataApp: the key 1 exists, but the database would continue behind 0"));
}

TEST_F(DoctorTest, DefinitionsThatCannotWorkArePointedOut) {
  Write("broken.flow", Definition({{1, 0, "C_16", {"9"}}}));
  (void)Load("broken.flow", {"--name", "broken"});
  EXPECT_THAT(After("select 1 as one"),
              ElementsAre(HasSubstr("warning definition WorkFlowConstruction: flow 2 \"broken\" has steps that can "
                                    "never work: 1 error")));
}

TEST_F(DoctorTest, ADatabaseIsNeeded) {
  EXPECT_THAT(Fail(1, {"--db", "sqlite:none.db", "doctor"}), HasSubstr("there is no database \"none.db\""));
  EXPECT_THAT(Fail(1, {"--db", "nonsense", "doctor"}), HasSubstr("--db: "));
  Write("text.db", "this is no database, though it is long enough to be taken for one at first sight");
  EXPECT_THAT(Fail(1, {"--db", "sqlite:text.db", "doctor"}), HasSubstr("file is not a database"));
  EXPECT_THAT(Fail(2, {"doctor", "me"}), HasSubstr("me"));
}

}  // namespace
}  // namespace talm_flow::test
