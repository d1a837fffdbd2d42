/// The adapter over ODBC: connecting, what reaches a driver, and long and foreign texts. What every database shows is in
/// tests/conformance.

#include "adapters/odbc_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/rows.h"
#include "support/run_program.h"
#include "support/world.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"
#include "talm_flow/host/unit_of_work.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

using test::RowsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The error of something that has to fail.
DatabaseError ErrorOf(const std::function<void()>& failing) {
  try {
    failing();
  } catch (const DatabaseError& error) {
    return error;
  }
  return DatabaseError("nothing failed");
}

DatabaseError OpeningError(const std::string& url) {
  return ErrorOf([&] { (void)Open(url); });
}

// ---- Connecting -----------------------------------------------------------------------------------------------------

TEST(OdbcConnectingTest, AMissingDriverIsToldByTheManager) {
  const DatabaseError error = OpeningError("odbc:Driver=/nowhere/driver.so;dialect=mariadb");
  EXPECT_THAT(error.what(), HasSubstr("/nowhere/driver.so"));
  EXPECT_EQ(error.State().substr(0, 5), "01000");
  EXPECT_EQ(OpeningError("odbc:DSN=no_such_source;dialect=mariadb").State(), "IM002");
}

TEST(OdbcConnectingTest, ARefusedConnectionIsToldByTheDriver) {
  const DatabaseError error =
      OpeningError("odbc:Driver=MariaDB Unicode;Server=127.0.0.1;Port=1;Uid=a;Pwd=secret;dialect=mariadb");
  EXPECT_THAT(error.what(), HasSubstr("127.0.0.1"));
  EXPECT_THAT(error.what(), testing::Not(HasSubstr("secret")));
}

TEST(OdbcConnectingTest, AMalformedUrlIsRefusedBeforeAnythingIsAsked) {
  EXPECT_THROW((void)Open("odbc:Driver=SQLite3"), ArgumentError);
  EXPECT_THROW((void)Open("odbc:"), ArgumentError);
}

TEST(OdbcConnectingTest, AnOptionThatTheAdapterSetsItselfIsRefused) {
  try {
    (void)Open("odbc:Driver=MariaDB Unicode;Server=127.0.0.1;Port=1;charset=latin1;dialect=mariadb");
    ADD_FAILURE() << "accepted";
  } catch (const ArgumentError& error) {
    EXPECT_THAT(error.what(), HasSubstr("CHARSET"));
  }
}

// ---- Servers that speak the component's dialect ---------------------------------------------------------------------

/// A connection whose driver writes down what it gets. No server is behind it.
class NativeDialectTest : public testing::Test {
 protected:
  NativeDialectTest() {
    database_ = Open("odbc:Driver=" TALM_FLOW_RECORDING_DRIVER ";File=" + folder_.File("texts") + ";dialect=tsql");
  }

  [[nodiscard]] std::vector<std::string> Recorded() const {
    std::vector<std::string> lines;
    const std::string texts = test::ReadFile(folder_.path() / "texts");
    for (const std::string_view line : Split(texts, "\n")) lines.emplace_back(line);
    if (!lines.empty()) lines.pop_back();  // behind the last line's end
    return lines;
  }

  test::TemporaryFolder folder_;
  std::unique_ptr<Database> database_;
};

TEST_F(NativeDialectTest, TextsReachTheDriverToTheLetter) {
  const std::vector<std::string> texts = {
      "Select Top 1 ID From  DataApp Where Appover='O''Brien; ? 系统\xF0\x9F\x98\x80' Order By ID Desc",
      "SELECT @@IDENTITY AS ExecuteID",
      "delete from WorkFlowExecute where ExecuteID in (select Top 100000 ExecuteID From WorkFlowExecuteID)",
      "Update WorkFlowExecuteTimes set Times=Times+1 where ExecuteID=-5 and FlowNo=1.50",
      "Insert Into WorkFlowExecute (Interval) Values ({fn now()})"};
  std::vector<std::string> expected;
  for (const std::string& text : texts) {
    (void)database_->Execute(text);
    expected.push_back("run " + text);
  }
  EXPECT_EQ(Recorded(), expected);
}

TEST_F(NativeDialectTest, EveryTextOfAFlowReachesTheDriverToTheLetter) {
  test::World world;
  world.Run("Insert Into TableName (TableID) Values (12)");
  world.Step(7, 1, 0, "C_21");
  world.Parameter(7, 1, "C_21_1", "v");
  world.Parameter(7, 1, "C_21_2", "\"it's \"+\"中\"");
  Command(world.services()).FlowExecute(world.connection(), 7, 12, 345, "李雷", "10.0.0.7", 0, 0);
  std::vector<std::string> expected;
  for (const std::string& text : world.trace()) {
    (void)database_->Execute(text);
    expected.push_back("run " + text);
  }
  EXPECT_GT(expected.size(), 8U);
  EXPECT_EQ(Recorded(), expected);
}

TEST_F(NativeDialectTest, SecondStatementsAndParameterMarksNeverReachTheDriver) {
  for (const char* const text : {"delete from DataApp; delete from DataRec", "delete from DataApp where Status=?",
                                 "delete from DataApp where Status=@x"}) {
    EXPECT_EQ(ErrorOf([&] { (void)database_->Execute(text); }).Statement(), text);
  }
  EXPECT_THROW((void)database_->Open("delete from DataApp"), DatabaseError);
  EXPECT_THAT(Recorded(), IsEmpty());
}

