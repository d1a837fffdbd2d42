#include <gtest/gtest.h>
#include <utf8proc.h>

#include "db/case_table.h"
#include "talm_flow/text.h"

namespace talm_flow {
namespace {

std::string Character(char32_t code_point) {
  std::string text;
  AppendUtf8(text, code_point);
  return text;
}

/// Compares the mapping of every character. A newer standard knows more cases than the table, never other ones.
template <typename Known>
void ExpectAsKnown(std::string (*map)(std::string_view), Known known) {
  const bool same_version = std::string_view(utf8proc_unicode_version()) == kCaseTableVersion;
  for (utf8proc_int32_t code_point = 0; code_point <= 0x10FFFF; ++code_point) {
    if (code_point >= 0xD800 && code_point <= 0xDFFF) continue;
    const auto character = Character(static_cast<char32_t>(code_point));
    const auto mapped = map(character);
    if (!same_version && mapped == character) continue;
    ASSERT_EQ(mapped, Character(static_cast<char32_t>(known(code_point)))) << "U+" << std::hex << code_point;
  }
}

TEST(Case, EveryCharacterIsLowered) { ExpectAsKnown(LowerCase, utf8proc_tolower); }

TEST(Case, EveryCharacterIsRaisedButTheSharpS) {
  ExpectAsKnown(UpperCase, [](utf8proc_int32_t c) { return c == 0xDF ? c : utf8proc_toupper(c); });
}

TEST(Utf16, TextsGoThereAndBack) {
  const std::string text = "a\xC3\x9F\xE6\x9D\x8E\xF0\x9F\x98\x80\x7F";
  EXPECT_EQ(ToUtf16(text), u"a\u00DF\u674E\U0001F600\u007F");
  EXPECT_EQ(ToUtf8(ToUtf16(text)), text);
}

TEST(Utf16, EveryCharacterGoesThereAndBack) {
  for (char32_t code_point = 0; code_point <= 0x10FFFF; ++code_point) {
    if (code_point >= 0xD800 && code_point <= 0xDFFF) continue;
    const auto character = Character(code_point);
    ASSERT_EQ(CodePointOf(character), code_point);
    ASSERT_EQ(SequenceSize(character), character.size());
    ASSERT_EQ(ToUtf8(ToUtf16(character)), character);
  }
}

TEST(Utf16, BytesThatAreNoSequenceBecomeTheReplacement) {
  EXPECT_EQ(ToUtf16("a\xFFz\xE6\x9D"), u"a\uFFFDz\uFFFD\uFFFD");
  EXPECT_EQ(ToUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
}

TEST(Utf16, HalvesOfCharactersBecomeTheReplacement) {
  const char16_t halves[] = {0xD83D, u'a', 0xDE00, 0xD83D};
  EXPECT_EQ(ToUtf8({halves, 4}),
            "\xEF\xBF\xBD"
            "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(SequenceSize, IsNothingWhereNoneBegins) {
  EXPECT_EQ(SequenceSize(""), 0U);
  EXPECT_EQ(SequenceSize("\x80"), 0U);
  EXPECT_EQ(SequenceSize("\xC0\x80"), 0U);
  EXPECT_EQ(SequenceSize("\xF4\x90\x80\x80"), 0U);
}

}  // namespace
}  // namespace talm_flow
