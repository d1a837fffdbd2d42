#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "adapters/sqlite_database.h"
#include "support/rows.h"
#include "talm_flow/error.h"

namespace talm_flow::adapters {
namespace {

using test::RemainingRows;
using test::RowsOf;
using testing::ElementsAre;
using testing::HasSubstr;

class SqliteRowSetTest : public testing::Test {
 protected:
  SqliteRowSetTest() : database_("", OpenMode::kCreate, SqliteDatabase::Synchronous::kFull) {
    Run("create table t (ID integer primary key autoincrement, a integer, b text)");
    for (int i = 1; i <= 5; ++i) {
      const std::string number = std::to_string(i);
      Run("insert into t (a,b) values (" + number + ",'row " + number + "')");
    }
  }

  void Run(const std::string& statement) { (void)database_.Execute(statement); }

  SqliteDatabase database_;
};

TEST_F(SqliteRowSetTest, AnOpenRowSetShowsTheRowsOfItsOpening) {
  const auto rows = database_.Open("select a,b from t");
  rows->MoveNext();
  Run("update t set b='changed'");
  Run("insert into t (a,b) values (6,'new')");
  Run("delete from t where a=4");
  EXPECT_THAT(RemainingRows(*rows), ElementsAre("2|row 2", "3|row 3", "4|row 4", "5|row 5"));
  EXPECT_THAT(RowsOf(database_, "select a,b from t"),
              ElementsAre("1|changed", "2|changed", "3|changed", "5|changed", "6|new"));
}

TEST_F(SqliteRowSetTest, EveryKindOfChangeLeavesOpenRowSetsAlone) {
  const std::vector<std::string> changes = {"delete from t", "drop table t", "alter table t add column c default 1",
                                            "replace into t (ID,b) values (2,'x')", "update t set a=a+10"};
  for (const std::string& change : changes) {
    database_.Begin();
    const auto rows = database_.Open("select * from t");
    Run(change);
    EXPECT_EQ(RemainingRows(*rows).size(), 5U) << change;
    database_.Rollback();
  }
}

TEST_F(SqliteRowSetTest, ARowAddedThroughARowSetIsNotSeenByIt) {
  const auto rows = database_.Open("select * from t");
  rows->AddNew();
  rows->SetField("a", 6);
  rows->Update();
  EXPECT_EQ(RemainingRows(*rows).size(), 5U);
  EXPECT_EQ(RowsOf(database_, "select * from t").size(), 6U);
}

TEST_F(SqliteRowSetTest, ARollbackLeavesOpenRowSetsAlone) {
  database_.Begin();
  Run("update t set b='x'");
  const auto rows = database_.Open("select b from t");
  database_.Rollback();
  EXPECT_THAT(RemainingRows(*rows), ElementsAre("x", "x", "x", "x", "x"));
}

TEST_F(SqliteRowSetTest, TheSameQueryCanBeOpenManyTimes) {
  const auto first = database_.Open("select a from t where a>1");
  const auto second = database_.Open("select a from t where a>3");
  first->MoveNext();
  const auto third = database_.Open("select a from t where a>4");
  EXPECT_THAT(RemainingRows(*third), ElementsAre("5"));
  EXPECT_THAT(RemainingRows(*second), ElementsAre("4", "5"));
  EXPECT_THAT(RemainingRows(*first), ElementsAre("3", "4", "5"));
}

TEST_F(SqliteRowSetTest, TextsOfTheQueryMayGoWhileItIsOpen) {
  auto text = std::make_unique<std::string>("select a from t where b<>'row 2' and b<>'O''Brien' and b<>'" +
                                            std::string(100, 'x') + "'");
  const auto rows = database_.Open(*text);
  text->assign(text->size(), '#');
  text.reset();
  EXPECT_THAT(RemainingRows(*rows), ElementsAre("1", "3", "4", "5"));
}

TEST_F(SqliteRowSetTest, ARowSetOutlivesItsStatementInTheCache) {
  const auto rows = database_.Open("select a from t where a>1");
  for (std::size_t i = 0; i < SqliteDatabase::kShapes + 10; ++i) {
    EXPECT_THAT(RowsOf(database_, "select a as c" + std::to_string(i) + " from t where a=1"), ElementsAre("1"));
  }
  const std::size_t prepared = database_.prepare_count();
  const auto again = database_.Open("select a from t where a>2");
  EXPECT_EQ(database_.prepare_count(), prepared + 1);
  EXPECT_THAT(RemainingRows(*rows), ElementsAre("2", "3", "4", "5"));
  EXPECT_THAT(RemainingRows(*again), ElementsAre("3", "4", "5"));
}

TEST_F(SqliteRowSetTest, FieldsAreFoundInAnyCase) {
  const auto rows = database_.Open("select ID,b as Caption from t where a=2");
  EXPECT_EQ(rows->Field("id"), Value(2));
  EXPECT_EQ(rows->Field("CAPTION"), Value("row 2"));
  EXPECT_EQ(rows->ColumnCount(), 2U);
  EXPECT_EQ(rows->ColumnName(1), "Caption");
}

TEST_F(SqliteRowSetTest, AColumnThatIsNotThereIsNamed) {
  const auto rows = database_.Open("select a from t");
  try {
    (void)rows->Field("nowhere");
    FAIL() << "found";
  } catch (const DatabaseError& error) {
    EXPECT_THAT(error.what(), HasSubstr("nowhere"));
    EXPECT_EQ(error.Statement(), "select a from t");
  }
  EXPECT_THROW((void)rows->FieldAt(1), DatabaseError);
}

TEST_F(SqliteRowSetTest, WithoutACurrentRowThereIsNothingToRead) {
  const auto none = database_.Open("select a from t where a=0");
  EXPECT_TRUE(none->AtEnd());
  EXPECT_TRUE(none->BeforeBegin());
  EXPECT_THROW((void)none->Field("a"), DatabaseError);
  EXPECT_THROW((void)none->FieldAt(0), DatabaseError);
  EXPECT_THROW(none->MoveNext(), DatabaseError);

  const auto one = database_.Open("select a from t where a=1");
  EXPECT_FALSE(one->AtEnd());
  EXPECT_FALSE(one->BeforeBegin());
  one->MoveNext();
  EXPECT_TRUE(one->AtEnd());
  EXPECT_FALSE(one->BeforeBegin());
  EXPECT_THROW((void)one->Field("a"), DatabaseError);
  EXPECT_THROW(one->MoveNext(), DatabaseError);
}

TEST_F(SqliteRowSetTest, ColumnsAreKnownWithoutRows) {
  const auto rows = database_.Open("select a,b from t where a=0");
  ASSERT_EQ(rows->ColumnCount(), 2U);
  EXPECT_EQ(rows->ColumnName(0), "a");
}

TEST_F(SqliteRowSetTest, AClosedRowSetIsAtItsEnd) {
  const auto rows = database_.Open("select a from t");
  rows->Close();
  rows->Close();
  EXPECT_TRUE(rows->AtEnd());
  EXPECT_THROW((void)rows->Field("a"), DatabaseError);
  EXPECT_THROW(rows->AddNew(), DatabaseError);
  EXPECT_EQ(rows->ColumnCount(), 1U);
}

TEST_F(SqliteRowSetTest, ANewRowTakesDefaultsForWhatIsNotSet) {
  Run("create table d (ID integer primary key autoincrement, a integer default 7, b text, c blob)");
  const auto rows = database_.Open("select top 1 * From d");
  rows->AddNew();
  rows->SetField("B", "first");
  rows->SetField("b", std::string("t\0x", 3));
  rows->SetBinary("c", std::string("\0\xff", 2));
  rows->Update();
  rows->AddNew();
  rows->Update();
  EXPECT_THAT(RowsOf(database_, "select ID,a,hex(b),hex(c),typeof(b),typeof(c) from d"),
              ElementsAre("1|7|740078|00FF|text|blob", "2|7|||null|null"));
  EXPECT_EQ(database_.Execute("SELECT @@IDENTITY AS ExecuteID")->Field("ExecuteID"), Value(2));
}

TEST_F(SqliteRowSetTest, ANewRowHoldsEveryKindOfValue) {
  const auto rows = database_.Open("select * from t");
  rows->AddNew();
  rows->SetField("a", 2.5);
  rows->SetField("b", nullptr);
  rows->Update();
  EXPECT_THAT(RowsOf(database_, "select a,b from t where ID=6"), ElementsAre("2.5|NULL"));
}

TEST_F(SqliteRowSetTest, OnlyABegunRowOfOneTableCanBeStored) {
  const auto rows = database_.Open("select a from t");
  EXPECT_THROW(rows->SetField("a", 1), DatabaseError);
  EXPECT_THROW(rows->SetBinary("a", "x"), DatabaseError);
  EXPECT_THROW(rows->Update(), DatabaseError);
  rows->AddNew();
  EXPECT_THROW(rows->SetField("nowhere", 1), DatabaseError);
  rows->SetField("b", "not in the query, yet in the table");
  rows->Update();
  EXPECT_THROW(rows->Update(), DatabaseError);
  EXPECT_THROW(database_.Open("select t.a from t, t as u")->AddNew(), DatabaseError);
  EXPECT_THROW(database_.Open("select 1 as a")->AddNew(), DatabaseError);
}

TEST_F(SqliteRowSetTest, ARefusedRowRaisesTheEnginesMessage) {
  Run("create table u (a integer not null)");
  const auto rows = database_.Open("select * from u");
  rows->AddNew();
  try {
    rows->Update();
    FAIL() << "stored";
  } catch (const DatabaseError& error) {
    EXPECT_STREQ(error.what(), "NOT NULL constraint failed: u.a");
  }
}

TEST_F(SqliteRowSetTest, AFinishedOrClosedRowSetHoldsNoLock) {
  const auto finished = database_.Open("select a from t where a=1");
  finished->MoveNext();
  const auto closed = database_.Open("select a from t");
  closed->Close();
  const auto empty = database_.Open("select a from t where a=0");
  // Refused while a statement reads.
  EXPECT_NO_THROW(Run("vacuum"));
}

TEST_F(SqliteRowSetTest, AnErrorInTheMiddleOfTheRowsComesWhenItsRowIsReached) {
  Run("insert into t (a,b) values (6,'{')");
  const auto query = "select case a when 6 then json(b) else b end as j from t";
  const auto reading = database_.Open(query);
  for (int i = 1; i < 5; ++i) reading->MoveNext();
  EXPECT_THROW(reading->MoveNext(), DatabaseError);
  EXPECT_TRUE(reading->AtEnd());

  const auto kept = database_.Open(query);
  Run("delete from t");
  for (int i = 1; i < 5; ++i) kept->MoveNext();
  EXPECT_EQ(kept->Field("j"), Value("row 5"));
  EXPECT_THROW(kept->MoveNext(), DatabaseError);
  EXPECT_TRUE(kept->AtEnd());
}

TEST_F(SqliteRowSetTest, RowsOfAChangeAreGivenOnce) {
  const auto rows = database_.Execute("insert into t (a) values (8) returning ID,a");
  ASSERT_NE(rows, nullptr);
  EXPECT_THAT(RemainingRows(*rows), ElementsAre("6|8"));
  EXPECT_EQ(database_.Execute("update t set a=9 where a=8"), nullptr);
}

}  // namespace
}  // namespace talm_flow::adapters
