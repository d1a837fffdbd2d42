/// Form records of the reference host.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>

#include "support/world.h"
#include "talm_flow/error.h"

namespace talm_flow::host {
namespace {

using ::testing::IsEmpty;

class RecordServiceTest : public testing::Test {
 protected:
  RecordServiceTest() {
    world_.database().CreateFormTable(12, {{"Title", "InputText"}});
    world_.Run("Insert Into TableData12 (ID,name,inputtime) Values (5,'ann','2026-01-30 08:00:00')");
  }
  [[nodiscard]] RecordService& records() { return services_.records; }
  [[nodiscard]] bool Accepts(std::int32_t table_id, std::int32_t data_id) {
    return records().AcceptsRecord(world_.connection(), table_id, data_id);
  }
  [[nodiscard]] bool Checks(const Value& table_id, const Value& data_id) {
    return records().CheckDocument(world_.connection(), table_id, data_id);
  }
  [[nodiscard]] std::string DateOf(std::int32_t table_id, std::int32_t data_id) {
    return GeneralDateText(records().DocumentDate(world_.connection(), table_id, data_id));
  }

  test::World world_;
  Services services_ = world_.services();
};

TEST_F(RecordServiceTest, AcceptsARecordOfAListedTable) {
  EXPECT_TRUE(Accepts(12, 5));
  EXPECT_FALSE(Accepts(12, 6));
  EXPECT_FALSE(Accepts(12, 0));
  EXPECT_FALSE(Accepts(12, -5));
}

TEST_F(RecordServiceTest, AcceptsNoRecordOfATableThatIsNotListed) {
  EXPECT_FALSE(Accepts(13, 5));
  EXPECT_FALSE(Accepts(0, 5));
  EXPECT_FALSE(Accepts(-12, 5));
  world_.Run("Delete From TableName Where TableID=12");
  EXPECT_FALSE(Accepts(12, 5));
}

TEST_F(RecordServiceTest, AListedTableThatIsMissingIsTheDatabasesError) {
  world_.Run("Insert Into TableName (TableID) Values (13)");
  EXPECT_THROW((void)Accepts(13, 5), DatabaseError);
  EXPECT_THROW((void)DateOf(13, 5), DatabaseError);
}

TEST_F(RecordServiceTest, ChecksADocumentByNumbersInAnyForm) {
  EXPECT_TRUE(Checks(12, 5));
  EXPECT_TRUE(Checks("12", " 5 "));
  EXPECT_TRUE(Checks(12.0, "5.0"));
  EXPECT_FALSE(Checks(12, 6));
  EXPECT_FALSE(Checks(13, 5));
}

TEST_F(RecordServiceTest, ChecksNoDocumentByWhatIsNoNumber) {
  for (const Value& value :
       {Value(), Value(""), Value("x"), Value("5 or 1=1"), Value("5;Drop Table TableName"), Value(0), Value(-5),
        Value("2147483648"), Value(1e300), Value(std::numeric_limits<std::int64_t>::max())}) {
    EXPECT_FALSE(Checks(12, value)) << JoinedText(value);
    EXPECT_FALSE(Checks(value, 5)) << JoinedText(value);
  }
}

TEST_F(RecordServiceTest, TheDateOfADocumentIsItsInputTime) {
  EXPECT_EQ(DateOf(12, 5), "2026/1/30 8:00:00");
  world_.Run("Update TableData12 Set inputtime='2025年12月1日' Where ID=5");
  EXPECT_EQ(DateOf(12, 5), "2025/12/1");
}

TEST_F(RecordServiceTest, ADocumentWithoutADateHasTheFirstDayOf1900) {
  EXPECT_EQ(DateOf(12, 6), "1900/1/1") << "no record";
  EXPECT_EQ(DateOf(13, 5), "1900/1/1") << "no table";
  world_.Run("Update TableData12 Set inputtime='yesterday' Where ID=5");
  EXPECT_EQ(DateOf(12, 5), "1900/1/1");
  world_.Run("Update TableData12 Set inputtime='' Where ID=5");
  EXPECT_EQ(DateOf(12, 5), "1900/1/1");
  world_.Run("Update TableData12 Set inputtime=Null Where ID=5");
  EXPECT_EQ(DateOf(12, 5), "1900/1/1");
}

// The bytes of a text in base64url, read by its definition: 6 bits a character, the highest first.
std::string DecodeBase64Url(std::string_view encoded) {
  constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::string bits;
  for (const char c : encoded) {
    const std::size_t digit = kAlphabet.find(c);
    if (digit == std::string_view::npos) return "not base64url";
    for (unsigned bit = 32; bit > 0; bit /= 2) bits += (digit & bit) != 0 ? '1' : '0';
  }
  std::string bytes;
  for (std::size_t at = 0; at + 8 <= bits.size(); at += 8) {
    bytes += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
  }
  return bytes;
}

TEST_F(RecordServiceTest, ARecordIsEncodedAsItsReferenceInBase64UrlWithoutPadding) {
  EXPECT_EQ(records().EncodeRecord(12, 345), "VGFibGVJRDoxMixEYXRhSUQ6MzQ1");
  EXPECT_EQ(records().EncodeRecord(1, 1), "VGFibGVJRDoxLERhdGFJRDox");
  EXPECT_EQ(records().EncodeRecord(12, 1), "VGFibGVJRDoxMixEYXRhSUQ6MQ");
  for (const std::int32_t data_id : {1, 12, 123, 1234, 2147483647}) {
    const std::string encoded = records().EncodeRecord(32767, data_id);
    EXPECT_EQ(DecodeBase64Url(encoded), "TableID:32767,DataID:" + std::to_string(data_id));
  }
}

TEST_F(RecordServiceTest, ItsQueriesDoNotAppearInATrace) {
  (void)Accepts(12, 5);
  (void)Checks(12, 5);
  (void)DateOf(12, 5);
  EXPECT_THAT(world_.trace(), IsEmpty());
}

}  // namespace
}  // namespace talm_flow::host
