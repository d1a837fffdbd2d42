/// What is particular to PostgreSQL. What every database shows is in tests/conformance.

#include "adapters/postgresql_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <barrier>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/databases.h"
#include "support/rows.h"
#include "talm_flow/error.h"
#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::adapters {
namespace {

using test::RowsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PostgresqlDatabaseTest : public testing::Test {
 protected:
  [[nodiscard]] PostgresqlDatabase& database() { return static_cast<PostgresqlDatabase&>(*place_); }
  void Run(const std::string& statement) { (void)place_->Execute(statement); }
  [[nodiscard]] std::vector<std::string> Rows(const std::string& query) { return RowsOf(*place_, query); }
  [[nodiscard]] std::unique_ptr<Database> Another() const { return Open(place_.url()); }

  /// The error of a statement; fails when there is none.
  [[nodiscard]] DatabaseError ErrorOf(const std::string& statement) {
    try {
      Run(statement);
    } catch (const DatabaseError& error) {
      return error;
    }
    ADD_FAILURE() << "accepted: " << statement;
    return DatabaseError("");
  }

  test::CleanDatabase place_{"postgresql"};
};

// ---- Literals -------------------------------------------------------------------------------------------------------

/// Conditions on WorkFlowVariable, whose ExecuteID is a number and whose VariableName is a text.
class PostgresqlLiteralTest : public testing::TestWithParam<const char*> {};

TEST_P(PostgresqlLiteralTest, GivesTheAnswerOfTheEmbeddedEngine) {
  std::vector<std::vector<std::string>> answers;
  for (const char* const name : {"sqlite", "postgresql"}) {
    const test::CleanDatabase database(name);
    for (const char* const row : {"5,'5'", "-3,'-3'", "7,'abc'", "Null,Null", "0,'5.5'", "9007199254740993,'100.0'",
                                  "100,''", "-9007199254740993,'1.0e+20'"}) {
      (void)database->Execute("insert into WorkFlowVariable (ExecuteID,VariableName) values (" + std::string(row) +
                              ")");
    }
    answers.push_back(RowsOf(*database, "select ID from WorkFlowVariable where " + std::string(GetParam())));
  }
  EXPECT_EQ(answers[1], answers[0]);
}

INSTANTIATE_TEST_SUITE_P(
    Conditions, PostgresqlLiteralTest,
    testing::Values("ExecuteID=5", "ExecuteID='5'", "ExecuteID='5.0'", "ExecuteID=5.0", "ExecuteID=5e0",
                    "ExecuteID=5.5", "ExecuteID<5.5", "ExecuteID>-3.5", "ExecuteID=' 5 '", "ExecuteID='abc'",
                    "ExecuteID<>'abc'", "ExecuteID<'abc'", "ExecuteID>'abc'", "ExecuteID=''", "ExecuteID<'it''s'",
                    "ExecuteID=99999999999999999999", "ExecuteID<99999999999999999999",
                    "ExecuteID>-99999999999999999999", "ExecuteID<1e400", "ExecuteID=9007199254740993", "ExecuteID=-3",
                    "ExecuteID=-3 and VariableName=-3", "ExecuteID-2=3", "ExecuteID - 2 = -5", "ExecuteID+1.5=6.5",
                    "ExecuteID in (5,'7',1.5)", "ExecuteID between 0 and 6.5", "not ExecuteID=5", "ExecuteID is null",
                    "VariableName=5", "VariableName='5'", "VariableName=5.50", "VariableName=1e2", "VariableName=1e20",
                    "VariableName in (5,'abc',-3)", "VariableName<'a'", "VariableName like '5%'", "VariableName=''",
                    "1=1", "5>10", "'5'='5'", "1=1 and ExecuteID=5",
                    "(ExecuteID=0 or ExecuteID=5) and VariableName<>''"));

TEST_F(PostgresqlDatabaseTest, NumbersAndTextsAreStoredAsTheirColumnsType) {
  Run("insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) values ('5.0',1e2,007,-2.50)");
  EXPECT_THAT(Rows("select RootExecuteID,ExecuteID,VariableName,VariableValue from WorkFlowVariable"),
              ElementsAre("5|100|7|-2.5"));
  Run("update WorkFlowVariable set ExecuteID=ExecuteID-'1', VariableName=-5");
  EXPECT_THAT(Rows("select ExecuteID,VariableName from WorkFlowVariable"), ElementsAre("99|-5"));
}

TEST_F(PostgresqlDatabaseTest, TablesOfOthersTakeValuesInTheirColumnsTypes) {
  Run("create table mixed (yes boolean, small smallint, amount numeric, share double precision, word text)");
  Run("insert into mixed (yes,small,amount,share,word) values (1,'7','1.250',-2.5,-3)");
  Run("insert into mixed (yes,small,amount,share,word) values (0,-8,2,'0.5','it''s')");
  EXPECT_THAT(Rows("select * from mixed"), ElementsAre("True|7|1.25|-2.5|-3", "False|-8|2|0.5|it's"));
  Run("update mixed set share=-1e400 where small=7");
  EXPECT_THAT(Rows("select word from mixed where share<-1e300"), ElementsAre("-3"));
  const DatabaseError error = ErrorOf("insert into mixed (amount) values ('much')");
  EXPECT_STREQ(error.what(), "invalid input syntax for type numeric: \"much\"");
  const auto rows = database().Open("select yes, small from mixed");
  rows->AddNew();
  rows->SetField("yes", Value(true));
  rows->SetField("small", Value(9));
  rows->Update();
  EXPECT_THAT(Rows("select yes from mixed where small=9"), ElementsAre("True"));
}

TEST_F(PostgresqlDatabaseTest, WhatAColumnCannotHoldIsRefusedInTheServersWords) {
  const DatabaseError text = ErrorOf("insert into WorkFlowVariable (ExecuteID) values ('abc')");
  EXPECT_STREQ(text.what(), "invalid input syntax for type bigint: \"abc\"");
  EXPECT_EQ(text.State(), "22P02");
  EXPECT_EQ(ErrorOf("insert into WorkFlowVariable (ExecuteID) values (5.5)").State(), "22P02");
  EXPECT_EQ(ErrorOf("insert into WorkFlowVariable (ExecuteID) values (99999999999999999999)").State(), "22003");
}

TEST_F(PostgresqlDatabaseTest, NullComesFirstAndAnIndexServesTheOrder) {
  Run("insert into WorkFlowName (FlowName) values ('b'),(Null),('a')");
  EXPECT_THAT(Rows("Select FlowName From WorkFlowName Order By FlowName"), ElementsAre("NULL", "a", "b"));
  EXPECT_THAT(Rows("Select FlowName From WorkFlowName Order By FlowName Desc"), ElementsAre("b", "a", "NULL"));
  Run("set enable_seqscan=off");
  const auto plan = [this](const std::string& query) { return testing::PrintToString(Rows("explain " + query)); };
  EXPECT_THAT(
      plan("Select Top 1 DataAppID From DataApp Order By DataAppID Desc"),
      testing::AllOf(HasSubstr("Index Only Scan Backward using dataapp_pkey"), testing::Not(HasSubstr("Sort"))));
  EXPECT_THAT(plan("Select Top 10000 FlowName From WorkFlowName Order By FlowName"),
              testing::AllOf(HasSubstr("using workflowname_flowname"), testing::Not(HasSubstr("Sort"))));
  Run("reset enable_seqscan");
}

TEST_F(PostgresqlDatabaseTest, ATextWithANulCharacterIsRefused) {
  const std::string statement = "insert into DataNotice (Recver) values ('a" + std::string(1, '\0') + "b')";
  const DatabaseError error = ErrorOf(statement);
  EXPECT_THAT(error.what(), HasSubstr("NUL"));
  EXPECT_EQ(error.Statement(), statement);
  EXPECT_EQ(ErrorOf("select '" + std::string(1, '\0') + "'").State(), "");
  EXPECT_THAT(Rows("select * from DataNotice"), IsEmpty());
}

// ---- Results --------------------------------------------------------------------------------------------------------

TEST_F(PostgresqlDatabaseTest, ColumnsAreSpelledAsInTheSchema) {
  const auto names = [this](const std::string& query) {
    std::vector<std::string> found;
    const auto rows = database().Open(query);
    for (std::size_t i = 0; i < rows->ColumnCount(); ++i) found.emplace_back(rows->ColumnName(i));
    return found;
  };
  EXPECT_THAT(names("select dataappid,STATUS from dataapp"), ElementsAre("DataAppID", "Status"));
  EXPECT_THAT(names("select Name as NAme, count(*) as HowMany from DataAllowEdit group by Name"),
              ElementsAre("NAme", "HowMany"));
  database().CreateFormTable(4, {{"TheAmount", "InputNum"}});
  EXPECT_THAT(names("select * from TableData4"), ElementsAre("ID", "name", "inputtime", "TheAmount"));
  Run("create table others (SomeName text)");
  EXPECT_THAT(names("select SomeName from Others"), ElementsAre("somename"));
}

TEST_F(PostgresqlDatabaseTest, ValuesComeInTheirOwnKind) {
  const auto rows = database().Open(
      "select 5::int2 as a, 1.5::numeric as b, 12::numeric as c, true as d, 0.1::float8 as e, 'NaN'::float8 as f, "
      "'\\x00ff'::bytea as g, null as h, date '2026-01-31' as i");
  EXPECT_EQ(rows->Field("a"), Value(5));
  EXPECT_EQ(rows->Field("b"), Value(1.5));
  EXPECT_EQ(rows->Field("c"), Value(12));
  EXPECT_EQ(rows->Field("d"), Value(true));
  EXPECT_EQ(rows->Field("e"), Value(0.1));
  EXPECT_NE(rows->Field("f").Double(), rows->Field("f").Double());
  EXPECT_TRUE(rows->Field("g") == Value(std::string("\0\xFF", 2)));
  EXPECT_TRUE(rows->Field("h").IsNull());
  EXPECT_EQ(rows->Field("i"), Value("2026-01-31"));
}

TEST_F(PostgresqlDatabaseTest, AddedRowsTakeValuesOfEveryKind) {
  const auto rows = database().Open("select * from TableFile");
  rows->AddNew();
  rows->SetField("TableID", Value(true));
  rows->SetField("DataID", Value(2.0));
  rows->SetField("Size", Value("3"));
  rows->SetField("FileName", Value(4.5));
  rows->SetField("FileType", Value());
  rows->SetBinary("FileContent", std::string("\0'\\\xFF", 4));
  rows->Update();
  EXPECT_THAT(Rows("select TableID,DataID,Size,FileName,FileType from TableFile"), ElementsAre("-1|2|3|4.5|NULL"));
  EXPECT_TRUE(database().Open("select FileContent from TableFile")->Field("FileContent") ==
              Value(std::string("\0'\\\xFF", 4)));
  rows->AddNew();
  rows->SetField("TableID", Value("many"));
  EXPECT_THROW(rows->Update(), DatabaseError);
}

// ---- Prepared statements --------------------------------------------------------------------------------------------

TEST_F(PostgresqlDatabaseTest, KeysThatAnInsertGivesAreNotGivenAgain) {
  Run("insert into DataNotice (Sort) values (1)");
  Run("Insert Into DataNotice (Sort,ID) values (1,7),(1,5)");
  Run("insert into DataNotice (Sort) values (1)");
  Run("insert into \"datanotice\" (\"id\",Sort) values (4,1)");
  Run("insert into DataNotice default values");
  Run("insert into public.DataNotice values (20,1,2,3,'r','t')");
  Run("insert into DataNotice (Sort) values (1)");
  EXPECT_THAT(Rows("select ID from DataNotice"), ElementsAre("1", "4", "5", "7", "8", "9", "20", "21"));
  Run("create table plain (a bigint primary key)");
  Run("insert into plain (a) values (3)");
  EXPECT_THAT(Rows("select a from plain"), ElementsAre("3"));
}

TEST_F(PostgresqlDatabaseTest, AShapeIsPreparedOnce) {
  const auto query = [this](int number) {
    (void)database().Open("select FlowNo from WorkFlowConstruction where FlowID=" + std::to_string(number));
  };
  query(1);
  const std::size_t prepared = database().prepare_count();
  for (int i = 2; i < 50; ++i) query(i);
  EXPECT_EQ(database().prepare_count(), prepared);
  // A number that no column holds is compared by a statement of its own, which is kept as well.
  for (const char* const number : {"1.5", "99999999999999999999", "'abc'", "2.5"}) {
    (void)database().Open("select FlowNo from WorkFlowConstruction where FlowID=" + std::string(number));
  }
  EXPECT_EQ(database().prepare_count(), prepared + 1);
}

TEST_F(PostgresqlDatabaseTest, ManyShapesLeaveOnlyTheLatestPreparedAtTheServer) {
  for (std::size_t i = 0; i < ShapeFinder<PostgresqlShape>::kShapes + 50; ++i) {
    (void)database().Open("select ID as Column" + std::to_string(i) + " from DataNotice where ID=1");
  }
  const auto kept = database().Open("select count(*) as Kept from pg_prepared_statements")->Field("Kept").Whole();
  EXPECT_LE(kept, static_cast<std::int64_t>(ShapeFinder<PostgresqlShape>::kShapes) + 2);
}

TEST_F(PostgresqlDatabaseTest, AStatementFollowsAnotherConnectionsChangeOfTheTable) {
  Run("create table changing (a bigint primary key)");
  Run("insert into changing (a) values (1)");
  EXPECT_THAT(Rows("select * from changing"), ElementsAre("1"));
  (void)Another()->Execute("alter table changing add column b bigint default 2");
  EXPECT_THAT(Rows("select * from changing"), ElementsAre("1|2"));
}

TEST_F(PostgresqlDatabaseTest, WhatTheServerForgotIsPreparedAnew) {
  Run("insert into DataNotice (Sort) values (1)");
  EXPECT_THAT(Rows("select Sort from DataNotice where Sort=1"), ElementsAre("1"));
  PQclear(PQexec(database().engine(), "deallocate all"));
  EXPECT_THAT(Rows("select Sort from DataNotice where Sort=1"), ElementsAre("1"));
  Run("insert into DataNotice (Sort) values (2)");
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("1", "2"));
}

