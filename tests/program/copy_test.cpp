#include <sqlite3.h>

#include "program/copied_database.h"

namespace talm_flow::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CopyTest : public CopiedDatabaseTest {
 protected:
  /// A trigger of the target holds several statements, which no adapter lets through.
  void Trigger(const char* definition) const {
    sqlite3* target = nullptr;
    ASSERT_EQ(sqlite3_open(At("to.db").c_str(), &target), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(target, definition, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(target);
    sqlite3_close(target);
  }

  [[nodiscard]] Words CopyWords() const { return {"copy", "--from", "sqlite:from.db", "--to", "sqlite:to.db"}; }
};

TEST_F(CopyTest, EveryRowKeepsItsKeyAndItsValues) {
  const auto told = Succeed(CopyWords());
  EXPECT_THAT(told, HasSubstr("Copied 28 tables with 10 rows; each row equals its source.\n"));
  ExpectSameIn("select * from TableData12 order by ID");
  ExpectSameIn("select ID,typeof(Days) as d,typeof(Why) as w,typeof(name) as n from TableData12 order by ID");
  ExpectSameIn("select ID,hex(FileContent) as content,typeof(FileContent) as type from TableFile order by ID");
  ExpectSameIn("select * from DataApp order by DataAppID");
  ExpectSameIn("select * from TableName");
  ExpectSameIn("select * from TableInUnitConstruction order by ID");
}

TEST_F(CopyTest, KeysContinueAboveTheHighestThatWasEverGiven) {
  (void)Succeed(CopyWords());
  (void)In("to.db", "insert into DataApp (ExecuteID) values (4)");
  EXPECT_EQ(In("to.db", "Select Top 1 DataAppID From DataApp Order By DataAppID Desc")[0]["DataAppID"], 4);
  const auto doctor = Talmflow({"--db", "sqlite:to.db", "doctor"}).out;
  EXPECT_THAT(doctor, testing::Not(HasSubstr("schema")));
  EXPECT_THAT(doctor, testing::Not(HasSubstr("key")));
}

TEST_F(CopyTest, ItTellsWhatItCopied) {
  auto words = CopyWords();
  words.insert(words.begin(), "--json");
  const auto report = json::parse(Succeed(words));
  ASSERT_EQ(report.size(), 28U);
  EXPECT_EQ(report.back(), json::parse(R"({"table":"TableData12","rows":3,"last_key":3})"));
  for (const auto& table : report) {
    if (table["table"] != "DataApp") continue;
    EXPECT_EQ(table, json::parse(R"({"table":"DataApp","rows":2,"last_key":3})"));
  }
}

TEST_F(CopyTest, MoreRowsThanAreReadAtOnceAreCopied) {
  (void)In("from.db",
           "with recursive n(i) as (select 1 union all select i+1 from n where i<1203) insert into DataNotice (Sort) "
           "select i from n");
  (void)In("from.db", "delete from DataNotice where ID%7=0");
  (void)Succeed(CopyWords());
  EXPECT_EQ(In("to.db", "select count(*) as n from DataNotice")[0]["n"], 1032);
  ExpectSameIn("select sum(ID) as s,sum(Sort) as t,max(ID) as m from DataNotice");
}

TEST_F(CopyTest, OnlyAnEmptyDatabaseIsCopiedInto) {
  (void)Succeed({"--db", "sqlite:to.db", "init"});
  (void)In("to.db", "insert into DataRec (TableID) values (1)");
  EXPECT_EQ(Fail(1, CopyWords()),
            "talmflow: --to: the database has rows in DataRec; only an empty one can be copied into\n");
  EXPECT_EQ(In("to.db", "select * from DataApp"), json::array());
  (void)In("to.db", "delete from DataRec");
  (void)Succeed(CopyWords());
  EXPECT_THAT(Fail(1, CopyWords()), HasSubstr("has rows in DataApp"));
}

TEST_F(CopyTest, WhatAnInterruptedCopyLeftIsNoHindrance) {
  // Tables that were made before the rows were to come.
  (void)Succeed({"--db", "sqlite:to.db", "init"});
  (void)In("to.db",
           "create table TableData12 (ID integer primary key autoincrement, name text, inputtime text, Days "
           "real, Why text)");
  (void)Succeed(CopyWords());
  ExpectSameIn("select * from TableData12 order by ID");
}

TEST_F(CopyTest, AFailingCopyLeavesNoRow) {
  (void)Succeed({"--db", "sqlite:to.db", "init"});
  Trigger("create trigger refuse before insert on TableFile begin select raise(abort,'no files'); end");
  EXPECT_THAT(Fail(1, CopyWords()), HasSubstr("no files"));
  EXPECT_EQ(In("to.db", "select * from DataApp"), json::array());
  (void)In("to.db", "drop trigger refuse");
  (void)Succeed(CopyWords());
}

TEST_F(CopyTest, RowsThatComeOutDifferentAreNotKept) {
  (void)Succeed({"--db", "sqlite:to.db", "init"});
  Trigger(
      "create trigger spoil after insert on TableFile begin update TableFile set FileName='b.bin' where ID=new.ID and "
      "FileName='a.bin'; end");
  EXPECT_EQ(Fail(1, CopyWords()), "talmflow: TableFile 1: the column FileName came out different; nothing is kept\n");
  EXPECT_EQ(In("to.db", "select * from DataApp"), json::array());
}

TEST_F(CopyTest, TablesThatDoNotFitAreRefused) {
  (void)Succeed({"--db", "sqlite:to.db", "init"});
  (void)In("to.db", "create table TableData12 (ID integer primary key autoincrement, name text, inputtime text)");
  EXPECT_EQ(Fail(1, CopyWords()),
            "talmflow: --to: the table TableData12 has no floating-point number column Days; drop it to have it made "
            "again\n");
  (void)In("from.db", "alter table TableData12 add column Extra blob");
  (void)In("to.db", "drop table TableData12");
  EXPECT_THAT(Fail(1, CopyWords()), HasSubstr("the column Extra of TableData12 holds neither numbers nor text"));
}

TEST_F(CopyTest, UrlsAreChecked) {
  EXPECT_THAT(Fail(2, {"copy", "--from", "sqlite:from.db"}), HasSubstr("--to is required"));
  EXPECT_THAT(Fail(2, {"copy", "--to", "sqlite:to.db"}), HasSubstr("--from is required"));
  EXPECT_EQ(Fail(2, {"copy", "--from", "sqlite:from.db", "--to", "sqlite:from.db"}),
            "talmflow: --from and --to name the same database\n");
  EXPECT_THAT(Fail(1, {"copy", "--from", "sqlite:from.db", "--to", "nonsense"}), HasSubstr("--to: "));
  EXPECT_THAT(Fail(1, {"copy", "--from", "paper:x", "--to", "sqlite:to.db"}), HasSubstr("--from: "));
  EXPECT_THAT(Fail(1, {"copy", "--from", "sqlite:none.db", "--to", "sqlite:to.db"}),
              HasSubstr("there is no database \"none.db\""));
  EXPECT_FALSE(Exists("to.db"));
}

}  // namespace
}  // namespace talm_flow::test
