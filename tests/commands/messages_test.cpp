#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/scene.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(SendRecordTest, EachReceiverGetsANoticeAndAReceipt) {
  Scene scene;
  scene.Run(&Command::C_1, "C_1", {std::string(kRecord), "\"News\"", "\"a,b\""});
  EXPECT_THAT(scene.Trace(),
              ElementsAre("read C_1_1", "read C_1_2", "read C_1_3",
                          "Insert Into DataNotice (Sort,TableID,DataID,Recver,NoticeTitle) Values(2,12,345,'a','News')",
                          "Select Top 1 DataRecID From DataRec Where TableID=12 And DataID=345 And Recver='a'",
                          "Insert Into DataRec (TableID,DataID,Recver) Values (12,345,'a')",
                          "Insert Into DataNotice (Sort,TableID,DataID,Recver,NoticeTitle) Values(2,12,345,'b','News')",
                          "Select Top 1 DataRecID From DataRec Where TableID=12 And DataID=345 And Recver='b'",
                          "Insert Into DataRec (TableID,DataID,Recver) Values (12,345,'b')"));
  EXPECT_THAT(scene.Rows("Select Sort,TableID,DataID,Recver,NoticeTitle From DataNotice"),
              ElementsAre("2|12|345|a|News", "2|12|345|b|News"));
  EXPECT_THAT(scene.Rows("Select TableID,DataID,Recver,Status,SeeTimes From DataRec"),
              ElementsAre("12|345|a|0|0", "12|345|b|0|0"));
}

TEST(SendRecordTest, AReceiverWhoHadItGetsItAgainAsUnseen) {
  Scene scene;
  scene.world().Run("Insert Into DataRec (TableID,DataID,Recver,Status,SeeTimes) Values (12,345,'a',1,4)");
  scene.world().Run("Insert Into DataRec (TableID,DataID,Recver,Status,SeeTimes) Values (12,346,'a',1,4)");
  scene.Run(&Command::C_1, "C_1", {std::string(kRecord), "", "\"a\""});
  EXPECT_THAT(scene.Statements(),
              ElementsAre("Select Top 1 DataRecID From DataRec Where TableID=12 And DataID=345 And Recver='a'",
                          "Update DataRec Set RecTime='2026-01-31 09:05:00',Status=0,SeeTimes=0 Where TableID=12 And "
                          "DataID=345 And Recver='a'"));
  EXPECT_THAT(scene.Rows("Select DataID,Recver,RecTime,Status,SeeTimes From DataRec"),
              ElementsAre("345|a|2026-01-31 09:05:00|0|0", "346|a|NULL|1|4"));
}

TEST(SendRecordTest, WithoutATitleReceiptsComeWithoutNotices) {
  for (const char* title : {"", "\"\"", "unset"}) {
    Scene scene;
    scene.Run(&Command::C_1, "C_1", {std::string(kRecord), title, "\"a\""});
    EXPECT_THAT(scene.Rows("Select * From DataNotice"), IsEmpty());
    EXPECT_THAT(scene.Rows("Select Recver From DataRec"), ElementsAre("a"));
  }
}

TEST(SendRecordTest, ReceiversArePersonExpressions) {
  Scene scene;
  scene.world().Run("Insert Into UserGroup (GroupName,UserName) Values ('all','a')");
  scene.world().Run("Insert Into UserGroup (GroupName,UserName) Values ('all','b')");
  scene.Run(&Command::C_1, "C_1", {std::string(kRecord), "", "\"c；@all、a\""});
  EXPECT_THAT(scene.Rows("Select Recver From DataRec"), ElementsAre("c", "a", "b"));
}

TEST(SendRecordTest, ATitleIsCutTo100Characters) {
  Scene scene;
  scene.Run(&Command::C_1, "C_1", {std::string(kRecord), Marked(Repeated("汉😀", 60)), "\"a\""});
  EXPECT_THAT(scene.Rows("Select NoticeTitle From DataNotice"), ElementsAre(Repeated("汉😀", 50)));
}

TEST(SendRecordTest, WithoutReceiversNothingIsWritten) {
  for (const char* receivers : {"", "\"\"", "\" , \"", "\"@nobody\""}) {
    Scene scene;
    scene.Run(&Command::C_1, "C_1", {std::string(kRecord), "\"News\"", receivers});
    EXPECT_THAT(scene.Statements(), IsEmpty()) << receivers;
  }
}

TEST(SendRecordTest, HostileTextsAreStoredAsTheyAre) {
  Scene scene;
  scene.Run(&Command::C_1, "C_1", {std::string(kRecord), Marked(kHostile), Marked("o'Neil--\"")});
  EXPECT_THAT(scene.Rows("Select Recver,NoticeTitle From DataNotice"), ElementsAre("o'Neil--\"|" + kHostile));
  EXPECT_THAT(scene.Rows("Select Recver From DataRec"), ElementsAre("o'Neil--\""));
  EXPECT_THAT(scene.Rows("Select ID From TableData12"), ElementsAre("345", "346"));
}

