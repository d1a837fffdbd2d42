/// Form tables of the reference host.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "support/world.h"
#include "talm_flow/error.h"

namespace talm_flow::host {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class TableServiceTest : public testing::Test {
 protected:
  [[nodiscard]] TableService& tables() { return services_.tables; }
  [[nodiscard]] std::optional<std::int32_t> Kind(const Value& table_id) {
    return tables().AcceptTable(world_.connection(), table_id);
  }

  test::World world_;
  Services services_ = world_.services();
};

TEST_F(TableServiceTest, AcceptsAListedTableAndTellsItsKind) {
  world_.Run("Insert Into TableName (TableID,Sort) Values (12,3)");
  world_.Run("Insert Into TableName (TableID) Values (13)");
  world_.Run("Insert Into TableName (TableID,Sort) Values (14,Null)");
  EXPECT_EQ(Kind(12), 3);
  EXPECT_EQ(Kind(13), 0);
  EXPECT_EQ(Kind(14), 0);
  EXPECT_EQ(Kind(15), std::nullopt);
}

TEST_F(TableServiceTest, TakesTheNumberInAnyForm) {
  world_.Run("Insert Into TableName (TableID,Sort) Values (12,1)");
  EXPECT_EQ(Kind("12"), 1);
  EXPECT_EQ(Kind(" 12.0 "), 1);
  EXPECT_EQ(Kind(12.4), 1);
}

TEST_F(TableServiceTest, AcceptsNothingThatIsNoKey) {
  world_.Run("Insert Into TableName (TableID,Sort) Values (0,1)");
  for (const Value& value : {Value(), Value(""), Value("x"), Value("12 or 1=1"), Value(0), Value(-1), Value(true),
                             Value("99999999999"), Value(1e300), Value(std::int64_t{1} << 40)}) {
    EXPECT_EQ(Kind(value), std::nullopt) << JoinedText(value);
  }
}

TEST_F(TableServiceTest, AcceptsListedTablesAsApprovalAndAttentionForms) {
  world_.Run("Insert Into TableName (TableID) Values (12)");
  EXPECT_TRUE(tables().AcceptsApprovalForm(world_.connection(), 12));
  EXPECT_FALSE(tables().AcceptsApprovalForm(world_.connection(), 13));
  EXPECT_TRUE(tables().AcceptsAttentionForm(world_.connection(), 12));
  EXPECT_FALSE(tables().AcceptsAttentionForm(world_.connection(), 13));
}

TEST_F(TableServiceTest, NotesAnOperationWithTheClocksMoment) {
  tables().OperateOnTable(world_.connection(), 12, "O'Neill");
  tables().OperateOnTable(world_.connection(), 13, "系统");
  EXPECT_THAT(world_.Rows("Select ID,TableID,Operator,InputTime From TableOperation Order By ID"),
              ElementsAre("1|12|O'Neill|2026-01-31 09:05:00", "2|13|系统|2026-01-31 09:05:00"));
}

TEST_F(TableServiceTest, ItsStatementsDoNotAppearInATrace) {
  (void)Kind(12);
  tables().OperateOnTable(world_.connection(), 12, "a");
  EXPECT_THAT(world_.trace(), IsEmpty());
}

TEST_F(TableServiceTest, WhatTheDatabaseRefusesGoesThrough) {
  world_.Run("Drop Table TableName");
  world_.Run("Drop Table TableOperation");
  EXPECT_THROW((void)Kind(12), DatabaseError);
  EXPECT_THROW(tables().OperateOnTable(world_.connection(), 12, "a"), DatabaseError);
}

}  // namespace
}  // namespace talm_flow::host
