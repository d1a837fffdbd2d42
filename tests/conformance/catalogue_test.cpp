/// What a database tells of its own tables.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/databases.h"
#include "support/rows.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CatalogueTest : public testing::TestWithParam<std::string> {
 protected:
  void Run(const std::string& statement) { (void)database_->Execute(statement); }
  [[nodiscard]] TableDescription Table(const std::string& name) {
    for (auto& table : database_->DescribeTables()) {
      if (table.name == name) return table;
    }
    ADD_FAILURE() << "no table " << name;
    return {};
  }

  test::CleanDatabase database_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Databases, CatalogueTest, testing::ValuesIn(test::DatabasesToCover()),
                         [](const auto& database) { return database.param; });

/// A table as one text.
std::string TextOf(const TableDescription& table) {
  std::string text = table.name + "(" + table.key;
  for (const auto& column : table.columns) {
    text.append(", ").append(column.name).append(" ").append(Told(column.kind));
    if (!column.initial.empty()) text += "=" + column.initial;
  }
  return text + ")";
}

/// Its indexes by their columns.
std::vector<std::string> IndexesOf(const TableDescription& table) {
  std::vector<std::string> indexes;
  for (const auto& index : table.indexes) {
    std::string columns;
    for (const auto& column : index.columns) columns.append(columns.empty() ? "" : ",").append(column);
    indexes.push_back(index.name + ":" + columns);
  }
  std::sort(indexes.begin(), indexes.end());
  return indexes;
}

TEST_P(CatalogueTest, ANewDatabaseHasTheTablesOfACompleteInstallation) {
  const auto wanted = CompleteTables();
  const auto found = database_->DescribeTables();
  ASSERT_EQ(found.size(), wanted.size());
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    EXPECT_EQ(TextOf(found[i]), TextOf(wanted[i]));
    EXPECT_EQ(IndexesOf(found[i]), IndexesOf(wanted[i])) << wanted[i].name;
  }
}

TEST_P(CatalogueTest, FormTablesComeLastByNumber) {
  database_->CreateFormTable(12, {{"Days", "InputNum"}, {"Why", "InputText"}});
  database_->CreateFormTable(5, {});
  Run("create table TableData (a integer)");
  Run("create table TableData07 (a integer)");
  Run("create table Elsewhere (a integer)");
  const auto tables = database_->DescribeTables();
  ASSERT_EQ(tables.size(), CompleteTables().size() + 2);
  EXPECT_EQ(TextOf(tables[tables.size() - 2]), "TableData5(ID, name text, inputtime text)");
  EXPECT_EQ(TextOf(tables.back()), "TableData12(ID, name text, inputtime text, Days floating-point number, Why text)");
  EXPECT_EQ(tables.back().FormNumber(), 12);
  EXPECT_EQ(tables.front().FormNumber(), std::nullopt);
}

TEST_P(CatalogueTest, AFormsTableIsMadeLikeAnotherWithoutBeingRegistered) {
  database_->CreateFormTable(12, {{"Days", "InputNum"}, {"Why", "InputText"}});
  auto form = Table("TableData12");
  form.name = "TableData13";
  database_->CreateFormTableLike(form);
  database_->CreateFormTableLike(form);
  // Where an engine folds names, the units of a registered form alone tell how they were meant.
  EXPECT_EQ(LowerCase(TextOf(Table("TableData13"))),
            "tabledata13(id, name text, inputtime text, days floating-point number, why text)");
  EXPECT_THAT(test::RowsOf(*database_, "select TableID from TableName"), ElementsAre("12"));
  EXPECT_THROW(database_->CreateFormTableLike(Table("DataApp")), ArgumentError);
  form.name = "TableData14";
  form.columns[2].kind = ColumnKind::kBinary;
  EXPECT_THROW(database_->CreateFormTableLike(form), ArgumentError);
}

TEST_P(CatalogueTest, TheLastKeyIsThatOfTheNewestRowThatEverWas) {
  const auto table = Table("DataApp");
  EXPECT_EQ(database_->LastKey(table), 0);
  for (int i = 0; i < 3; ++i) Run("insert into DataApp (ExecuteID) values (1)");
  Run("delete from DataApp where DataAppID=3");
  EXPECT_EQ(database_->LastKey(table), 3);
}

TEST_P(CatalogueTest, KeysContinueWhereTheyAreToldTo) {
  const auto table = Table("DataApp");
  database_->ContinueKeys(table, 41);
  EXPECT_EQ(database_->LastKey(table), 41);
  EXPECT_THAT(test::RowsOf(*database_, "select DataAppID from DataApp"), IsEmpty());
  Run("insert into DataApp (ExecuteID) values (1)");
  database_->ContinueKeys(table, 7);
  Run("insert into DataApp (ExecuteID) values (1)");
  EXPECT_THAT(test::RowsOf(*database_, "select DataAppID from DataApp"), ElementsAre("42", "43"));
}

}  // namespace
}  // namespace talm_flow::adapters