TEST(ShortMessageTest, BlanksAndCommasSeparateReceivers) {
  Scene scene;
  scene.Run(&Command::C_20, "C_20", {"\"a b,c\"", "\"Hello\""});
  EXPECT_THAT(scene.Trace(),
              ElementsAre("read C_20_1", "read C_20_2", "insert into HandSetSend (Recver,Content) values('a','Hello')",
                          "insert into HandSetSend (Recver,Content) values('b','Hello')",
                          "insert into HandSetSend (Recver,Content) values('c','Hello')"));
}

TEST(ShortMessageTest, EmptyReceiversAndEmptyTextsAreNotQueued) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "\"Hello\""}, {"\" , ,\"", "\"Hello\""}, {"\"a\"", ""}, {"\"a\"", "\"\""}, {"\"a,b\"", "unset"}};
  for (const auto& [receivers, text] : cases) {
    Scene scene;
    scene.Run(&Command::C_20, "C_20", {receivers, text});
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_20_1", "read C_20_2")) << receivers << text;
  }
}

TEST(ShortMessageTest, AReceiverKeepsAllButBlanks) {
  Scene scene;
  scene.Run(&Command::C_20, "C_20", {Marked("\ta,  b;c "), "\"x\""});
  EXPECT_THAT(scene.Rows("Select Recver From HandSetSend"), ElementsAre("\ta", "b;c"));
}

TEST(ShortMessageTest, TextsOfAnyLengthAndContentAreStoredWhole) {
  for (const std::string& text : {kHostile, Repeated("'汉😀?", 25000)}) {
    Scene scene;
    scene.Run(&Command::C_20, "C_20", {Marked("o'Neil"), Marked(text)});
    EXPECT_THAT(scene.Rows("Select Recver,Content From HandSetSend"), ElementsAre("o'Neil|" + text));
    EXPECT_THAT(scene.Rows("Select ID From TableData12"), ElementsAre("345", "346"));
  }
}

TEST(EmailTest, EachAddressIsQueuedWithTheStepThatWroteIt) {
  Scene scene;
  scene.Run(&Command::C_21, "C_21", {"\"a@x b@y\"", "\"Title\"", "\"Text\""});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_21_1", "read C_21_2", "read C_21_3",
                                         "insert into EmailSend (Email,Title,Content,TableID,DataID,FlowID,FlowNo) "
                                         "values('a@x','Title','Text',12,345,7,3)",
                                         "insert into EmailSend (Email,Title,Content,TableID,DataID,FlowID,FlowNo) "
                                         "values('b@y','Title','Text',12,345,7,3)"));
}

TEST(EmailTest, AnEmptyTitleOrTextIsStillQueued) {
  Scene scene;
  scene.Run(&Command::C_21, "C_21", {"\"a@x, ,\"", "", ""});
  EXPECT_THAT(scene.Rows("Select Email,Title,Content From EmailSend"), ElementsAre("a@x||"));
}

TEST(EmailTest, WithoutAddressesNothingIsQueued) {
  Scene scene;
  scene.Run(&Command::C_21, "C_21", {"\" ,, \"", "\"Title\"", "\"Text\""});
  EXPECT_THAT(scene.Statements(), IsEmpty());
}

TEST(EmailTest, TextsOfAnyLengthAndContentAreStoredWhole) {
  const std::string text = Repeated("'汉😀?", 25000);
  Scene scene;
  scene.Run(&Command::C_21, "C_21", {Marked("o'Neil@x"), Marked(kHostile), Marked(text)});
  EXPECT_THAT(scene.Rows("Select Email,Title,Content From EmailSend"),
              ElementsAre("o'Neil@x|" + kHostile + "|" + text));
}

TEST(OperationLogTest, TheSystemWritesFromTheLocalAddress) {
  Scene scene;
  scene.Run(&Command::C_80, "C_80", {"\"Archived\""});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_80_1",
                                         "Insert InTo OperationRec (Name,IpAddress,Operation) values "
                                         "('系统','127.0.0.1','Archived')"));
}

TEST(OperationLogTest, AnEntryIsCutTo499Characters) {
  const std::pair<std::string, std::string> cases[] = {{Repeated("汉", 499), Repeated("汉", 499)},
                                                       {Repeated("😀", 500), Repeated("😀", 499)},
                                                       {Repeated("'", 100000), Repeated("'", 499)},
                                                       {"", ""},
                                                       {kHostile, kHostile}};
  for (const auto& [text, entry] : cases) {
    Scene scene;
    scene.Run(&Command::C_80, "C_80", {Marked(text)});
    EXPECT_THAT(scene.Rows("Select Operation From OperationRec"), ElementsAre(entry));
  }
}

TEST(OperationLogTest, WithoutAParameterTheEntryIsEmpty) {
  Scene scene;
  scene.Run(&Command::C_80, "C_80", {});
  EXPECT_THAT(scene.Rows("Select Name,IpAddress,Operation From OperationRec"), ElementsAre("系统|127.0.0.1|"));
}

}  // namespace
}  // namespace talm_flow::test
