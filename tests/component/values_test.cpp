#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <new>

#include "component/component_host.h"

namespace talm_flow::test {
namespace {

class ValuesTest : public ComponentTest {
 protected:
  /// What becomes of a value as an argument: it is a text of the catalogue afterwards.
  std::string AsText(const OwnedVariant& value) {
    const auto one = Whole(1);
    const auto name = Text("F");
    const auto outcome = Call(name_, u"Update", List(on_, one, name, name, value));
    if (TALM_FAILED(outcome.code)) return outcome.Line();
    return RowsOf(connection_, "Select Remark From WorkFlowName");
  }
  /// What a column's value is as a result.
  std::string AsResult(std::string_view expression) {
    return RowsOf(connection_, "Select " + std::string(expression) + " As V");
  }
  std::string Numbered(std::uint16_t type, const std::function<void(TalmVariant&)>& fill) {
    return AsText(Of(type, fill));
  }

  Object connection_ = NewConnection();
  OwnedVariant on_ = ObjectOf(connection_);
  Object name_ = Create(u"TALM_Flow.Name");
  Outcome row_ = RunText(connection_, "Insert Into WorkFlowName (FlowName) Values ('F')");
};

// Whoever sets the type alone has a null of that type, not what stood in the memory before.
TEST(EmptyVariantTest, IsZeroInEveryByte) {
  alignas(TalmVariant) std::array<unsigned char, sizeof(TalmVariant)> bytes;
  bytes.fill(0xFF);
  new (bytes.data()) TalmVariant{};
  EXPECT_THAT(bytes, testing::Each(0));
}

TEST_F(ValuesTest, NumbersOfEveryTypeAreTaken) {
  EXPECT_EQ(Numbered(kTalmInt8, [](auto& v) { v.as.int8 = -8; }), "\"-8\"");
  EXPECT_EQ(Numbered(kTalmUint8, [](auto& v) { v.as.uint8 = 200; }), "\"200\"");
  EXPECT_EQ(Numbered(kTalmInt16, [](auto& v) { v.as.int16 = -16; }), "\"-16\"");
  EXPECT_EQ(Numbered(kTalmUint16, [](auto& v) { v.as.uint16 = 60000; }), "\"60000\"");
  EXPECT_EQ(Numbered(kTalmInt, [](auto& v) { v.as.int32 = -32; }), "\"-32\"");
  EXPECT_EQ(Numbered(kTalmUint, [](auto& v) { v.as.uint32 = 4000000000U; }), "\"4000000000\"");
  EXPECT_EQ(Numbered(kTalmUint32, [](auto& v) { v.as.uint32 = 4000000000U; }), "\"4000000000\"");
  EXPECT_EQ(Numbered(kTalmInt64, [](auto& v) { v.as.int64 = INT64_MIN; }), "\"-9223372036854775808\"");
  EXPECT_EQ(Numbered(kTalmUint64, [](auto& v) { v.as.uint64 = UINT64_MAX; }), "\"1.84467440737096E+19\"");
  EXPECT_EQ(Numbered(kTalmFloat, [](auto& v) { v.as.float32 = 0.1F; }), "\"0.1\"");
  EXPECT_EQ(Numbered(kTalmDouble, [](auto& v) { v.as.float64 = 2.5; }), "\"2.5\"");
  EXPECT_EQ(Numbered(kTalmCurrency, [](auto& v) { v.as.currency = 12345678; }), "\"1234.5678\"");
  EXPECT_EQ(Numbered(kTalmCurrency, [](auto& v) { v.as.currency = -120000; }), "\"-12\"");
}

TEST_F(ValuesTest, NumbersThatAreNoneAreRefused) {
  const auto refused = "code " + std::to_string(static_cast<std::uint32_t>(TALM_TYPE_MISMATCH));
  EXPECT_EQ(Numbered(kTalmDouble, [](auto& v) { v.as.float64 = std::nan(""); }), refused);
  EXPECT_EQ(Numbered(kTalmFloat, [](auto& v) { v.as.float32 = INFINITY; }), refused);
  EXPECT_EQ(Numbered(kTalmDate, [](auto& v) { v.as.date = 3e9; }), refused);
  EXPECT_EQ(Numbered(kTalmError, [](auto& v) { v.as.error = TALM_FAIL; }), refused);
  EXPECT_EQ(Numbered(99, {}), refused);
  EXPECT_EQ(AsText(ByReference(kTalmInt32, nullptr)), refused);
}

TEST_F(ValuesTest, DecimalsAreTaken) {
  const auto decimal = [&](std::uint8_t scale, std::uint8_t sign, std::uint32_t high, std::uint64_t low) {
    return Numbered(kTalmDecimal, [&](TalmVariant& v) {
      auto* const bytes = reinterpret_cast<char*>(&v);
      bytes[2] = static_cast<char>(scale);
      bytes[3] = static_cast<char>(sign);
      std::memcpy(bytes + 4, &high, sizeof high);
      std::memcpy(bytes + 8, &low, sizeof low);
    });
  };
  EXPECT_EQ(decimal(0, 0x80, 0, 7), "\"-7\"");
  EXPECT_EQ(decimal(2, 0, 0, 12345), "\"123.45\"");
  EXPECT_EQ(decimal(0, 0, 1, 0), "\"1.84467440737096E+19\"");
}

TEST_F(ValuesTest, DatesAreGeneralDateTexts) {
  EXPECT_EQ(Numbered(kTalmDate, [](auto& v) { v.as.date = 46053; }), "\"2026/1/31\"");
  EXPECT_EQ(Numbered(kTalmDate, [](auto& v) { v.as.date = 46053.5; }), "\"2026/1/31 12:00:00\"");
  EXPECT_EQ(Numbered(kTalmDate, [](auto& v) { v.as.date = -1.25; }), "\"1899/12/29 6:00:00\"");
}

TEST_F(ValuesTest, TruthEmptinessAndTextsAreTaken) {
  EXPECT_EQ(Numbered(kTalmBoolean, [](auto& v) { v.as.boolean = -1; }), "\"True\"");
  EXPECT_EQ(Numbered(kTalmBoolean, {}), "\"False\"");
  EXPECT_EQ(AsText(Text("'中文' 😀 \n")), "\"'中文' 😀 \n\"");
  EXPECT_EQ(AsText(Of(kTalmTextType)), "\"\"") << "a null pointer is the empty text";
  EXPECT_EQ(AsText(Of(kTalmEmpty)), "\"\"");
  EXPECT_EQ(AsText(Of(kTalmNull)), "\"\"");
}

TEST_F(ValuesTest, ReferencesOfEveryTypeAreFollowed) {
  std::int16_t number = -7;
  double date = 46053;
  TalmText text = TalmTextFromUtf8("文");
  EXPECT_EQ(AsText(ByReference(kTalmInt16, &number)), "\"-7\"");
  EXPECT_EQ(AsText(ByReference(kTalmDate, &date)), "\"2026/1/31\"");
  EXPECT_EQ(AsText(ByReference(kTalmTextType, &text)), "\"文\"");
  TalmFreeText(text);
  OwnedVariant inner = Whole(5);
  OwnedVariant outer = ByReference(inner);
  EXPECT_EQ(AsText(ByReference(outer)), "\"5\"");
  OwnedVariant circle;
  circle = ByReference(circle);
  EXPECT_EQ(AsText(circle), "code " + std::to_string(static_cast<std::uint32_t>(TALM_TYPE_MISMATCH)));
}

TEST_F(ValuesTest, AnObjectStandsForItsDefaultMember) {
  const auto object =
      ScriptObject::Make({{u"Value", [](const auto& request) { return ScriptObject::Give(request, Text("inside")); }}});
  EXPECT_EQ(AsText(UnknownOf(object)), "\"inside\"");
  const auto deaf = ScriptObject::Make({});
  EXPECT_EQ(AsText(UnknownOf(deaf)), "code " + std::to_string(static_cast<std::uint32_t>(TALM_TYPE_MISMATCH)));
}

TEST_F(ValuesTest, ResultsAreOfTheNarrowestTypeThatHoldsThem) {
  EXPECT_EQ(AsResult("2147483647"), "2147483647");
  EXPECT_EQ(AsResult("2147483648"), "2147483648.000000");
  EXPECT_EQ(AsResult("9007199254740993"), "9007199254740993L");
  EXPECT_EQ(AsResult("1.5"), "1.500000");
  EXPECT_EQ(AsResult("Null"), "Null");
  EXPECT_EQ(AsResult("'中文😀'"), "\"中文😀\"");
  EXPECT_EQ(AsResult("x'FF00'"), std::string("bytes \xFF\0", 8));
}

TEST_F(ValuesTest, TextsCarryTheirLength) {
  const char16_t characters[] = {u'a', 0, u'b'};
  const TalmText text = TalmAllocateText(characters, 3);
  EXPECT_EQ(TalmTextLength(text), 3U);
  EXPECT_EQ(Utf8(text), std::string("a\0b", 3));
  EXPECT_EQ(text[3], 0);
  TalmFreeText(text);
  const TalmText empty = TalmAllocateText(nullptr, 2);
  EXPECT_EQ(TalmTextLength(empty), 2U);
  TalmFreeText(empty);
  EXPECT_EQ(TalmTextLength(nullptr), 0U);
  EXPECT_EQ(TalmAllocateText(nullptr, UINT32_MAX), nullptr);
}

TEST_F(ValuesTest, ATextIsNeverCutInsideACharacter) {
  const TalmText text = TalmTextFromUtf8("a中");
  char buffer[4] = {};
  EXPECT_EQ(TalmTextToUtf8(text, buffer, sizeof buffer), 4U);
  EXPECT_STREQ(buffer, "a");
  TalmFreeText(text);
}

TEST_F(ValuesTest, ArraysHoldWhatTheyAreMadeFor) {
  EXPECT_EQ(TalmCreateArray(kTalmUnknown, 1), nullptr);
  EXPECT_EQ(TalmCreateArray(kTalmNull, 1), nullptr);
  TalmArray* const numbers = TalmCreateArray(kTalmInt32, 3);
  EXPECT_EQ(numbers->element_size, 4U);
  EXPECT_EQ(static_cast<std::int32_t*>(numbers->data)[2], 0);
  TalmDestroyArray(numbers);
  TalmDestroyArray(TalmCreateArray(kTalmUint8, 0));
  TalmDestroyArray(nullptr);
}

TEST_F(ValuesTest, EveryKindOfErrorHasItsCode) {
  EXPECT_STREQ(TalmErrorKind(TALM_FLOW_ERROR), "FlowError");
  EXPECT_STREQ(TalmErrorKind(TALM_DATABASE_ERROR), "DatabaseError");
  EXPECT_STREQ(TalmErrorKind(TALM_ARGUMENT_ERROR), "ArgumentError");
  EXPECT_EQ(TalmErrorKind(TALM_FAIL), nullptr);
}

}  // namespace
}  // namespace talm_flow::test
