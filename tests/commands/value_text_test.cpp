#include "commands/value_command.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

const Operation kTrimmed{59, &Command::C_59};
const Operation kUpper{64, &Command::C_64};
const Operation kLower{65, &Command::C_65};
const Operation kIsNumeric{66, &Command::C_66};
const Operation kIsDate{67, &Command::C_67};
const Operation kReplaced{93, &Command::C_93};
const Operation kPiece{94, &Command::C_94};
const Operation kLength{95, &Command::C_95};
const Operation kPosition{96, &Command::C_96};

class TextTest : public ValueCaseTest {};

TEST_P(TextTest, WritesTheValue) { ExpectWritten(); }

INSTANTIATE_TEST_SUITE_P(Trimmed, TextTest,
                         ::testing::ValuesIn(Runs({kTrimmed}, {{{"target", "\"  a  b \""}, "a  b"},
                                                               {{"target", "\"   \""}, ""},
                                                               {{"target", "empty"}, ""},
                                                               {{"target", "\"\t a \r\n\""}, "\t a \r\n"},
                                                               {{"target", "\"\u3000全角\u3000\""}, "\u3000全角\u3000"},
                                                               {{"target", " 12 "}, "12"},
                                                               {{"target"}, ""}})));

INSTANTIATE_TEST_SUITE_P(UpperCase, TextTest,
                         ::testing::ValuesIn(Runs({kUpper}, {{{"target", "\"aBc é ß σς 中 😀 ǆ\""}, "ABC É ß ΣΣ 中 😀 Ǆ"},
                                                             {{"target", "\"i\""}, "I"},
                                                             {{"target", "\"𐐨\""}, "𐐀"},
                                                             {{"target", "empty"}, ""}})));

INSTANTIATE_TEST_SUITE_P(LowerCase, TextTest,
                         ::testing::ValuesIn(Runs({kLower}, {{{"target", "\"ABC É Σ ΑΣ 中 😀\""}, "abc é σ ασ 中 😀"},
                                                             {{"target", "\"I\""}, "i"},
                                                             {{"target", "\"𐐀\""}, "𐐨"},
                                                             {{"target", "empty"}, ""}})));

INSTANTIATE_TEST_SUITE_P(NumericFlags, TextTest,
                         ::testing::ValuesIn(Runs({kIsNumeric}, {{{"target", "12"}, "1"},
                                                                 {{"target", "\" -1,234.5E-3 \""}, "1"},
                                                                 {{"target", "1+2"}, "1"},
                                                                 {{"target", "text"}, "0"},
                                                                 {{"target", "empty"}, "0"},
                                                                 {{"target", "\"inf\""}, "0"},
                                                                 {{"target", "\"1E999\""}, "0"},
                                                                 {{"target", "moment"}, "0"},
                                                                 {{"target"}, "0"}})));

INSTANTIATE_TEST_SUITE_P(DateFlags, TextTest,
                         ::testing::ValuesIn(Runs({kIsDate}, {{{"target", "moment"}, "1"},
                                                              {{"target", "\"2026.1.31\""}, "1"},
                                                              {{"target", "\"23:59:59\""}, "1"},
                                                              {{"target", "\"2026-02-29\""}, "0"},
                                                              {{"target", "\"24:00\""}, "0"},
                                                              {{"target", "n"}, "0"},
                                                              {{"target", "text"}, "0"},
                                                              {{"target"}, "0"}})));

INSTANTIATE_TEST_SUITE_P(
    Replacing, TextTest,
    ::testing::ValuesIn(Runs({kReplaced}, {{{"\"aXbXc\"", "\"X\"", "\"--\"", "", "", "target"}, "a--b--c"},
                                           {{"\"aXbXc\"", "\"X\"", "\"\"", "1", "1", "target"}, "abXc"},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "3", "", "target"}, "b-c"},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "3", "5", "target"}, "b-c"},
                                           {{"\"aXbXcX\"", "\"X\"", "\"-\"", "3", "1", "target"}, "b-cX"},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "1", "0", "target"}, "aXbXc"},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "0", "\"-7\"", "target"}, "a-b-c"},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "\"-2\"", "text", "target"}, "a-b-c"},
                                           {{"\"aXbXc\"", "\"x\"", "\"-\"", "", "", "target"}, "aXbXc"},
                                           {{"\"aXbXc\"", "\"\"", "\"-\"", "2", "", "target"}, "XbXc"},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "5", "", "target"}, "c"},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "6", "", "target"}, ""},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "2147483647", "", "target"}, ""},
                                           {{"\"aXbXc\"", "\"X\"", "\"-\"", "1.5", "0.5", "target"}, "XbXc"},
                                           {{"\"aaaa\"", "\"aa\"", "\"a\"", "", "", "target"}, "aa"},
                                           {{"\"ab\"", "\"a\"", "\"aa\"", "", "", "target"}, "aab"},
                                           {{"\"中😀文😀\"", "\"😀\"", "\"好\"", "3", "", "target"}, "文好"},
                                           {{"\"中😀文😀\"", "\"中😀\"", "\"\"", "", "", "target"}, "文😀"},
                                           {{"empty", "\"a\"", "\"b\"", "", "", "target"}, ""},
                                           {{"text", "\",\"", "n", "", "", "target"}, "a5b5c"}})));

