/// Input units of forms and their values.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "support/world.h"
#include "talm_flow/error.h"

namespace talm_flow::host {
namespace {

using ::testing::IsEmpty;

class FormServiceTest : public testing::Test {
 protected:
  FormServiceTest() {
    world_.database().CreateFormTable(12, {{"Title", "InputText"},
                                           {"Amount", "InputNum"},
                                           {"Files", "UpLoadFile"},
                                           {"Sign", "InputDigitalSign"},
                                           {"Seal", "InputElectroSeal"}});
    world_.Run("Insert Into TableData12 (ID,name,Title,Amount) Values (5,'ann','a ''text'' 中',2.5)");
    world_.Run("Insert Into TableData12 (ID,name) Values (6,'bob')");
  }
  [[nodiscard]] FormService& forms() { return services_.forms; }
  [[nodiscard]] std::string Find(std::int32_t table_id, std::string_view code) {
    const auto unit = forms().FindUnit(world_.connection(), table_id, code);
    return unit ? unit->code + "|" + unit->field + "|" + unit->type : "none";
  }
  [[nodiscard]] std::string ValueOf(std::int32_t data_id, std::string_view code) {
    const auto unit = forms().FindUnit(world_.connection(), 12, code);
    return unit ? forms().UnitValue(world_.connection(), 12, data_id, *unit) : "no unit";
  }
  void File(std::int32_t table_id, std::int32_t data_id, std::string_view code) {
    world_.Run("Insert Into TableFile (TableID,DataID,InUnitID) Values (" + std::to_string(table_id) + "," +
               std::to_string(data_id) + "," + test::Literal(code) + ")");
  }
  void Picture(std::int32_t table_id, std::int32_t data_id, std::string_view code) {
    world_.Run("Insert Into TablePicData (TableID,DataID,InUnitID) Values (" + std::to_string(table_id) + "," +
               std::to_string(data_id) + "," + test::Literal(code) + ")");
  }

  test::World world_;
  Services services_ = world_.services();
};

TEST_F(FormServiceTest, FindsAUnitInAnyCaseAndTellsItAsStored) {
  EXPECT_EQ(Find(12, "TITLE"), "Title|Title|InputText");
  EXPECT_EQ(Find(12, "title"), "Title|Title|InputText");
  EXPECT_EQ(Find(12, "Amount"), "Amount|Amount|InputNum");
  EXPECT_EQ(Find(12, "FILES"), "Files|Files|UpLoadFile");
}

TEST_F(FormServiceTest, FindsNoUnitOfAnotherFormOrAnotherCode) {
  EXPECT_EQ(Find(13, "TITLE"), "none");
  EXPECT_EQ(Find(12, "TITL"), "none");
  EXPECT_EQ(Find(12, "TITLE "), "none");
  EXPECT_EQ(Find(12, ""), "none");
  EXPECT_EQ(Find(12, "x' or '1'='1"), "none");
  EXPECT_EQ(Find(12, "name"), "none") << "a column that is no input unit";
}

TEST_F(FormServiceTest, PassesOverRowsWithoutACode) {
  world_.Run("Insert Into TableInUnitConstruction (TableID,InUnitType) Values (13,'InputText')");
  world_.Run("Insert Into TableInUnitConstruction (TableID,InUnitID) Values (13,'Late')");
  EXPECT_EQ(Find(13, "LATE"), "Late|Late|");
  EXPECT_EQ(Find(13, ""), "none");
}

TEST_F(FormServiceTest, AValueIsTheColumnsText) {
  EXPECT_EQ(ValueOf(5, "TITLE"), "a 'text' 中");
  EXPECT_EQ(ValueOf(5, "AMOUNT"), "2.5");
  world_.Run("Update TableData12 Set Amount=1e20 Where ID=5");
  EXPECT_EQ(ValueOf(5, "AMOUNT"), "1E+20");
  world_.Run("Update TableData12 Set Amount=3 Where ID=5");
  EXPECT_EQ(ValueOf(5, "AMOUNT"), "3");
}

TEST_F(FormServiceTest, AMissingValueIsTheEmptyText) {
  EXPECT_EQ(ValueOf(6, "TITLE"), "") << "Null";
  EXPECT_EQ(ValueOf(7, "TITLE"), "") << "no record";
  EXPECT_EQ(ValueOf(5, "FILES"), "") << "no file";
  EXPECT_EQ(ValueOf(5, "SIGN"), "") << "no picture";
}

TEST_F(FormServiceTest, FilesAreNamedInTheOrderTheyCame) {
  File(12, 5, "Files");
  File(12, 6, "Files");
  File(12, 5, "Other");
  File(13, 5, "Files");
  File(12, 5, "Files");
  EXPECT_EQ(ValueOf(5, "FILES"), "fileid:1,fileid:5");
  EXPECT_EQ(ValueOf(6, "FILES"), "fileid:2");
}

TEST_F(FormServiceTest, OfPicturesTheNewestIsNamed) {
  Picture(12, 5, "Sign");
  Picture(12, 5, "Sign");
  Picture(12, 5, "Seal");
  Picture(12, 6, "Sign");
  Picture(13, 5, "Sign");
  EXPECT_EQ(ValueOf(5, "SIGN"), "tablepicdataid:2");
  EXPECT_EQ(ValueOf(5, "SEAL"), "tablepicdataid:3");
}

TEST_F(FormServiceTest, ItsQueriesDoNotAppearInATrace) {
  (void)ValueOf(5, "TITLE");
  (void)ValueOf(5, "FILES");
  (void)ValueOf(5, "SIGN");
  EXPECT_THAT(world_.trace(), IsEmpty());
}

TEST_F(FormServiceTest, WhatTheDatabaseRefusesGoesThrough) {
  const InputUnit unit{"Title", "Title", "InputText"};
  EXPECT_THROW((void)forms().UnitValue(world_.connection(), 13, 5, unit), DatabaseError);
  world_.Run("Drop Table TableInUnitConstruction");
  EXPECT_THROW((void)Find(12, "TITLE"), DatabaseError);
}

}  // namespace
}  // namespace talm_flow::host
