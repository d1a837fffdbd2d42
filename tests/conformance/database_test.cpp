/// What every database shows, whichever engine is behind the connection.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/databases.h"
#include "support/rows.h"
#include "support/world.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/error.h"
#include "talm_flow/host/unit_of_work.h"

namespace talm_flow::adapters {
namespace {

using test::Literal;
using test::RemainingRows;
using test::RowsOf;
using testing::ElementsAre;
using testing::IsEmpty;

class DatabaseTest : public testing::TestWithParam<std::string> {
 protected:
  void Run(const std::string& statement) { (void)database_->Execute(statement); }
  [[nodiscard]] std::vector<std::string> Rows(const std::string& query) { return RowsOf(*database_, query); }

  test::CleanDatabase database_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Databases, DatabaseTest, testing::ValuesIn(test::DatabasesToCover()),
                         [](const auto& database) { return database.param; });

// ---- Keys and limits ------------------------------------------------------------------------------------------------

TEST_P(DatabaseTest, TheKeyGivenLastIsReadOnTheSameConnection) {
  Run("Insert Into WorkFlowExecuteID (FlowID) Values (1)");
  const auto first = database_->Execute("SELECT @@IDENTITY AS ExecuteID");
  ASSERT_NE(first, nullptr);
  const Value key = first->Field("ExecuteID");
  Run("Insert Into WorkFlowExecuteID (FlowID) Values (1)");
  const auto second = database_->Execute("SELECT @@IDENTITY AS ExecuteID");
  EXPECT_EQ(second->Field("ExecuteID"), Value(key.Whole() + 1));
}

TEST_P(DatabaseTest, AKeyIsNotGivenAgain) {
  for (int i = 0; i < 3; ++i) Run("insert into DataApp (ExecuteID) values (1)");
  Run("delete from DataApp where DataAppID=3");
  Run("insert into DataApp (ExecuteID) values (2)");
  EXPECT_THAT(Rows("Select Top 1 DataAppID From DataApp Order By DataAppID Desc"), ElementsAre("4"));
}

TEST_P(DatabaseTest, TopLimitsTheRowsAtEveryDepth) {
  for (int i = 1; i <= 4; ++i) {
    Run("insert into WorkFlowExecuteID (RootExecuteID) values (9)");
    Run("insert into DataApp (ExecuteID) values (" + std::to_string(i) + ")");
  }
  EXPECT_EQ(Rows("Select Top 3 DataAppID From DataApp").size(), 3U);
  EXPECT_THAT(Rows("select Top 2 DataAppID From DataApp where ExecuteID in (select Top 3 ExecuteID From "
                   "WorkFlowExecuteID where RootExecuteID=9) and ExecuteID>1"),
              ElementsAre("2", "3"));
  Run("delete from DataApp where ExecuteID in (select Top 3 ExecuteID From WorkFlowExecuteID where RootExecuteID=9)");
  EXPECT_THAT(Rows("select ExecuteID from DataApp"), ElementsAre("4"));
}

// ---- Order ----------------------------------------------------------------------------------------------------------

TEST_P(DatabaseTest, RowsWithoutAnOrderComeAsTheyWereInserted) {
  for (const int step : {5, 1, 3, 2, 4}) {
    Run("insert into WorkFlowConstruction (FlowID,FlowNo) values (1," + std::to_string(step) + ")");
  }
  EXPECT_THAT(Rows("select Top 10000 FlowNo from WorkFlowConstruction where FlowID=1"),
              ElementsAre("5", "1", "3", "2", "4"));
  EXPECT_THAT(Rows("select Top 1 FlowNo from WorkFlowConstruction where FlowID=1 and FlowNo<4"), ElementsAre("1"));
}

TEST_P(DatabaseTest, TiedRowsComeAsTheyWereInserted) {
  for (const char* const title : {"z", "a", "m"}) {
    Run("insert into WorkFlowFunctionInput (FlowID,OrderNo,InputTitle) values (1,7," + Literal(title) + ")");
  }
  EXPECT_THAT(Rows("Select Top 10000 InputTitle From WorkFlowFunctionInput Where FlowID=1 Order By OrderNo"),
              ElementsAre("z", "a", "m"));
  EXPECT_THAT(Rows("Select Top 10000 InputTitle From WorkFlowFunctionInput Where FlowID=1 Order By OrderNo desc"),
              ElementsAre("z", "a", "m"));
}

TEST_P(DatabaseTest, TextsAreOrderedByCodePointAndNullComesFirst) {
  for (const char* const name : {"b", "B", "中", "a", "\xF0\x9F\x98\x80", "", "é", "_", "10", "9", "\xEF\xBD\x9E"}) {
    Run("insert into WorkFlowName (FlowName) values (" + Literal(name) + ")");
  }
  Run("insert into WorkFlowName (Remark) values ('no name')");
  EXPECT_THAT(Rows("Select Top 10000 FlowName from WorkFlowName Order By FlowName"),
              ElementsAre("NULL", "", "10", "9", "B", "_", "a", "b", "é", "中", "\xEF\xBD\x9E", "\xF0\x9F\x98\x80"));
  EXPECT_THAT(Rows("Select Top 2 FlowName from WorkFlowName where FlowName<'9' Order By FlowName"),
              ElementsAre("", "10"));
}

TEST_P(DatabaseTest, TextsAreComparedWithTheirCase) {
  Run("insert into WorkFlowName (FlowName) values ('Ann')");
  EXPECT_EQ(Rows("select FlowID from WorkFlowName where FlowName='Ann'").size(), 1U);
  EXPECT_EQ(Rows("select FlowID from WorkFlowName where FlowName='ann'").size(), 0U);
  EXPECT_EQ(Rows("select FlowID from WorkFlowName where FlowName='Ann '").size(), 0U);
  EXPECT_EQ(Rows("select flowid from workflowname where FLOWNAME='Ann'").size(), 1U);
}

// ---- Values ---------------------------------------------------------------------------------------------------------

TEST_P(DatabaseTest, TextsComeBackAsTheyWereStored) {
  for (const std::string& text :
       {std::string("'"), std::string("O''Brien; -- ? :x @y $1 \\' \" ` [ ]"), std::string("系统 \xF0\x9F\x98\x80"),
        std::string("流程变量"), std::string("\r\n\t"), std::string(100000, '\''), std::string()}) {
    Run("insert into WorkFlowVariable (VariableName,VariableValue) values ('v'," + Literal(text) + ")");
    const auto rows =
        database_->Open("Select Top 1 VariableValue From WorkFlowVariable Where VariableValue=" + Literal(text));
    ASSERT_FALSE(rows->AtEnd());
    EXPECT_TRUE(rows->Field("variablevalue") == Value(text));
    rows->Close();
    Run("delete from WorkFlowVariable");
  }
}

TEST_P(DatabaseTest, NumbersComeBackAsNumbersAndNullAsNull) {
  Run("insert into WorkFlowConstruction (FlowID,FlowNo) values (-2147483648,2147483647)");
  const auto rows = database_->Open("select * from WorkFlowConstruction");
  EXPECT_EQ(rows->Field("FlowID"), Value(-2147483648LL));
  EXPECT_EQ(rows->Field("flowno"), Value(2147483647));
  EXPECT_TRUE(rows->Field("Command").IsNull());
}

TEST_P(DatabaseTest, ADecimalNumberKeepsItsFraction) {
  database_->CreateFormTable(3, {{"Amount", "InputNum"}, {"Note", "InputText"}});
  Run("insert into TableData3 (Amount,Note) values (1.25,'x')");
  Run("Update TableData3 set Amount=-0.5 Where ID=1");
  EXPECT_EQ(database_->Open("select Amount from TableData3")->Field("Amount"), Value(-0.5));
}

TEST_P(DatabaseTest, DefaultsFillWhatAnInsertLeavesOut) {
  Run("insert into DataApp (ExecuteID) values (1)");
  EXPECT_THAT(Rows("select Status,AppDataID,RelatingID,NoticInf from DataApp"), ElementsAre("0|0|NULL|NULL"));
  Run("insert into WorkFlowChildRec (ParentExecuteID) values (1)");
  EXPECT_THAT(Rows("select ExecuteParent from WorkFlowChildRec"), ElementsAre("1"));
  Run("insert into TableName (TableID) values (1)");
  EXPECT_THAT(Rows("select AddEnable,Sort from TableName"), ElementsAre("1|0"));
}

TEST_P(DatabaseTest, BinaryContentIsStoredByteByByte) {
  std::string bytes;
  for (int i = 0; i < 512; ++i) bytes += static_cast<char>(i);
  const auto rows = database_->Open("Select top 1 * From TableFile");
  rows->AddNew();
  rows->SetField("TableID", 1);
  rows->SetField("FileName", "it's.bin");
  rows->SetBinary("FileContent", bytes);
  rows->Update();
  const auto stored = database_->Open("Select Top 1 * From TableFile Where ID=1");
  EXPECT_TRUE(stored->Field("FileContent") == Value(bytes));
  EXPECT_EQ(stored->Field("FileName"), Value("it's.bin"));
  EXPECT_TRUE(stored->Field("DataID").IsNull());
}

TEST_P(DatabaseTest, AnAddedRowTakesValuesOfEveryKind) {
  const auto rows = database_->Open("Select top 1 * From TableFile");
  rows->AddNew();
  rows->SetField("TableID", Value(true));
  rows->SetField("DataID", Value(false));
  rows->SetField("Size", Value(2.0));
  rows->SetField("FileType", Value());
  rows->Update();
  EXPECT_THAT(Rows("select TableID,DataID,Size,FileType from TableFile"), ElementsAre("-1|0|2|NULL"));
}

TEST_P(DatabaseTest, AnAddedRowTakesNoColumnThatTheTableLacks) {
  const auto rows = database_->Open("Select top 1 * From TableFile");
  rows->AddNew();
  EXPECT_THROW(rows->SetField("Nowhere", 1), DatabaseError);
}

// ---- Row sets -------------------------------------------------------------------------------------------------------

TEST_P(DatabaseTest, ARowSetShowsTheRowsOfItsOpening) {
  for (int i = 1; i <= 3; ++i) Run("insert into DataNotice (Sort) values (" + std::to_string(i) + ")");
  const auto rows = database_->Open("select Sort from DataNotice where Sort<10");
  Run("insert into DataNotice (Sort) values (4)");
  Run("update DataNotice set Sort=Sort+5");
  Run("delete from DataNotice where Sort=8");
  EXPECT_THAT(RemainingRows(*rows), ElementsAre("1", "2", "3"));
}

TEST_P(DatabaseTest, AQueryWithoutRowsIsAtBothItsEnds) {
  const auto rows = database_->Open("Select Top 1 * From DataApp");
  EXPECT_TRUE(rows->AtEnd());
  EXPECT_TRUE(rows->BeforeBegin());
  EXPECT_THROW((void)rows->Field("DataAppID"), DatabaseError);
  EXPECT_THROW(rows->MoveNext(), DatabaseError);
}

TEST_P(DatabaseTest, RowSetsOfOneTextAreIndependent) {
  for (int i = 1; i <= 3; ++i) Run("insert into DataNotice (Sort) values (" + std::to_string(i) + ")");
  const auto outer = database_->Open("select Sort from DataNotice");
  outer->MoveNext();
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("1", "2", "3"));
  EXPECT_THAT(RemainingRows(*outer), ElementsAre("2", "3"));
}

// ---- Errors ---------------------------------------------------------------------------------------------------------

TEST_P(DatabaseTest, AFailingStatementRaisesTheTextThatFailed) {
  for (const std::string& text :
       {std::string("select a from NoSuchTable"), std::string("select NoSuchColumn from DataApp"),
        std::string("delete from DataApp where DataAppID="), std::string("nonsense"),
        std::string("delete from DataApp; delete from DataRec"), std::string("delete from DataApp where Status=?"),
        std::string("insert into DataApp (Appover) values ('x)")}) {
    try {
      (void)database_->Execute(text);
      ADD_FAILURE() << "accepted: " << text;
    } catch (const DatabaseError& error) {
      EXPECT_EQ(error.Statement(), text);
      EXPECT_STRNE(error.what(), "");
    }
  }
}

TEST_P(DatabaseTest, AStatementThatFailsDisturbsNoOther) {
  Run("insert into DataNotice (Sort) values (1)");
  const auto rows = database_->Open("select Sort from DataNotice");
  EXPECT_THROW(Run("insert into NoSuchTable (a) values (1)"), DatabaseError);
  EXPECT_THAT(RemainingRows(*rows), ElementsAre("1"));
  EXPECT_NO_THROW(Run("insert into DataNotice (Sort) values (2)"));
}

TEST_P(DatabaseTest, WhatIsNoQueryCannotBeOpened) {
  EXPECT_THROW((void)database_->Open("insert into DataNotice (Sort) values (1)"), DatabaseError);
  EXPECT_EQ(database_->Execute("insert into DataNotice (Sort) values (2)"), nullptr);
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("2"));
}