// ---- Errors ---------------------------------------------------------------------------------------------------------

TEST_F(PostgresqlDatabaseTest, ErrorsHaveTheServersWordsAndState) {
  const DatabaseError missing = ErrorOf("select a from NoSuchTable where b=1");
  EXPECT_STREQ(missing.what(), "relation \"nosuchtable\" does not exist");
  EXPECT_EQ(missing.State(), "42P01");
  EXPECT_EQ(ErrorOf("nonsense").State(), "42601");
  EXPECT_EQ(ErrorOf("select NoSuchColumn from DataApp").State(), "42703");
  EXPECT_EQ(ErrorOf("select 1/0").State(), "22012");
  EXPECT_THAT(Rows("select Sort from DataNotice"), IsEmpty());
}

TEST_F(PostgresqlDatabaseTest, ACopyIsRefusedAndTheConnectionGoesOn) {
  EXPECT_THAT(ErrorOf("copy DataNotice from stdin").what(), HasSubstr("copy"));
  EXPECT_THAT(ErrorOf("copy DataNotice to stdout").what(), HasSubstr("copy"));
  EXPECT_THAT(Rows("select Sort from DataNotice"), IsEmpty());
}

TEST_F(PostgresqlDatabaseTest, AStatementThatCannotBePreparedLeavesTheTransactionUsable) {
  database().Begin();
  Run("insert into DataNotice (Sort) values (1)");
  EXPECT_EQ(ErrorOf("insert into NoSuchTable (a) values (1)").State(), "42P01");
  Run("insert into DataNotice (Sort) values (2)");
  database().Commit();
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("1", "2"));
}