INSTANTIATE_TEST_SUITE_P(Pieces, TextTest,
                         ::testing::ValuesIn(Runs({kPiece}, {{{"\"abcdef\"", "2", "3", "target"}, "bcd"},
                                                             {{"\"abcdef\"", "", "", "target"}, "abcdef"},
                                                             {{"\"abcdef\"", "3", "", "target"}, "cdef"},
                                                             {{"\"abcdef\"", "3", "0", "target"}, "cdef"},
                                                             {{"\"abcdef\"", "3", "\"-1\"", "target"}, "cdef"},
                                                             {{"\"abcdef\"", "0", "2", "target"}, "ab"},
                                                             {{"\"abcdef\"", "\"-5\"", "2", "target"}, "ab"},
                                                             {{"\"abcdef\"", "text", "2", "target"}, "ab"},
                                                             {{"\"abcdef\"", "5", "9", "target"}, "ef"},
                                                             {{"\"abcdef\"", "7", "1", "target"}, ""},
                                                             {{"\"abcdef\"", "n-3", "1+1", "target"}, "bc"},
                                                             {{"\"abcdef\"", "2.5", "1.5", "target"}, "bc"},
                                                             {{"\"流程😀变量\"", "3", "2", "target"}, "😀变"},
                                                             {{"empty", "1", "1", "target"}, ""}})));

INSTANTIATE_TEST_SUITE_P(Lengths, TextTest,
                         ::testing::ValuesIn(Runs({kLength}, {{{"\"abc\"", "target"}, "3"},
                                                              {{"\"流程😀𠮷\"", "target"}, "4"},
                                                              {{"\"e\u0301\"", "target"}, "2"},
                                                              {{"\" a \"", "target"}, "3"},
                                                              {{"007", "target"}, "3"},
                                                              {{"\"\r\n\"", "target"}, "2"},
                                                              {{"empty", "target"}, "0"},
                                                              {{"", "target"}, "0"}})));

INSTANTIATE_TEST_SUITE_P(Positions, TextTest,
                         ::testing::ValuesIn(Runs({kPosition}, {{{"\"abcabc\"", "\"c\"", "", "target"}, "3"},
                                                                {{"\"abcabc\"", "\"c\"", "3", "target"}, "3"},
                                                                {{"\"abcabc\"", "\"c\"", "4", "target"}, "6"},
                                                                {{"\"abcabc\"", "\"c\"", "7", "target"}, "0"},
                                                                {{"\"abcabc\"", "\"c\"", "0", "target"}, "3"},
                                                                {{"\"abcabc\"", "\"c\"", "\"-9\"", "target"}, "3"},
                                                                {{"\"abcabc\"", "\"c\"", "text", "target"}, "3"},
                                                                {{"\"abcabc\"", "\"C\"", "", "target"}, "0"},
                                                                {{"\"abcabc\"", "\"abcabcd\"", "", "target"}, "0"},
                                                                {{"\"abcabc\"", "\"\"", "", "target"}, "1"},
                                                                {{"\"abcabc\"", "\"\"", "6", "target"}, "6"},
                                                                {{"\"abcabc\"", "\"\"", "7", "target"}, "0"},
                                                                {{"empty", "\"\"", "", "target"}, "0"},
                                                                {{"empty", "\"a\"", "", "target"}, "0"},
                                                                {{"\"流程😀变量\"", "\"变量\"", "2", "target"}, "4"},
                                                                {{"\"流程😀变量\"", "\"😀\"", "3", "target"}, "3"},
                                                                {{"\"流程😀变量\"", "\"😀\"", "4", "target"}, "0"}})));

class TextTraceTest : public ValueCommandTest {};

TEST_F(TextTraceTest, EveryValueIsEvaluatedAsItIsRead) {
  RunStep(kReplaced, {"text", "\",\"", "n", "n-4", "empty", "target"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kReplaced, 1), ReadingOf("text"), ReadingOf(kReplaced, 2),
                                   ReadingOf(kReplaced, 3), ReadingOf("n"), ReadingOf(kReplaced, 4), ReadingOf("n"),
                                   ReadingOf(kReplaced, 5), ReadingOf("empty"), ReadingOf(kReplaced, 6),
                                   ReadingOf("target"), InsertingOf("target", "a5b5c")));
}

TEST_F(TextTraceTest, APositionBeyond32BitsRaisesOverflow) {
  EXPECT_THROW(RunStep(kReplaced, {"text", "\"a\"", "\"b\"", "2147483648", "", "target"}), OverflowError);
  EXPECT_THROW(RunStep(kReplaced, {"text", "\"a\"", "\"b\"", "", "2147483648", "target"}), OverflowError);
  EXPECT_THROW(RunStep(kPiece, {"text", "2147483648", "", "target"}), OverflowError);
  EXPECT_THROW(RunStep(kPiece, {"text", "", "2147483648", "target"}), OverflowError);
  EXPECT_THROW(RunStep(kPosition, {"text", "\"a\"", "2147483648", "target"}), OverflowError);
  EXPECT_EQ(Variable(), std::nullopt);
}

}  // namespace
}  // namespace talm_flow::test
