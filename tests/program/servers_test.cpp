/// A database that moves from engine to engine, and one on a server that is looked after.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "program/copied_database.h"
#include "support/databases.h"
#include "support/rows.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

class ServersTest : public CopiedDatabaseTest {
 protected:
  [[nodiscard]] std::string Copy(const std::string& from, const std::string& to) const {
    return Succeed({"--json", "copy", "--from", from, "--to", to});
  }
  [[nodiscard]] std::string Doctor(const std::string& url) const { return Talmflow({"--db", url, "doctor"}).out; }
  [[nodiscard]] std::string DumpOf(const std::string& file) const {
    return Dump(*adapters::Open("sqlite:" + At(file)));
  }

  CleanDatabase postgresql_{"postgresql"};
  CleanDatabase mariadb_{"mariadb"};
};

TEST_F(ServersTest, ARowThatHasBeenOnEveryEngineIsStillTheSame) {
  const auto report = Copy("sqlite:from.db", postgresql_.url());
  EXPECT_EQ(Copy(postgresql_.url(), mariadb_.url()), report);
  EXPECT_EQ(Copy(mariadb_.url(), "sqlite:back.db"), report);
  const auto rows = DumpOf("from.db");
  EXPECT_THAT(rows, HasSubstr(std::string("'\0\xFF''\0'", 7)));
  EXPECT_EQ(DumpOf("back.db"), rows);
  const auto found = Doctor("sqlite:from.db");
  EXPECT_THAT(found, HasSubstr("DataApp"));
  for (const std::string& url : {postgresql_.url(), mariadb_.url(), std::string("sqlite:back.db")}) {
    EXPECT_EQ(Doctor(url), found) << url;
  }
}

TEST_F(ServersTest, NewRowsContinueBehindTheCopiedOnes) {
  (void)Copy("sqlite:from.db", postgresql_.url());
  (void)Copy(postgresql_.url(), mariadb_.url());
  for (adapters::Database* const database : {&*postgresql_, &*mariadb_}) {
    (void)database->Execute("insert into DataApp (ExecuteID) values (4)");
    (void)database->Execute("insert into TableData12 (name) values ('lee')");
    EXPECT_THAT(RowsOf(*database, "Select Top 1 DataAppID From DataApp Order By DataAppID Desc"),
                testing::ElementsAre("4"));
    EXPECT_THAT(RowsOf(*database, "Select Top 1 ID From TableData12 Order By ID Desc"), testing::ElementsAre("4"));
  }
}

TEST_F(ServersTest, ATargetWithRowsIsRefused) {
  (void)mariadb_->Execute("insert into DataRec (TableID) values (1)");
  for (const auto& [from, to] :
       {std::pair(std::string("sqlite:from.db"), mariadb_.url()), std::pair(postgresql_.url(), mariadb_.url())}) {
    EXPECT_EQ(Fail(1, {"copy", "--from", from, "--to", to}),
              "talmflow: --to: the database has rows in DataRec; only an empty one can be copied into\n");
  }
}

TEST_F(ServersTest, AValueThatAServerDoesNotTakeLeavesNoRow) {
  (void)In("from.db", "update DataApp set Status='none' where DataAppID=2");
  for (CleanDatabase* const target : {&postgresql_, &mariadb_}) {
    EXPECT_THAT(Fail(1, {"copy", "--from", "sqlite:from.db", "--to", target->url()}), HasSubstr("none"));
    EXPECT_THAT(RowsOf(**target, "select DataAppID from DataApp"), testing::IsEmpty());
    EXPECT_THAT(RowsOf(**target, "select ID from TableData12"), testing::IsEmpty());
  }
}

TEST_F(ServersTest, TheDoctorSeesWhatChangedOnAServer) {
  for (CleanDatabase* const database : {&postgresql_, &mariadb_}) {
    EXPECT_EQ(Doctor(database->url()), "The database is sound.\n");
    (void)(*database)->Execute("insert into WorkFlowExecuteTimes (ExecuteID,FlowNo,Times) values (77,1,1)");
  }
  (void)postgresql_->Execute("drop index WorkFlowExecuteID_FlowID");
  (void)mariadb_->Execute("drop index WorkFlowExecuteID_FlowID on WorkFlowExecuteID");
  for (CleanDatabase* const database : {&postgresql_, &mariadb_}) {
    const auto doctor = Talmflow({"--db", database->url(), "doctor"});
    EXPECT_EQ(doctor.status, 1);
    EXPECT_EQ(doctor.out,
              "error, schema: WorkFlowExecuteID: the index on (FlowID) is missing\n"
              "    create what is missing with talmflow init\n"
              "error, orphan: WorkFlowExecuteTimes: row 1 of an instance that does not exist\n"
              "    delete it: nothing reads it\n"
              "2 errors, 0 warnings.\n");
    (void)Succeed({"--db", database->url(), "init"});
    (void)(*database)->Execute("delete from WorkFlowExecuteTimes");
    EXPECT_EQ(Doctor(database->url()), "The database is sound.\n");
  }
}

}  // namespace
}  // namespace talm_flow::test
