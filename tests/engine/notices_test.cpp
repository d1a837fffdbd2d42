#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/failing_connection.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NoticesTest : public ::testing::Test {
 protected:
  NoticesTest() {
    world_.database().CreateFormTable(12, {});
    world_.Run("Insert Into TableData12 (ID) Values (345)");
    world_.ForgetTrace();
  }
  void Transfer(Connection& connection, const Value& data_id, const Value& receivers, const Value& remark = "Look") {
    Command(world_.services()).DataTran(connection, 12, data_id, "王五", receivers, remark);
  }
  void Transfer(const Value& receivers) { Transfer(world_.connection(), 345, receivers); }

  World world_;
};

TEST_F(NoticesTest, AFlowNoticeIsOfKind2) {
  Command(world_.services()).FlowNotice(world_.connection(), 12, 345, "o'Neil", "It's here");
  EXPECT_THAT(world_.trace(), ElementsAre("insert into DataNotice (sort,TableID,DataID,Recver,NoticeTitle) values "
                                          "(2,12,345,'o''Neil','It''s here')"));
  EXPECT_THAT(world_.Rows("Select Sort,TableID,DataID,Recver,NoticeTitle From DataNotice"),
              ElementsAre("2|12|345|o'Neil|It's here"));
}

TEST_F(NoticesTest, NumbersGoIntoANoticeAsTheyWereGiven) {
  Command(world_.services()).FlowNotice(world_.connection(), "12", " 345", 7, nullptr);
  EXPECT_THAT(world_.trace(), ElementsAre("insert into DataNotice (sort,TableID,DataID,Recver,NoticeTitle) values "
                                          "(2,12, 345,'7','')"));
}

TEST_F(NoticesTest, ATransferWritesANoticeAReceiptAndALogRow) {
  Transfer("a");
  EXPECT_THAT(world_.trace(), ElementsAre("insert into DataNotice (sort,TableID,DataID,Recver,NoticeTitle) values "
                                          "(2,12,345,'a','王五转发来新文件')",
                                          "select Top 1 * from DataRec where TableID=12 and DataID=345 and Recver='a'",
                                          "insert into DataRec (TableID,DataID,Recver) values (12,345,'a')",
                                          "insert into DataTran (TableID,DataID,TranName,RecName,Remark) values "
                                          "(12,345,'王五','a','Look')"));
}

TEST_F(NoticesTest, ASecondTransferMarksTheReceiptUnreadAgain) {
  Transfer("a");
  world_.Run("Update DataRec Set Status=1,SeeTimes=3,RecTime='2026-01-01'");
  world_.ForgetTrace();
  Transfer("a");
  EXPECT_EQ(world_.trace()[2], "update DataRec Set Status=0 where TableID=12 and DataID=345 and Recver='a'");
  EXPECT_THAT(world_.Rows("Select Recver,Status,SeeTimes,RecTime From DataRec"), ElementsAre("a|0|3|2026-01-01"));
  EXPECT_EQ(world_.Rows("Select * From DataNotice").size(), 2U);
  EXPECT_EQ(world_.Rows("Select * From DataTran").size(), 2U);
}

TEST_F(NoticesTest, AnEmptyPieceBetweenCommasIsAReceiverToo) {
  Transfer("a,, b");
  EXPECT_THAT(world_.Rows("Select Recver From DataRec"), ElementsAre("a", "", " b"));
  EXPECT_THAT(world_.Rows("Select RecName From DataTran"), ElementsAre("a", "", " b"));
}

TEST_F(NoticesTest, TheEmptyListHasNoReceivers) {
  for (const Value& receivers : {Value(""), Value()}) {
    Transfer(receivers);
    EXPECT_THAT(world_.trace(), IsEmpty());
  }
}

TEST_F(NoticesTest, ATransferThatTheHostForbidsDoesNothing) {
  Transfer(world_.connection(), 346, "a");
  EXPECT_THAT(world_.trace(), IsEmpty());
}

TEST_F(NoticesTest, HostileTextsAreStoredAsTheyAre) {
  const std::string hostile = "'); Delete From DataRec; --\"?\r\n\t\x01 @x :y $1 %_[]\\";
  Transfer(world_.connection(), 345, hostile, hostile);
  EXPECT_THAT(world_.Rows("Select RecName,Remark From DataTran"), ElementsAre(hostile + "|" + hostile));
  EXPECT_THAT(world_.Rows("Select Recver From DataRec"), ElementsAre(hostile));
}

TEST_F(NoticesTest, AFailureKeepsTheReceiversHandledBefore) {
  FailingConnection failing(world_.connection(), 6);  // looking for the second receiver's receipt
  EXPECT_THROW(Transfer(failing, 345, "a,b"), DatabaseError);
  EXPECT_THAT(world_.Rows("Select Recver From DataNotice"), ElementsAre("a", "b"));
  EXPECT_THAT(world_.Rows("Select Recver From DataRec"), ElementsAre("a"));
  EXPECT_THAT(world_.Rows("Select RecName From DataTran"), ElementsAre("a"));
}

}  // namespace
}  // namespace talm_flow::test
