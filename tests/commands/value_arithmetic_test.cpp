#include "commands/value_command.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

const Operation kArithmetic{19, &Command::C_19};
const Operation kMagnitude{71, &Command::C_71};
const Operation kRounded{72, &Command::C_72};

class ArithmeticTest : public ValueCaseTest {};

TEST_P(ArithmeticTest, WritesTheResult) { ExpectWritten(); }

INSTANTIATE_TEST_SUITE_P(Numbers, ArithmeticTest,
                         ::testing::ValuesIn(Runs({kArithmetic}, {{{"7", "+", "2", "target"}, "9"},
                                                                  {{"7", "-", "9", "target"}, "-2"},
                                                                  {{"n", "*", "1.5", "target"}, "7.5"},
                                                                  {{"7", "/", "2", "target"}, "3.5"},
                                                                  {{"1", "/", "3", "target"}, "0.333333333333333"},
                                                                  {{"1E20", "*", "1", "target"}, "1E+20"},
                                                                  {{"\"-3\"", "+", "n", "target"}, "2"},
                                                                  {{"1+2", "*", "n", "target"}, "15"},
                                                                  {{"0", "*", "\"-3\"", "target"}, "0"}})));

INSTANTIATE_TEST_SUITE_P(NothingFits, ArithmeticTest,
                         ::testing::ValuesIn(Runs({kArithmetic}, {{{"7", "/", "0", "target"}, std::nullopt},
                                                                  {{"7", "%", "2", "target"}, std::nullopt},
                                                                  {{"7", "^", "2", "target"}, std::nullopt},
                                                                  {{"7", "", "2", "target"}, std::nullopt},
                                                                  {{"7", " + ", "2", "target"}, std::nullopt},
                                                                  {{"7", "\"+\"", "2", "target"}, std::nullopt},
                                                                  {{"7", "++", "2", "target"}, std::nullopt},
                                                                  {{"text", "-", "1", "target"}, std::nullopt},
                                                                  {{"text", "*", "2", "target"}, std::nullopt},
                                                                  {{"2", "/", "text", "target"}, std::nullopt},
                                                                  {{"moment", "*", "2", "target"}, std::nullopt},
                                                                  {{"moment", "-", "moment", "target"}, std::nullopt},
                                                                  {{"1", "-", "empty", "target"}, std::nullopt},
                                                                  {{}, std::nullopt}})));

INSTANTIATE_TEST_SUITE_P(Texts, ArithmeticTest,
                         ::testing::ValuesIn(Runs({kArithmetic},
                                                  {{{"\"x\"", "+", "1", "target"}, "x1"},
                                                   {{"text", "+", "\"中😀\"", "target"}, "a,b,c中😀"},
                                                   {{"empty", "+", "empty", "target"}, ""},
                                                   {{"1", "+", "moment", "target"}, "12026-01-31 09:05:07"},
                                                   {{"1/0", "+", "1", "target"}, "除数为01"},
                                                   {{"\"O'\"", "+", "\"Brien\"", "target"}, "O'Brien"}})));

INSTANTIATE_TEST_SUITE_P(Dates, ArithmeticTest,
                         ::testing::ValuesIn(Runs({kArithmetic},
                                                  {{{"moment", "+", "48", "target"}, "2026/2/2 9:05:07"},
                                                   {{"moment", "-", "9", "target"}, "2026/1/31 0:05:07"},
                                                   {{"\"2026/1/31\"", "+", "48", "target"}, "2026/2/2"},
                                                   {{"\"2026/1/31\"", "-", "0.5", "target"}, "2026/1/31"},
                                                   {{"\"2026/1/31\"", "-", "1.5", "target"}, "2026/1/30 22:00:00"},
                                                   {{"\"2026/1/31\"", "+", "\"-24\"", "target"}, "2026/1/30"}})));

INSTANTIATE_TEST_SUITE_P(Magnitudes, ArithmeticTest,
                         ::testing::ValuesIn(Runs({kMagnitude}, {{{"target", "\"-3.50\""}, "3.5"},
                                                                 {{"target", "n"}, "5"},
                                                                 {{"target", "\"-0\""}, "0"},
                                                                 {{"target", "\"-2147483648\""}, "2147483648"},
                                                                 {{"target", "\"-1E300\""}, "1E+300"},
                                                                 {{"target", "text"}, std::nullopt},
                                                                 {{"target", "empty"}, std::nullopt},
                                                                 {{"target"}, std::nullopt}})));

INSTANTIATE_TEST_SUITE_P(RoundedNumbers, ArithmeticTest,
                         ::testing::ValuesIn(Runs({kRounded}, {{{"target", "2.5"}, "2"},
                                                               {{"target", "3.5"}, "4"},
                                                               {{"target", "\"-2.5\""}, "-2"},
                                                               {{"target", "\"-0.4\""}, "0"},
                                                               {{"target", "2.4999"}, "2"},
                                                               {{"target", "\"1,234.6\""}, "1235"},
                                                               {{"target", "1E20"}, "1E+20"},
                                                               {{"target", "3000000000.5"}, "3000000000"},
                                                               {{"target", "text"}, std::nullopt},
                                                               {{"target", "moment"}, std::nullopt}})));

class ArithmeticTraceTest : public ValueCommandTest {};

TEST_F(ArithmeticTraceTest, EachOperandIsEvaluatedAsItIsRead) {
  RunStep(kArithmetic, {"n", "*", "n+1", "target"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kArithmetic, 1), ReadingOf("n"), ReadingOf(kArithmetic, 2),
                                   ReadingOf(kArithmetic, 3), ReadingOf("n"), ReadingOf(kArithmetic, 4),
                                   ReadingOf("target"), InsertingOf("target", "30")));
}

TEST_F(ArithmeticTraceTest, ADivisionByZeroLeavesTheTargetUnchanged) {
  Given("target", "old");
  RunStep(kArithmetic, {"7", "/", "0", "target"});
  EXPECT_EQ(Variable(), "old");
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kArithmetic, 1), ReadingOf(kArithmetic, 2), ReadingOf(kArithmetic, 3),
                                   ReadingOf(kArithmetic, 4)));
}

TEST_F(ArithmeticTraceTest, ANumberOutOfRangeRaisesOverflow) {
  for (const TextViews& parameters :
       {TextViews{"1E308", "*", "10", "target"}, TextViews{"moment", "+", "3000000000", "target"},
        TextViews{"moment", "-", "99999999", "target"}}) {
    EXPECT_THROW(RunStep(kArithmetic, parameters), OverflowError) << parameters[0] << parameters[1] << parameters[2];
    EXPECT_EQ(Variable(), std::nullopt);
  }
}

}  // namespace
}  // namespace talm_flow::test
