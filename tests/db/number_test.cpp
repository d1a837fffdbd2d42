/// Numbers in texts, numbers as texts, and loosely typed values as numbers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

#include "talm_flow/conversion.h"
#include "talm_flow/error.h"

namespace talm_flow {
namespace {

using ::testing::HasSubstr;

struct NumericCase {
  const char* text;
  double number;
};

class NumericTextTest : public testing::TestWithParam<NumericCase> {};

TEST_P(NumericTextTest, IsReadAsItsNumber) {
  const auto [text, number] = GetParam();
  EXPECT_TRUE(IsNumeric(text));
  const auto parsed = ParseNumber(text);
  ASSERT_TRUE(parsed.has_value()) << text;
  EXPECT_EQ(*parsed, number) << text;
}

INSTANTIATE_TEST_SUITE_P(
    Whole, NumericTextTest,
    testing::Values(NumericCase{"0", 0}, NumericCase{"7", 7}, NumericCase{"+5", 5}, NumericCase{"-5", -5},
                    NumericCase{"007", 7}, NumericCase{"999999999999999", 999999999999999.0},
                    NumericCase{"9999999999999999", 1e16},
                    NumericCase{"123456789012345678901234567890", 123456789012345678901234567890.0},
                    NumericCase{"-0", 0}));
INSTANTIATE_TEST_SUITE_P(BlanksAtTheEnds, NumericTextTest,
                         testing::Values(NumericCase{" 12 ", 12}, NumericCase{"\t12\t", 12},
                                         NumericCase{" \t -1.5 \t", -1.5}));
INSTANTIATE_TEST_SUITE_P(Fractions, NumericTextTest,
                         testing::Values(NumericCase{"1.5", 1.5}, NumericCase{".5", 0.5}, NumericCase{"-.5", -0.5},
                                         NumericCase{"5.", 5}, NumericCase{"0.1", 0.1}, NumericCase{"+.25e1", 2.5}));
INSTANTIATE_TEST_SUITE_P(GroupedDigits, NumericTextTest,
                         testing::Values(NumericCase{"1,234", 1234}, NumericCase{"1,2,3", 123},
                                         NumericCase{"12,34,567.25", 1234567.25}, NumericCase{"-1,000e1", -10000},
                                         NumericCase{"0,0", 0}));
INSTANTIATE_TEST_SUITE_P(Exponents, NumericTextTest,
                         testing::Values(NumericCase{"1e5", 1e5}, NumericCase{"1E+5", 1e5}, NumericCase{"25e-1", 2.5},
                                         NumericCase{"1.e2", 100}, NumericCase{"0e99999999999999999999", 0},
                                         NumericCase{"1.7976931348623157e308", std::numeric_limits<double>::max()}));
INSTANTIATE_TEST_SUITE_P(TooSmallForADouble, NumericTextTest,
                         testing::Values(NumericCase{"1e-400", 0}, NumericCase{"-1e-400", 0},
                                         NumericCase{"1e-99999999999999999999", 0}, NumericCase{"0.0001e-500", 0},
                                         NumericCase{"1,000e-600", 0}));

class OtherTextTest : public testing::TestWithParam<const char*> {};

TEST_P(OtherTextTest, IsNotNumeric) {
  EXPECT_FALSE(IsNumeric(GetParam()));
  EXPECT_EQ(ParseNumber(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Texts, OtherTextTest,
                         testing::Values("", " ", "\t", "abc", "1a", "a1", "1 2", "- 5", "--5", "+-5", "+", "-", ".",
                                         "-.", "1.2.3", "\n5", "5\n",
                                         "\xC2\xA0"
                                         "5",
                                         "１"));
INSTANTIATE_TEST_SUITE_P(MisplacedCommas, OtherTextTest,
                         testing::Values(",", ",1", "1,", "1,,2", "1,.5", "1.5,5", "1e1,0", "-,1", "1,e5", ",.5"));
INSTANTIATE_TEST_SUITE_P(BrokenExponents, OtherTextTest,
                         testing::Values("1e", "1e+", "e5", ".e5", "1e5.5", "1e 5", "1ee5", "1d5", "1e5e5"));
INSTANTIATE_TEST_SUITE_P(OtherNotations, OtherTextTest,
                         testing::Values("0x10", "&H10", "$5", "5%", "(5)", "inf", "-inf", "INF", "infinity", "nan",
                                         "1#INF", "True", "1f", "1p3"));
INSTANTIATE_TEST_SUITE_P(TooLargeForADouble, OtherTextTest,
                         testing::Values("1e309", "-1e309", "1e99999999999999999999", "1.7976931348623159e308",
                                         "1,0e400", "0.001e400"));

TEST(NumericTextEdgeTest, ALongTextOfDigitsIsNumericUpToTheRangeOfADouble) {
  EXPECT_TRUE(IsNumeric(std::string(308, '9')));
  EXPECT_FALSE(IsNumeric(std::string(309, '9')));
  EXPECT_FALSE(IsNumeric("-" + std::string(1000, '9') + ".5"));
  EXPECT_EQ(ParseNumber(std::string(1000, '0') + "7"), 7);
  EXPECT_EQ(ParseNumber("0." + std::string(400, '0') + "7"), 0);
}

TEST(NumericTextEdgeTest, ANulCharacterIsNoEndOfTheText) {
  EXPECT_FALSE(IsNumeric(std::string_view("5\0", 2)));
  EXPECT_FALSE(
      IsNumeric(std::string_view("5\0"
                                 "6",
                                 3)));
}

TEST(NumericTextEdgeTest, TheLocaleOfTheProcessDoesNotMatter) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  // Not every machine has a locale with a decimal comma; the comparison holds with any.
  (void)(std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr || std::setlocale(LC_ALL, "C.UTF-8") != nullptr);
  const auto number = ParseNumber("1,234.5");
  const std::string text = NumberText(0.5);
  (void)std::setlocale(LC_ALL, before.c_str());
  EXPECT_EQ(number, 1234.5);
  EXPECT_EQ(text, "0.5");
}

TEST(NumericValueTest, NumbersAndBooleansAreNumericNullIsNot) {
  EXPECT_TRUE(IsNumeric(Value(5)));
  EXPECT_TRUE(IsNumeric(Value(2.5)));
  EXPECT_TRUE(IsNumeric(Value(true)));
  EXPECT_TRUE(IsNumeric(Value("5")));
  EXPECT_FALSE(IsNumeric(Value("five")));
  EXPECT_FALSE(IsNumeric(Value()));
}

struct NumberTextCase {
  double number;
  const char* text;
};

class NumberTextTest : public testing::TestWithParam<NumberTextCase> {};

TEST_P(NumberTextTest, IsTheGeneralForm) {
  EXPECT_EQ(NumberText(GetParam().number), GetParam().text);
  EXPECT_EQ(JoinedText(Value(GetParam().number)), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, NumberTextTest,
    testing::Values(NumberTextCase{0, "0"}, NumberTextCase{-0.0, "0"}, NumberTextCase{1, "1"},
                    NumberTextCase{-17, "-17"}, NumberTextCase{0.5, "0.5"}, NumberTextCase{-0.25, "-0.25"},
                    NumberTextCase{1.10, "1.1"}, NumberTextCase{0.1 + 0.2, "0.3"},
                    NumberTextCase{1.0 / 3, "0.333333333333333"}, NumberTextCase{2.0 / 3, "0.666666666666667"},
                    NumberTextCase{1e14, "100000000000000"}, NumberTextCase{999999999999999, "999999999999999"},
                    NumberTextCase{1e15, "1E+15"}, NumberTextCase{999999999999999.9, "1E+15"},
                    NumberTextCase{-1e15, "-1E+15"}, NumberTextCase{1e20, "1E+20"}, NumberTextCase{1.5e100, "1.5E+100"},
                    NumberTextCase{123456789012345678.0, "1.23456789012346E+17"}, NumberTextCase{0.0001, "0.0001"},
                    NumberTextCase{0.00001, "1E-05"}, NumberTextCase{-1.5e-7, "-1.5E-07"},
                    NumberTextCase{1e-100, "1E-100"}, NumberTextCase{1234567.891, "1234567.891"}));

TEST(JoinedTextTest, NullAddsNothingAndOtherValuesTheirPlainForm) {
  EXPECT_EQ(JoinedText(Value()), "");
  EXPECT_EQ(JoinedText(Value(true)), "True");
  EXPECT_EQ(JoinedText(Value(false)), "False");
  EXPECT_EQ(JoinedText(Value(-42)), "-42");
  EXPECT_EQ(JoinedText(Value(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
  EXPECT_EQ(JoinedText(Value("a'b")), "a'b");
  std::string out = "x";
  AppendJoined(out, Value(7));
  AppendJoined(out, Value());
  AppendJoined(out, Value("y"));
  EXPECT_EQ(out, "x7y");
}

TEST(ToTextTest, RefusesNullOnly) {
  EXPECT_EQ(ToText(Value(1.5)), "1.5");
  EXPECT_EQ(ToText(Value("")), "");
  EXPECT_THROW((void)ToText(Value()), ConversionError);
}

TEST(ToDoubleTest, TakesNumbersBooleansAndNumericTexts) {
  EXPECT_EQ(ToDouble(Value(3)), 3);
  EXPECT_EQ(ToDouble(Value(2.5)), 2.5);
  EXPECT_EQ(ToDouble(Value(true)), -1);
  EXPECT_EQ(ToDouble(Value(false)), 0);
  EXPECT_EQ(ToDouble(Value(" 1,000.5 ")), 1000.5);
}

TEST(ToDoubleTest, NamesTheTextThatIsNoNumber) {
  EXPECT_THROW((void)ToDouble(Value()), ConversionError);
  try {
    (void)ToDouble(Value("twelve"));
    FAIL() << "no error";
  } catch (const ConversionError& error) {
    EXPECT_THAT(error.what(), HasSubstr("\"twelve\""));
  }
}

TEST(ToDoubleTest, CutsALongTextInTheMessageBetweenCharacters) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "数";
  try {
    (void)ToDouble(Value(text));
    FAIL() << "no error";
  } catch (const ConversionError& error) {
    const std::string message = error.what();
    EXPECT_LT(message.size(), 400U);
    EXPECT_THAT(message, HasSubstr("数...\""));
  }
}

struct RoundingCase {
  double number;
  double rounded;
};

class RoundingTest : public testing::TestWithParam<RoundingCase> {};

TEST_P(RoundingTest, GoesToTheNearestAndTiesToEven) {
  EXPECT_EQ(RoundHalfEven(GetParam().number), GetParam().rounded);
  EXPECT_EQ(RoundHalfEven(-GetParam().number), -GetParam().rounded);
}

INSTANTIATE_TEST_SUITE_P(Numbers, RoundingTest,
                         testing::Values(RoundingCase{0, 0}, RoundingCase{0.4, 0}, RoundingCase{0.5, 0},
                                         RoundingCase{0.6, 1}, RoundingCase{1.5, 2}, RoundingCase{2.5, 2},
                                         RoundingCase{3.5, 4}, RoundingCase{0.49999999999999994, 0},
                                         RoundingCase{0.7, 1}, RoundingCase{4503599627370495.5, 4503599627370496.0},
                                         RoundingCase{9007199254740993.0, 9007199254740993.0},
                                         RoundingCase{1e300, 1e300}));

TEST(ToInt32Test, RoundsWhatItTakes) {
  EXPECT_EQ(ToInt32(Value("2.5")), 2);
  EXPECT_EQ(ToInt32(Value("3.5")), 4);
  EXPECT_EQ(ToInt32(Value(-0.5)), 0);
  EXPECT_EQ(ToInt32(Value(true)), -1);
  EXPECT_EQ(ToInt32(Value(7)), 7);
  EXPECT_EQ(ToInt32(2.5), 2);
}

TEST(ToInt32Test, HoldsExactlyThirtyTwoBits) {
  EXPECT_EQ(ToInt32(Value("2147483647")), 2147483647);
  EXPECT_EQ(ToInt32(Value("2147483647.49")), 2147483647);
  EXPECT_EQ(ToInt32(Value("-2147483648.5")), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(ToInt32(Value(-2147483648LL)), std::numeric_limits<std::int32_t>::min());
  EXPECT_THROW((void)ToInt32(Value("2147483647.5")), OverflowError);
  EXPECT_THROW((void)ToInt32(Value("-2147483649")), OverflowError);
  EXPECT_THROW((void)ToInt32(Value(2147483648LL)), OverflowError);
  EXPECT_THROW((void)ToInt32(Value(1e300)), OverflowError);
  EXPECT_THROW((void)ToInt32(std::numeric_limits<double>::infinity()), OverflowError);
  EXPECT_THROW((void)ToInt32(std::numeric_limits<double>::quiet_NaN()), OverflowError);
}

TEST(ToInt32Test, TellsNoNumberFromTooLargeANumber) {
  EXPECT_THROW((void)ToInt32(Value("x")), ConversionError);
  EXPECT_THROW((void)ToInt32(Value("")), ConversionError);
  EXPECT_THROW((void)ToInt32(Value()), ConversionError);
  EXPECT_THROW((void)ToInt32(Value("1e400")), ConversionError);
  try {
    (void)ToInt32(Value("99999999999"));
    FAIL() << "no error";
  } catch (const OverflowError& error) {
    EXPECT_STREQ(error.what(), "the number \"99999999999\" does not fit in 32 bits");
  }
}

TEST(ToInt16Test, HoldsExactlySixteenBits) {
  EXPECT_EQ(ToInt16(Value("32767.4")), 32767);
  EXPECT_EQ(ToInt16(Value(-32768)), -32768);
  EXPECT_THROW((void)ToInt16(Value("32767.5")), OverflowError);
  EXPECT_THROW((void)ToInt16(Value(32768)), OverflowError);
  EXPECT_THROW((void)ToInt16(Value(-32769)), OverflowError);
  EXPECT_THROW((void)ToInt16(Value("x")), ConversionError);
}

TEST(SwitchTest, ComparesNumbersAndNumericTexts) {
  EXPECT_TRUE(SwitchIs(Value(1), 1));
  EXPECT_TRUE(SwitchIs(Value(1.0), 1));
  EXPECT_TRUE(SwitchIs(Value("1"), 1));
  EXPECT_TRUE(SwitchIs(Value(" 1.0 "), 1));
  EXPECT_FALSE(SwitchIs(Value("0"), 1));
  EXPECT_FALSE(SwitchIs(Value(2), 1));
  EXPECT_FALSE(SwitchIs(Value("yes"), 1));
  EXPECT_FALSE(SwitchIs(Value(""), 0));
  EXPECT_FALSE(SwitchIs(Value(), 0));
}

TEST(SwitchTest, TellsWhatIsPositive) {
  EXPECT_TRUE(SwitchIsPositive(Value(200)));
  EXPECT_TRUE(SwitchIsPositive(Value("0.5")));
  EXPECT_FALSE(SwitchIsPositive(Value(0)));
  EXPECT_FALSE(SwitchIsPositive(Value("-1")));
  EXPECT_FALSE(SwitchIsPositive(Value("wide")));
  EXPECT_FALSE(SwitchIsPositive(Value()));
}

}  // namespace
}  // namespace talm_flow