// ---- Transactions and tables ----------------------------------------------------------------------------------------

TEST_P(DatabaseTest, AUnitOfWorkIsAllOrNothing) {
  EXPECT_THROW(host::UnitOfWork(*database_).Run([&] {
    Run("insert into DataNotice (Sort) values (1)");
    Run("insert into NoSuchTable (a) values (1)");
  }),
               DatabaseError);
  EXPECT_THAT(Rows("select Sort from DataNotice"), IsEmpty());
  host::UnitOfWork(*database_).Run([&] { Run("insert into DataNotice (Sort) values (2)"); });
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("2"));
}

TEST_P(DatabaseTest, InnerUnitsOfWorkAreTakenBackAlone) {
  host::UnitOfWork(*database_).Run([&] {
    Run("insert into DataNotice (Sort) values (1)");
    EXPECT_THROW(host::UnitOfWork(*database_).Run([&] {
      Run("insert into DataNotice (Sort) values (2)");
      Run("insert into NoSuchTable (a) values (1)");
    }),
                 DatabaseError);
  });
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("1"));
}

TEST_P(DatabaseTest, TablesAreCompleteAndCanBeCreatedAgain) {
  EXPECT_THAT(database_->MissingTables(), IsEmpty());
  Run("insert into DataNotice (Sort) values (1)");
  EXPECT_NO_THROW(database_->CreateTables());
  EXPECT_THAT(Rows("select Sort from DataNotice"), ElementsAre("1"));
  Run("drop table DataTran");
  EXPECT_THAT(database_->MissingTables(), ElementsAre("DataTran"));
  database_->CreateTables();
  EXPECT_THAT(database_->MissingTables(), IsEmpty());
}

TEST_P(DatabaseTest, AFormTableIsRegisteredWithItsUnits) {
  database_->CreateFormTable(5, {{"Subject", "InputText"}, {"Amount", "InputNum"}});
  database_->CreateFormTable(5, {{"Other", "InputText"}});
  EXPECT_THAT(Rows("select TableID,AddEnable,Sort from TableName"), ElementsAre("5|1|0"));
  EXPECT_THAT(Rows("select InUnitID,InUnitType from TableInUnitConstruction where TableID=5"),
              ElementsAre("Subject|InputText", "Amount|InputNum"));
  Run("insert into TableData5 (name,inputtime,Subject,Amount) values ('Ann','2026-01-31 09:05:00','s',2)");
  EXPECT_THAT(Rows("Select Top 1 ID from TableData5 Where (name='Ann' and amount=2) Order By ID Desc"),
              ElementsAre("1"));
  EXPECT_THROW(database_->CreateFormTable(6, {{"a b", "InputText"}}), ArgumentError);
  EXPECT_THROW(database_->CreateFormTable(6, {{"a", "InputText"}, {"A", "InputText"}}), ArgumentError);
}

}  // namespace
}  // namespace talm_flow::adapters
