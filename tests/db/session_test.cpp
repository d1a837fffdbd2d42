/// Statements put together, and first rows read.

#include "db/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/world.h"
#include "talm_flow/error.h"

namespace talm_flow::db {
namespace {

using ::testing::ElementsAre;

class SessionTest : public testing::Test {
 protected:
  test::World world_;
  host::Services services_ = world_.services();
  Session session_{world_.connection(), services_};
};

TEST_F(SessionTest, PutsAStatementTogetherFromItsPieces) {
  session_.Execute("Insert Into WorkFlowName (FlowName,Creater,Remark) Values (", Quoted("O'Neill"), ",",
                   Quoted(Value(12)), ",", Quoted(std::string("中")), ")");
  EXPECT_THAT(world_.trace(),
              ElementsAre("Insert Into WorkFlowName (FlowName,Creater,Remark) Values ('O''Neill','12','中')"));
  EXPECT_EQ(world_.Row("Select FlowName,Creater,Remark From WorkFlowName"), "O'Neill|12|中");
}

TEST_F(SessionTest, WritesValuesBareAsTheyWereGiven) {
  const Value whole(7);
  const Value text("007");
  const Value fraction(1.5);
  (void)session_.Open("Select Top 1 FlowID from WorkFlowName where FlowID=", whole, " or FlowID=", text,
                      " or FlowID=", fraction, " or FlowID=", 9, " or FlowID=", std::int64_t{-1});
  EXPECT_THAT(world_.trace(), ElementsAre("Select Top 1 FlowID from WorkFlowName where FlowID=7 or FlowID=007 or "
                                          "FlowID=1.5 or FlowID=9 or FlowID=-1"));
}

TEST_F(SessionTest, NullIsAnEmptyLiteralAndBareNothingAtAll) {
  const Value null;
  session_.Execute("Insert Into WorkFlowName (FlowName) Values (", Quoted(null), ")");
  EXPECT_EQ(world_.trace().back(), "Insert Into WorkFlowName (FlowName) Values ('')");
  EXPECT_THROW(session_.Execute("delete from WorkFlowName where FlowID=", null), DatabaseError);
  EXPECT_EQ(world_.trace().back(), "delete from WorkFlowName where FlowID=");
}

TEST_F(SessionTest, ANumberThatIsNoneIsTheDatabasesError) {
  const Value text("abc");
  EXPECT_THROW(session_.Execute("delete from WorkFlowName where FlowID=", text), DatabaseError);
}

TEST_F(SessionTest, ReadsTheFirstRowOrNothing) {
  EXPECT_FALSE(session_.AnyRow("Select Top 1 FlowID from WorkFlowName"));
  EXPECT_EQ(session_.FirstField("FlowID", "Select Top 1 FlowID from WorkFlowName"), std::nullopt);
  EXPECT_EQ(session_.FirstText("FlowName", "Select Top 1 FlowName from WorkFlowName"), "");
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('first')");
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('second')");
  EXPECT_TRUE(session_.AnyRow("Select Top 1 FlowID from WorkFlowName"));
  EXPECT_EQ(session_.FirstField("FlowID", "Select Top 1 FlowID from WorkFlowName order by FlowID desc"), Value(2));
  EXPECT_EQ(session_.FirstText("flowname", "Select Top 1 FlowName from WorkFlowName"), "first");
  EXPECT_EQ(session_.FirstText("FlowID", "Select Top 1 FlowID from WorkFlowName"), "1");
}

TEST_F(SessionTest, TellsNullFromNoRow) {
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('x')");
  EXPECT_EQ(session_.FirstField("Remark", "Select Top 1 Remark from WorkFlowName"), Value());
  EXPECT_THROW((void)session_.FirstText("Remark", "Select Top 1 Remark from WorkFlowName"), ConversionError);
}

TEST_F(SessionTest, AskingForAColumnThatWasNotReadIsTheDatabasesError) {
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('x')");
  EXPECT_THROW((void)session_.FirstField("Remark", "Select Top 1 FlowID from WorkFlowName"), DatabaseError);
}

TEST_F(SessionTest, RowsStayReadableWhileTheNextStatementRuns) {
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('a')");
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('b')");
  const auto rows = session_.Open("Select Top 10000 FlowName from WorkFlowName order by FlowName");
  session_.Execute("Insert Into WorkFlowName (FlowName) Values (", Quoted("c"), ")");
  std::string names;
  for (; !rows->AtEnd(); rows->MoveNext()) names += rows->Field("FlowName").Text();
  EXPECT_EQ(names, "ab");
}

TEST_F(SessionTest, ReadsTheKeyOfTheRowJustInserted) {
  session_.Execute("Insert Into WorkFlowExecuteID (FlowID) Values (1)");
  EXPECT_EQ(session_.NewExecuteId(), 1);
  session_.Execute("Insert Into WorkFlowExecuteID (FlowID) Values (1)");
  EXPECT_EQ(session_.NewExecuteId(), 2);
  EXPECT_EQ(world_.trace().back(), "SELECT @@IDENTITY AS ExecuteID");
}

}  // namespace
}  // namespace talm_flow::db