TEST_F(NativeDialectTest, UnitsOfWorkTakeTheLockOfTheServer) {
  host::UnitOfWork(*database_).Run([&] {
    EXPECT_TRUE(database_->InTransaction());
    host::UnitOfWork(*database_).Run([&] { (void)database_->Execute("delete from DataApp"); });
    EXPECT_THROW(host::UnitOfWork(*database_).Run([] { throw DatabaseError("not this"); }), DatabaseError);
  });
  EXPECT_FALSE(database_->InTransaction());
  EXPECT_THAT(Recorded(), ElementsAre("run begin transaction", HasSubstr("sp_getapplock @Resource='talm_flow'"),
                                      "run save transaction unit_of_work_1", "run delete from DataApp",
                                      "run save transaction unit_of_work_1", "run rollback transaction unit_of_work_1",
                                      "run commit"));
}

TEST_F(NativeDialectTest, TablesAreCreatedInTheServersDialect) {
  database_->CreateTables();
  const auto recorded = Recorded();
  EXPECT_THAT(recorded, testing::Contains(HasSubstr("CREATE TABLE [WorkFlowExecute]")));
  EXPECT_THAT(recorded, testing::Contains("run commit"));
}

// ---- Texts of every size and script ---------------------------------------------------------------------------------

class OdbcTextsTest : public testing::Test {
 protected:
  OdbcTextsTest() : database_(Open(Url())) { database_->CreateTables(); }

  [[nodiscard]] std::string Url() const {
    return "odbc:Driver=SQLite3;Timeout=1;Database=" + folder_.File("flow.db") + ";dialect=sqlite";
  }

  test::TemporaryFolder folder_;
  std::unique_ptr<Database> database_;
};

TEST_F(OdbcTextsTest, TextsAndBinaryContentOfAnyLengthComeBackWhole) {
  std::string pattern = "x\xF0\x9F\x98\x80中'";
  for (const std::size_t copies : {1UL, 127UL, 128UL, 1000UL, 300000UL}) {
    std::string text;
    for (std::size_t i = 0; i < copies; ++i) text += pattern;
    const auto rows = database_->Open("select * from TableFile");
    rows->AddNew();
    rows->SetField("FileName", text);
    rows->SetBinary("FileContent", text + '\0' + text);
    rows->Update();
    const auto stored = database_->Open("Select Top 1 * From TableFile Where FileName=" + test::Literal(text));
    ASSERT_FALSE(stored->AtEnd()) << copies;
    EXPECT_TRUE(stored->Field("FileName") == Value(text)) << copies;
    EXPECT_TRUE(stored->Field("FileContent") == Value(text + '\0' + text)) << copies;
  }
}

TEST_F(OdbcTextsTest, NamesAndMessagesKeepTheirScript) {
  const auto rows = database_->Open("select 1 as 名, 'a中\xF0\x9F\x98\x80' as \"x\xF0\x9F\x98\x80\"");
  EXPECT_EQ(rows->ColumnName(0), "名");
  EXPECT_EQ(rows->Field("x\xF0\x9F\x98\x80"), Value("a中\xF0\x9F\x98\x80"));
  EXPECT_THAT(ErrorOf([&] { (void)database_->Open("select a from 没有"); }).what(), HasSubstr("没有"));
}

TEST_F(OdbcTextsTest, BytesThatAreNoTextAreRefused) {
  const std::string text = "insert into DataNotice (Recver) values ('\xFF')";
  EXPECT_EQ(ErrorOf([&] { (void)database_->Execute(text); }).Statement(), text);
  EXPECT_THAT(RowsOf(*database_, "select Recver from DataNotice"), IsEmpty());
}

TEST_F(OdbcTextsTest, NumbersOfEveryKindAreStored) {
  (void)database_->Execute("create table numbers (whole integer, share real)");
  const auto rows = database_->Open("select * from numbers");
  rows->AddNew();
  rows->SetField("whole", Value(true));
  rows->SetField("share", Value(-0.125));
  rows->Update();
  (void)database_->Execute("insert into numbers (whole,share) values (-9007199254740993,1e300)");
  (void)database_->Execute("insert into numbers (whole,share) values (99999999999999999999,-2)");
  EXPECT_THAT(RowsOf(*database_, "select whole from numbers where share<0 order by share"),
              testing::ElementsAre("1E+20", "-1"));
  EXPECT_THAT(RowsOf(*database_, "select whole from numbers where share=1e300"),
              testing::ElementsAre("-9007199254740993"));
}

TEST_F(OdbcTextsTest, AnErrorKeepsTheDriversMessageAndBothItsCodes) {
  const DatabaseError error = ErrorOf([&] { (void)database_->Open("select a from NoSuchTable"); });
  EXPECT_STREQ(error.what(), "[SQLite]no such table: NoSuchTable (1)");
  EXPECT_EQ(error.State(), "HY000:1");
}

TEST_F(OdbcTextsTest, AUnitOfWorkThatMeetsAnotherMayBeRepeated) {
  const auto other = Open(Url());
  other->Begin();
  const DatabaseError error = ErrorOf([&] { database_->Begin(); });
  EXPECT_TRUE(database_->MayBeRepeated(error)) << error.what() << " " << error.State();
  EXPECT_FALSE(database_->InTransaction());
  other->Rollback();
  database_->Begin();
  database_->Rollback();
  EXPECT_FALSE(database_->MayBeRepeated(ErrorOf([&] { (void)database_->Execute("nonsense"); })));
}

TEST_F(OdbcTextsTest, TransactionsThatTheHostBeginsItselfAreKnown) {
  (void)database_->Execute("begin");
  EXPECT_TRUE(database_->InTransaction());
  EXPECT_THROW(database_->Begin(), DatabaseError);
  (void)database_->Execute("insert into DataNotice (Sort) values (1)");
  (void)database_->Execute(" rollback ");
  EXPECT_FALSE(database_->InTransaction());
  EXPECT_THAT(RowsOf(*database_, "select Sort from DataNotice"), IsEmpty());
}

}  // namespace
}  // namespace talm_flow::adapters