TEST_F(PostgresqlDatabaseTest, AFailedStatementSpoilsItsUnitOfWorkAloneWhenThatIsNested) {
  host::UnitOfWork(database()).Run([&] {
    Run("insert into DataNotice (Sort) values (1)");
    EXPECT_THROW(host::UnitOfWork(database()).Run([&] { Run("insert into DataNotice (Sort) values ('x')"); }),
                 DatabaseError);
    Run("insert into DataNotice (Sort) values (2)");
  });
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("1", "2"));
}

TEST_F(PostgresqlDatabaseTest, ATransactionWithAFailedStatementIsNotCommittedInSilence) {
  database().Begin();
  Run("insert into DataNotice (Sort) values (1)");
  EXPECT_EQ(ErrorOf("insert into DataNotice (Sort) values ('x')").State(), "22P02");
  EXPECT_EQ(ErrorOf("insert into DataNotice (Sort) values (2)").State(), "25P02");
  EXPECT_THROW(database().Commit(), DatabaseError);
  EXPECT_FALSE(database().InTransaction());
  EXPECT_THAT(Rows("select Sort from DataNotice"), IsEmpty());
}

TEST_F(PostgresqlDatabaseTest, WhatATransactionCreatedIsForgottenWhenItIsTakenBack) {
  database().Begin();
  database().CreateFormTable(8, {{"a", "InputText"}});
  EXPECT_THAT(Rows("select * from TableData8"), IsEmpty());
  database().Rollback();
  EXPECT_EQ(ErrorOf("select * from TableData8").State(), "42P01");
  database().CreateFormTable(8, {{"b", "InputText"}});
  EXPECT_EQ(database().Open("select * from TableData8")->ColumnName(3), "b");
}

