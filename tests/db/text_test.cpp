/// Texts as characters.

#include "talm_flow/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace talm_flow {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// One, two, three and four bytes a character.
constexpr std::string_view kMixed = "aé中𝄞z";

TEST(CharacterTest, IsACodePointOfAnySize) {
  EXPECT_EQ(CharacterCount(""), 0U);
  EXPECT_EQ(CharacterCount("abc"), 3U);
  EXPECT_EQ(CharacterCount(kMixed), 5U);
  EXPECT_EQ(CharacterCount("e\u0301"), 2U) << "a combining mark is a character of its own";
  EXPECT_EQ(CharacterCount(std::string_view("a\0b", 3)), 3U);
  EXPECT_EQ(CharacterCount("\U0010FFFF\uFFFF\u0080"), 3U);
}

struct BrokenCase {
  std::string_view bytes;
  std::size_t characters;
};

class BrokenTextTest : public testing::TestWithParam<BrokenCase> {};

TEST_P(BrokenTextTest, CountsEachStrayByteAsACharacter) {
  EXPECT_EQ(CharacterCount(GetParam().bytes), GetParam().characters);
  EXPECT_EQ(CharacterCount(std::string("x") + std::string(GetParam().bytes) + "y"), GetParam().characters + 2);
}

TEST_P(BrokenTextTest, IsKeptAsItIsWhenItsCaseIsChanged) {
  EXPECT_EQ(LowerCase(GetParam().bytes), GetParam().bytes);
  EXPECT_EQ(UpperCase(GetParam().bytes), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(StrayBytes, BrokenTextTest,
                         testing::Values(BrokenCase{"\x80", 1}, BrokenCase{"\xBF\x80", 2}, BrokenCase{"\xFF\xFE", 2},
                                         BrokenCase{"\xC3", 1}, BrokenCase{"\xE4\xB8", 2},
                                         BrokenCase{"\xF0\x9D\x84", 3}));
INSTANTIATE_TEST_SUITE_P(OverlongForms, BrokenTextTest,
                         testing::Values(BrokenCase{"\xC0\xAF", 2}, BrokenCase{"\xC1\x81", 2},
                                         BrokenCase{"\xE0\x80\xAF", 3}, BrokenCase{"\xF0\x80\x80\xAF", 4}));
INSTANTIATE_TEST_SUITE_P(NumbersOutsideTheStandard, BrokenTextTest,
                         testing::Values(BrokenCase{"\xED\xA0\x80", 3}, BrokenCase{"\xED\xBF\xBF", 3},
                                         BrokenCase{"\xF4\x90\x80\x80", 4}, BrokenCase{"\xF5\x80\x80\x80", 4},
                                         BrokenCase{"\xF8\x88\x80\x80\x80", 5}));

TEST(FirstCharactersTest, NeverTearsOne) {
  EXPECT_EQ(FirstCharacters(kMixed, 0), "");
  EXPECT_EQ(FirstCharacters(kMixed, 1), "a");
  EXPECT_EQ(FirstCharacters(kMixed, 2), "aé");
  EXPECT_EQ(FirstCharacters(kMixed, 3), "aé中");
  EXPECT_EQ(FirstCharacters(kMixed, 4), "aé中𝄞");
  EXPECT_EQ(FirstCharacters(kMixed, 5), kMixed);
  EXPECT_EQ(FirstCharacters(kMixed, 6), kMixed);
  EXPECT_EQ(FirstCharacters("", 3), "");
}

TEST(FirstCharactersTest, CutsALongTitleAt100Characters) {
  std::string title;
  for (int i = 0; i < 150; ++i) title += i % 2 == 0 ? "申" : "𝄞";
  EXPECT_EQ(CharacterCount(FirstCharacters(title, 100)), 100U);
  EXPECT_EQ(FirstCharacters(title, 100).size(), 350U);
}

TEST(OffsetOfCharacterTest, GivesTheByteOrTheEnd) {
  EXPECT_EQ(OffsetOfCharacter(kMixed, 0), 0U);
  EXPECT_EQ(OffsetOfCharacter(kMixed, 2), 3U);
  EXPECT_EQ(OffsetOfCharacter(kMixed, 3), 6U);
  EXPECT_EQ(OffsetOfCharacter(kMixed, 4), 10U);
  EXPECT_EQ(OffsetOfCharacter(kMixed, 5), kMixed.size());
  EXPECT_EQ(OffsetOfCharacter(kMixed, static_cast<std::size_t>(-1)), kMixed.size());
  EXPECT_EQ(OffsetOfCharacter("", 0), 0U);
}

TEST(TrimBlanksTest, CutsSpacesOnly) {
  EXPECT_EQ(TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(TrimBlanks("   "), "");
  EXPECT_EQ(TrimBlanks(""), "");
  EXPECT_EQ(TrimBlanks(" \ta\n "), "\ta\n");
  EXPECT_EQ(TrimBlanks("\u3000a\u3000"), "\u3000a\u3000");
}

TEST(SplitTest, GivesEveryPieceEmptyOnesToo) {
  EXPECT_THAT(Split("", ","), IsEmpty());
  EXPECT_THAT(Split("a", ","), ElementsAre("a"));
  EXPECT_THAT(Split("a,b", ","), ElementsAre("a", "b"));
  EXPECT_THAT(Split(",a,,b,", ","), ElementsAre("", "a", "", "b", ""));
  EXPECT_THAT(Split(",", ","), ElementsAre("", ""));
}

TEST(SplitTest, TakesSeparatorsOfSeveralCharacters) {
  EXPECT_THAT(Split("a|^|b|^||^|c|^", "|^|"), ElementsAre("a", "b", "", "c|^"));
  EXPECT_THAT(Split("|^|^|", "|^|"), ElementsAre("", "^|"));
}

TEST(SplitTest, TakesTimeInProportionToTheText) {
  EXPECT_THAT(Split(std::string(1'000'000, ','), ","), SizeIs(1'000'001));
}

TEST(ReplaceAllTest, GoesFromTheLeftAndDoesNotLookIntoWhatItPutIn) {
  EXPECT_EQ(ReplaceAll("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
  EXPECT_EQ(ReplaceAll("a-b-c", "-", ""), "abc");
  EXPECT_EQ(ReplaceAll("中文", "文", "x"), "中x");
  EXPECT_EQ(ReplaceAll("abc", "d", "e"), "abc");
  EXPECT_EQ(ReplaceAll("", "d", "e"), "");
}

struct CaseCase {
  std::string_view upper;
  std::string_view lower;
};

class CaseTest : public testing::TestWithParam<CaseCase> {};

TEST_P(CaseTest, MapsBothWays) {
  EXPECT_EQ(LowerCase(GetParam().upper), GetParam().lower);
  EXPECT_EQ(UpperCase(GetParam().lower), GetParam().upper);
  EXPECT_EQ(LowerCase(GetParam().lower), GetParam().lower);
  EXPECT_EQ(UpperCase(GetParam().upper), GetParam().upper);
}

INSTANTIATE_TEST_SUITE_P(Scripts, CaseTest,
                         testing::Values(CaseCase{"", ""}, CaseCase{"TABLEID", "tableid"},
                                         CaseCase{"@[`{AZ09_", "@[`{az09_"}, CaseCase{"ÀÉÎÕÜ×", "àéîõü×"},
                                         CaseCase{"ĀŁŽ", "āłž"}, CaseCase{"ΑΣΩ", "ασω"}, CaseCase{"АЯЁЂ", "аяёђ"},
                                         CaseCase{"ԱՖ", "աֆ"}, CaseCase{"ＡＺ", "ａｚ"}, CaseCase{"ⅠⅫⒶ", "ⅰⅻⓐ"},
                                         CaseCase{"Ა", "ა"}, CaseCase{"ȺȾ", "ⱥⱦ"}, CaseCase{"𐐀𞤀", "𐐨𞤢"},
                                         CaseCase{"中文・あ", "中文・あ"}, CaseCase{"Ÿ→Þ", "ÿ→þ"}));

TEST(UpperCaseTest, MapsOneCharacterToOne) {
  EXPECT_EQ(UpperCase("straße"), "STRAßE");
  EXPECT_EQ(UpperCase("ﬁ"), "ﬁ") << "a ligature has no capital of one character";
  EXPECT_EQ(UpperCase("ŉ"), "ŉ");
  EXPECT_EQ(UpperCase("ΐ"), "ΐ");
  EXPECT_EQ(UpperCase("i"), "I") << "whatever the locale";
  EXPECT_EQ(UpperCase("ı"), "I");
  EXPECT_EQ(UpperCase("ſ"), "S");
  EXPECT_EQ(UpperCase("µ"), "Μ") << "the micro sign has a Greek capital";
  EXPECT_EQ(UpperCase("ÿ"), "Ÿ");
  EXPECT_EQ(UpperCase("ς"), "Σ");
  EXPECT_EQ(UpperCase("ᾳ"), "ᾼ");
  EXPECT_EQ(UpperCase("ǆǅ"), "ǄǄ");
}

TEST(LowerCaseTest, MapsOneCharacterToOne) {
  EXPECT_EQ(LowerCase("İ"), "i");
  EXPECT_EQ(LowerCase("I"), "i");
  EXPECT_EQ(LowerCase("ẞ"), "ß");
  EXPECT_EQ(LowerCase("\u212A"), "k") << "the sign of the kelvin";
  EXPECT_EQ(LowerCase("\u2126"), "ω") << "the sign of the ohm";
  EXPECT_EQ(LowerCase("ΟΔΟΣ"), "οδοσ") << "a sigma at the end of a word is a sigma";
  EXPECT_EQ(LowerCase("ǅ"), "ǆ");
  EXPECT_EQ(LowerCase("ᾼ"), "ᾳ");
}

TEST(CaseInvariantTest, EveryCharacterKeepsBeingOneCharacter) {
  for (unsigned code_point = 0x80; code_point < 0x800; ++code_point) {
    const std::string text = {static_cast<char>(0xC0 | (code_point >> 6U)),
                              static_cast<char>(0x80 | (code_point & 0x3FU))};
    ASSERT_EQ(CharacterCount(LowerCase(text)), 1U) << code_point;
    ASSERT_EQ(CharacterCount(UpperCase(text)), 1U) << code_point;
  }
}

TEST(EqualIgnoringAsciiCaseTest, TakesAToZOnlyAsTheSame) {
  EXPECT_TRUE(EqualIgnoringAsciiCase("FlowID", "flowid"));
  EXPECT_TRUE(EqualIgnoringAsciiCase("", ""));
  EXPECT_FALSE(EqualIgnoringAsciiCase("FlowID", "flowi"));
  EXPECT_FALSE(EqualIgnoringAsciiCase("a", "b"));
  EXPECT_FALSE(EqualIgnoringAsciiCase("É", "é"));
  EXPECT_FALSE(EqualIgnoringAsciiCase("@", "`"));
  EXPECT_FALSE(EqualIgnoringAsciiCase("[", "{"));
}

}  // namespace
}  // namespace talm_flow
