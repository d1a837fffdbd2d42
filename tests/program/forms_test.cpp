#include "program/talmflow.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

class FormsTest : public TalmflowTest {
 protected:
  FormsTest() { (void)Succeed({"init"}); }
  void AddForm() const {
    (void)Succeed(
        {"form", "add", "12", "--unit", "REASON:InputText", "--unit", "DAYS:InputNum", "--unit", "STARTS:InputTime"});
  }
};

TEST_F(FormsTest, AFormIsCreatedAndListed) {
  EXPECT_EQ(Succeed({"form", "list"}), "There are no forms.\n");
  EXPECT_EQ(Succeed({"form", "add", "12", "--unit", "REASON:InputText", "--unit", "DAYS:InputNum", "--kind", "3"}),
            "Created the form 12 with 2 input units\n");
  EXPECT_EQ(Succeed({"form", "list"}),
            "Table  Kind  Add enabled  Units\n"
            "12     3     1            REASON:InputText, DAYS:InputNum\n");
  EXPECT_EQ(
      SucceedJson({"form", "list"}),
      nlohmann::json::parse(R"([{"table":12,"kind":3,"add_enabled":1,"units":"REASON:InputText, DAYS:InputNum"}])"));
}

TEST_F(FormsTest, AFormThatExistsIsNotCreatedAgain) {
  AddForm();
  EXPECT_EQ(Fail(1, {"form", "add", "12", "--unit", "X:InputText"}), "talmflow: the form 12 exists already\n");
}

TEST_F(FormsTest, BadFormsAreRefusedAndLeaveNothing) {
  EXPECT_EQ(Fail(1, {"form", "add", "x", "--unit", "A:InputText"}), "talmflow: \"x\" is no table number\n");
  EXPECT_EQ(Fail(1, {"form", "add", "0", "--unit", "A:InputText"}), "talmflow: \"0\" is no table number\n");
  EXPECT_EQ(Fail(1, {"form", "add", "3000000000", "--unit", "A:InputText"}),
            "talmflow: \"3000000000\" is no table number\n");
  EXPECT_THAT(Fail(1, {"form", "add", "12", "--unit", "A"}), HasSubstr("\"A\" is no input unit; write CODE:TYPE"));
  EXPECT_THAT(Fail(1, {"form", "add", "12", "--unit", "A:Number"}), HasSubstr("there is no input type \"Number\""));
  EXPECT_THAT(Fail(1, {"form", "add", "12", "--unit", "a-b:InputText"}), HasSubstr("a-b"));
  EXPECT_THAT(Fail(1, {"form", "add", "12", "--unit", "A:InputText", "--unit", "a:InputNum"}), HasSubstr("a"));
  EXPECT_EQ(Fail(2, {"form", "add", "12"}).find("talmflow: --unit is required"), 0U);
  EXPECT_EQ(Succeed({"form", "list"}), "There are no forms.\n");
}

TEST_F(FormsTest, ARecordIsWrittenByTheUserNow) {
  AddForm();
  EXPECT_EQ(Succeed({"--clock", "2026-01-31 09:05:00", "record", "add", "12", "REASON=it's = fine", "days=2.5",
                     "STARTS=2026/2/1"}),
            "12/1\n");
  EXPECT_EQ(Succeed({"record", "show", "12/1"}),
            "Field      Value\n"
            "ID         1\n"
            "name       kim\n"
            "inputtime  2026-01-31 09:05:00\n"
            "REASON     it's = fine\n"
            "DAYS       2.5\n"
            "STARTS     2026-02-01 00:00:00\n");
}

TEST_F(FormsTest, ARecordMayNameItsWriterAndMoment) {
  AddForm();
  EXPECT_EQ(SucceedJson({"record", "add", "12", "Name=lee", "inputtime=2026-01-01 08:00"}),
            (nlohmann::json{{"table", 12}, {"record", 1}}));
  auto record = SucceedJson({"record", "show", "12/1"});
  EXPECT_EQ(record["name"], "lee");
  EXPECT_EQ(record["inputtime"], "2026-01-01 08:00:00");
  EXPECT_EQ(record["REASON"], nullptr);
}

TEST_F(FormsTest, BadRecordsAreRefusedAndLeaveNothing) {
  AddForm();
  EXPECT_EQ(Fail(1, {"record", "add", "13", "A=1"}),
            "talmflow: there is no form 13; create it with: talmflow form add\n");
  EXPECT_EQ(Fail(1, {"record", "add", "12", "COLOUR=red"}),
            "talmflow: the form 12 has no field \"COLOUR\"; its fields are name, inputtime, REASON, DAYS, STARTS\n");
  EXPECT_EQ(Fail(1, {"record", "add", "12", "DAYS=many"}), "talmflow: the field DAYS takes a number, not \"many\"\n");
  EXPECT_EQ(Fail(1, {"record", "add", "12", "STARTS=soon"}), "talmflow: the field STARTS takes a date, not \"soon\"\n");
  EXPECT_THAT(Fail(1, {"record", "add", "12", "DAYS"}), HasSubstr("\"DAYS\" is no field; write FIELD=VALUE"));
  EXPECT_EQ(Rows("select * from TableData12"), nlohmann::json::array());
}

TEST_F(FormsTest, RecordsThatDoNotExistAreNamed) {
  AddForm();
  EXPECT_EQ(Fail(1, {"record", "show", "12/7"}), "talmflow: the record 12/7 does not exist\n");
  EXPECT_EQ(Fail(1, {"record", "show", "12"}), "talmflow: \"12\" is no record; write TABLE/DATA, as in 12/345\n");
  EXPECT_EQ(Fail(1, {"record", "show", "12/x"}), "talmflow: \"x\" is no record number\n");
  EXPECT_EQ(Fail(1, {"record", "show", "13/1"}), "talmflow: there is no form 13; create it with: talmflow form add\n");
}

}  // namespace
}  // namespace talm_flow::test