TEST_F(PostgresqlDatabaseTest, AServerThatGoesAwayIsToldAndTheConnectionStaysLost) {
  const auto victim = Another();
  const auto process = victim->Open("select pg_backend_pid() as Process")->Field("Process").Whole();
  (void)database().Open("select pg_terminate_backend(" + std::to_string(process) + ")");
  try {
    (void)victim->Open("select Sort from DataNotice");
    FAIL() << "answered";
  } catch (const DatabaseError& error) {
    EXPECT_THAT(error.what(), HasSubstr("terminating connection"));
    EXPECT_EQ(error.State(), "08006");
    EXPECT_FALSE(victim->MayBeRepeated(error));
  }
  try {
    (void)victim->Open("select Sort from DataNotice");
    FAIL() << "answered";
  } catch (const DatabaseError& error) {
    EXPECT_STREQ(error.what(), "the connection to the database is lost");
    EXPECT_EQ(error.State(), "08006");
    EXPECT_EQ(error.Statement(), "select Sort from DataNotice");
  }
  EXPECT_THROW(victim->Begin(), DatabaseError);
}

TEST_F(PostgresqlDatabaseTest, NoticesOfTheServerAreNotPrinted) {
  testing::internal::CaptureStderr();
  Run("set client_min_messages=notice");
  Run("create table if not exists DataNotice (a bigint)");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

// ---- Several connections --------------------------------------------------------------------------------------------

TEST_F(PostgresqlDatabaseTest, TheHighestKeyInAUnitOfWorkIsItsOwn) {
  constexpr int kWorkers = 4;
  constexpr int kRows = 20;
  std::vector<int> strangers(kWorkers, 0);
  std::vector<std::thread> workers;
  for (int worker = 0; worker < kWorkers; ++worker) {
    workers.emplace_back([&strangers, worker, own = Another()] {
      for (int i = 0; i < kRows; ++i) {
        host::UnitOfWork(*own).Run([&] {
          (void)own->Execute("insert into DataApp (ExecuteID) values (" + std::to_string(worker) + ")");
          const auto newest = own->Open("Select Top 1 DataAppID,ExecuteID From DataApp Order By DataAppID Desc");
          if (newest->Field("ExecuteID") != Value(worker)) ++strangers[static_cast<std::size_t>(worker)];
        });
      }
    });
  }
  for (std::thread& worker : workers) worker.join();
  EXPECT_THAT(strangers, testing::Each(0));
  EXPECT_THAT(Rows("select count(*) from DataApp"), ElementsAre("80"));
}

TEST_F(PostgresqlDatabaseTest, ADeadlockMayBeRepeated) {
  Run("insert into DataNotice (Sort) values (1),(2)");
  std::barrier both_hold_one(2);
  std::vector<int> repeatable(2, 0);
  const auto cross = [&](int own_row) {
    const auto own = Another();
    (void)own->Execute("set deadlock_timeout='20ms'");
    (void)own->Execute("begin");
    (void)own->Execute("update DataNotice set TableID=1 where ID=" + std::to_string(own_row));
    both_hold_one.arrive_and_wait();
    try {
      (void)own->Execute("update DataNotice set TableID=1 where ID=" + std::to_string(3 - own_row));
    } catch (const DatabaseError& error) {
      EXPECT_EQ(error.State(), "40P01");
      repeatable[static_cast<std::size_t>(own_row) - 1] = own->MayBeRepeated(error) ? 1 : -1;
    }
    own->Rollback();
  };
  std::thread other([&cross] { cross(2); });
  cross(1);
  other.join();
  EXPECT_EQ(repeatable[0] + repeatable[1], 1);
}

TEST_F(PostgresqlDatabaseTest, ManyMayCreateTheTablesAtOnce) {
  Run("drop table DataTran");
  Run("drop table DataPro");
  std::vector<std::string> errors(4);
  std::vector<std::thread> creators;
  for (std::string& error : errors) {
    creators.emplace_back([&error, own = Another()] {
      try {
        own->CreateTables();
        own->CreateFormTable(9, {{"a", "InputText"}});
      } catch (const std::exception& raised) {
        error = raised.what();
      }
    });
  }
  for (std::thread& creator : creators) creator.join();
  EXPECT_THAT(errors, testing::Each(""));
  EXPECT_THAT(database().MissingTables(), IsEmpty());
  EXPECT_THAT(Rows("select TableID from TableName"), ElementsAre("9"));
}

}  // namespace
}  // namespace talm_flow::adapters
