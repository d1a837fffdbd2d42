/// Reference strings taken apart.

#include "db/reference.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "talm_flow/error.h"

namespace talm_flow::db {
namespace {

struct RecordCase {
  std::string_view text;
  std::int32_t table_id;
  std::int32_t data_id;
};

class RecordReferenceTest : public testing::TestWithParam<RecordCase> {};

TEST_P(RecordReferenceTest, GivesItsTableAndItsRecord) {
  const auto record = SeparateTableIDAndDataID(GetParam().text);
  ASSERT_TRUE(record.has_value()) << GetParam().text;
  EXPECT_EQ(record->table_id, GetParam().table_id);
  EXPECT_EQ(record->data_id, GetParam().data_id);
}

INSTANTIATE_TEST_SUITE_P(Orders, RecordReferenceTest,
                         testing::Values(RecordCase{"TableID:12,DataID:345", 12, 345},
                                         RecordCase{"DataID:7,TableID:3", 3, 7}));
INSTANTIATE_TEST_SUITE_P(KeysInAnyCase, RecordReferenceTest,
                         testing::Values(RecordCase{"TABLEID:1,dataid:2", 1, 2}, RecordCase{"tAbLeId:1,DATAID:2", 1, 2},
                                         RecordCase{"TABLEİD:1,DATAİD:2", 1, 2}));
INSTANTIATE_TEST_SUITE_P(Limits, RecordReferenceTest,
                         testing::Values(RecordCase{"TableID:32767,DataID:2147483647", 32767, 2147483647},
                                         RecordCase{"TableID:1,DataID:1", 1, 1},
                                         RecordCase{"TableID:32767.4,DataID:1", 32767, 1}));
INSTANTIATE_TEST_SUITE_P(ValuesAsNumericTexts, RecordReferenceTest,
                         testing::Values(RecordCase{"TableID: 3 ,DataID:\t7", 3, 7},
                                         RecordCase{"TableID:0.7,DataID:0.51", 1, 1},
                                         RecordCase{"TableID:1e2,DataID:+5", 100, 5},
                                         RecordCase{"TableID:2.5,DataID:3.5", 2, 4}));
INSTANTIATE_TEST_SUITE_P(CommasInTheSecondPart, RecordReferenceTest,
                         testing::Values(RecordCase{"TableID:3,DataID:1,234", 3, 1234},
                                         RecordCase{"DataID:3,TableID:1,234", 1234, 3}));

class NoRecordReferenceTest : public testing::TestWithParam<std::string_view> {};

TEST_P(NoRecordReferenceTest, GivesNothing) { EXPECT_FALSE(SeparateTableIDAndDataID(GetParam()).has_value()); }

INSTANTIATE_TEST_SUITE_P(APartIsMissing, NoRecordReferenceTest,
                         testing::Values("", "TableID:3", "DataID:3", "TableID:3,", ",DataID:5", "TableID:3,TableID:4",
                                         "DataID:3,DataID:4", "TableID:3,RecordID:4", "TableID:3 DataID:4"));
INSTANTIATE_TEST_SUITE_P(APartHasNoColon, NoRecordReferenceTest,
                         testing::Values("3,4", "TableID:3,4", "3,DataID:4", "TableID 3,DataID:4"));
INSTANTIATE_TEST_SUITE_P(KeysWithBlanks, NoRecordReferenceTest,
                         testing::Values("TableID:3, DataID:4", " TableID:3,DataID:4", "TableID :3,DataID:4"));
INSTANTIATE_TEST_SUITE_P(NotNumeric, NoRecordReferenceTest,
                         testing::Values("TableID:x,DataID:4", "TableID:3,DataID:x", "TableID:,DataID:4",
                                         "TableID:3,DataID:", "TableID:3:4,DataID:5", "TableID:0x3,DataID:5",
                                         "TableID:3,DataID:4,5,", "TableID:3,DataID:4,DataID:5"));
INSTANTIATE_TEST_SUITE_P(NumbersBelow1, NoRecordReferenceTest,
                         testing::Values("TableID:0,DataID:5", "TableID:5,DataID:0", "TableID:-3,DataID:5",
                                         "TableID:3,DataID:-5", "TableID:0.5,DataID:5", "TableID:5,DataID:0.5",
                                         "TableID:-32768,DataID:5"));
INSTANTIATE_TEST_SUITE_P(RecordNumbersOutside32Bits, NoRecordReferenceTest,
                         testing::Values("TableID:3,DataID:2147483648", "TableID:3,DataID:-99999999999",
                                         "TableID:3,DataID:1e300"));
INSTANTIATE_TEST_SUITE_P(NotNumericBesideATableNumberTooLarge, NoRecordReferenceTest,
                         testing::Values("TableID:40000,DataID:x", "TableID:40000,DataID:", "TableID:40000,Data:5"));

class TooLargeTableTest : public testing::TestWithParam<std::string_view> {};

TEST_P(TooLargeTableTest, Overflows) { EXPECT_THROW((void)SeparateTableIDAndDataID(GetParam()), OverflowError); }

INSTANTIATE_TEST_SUITE_P(TableNumbersOutside16Bits, TooLargeTableTest,
                         testing::Values("TableID:40000,DataID:5", "DataID:5,TableID:32768", "TableID:32767.5,DataID:5",
                                         "TableID:-32769,DataID:5", "TableID:99999999999,DataID:5",
                                         "TableID:1e300,DataID:5"));
INSTANTIATE_TEST_SUITE_P(BesideARecordNumberThatIsNone, TooLargeTableTest,
                         testing::Values("TableID:40000,DataID:0", "TableID:40000,DataID:99999999999"));

TEST(RecordReferenceTextTest, IsReadAgainAsTheSameRecord) {
  const RecordReference record{12, 345};
  EXPECT_EQ(record.Text(), "TableID:12,DataID:345");
  const auto again = SeparateTableIDAndDataID(record.Text());
  ASSERT_TRUE(again.has_value());
  EXPECT_EQ(again->Text(), record.Text());
}

TEST(RecordReferenceTextTest, TwoPartsWithTheSameKeyAreNoReference) {
  // The second part holds all that follows the first comma: a third key is never seen.
  EXPECT_FALSE(SeparateTableIDAndDataID("TableID:3,tableid:4").has_value());
  EXPECT_FALSE(SeparateTableIDAndDataID("TableID:3,TableID:4,DataID:5").has_value());
}

struct NumberCase {
  std::string_view text;
  std::optional<std::int32_t> number;
};

std::ostream& operator<<(std::ostream& out, const NumberCase& test_case) { return out << '"' << test_case.text << '"'; }

class TableReferenceTest : public testing::TestWithParam<NumberCase> {};

TEST_P(TableReferenceTest, GivesItsTableOrNothing) { EXPECT_EQ(SeparateTableID(GetParam().text), GetParam().number); }

INSTANTIATE_TEST_SUITE_P(
    Texts, TableReferenceTest,
    testing::Values(NumberCase{"TableID:5", 5}, NumberCase{"TABLEID:5", 5}, NumberCase{"tableid:5", 5},
                    NumberCase{"TableID:40000", 40000}, NumberCase{"TableID:2147483647", 2147483647},
                    NumberCase{"TableID:0.7", 1}, NumberCase{"TableID: 12 ", 12}, NumberCase{"12", 12},
                    NumberCase{" 12 ", 12}, NumberCase{"1,234", 1234}, NumberCase{"0.7", 1},
                    NumberCase{"", std::nullopt}, NumberCase{":", std::nullopt}, NumberCase{":5", std::nullopt},
                    NumberCase{"x", std::nullopt}, NumberCase{"0", std::nullopt}, NumberCase{"-1", std::nullopt},
                    NumberCase{"0.5", std::nullopt}, NumberCase{"TableID:", std::nullopt},
                    NumberCase{"TableID:0", std::nullopt}, NumberCase{"TableID:x", std::nullopt},
                    NumberCase{"TableID:5:6", std::nullopt}, NumberCase{"DataID:5", std::nullopt},
                    NumberCase{" TableID:5", std::nullopt}, NumberCase{"TableID:3,DataID:4", std::nullopt},
                    NumberCase{"2147483648", std::nullopt}, NumberCase{"TableID:2147483648", std::nullopt},
                    NumberCase{"TableID:-99999999999", std::nullopt}, NumberCase{"1e300", std::nullopt}));

class FileReferenceTest : public testing::TestWithParam<NumberCase> {};

TEST_P(FileReferenceTest, GivesItsNumberOrNothing) {
  EXPECT_EQ(SeparateFileID("fileid" + std::string(GetParam().text)), GetParam().number);
  EXPECT_EQ(SeparateFileID("FileID" + std::string(GetParam().text)), GetParam().number);
  EXPECT_EQ(SeparateTablePicDataID("tablepicdataid" + std::string(GetParam().text)), GetParam().number);
  EXPECT_EQ(SeparateTablePicDataID("TABLEPICDATAID" + std::string(GetParam().text)), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(Texts, FileReferenceTest,
                         testing::Values(NumberCase{":7", 7}, NumberCase{":2147483647", 2147483647},
                                         NumberCase{": 7 ", 7}, NumberCase{":1.5", 2}, NumberCase{":0.6", 1},
                                         NumberCase{"", std::nullopt}, NumberCase{":", std::nullopt},
                                         NumberCase{":0", std::nullopt}, NumberCase{":-1", std::nullopt},
                                         NumberCase{":x", std::nullopt}, NumberCase{":7:8", std::nullopt},
                                         NumberCase{" :7", std::nullopt}, NumberCase{":2147483648", std::nullopt},
                                         NumberCase{":1e300", std::nullopt}));

TEST(FileReferenceEdgeTest, ABareNumberIsRefused) {
  EXPECT_EQ(SeparateFileID("12"), std::nullopt);
  EXPECT_EQ(SeparateTablePicDataID("12"), std::nullopt);
}

TEST(FileReferenceEdgeTest, OneKindIsNotTakenForTheOther) {
  EXPECT_EQ(SeparateFileID("tablepicdataid:7"), std::nullopt);
  EXPECT_EQ(SeparateTablePicDataID("fileid:7"), std::nullopt);
  EXPECT_EQ(SeparateFileID("TableID:7"), std::nullopt);
  EXPECT_EQ(SeparateTableID("fileid:7"), std::nullopt);
}

// Accepts what it is told to accept, and nothing else.
class OneCodeHost : public host::CommonFunctions {
 public:
  explicit OneCodeHost(std::string_view accepted) : accepted_(accepted) {}
  void SqlText(std::string_view, std::string&) const override {}
  [[nodiscard]] bool CheckInUnitID(std::string_view code) const override { return code == accepted_; }
  [[nodiscard]] bool InList(std::string_view, std::string_view) const override { return false; }
  [[nodiscard]] std::string SelectedMark(const Value&, const Value&) const override { return {}; }
  [[nodiscard]] std::string ScriptText(const Value&) const override { return {}; }
  [[nodiscard]] std::string DisplayText(const Value&) const override { return {}; }

 private:
  std::string accepted_;
};

TEST(InputUnitReferenceTest, GivesTheCodeInUpperCaseWhenTheHostAcceptsIt) {
  const OneCodeHost common("ab12");
  EXPECT_EQ(SeparateInUnitID("inunitid:ab12", common), "AB12");
  EXPECT_EQ(SeparateInUnitID("InUnitID:ab12", common), "AB12");
  EXPECT_EQ(SeparateInUnitID("ab12", common), "AB12");
}

TEST(InputUnitReferenceTest, AsksTheHostAboutTheCodeAsItStands) {
  EXPECT_EQ(SeparateInUnitID("inunitid:AB12", OneCodeHost("ab12")), std::nullopt);
  EXPECT_EQ(SeparateInUnitID("inunitid: ab12", OneCodeHost("ab12")), std::nullopt);
  EXPECT_EQ(SeparateInUnitID("inunitid:a:b", OneCodeHost("a:b")), "A:B");
  EXPECT_EQ(SeparateInUnitID("单元é", OneCodeHost("单元é")), "单元É");
}

TEST(InputUnitReferenceTest, GivesNothingForOtherKeysAndOtherCodes) {
  const OneCodeHost common("ab12");
  EXPECT_EQ(SeparateInUnitID("", common), std::nullopt);
  EXPECT_EQ(SeparateInUnitID("inunitid:", common), std::nullopt);
  EXPECT_EQ(SeparateInUnitID("TableID:ab12", common), std::nullopt);
  EXPECT_EQ(SeparateInUnitID(":ab12", common), std::nullopt);
  EXPECT_EQ(SeparateInUnitID("cd", common), std::nullopt);
}

}  // namespace
}  // namespace talm_flow::db
