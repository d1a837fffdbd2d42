#include "expr/condition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct ComparisonCase {
  std::string_view left;
  std::string_view right;
  std::string_view met;  ///< those of the six operators that hold, each with a blank behind it
};

class ComparisonTest : public ::testing::TestWithParam<ComparisonCase> {};

TEST_P(ComparisonTest, ExactlyTheseRelationsHold) {
  const auto& [left, right, met] = GetParam();
  for (const std::string_view operation : {">=", "<=", "<", ">", "<>", "="}) {
    const std::string sought = " " + std::string(operation) + " ";
    const bool expected = (" " + std::string(met)).find(sought) != std::string::npos;
    EXPECT_EQ(expr::Compare(left, operation, right), expected) << left << ' ' << operation << ' ' << right;
  }
}

INSTANTIATE_TEST_SUITE_P(Numbers, ComparisonTest,
                         ::testing::Values(ComparisonCase{"10", "9", ">= > <> "}, ComparisonCase{"9", "10", "<= < <> "},
                                           ComparisonCase{"1", "1.0", ">= <= = "}, ComparisonCase{"1", "1", ">= <= = "},
                                           ComparisonCase{" 1 ", "1", ">= <= = "},
                                           ComparisonCase{"1,000", "1E3", ">= <= = "},
                                           ComparisonCase{"-0", "0", ">= <= = "},
                                           ComparisonCase{"-3", "-2.5", "<= < <> "},
                                           ComparisonCase{"007", "7", ">= <= = "}));

INSTANTIATE_TEST_SUITE_P(Texts, ComparisonTest,
                         ::testing::Values(ComparisonCase{"abc", "abb", "<> "}, ComparisonCase{"abc", "ABC", "<> "},
                                           ComparisonCase{"abc", "abc", "= "}, ComparisonCase{"", "", "= "},
                                           ComparisonCase{"", "0", "<> "}, ComparisonCase{"5", "five", "<> "},
                                           ComparisonCase{"同意", "同意", "= "},
                                           ComparisonCase{"同意", "不同意", "<> "},
                                           ComparisonCase{"除数为0", "0", "<> "}));

INSTANTIATE_TEST_SUITE_P(Dates, ComparisonTest,
                         ::testing::Values(ComparisonCase{"2026/1/31", "2026-01-31", ">= <= = "},
                                           ComparisonCase{"2026/1/31 9:05:00", "2026-01-31T09:05", ">= <= = "},
                                           ComparisonCase{"2026/1/31 9:05:00", "2026/1/31 9:05:01", "<= < <> "},
                                           ComparisonCase{"2026/2/1", "2026/1/31 23:59:59", ">= > <> "},
                                           ComparisonCase{"2026年1月31日", "2026/1/31", ">= <= = "},
                                           ComparisonCase{"9:05", "9:05:00", ">= <= = "},
                                           ComparisonCase{"9999/12/31", "100/1/1", "<> "},
                                           ComparisonCase{"9999/12/31", "0100/1/1", ">= > <> "},
                                           ComparisonCase{"2023-02-29", "2023-02-28", "<> "},
                                           ComparisonCase{"2026/1/31", "46053", "<> "}));

class UnknownOperatorTest : public ::testing::TestWithParam<std::string_view> {};

TEST_P(UnknownOperatorTest, IsNeverMet) {
  EXPECT_FALSE(expr::Compare("1", GetParam(), "1"));
  EXPECT_FALSE(expr::Compare("1", GetParam(), "2"));
  EXPECT_FALSE(expr::Compare("2", GetParam(), "1"));
}

INSTANTIATE_TEST_SUITE_P(Operators, UnknownOperatorTest,
                         ::testing::Values("", " = ", "==", "=>", "=<", "><", "!=", "= ", " >=", "≥", "and"));

TEST(ConditionTokensTest, AWholeConditionFallsIntoItsTokens) {
  EXPECT_THAT(expr::ExpressToArr("a>=1 and (b<>2 or c=3)"),
              ElementsAre("a", ">=", "1", "and", "(", "b", "<>", "2", "or", "c", "=", "3", ")"));
}

struct ConditionCase {
  std::string_view text;
  std::vector<std::string_view> tokens;
};

class ConditionTokensCaseTest : public ::testing::TestWithParam<ConditionCase> {};

TEST_P(ConditionTokensCaseTest, TokensAreAsListed) {
  EXPECT_THAT(expr::ExpressToArr(GetParam().text), ElementsAreArray(GetParam().tokens));
}

INSTANTIATE_TEST_SUITE_P(Words, ConditionTokensCaseTest,
                         ::testing::Values(ConditionCase{"X=1 AND Y=2", {"x", "=", "1", "and", "y", "=", "2"}},
                                           ConditionCase{"a=1and b=2", {"a", "=", "1and b", "=", "2"}},
                                           ConditionCase{"a=1 or b=2", {"a", "=", "1", "or", "b", "=", "2"}},
                                           ConditionCase{"brand=order", {"brand", "=", "order"}},
                                           // The blank between two words serves the first of them only.
                                           ConditionCase{"a and and b", {"a", "and", "and b"}},
                                           ConditionCase{"(a) and (b)", {"(", "a", ")", "and", "(", "b", ")"}},
                                           ConditionCase{"a\tand\tb", {"a\tand\tb"}}));

INSTANTIATE_TEST_SUITE_P(
    Operators, ConditionTokensCaseTest,
    ::testing::Values(ConditionCase{"a<1", {"a", "<", "1"}}, ConditionCase{"a>1", {"a", ">", "1"}},
                      ConditionCase{"a<=1", {"a", "<=", "1"}}, ConditionCase{"a<>1", {"a", "<>", "1"}},
                      ConditionCase{"a==1", {"a", "=", "=", "1"}}, ConditionCase{"a=>1", {"a", "=", ">", "1"}},
                      ConditionCase{"a>==1", {"a", ">=", "=", "1"}}, ConditionCase{"a<>=1", {"a", "<", ">=", "1"}},
                      ConditionCase{"a < = 1", {"a", "<", "=", "1"}}, ConditionCase{"=", {"="}},
                      ConditionCase{"()", {"(", ")"}}));

INSTANTIATE_TEST_SUITE_P(
    Blanks, ConditionTokensCaseTest,
    ::testing::Values(ConditionCase{"  a  =  b c  ", {"a", "=", "b c"}},
                      ConditionCase{"a\r\nb=1", {"a", "b", "=", "1"}}, ConditionCase{"\r\n\r\n", {}},
                      ConditionCase{"a\rb\nc", {"a\rb\nc"}}, ConditionCase{"a\r\n and \r\nb", {"a", "and", "b"}},
                      ConditionCase{"姓名='李四' AND ÄÖ=Σ", {"姓名", "=", "'李四'", "and", "äö", "=", "σ"}}));

TEST(ConditionTokensTest, AnEmptyOrBlankTextHasNone) {
  EXPECT_THAT(expr::ExpressToArr(""), IsEmpty());
  EXPECT_THAT(expr::ExpressToArr("    "), IsEmpty());
}

TEST(ConditionTokensTest, ParenthesesNeedNotBalance) {
  EXPECT_THAT(expr::ExpressToArr(")(("), ElementsAre(")", "(", "("));
}

TEST(ConditionTokensTest, AVeryLongConditionKeepsEveryToken) {
  std::string text = "a=1";
  for (int i = 0; i < 20000; ++i) text += " or a=1";
  EXPECT_EQ(expr::ExpressToArr(text).size(), 3U + 20000U * 4U);
}

}  // namespace
}  // namespace talm_flow::test
