#include "expr/evaluator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "expr/expressions.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

struct ExpressionCase {
  std::string_view expression;
  std::string_view value;
};

/// The variables that the expressions name.
void GiveVariables(Expressions& on) {
  on.Given("a", "x");
  on.Given("b", "y");
  on.Given("n", "5");
  on.Given("negative", "-3");
  on.Given("empty", "");
  on.Given("d", "2026/1/31");
  on.Given("moment", "2026-01-31 09:05:30");
  on.Given("clock", "9:05");
  on.Given("sum", "1+2");
  on.Given("quotes", "say \"hi\"");
  on.Given("x ", "with a blank");
  on.Given("总数", "8");
}

class ExpressionTest : public ::testing::TestWithParam<ExpressionCase> {};

TEST_P(ExpressionTest, HasItsValue) {
  Expressions on;
  GiveVariables(on);
  EXPECT_EQ(on.Evaluate(GetParam().expression), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    SingleOperands, ExpressionTest,
    ::testing::Values(ExpressionCase{"", ""}, ExpressionCase{"12", "12"}, ExpressionCase{"007", "007"},
                      ExpressionCase{" 12 ", " 12 "}, ExpressionCase{"1,234.50", "1,234.50"},
                      ExpressionCase{"1E5", "1E5"}, ExpressionCase{"\"a b\"", "a b"}, ExpressionCase{"\"\"", ""},
                      ExpressionCase{"\"", ""}, ExpressionCase{"\"12\"", "12"}, ExpressionCase{"\"1+2\"", "1+2"},
                      ExpressionCase{"\"(\"", "("}, ExpressionCase{"\"DataID_Submit\"", "DataID_Submit"},
                      ExpressionCase{"\"中文 😀\"", "中文 😀"}, ExpressionCase{"a", "x"},
                      ExpressionCase{"negative", "-3"}, ExpressionCase{"sum", "1+2"}, ExpressionCase{"总数", "8"},
                      ExpressionCase{"unknown", ""}, ExpressionCase{" a", ""}, ExpressionCase{"A", ""},
                      ExpressionCase{" ", ""}, ExpressionCase{"DataID_Submit", "TableID:12,DataID:345"},
                      ExpressionCase{"dataid_submit", ""}, ExpressionCase{"DataID_PerApp", "TableID:0,DataID:0"}));

INSTANTIATE_TEST_SUITE_P(MarkedTexts, ExpressionTest,
                         ::testing::Values(ExpressionCase{"MkStr_Beginsay \"hi\"MkStr_End", "say \"hi\""},
                                           ExpressionCase{"MkStr_Begin1+2)MkStr_End", "1+2)"},
                                           ExpressionCase{"MkStr_BeginMkStr_End", ""},
                                           ExpressionCase{"MkStr_Begin\"a\"MkStr_End+\"b\"", "\"a\"b"},
                                           ExpressionCase{"MkStr_Begin7MkStr_End*2", "14"},
                                           ExpressionCase{"mkstr_beginaMkStr_End", ""},
                                           ExpressionCase{"MkStr_Begina", ""}, ExpressionCase{"MkStr_Begin1+2", ""},
                                           ExpressionCase{"MkStr_BeginMkStr_BeginaMkStr_End", ""}));

INSTANTIATE_TEST_SUITE_P(
    Arithmetic, ExpressionTest,
    ::testing::Values(ExpressionCase{"1+2*3", "7"}, ExpressionCase{"(1+2)*3", "9"}, ExpressionCase{"7/2", "3.5"},
                      ExpressionCase{"7%3", "1"}, ExpressionCase{"2^10", "1024"}, ExpressionCase{"2^3^2", "64"},
                      ExpressionCase{"2*3%2", "2"}, ExpressionCase{"2+8/4-1", "3"}, ExpressionCase{"8/4/2", "1"},
                      ExpressionCase{"9-3-2", "4"}, ExpressionCase{"17%5^2", "4"},
                      ExpressionCase{"1/3", "0.333333333333333"}, ExpressionCase{"0.1+0.2", "0.3"},
                      ExpressionCase{"1 + 2", "3"}, ExpressionCase{"1,234+1", "1235"},
                      ExpressionCase{"1E5+1", "100001"}, ExpressionCase{"\"12\"+1", "13"}, ExpressionCase{"n*n", "25"},
                      ExpressionCase{"总数+n", "13"}, ExpressionCase{"negative+n", "2"},
                      ExpressionCase{"0-negative", "3"}, ExpressionCase{"negative*negative", "9"},
                      ExpressionCase{"5-5", "0"}, ExpressionCase{"0*negative", "0"}, ExpressionCase{"0^0", "1"},
                      ExpressionCase{"((1+2)*(3+4))", "21"}, ExpressionCase{"(((7)))", "7"}));

INSTANTIATE_TEST_SUITE_P(Remainders, ExpressionTest,
                         ::testing::Values(ExpressionCase{"7%2.5", "1"}, ExpressionCase{"2.5%5", "2"},
                                           ExpressionCase{"3.5%5", "4"}, ExpressionCase{"7%0.5", "除数为0"},
                                           ExpressionCase{"7%1.5", "1"}, ExpressionCase{"8%negative", "2"},
                                           ExpressionCase{"2147483647%2", "1"},
                                           ExpressionCase{"3000000000%0", "除数为0"}));

INSTANTIATE_TEST_SUITE_P(Texts, ExpressionTest,
                         ::testing::Values(ExpressionCase{"a+2", "x2"}, ExpressionCase{"2+a", "2x"},
                                           ExpressionCase{"a+b", "xy"}, ExpressionCase{"a+b+a", "xyx"},
                                           ExpressionCase{"\"a\"+\"+\"+\"b\"", "a+b"},
                                           ExpressionCase{"quotes+\"!\"", "say \"hi\"!"},
                                           ExpressionCase{"empty+empty", ""}, ExpressionCase{"empty+5", "5"},
                                           ExpressionCase{"\"a\"+(1+2)", "a3"}, ExpressionCase{"1+2+\"a\"", "3a"},
                                           ExpressionCase{"\"a\"+1+2", "a12"}, ExpressionCase{"\"1\"+\"2\"", "3"},
                                           ExpressionCase{"sum+1", "1+21"}, ExpressionCase{"x + 1", "with a blank 1"},
                                           ExpressionCase{"\"订单\"+总数+\"号😀\"", "订单8号😀"},
                                           ExpressionCase{"DataID_Submit+\"!\"", "TableID:12,DataID:345!"}));

INSTANTIATE_TEST_SUITE_P(
    Dates, ExpressionTest,
    ::testing::Values(ExpressionCase{"d+24", "2026/2/1"}, ExpressionCase{"d-1", "2026/1/30 23:00:00"},
                      ExpressionCase{"moment+1", "2026/1/31 10:05:30"}, ExpressionCase{"d+0.5", "2026/1/31"},
                      ExpressionCase{"d+1.5", "2026/1/31 2:00:00"}, ExpressionCase{"d-2.5", "2026/1/30 22:00:00"},
                      ExpressionCase{"d-negative", "2026/1/31 3:00:00"}, ExpressionCase{"d+24+24", "2026/2/2"},
                      ExpressionCase{"d+24*2", "2026/2/2"}, ExpressionCase{"clock+1", "1899/12/30 10:05:00"},
                      ExpressionCase{"24+d", "242026/1/31"}, ExpressionCase{"d+a", "2026/1/31x"},
                      ExpressionCase{"d+\"\"", "2026/1/31"}, ExpressionCase{"d-d", "变量不是数字"},
                      ExpressionCase{"d*2", "变量不是数字"}, ExpressionCase{"\"2026/1/31\"+24", "2026/2/1"},
                      ExpressionCase{"2026/1/31", "65.3548387096774"}));

INSTANTIATE_TEST_SUITE_P(
    ErrorsAsTexts, ExpressionTest,
    ::testing::Values(ExpressionCase{"1/0", "除数为0"}, ExpressionCase{"1/0.0", "除数为0"},
                      ExpressionCase{"7%0.4", "除数为0"}, ExpressionCase{"7%0", "除数为0"},
                      ExpressionCase{"a*2", "变量不是数字"}, ExpressionCase{"a-2", "变量不是数字"},
                      ExpressionCase{"2-a", "变量不是数字"}, ExpressionCase{"2/a", "变量不是数字"},
                      ExpressionCase{"a/0", "变量不是数字"}, ExpressionCase{"a%2", "变量不是数字"},
                      ExpressionCase{"2^a", "变量不是数字"}, ExpressionCase{"unknown*2", "变量不是数字"},
                      ExpressionCase{"-3", "缺少运算数"}, ExpressionCase{"1+", "缺少运算数"}, ExpressionCase{"+", ""},
                      ExpressionCase{"*2", "缺少运算数"}, ExpressionCase{"5-8", "缺少运算数"},
                      ExpressionCase{"5-8+1", "缺少运算数"}, ExpressionCase{"2-5+1", "缺少运算数"},
                      ExpressionCase{"negative%2", "缺少运算数"}, ExpressionCase{"1+2)", "括号不完整"},
                      ExpressionCase{")(", "括号不完整"}, ExpressionCase{"(1+2))", "括号不完整"},
                      ExpressionCase{"f(2)", "括号不完整"}, ExpressionCase{"1/0+2", "除数为0"}));

INSTANTIATE_TEST_SUITE_P(
    Groups, ExpressionTest,
    ::testing::Values(ExpressionCase{"(1/0)+\"x\"", "除数为0x"}, ExpressionCase{"(1/0)*2", "变量不是数字"},
                      ExpressionCase{"(1+2", ""}, ExpressionCase{"()", ""}, ExpressionCase{"(())", ""},
                      ExpressionCase{"()+1", "1"}, ExpressionCase{"(a)+(b)", "xy"},
                      ExpressionCase{"(-3)", "缺少运算数"}, ExpressionCase{"(5-8)+1", "缺少运算数1"},
                      ExpressionCase{"(quotes)+1", "say \"hi\"1"}, ExpressionCase{"(sum)*2", "变量不是数字"},
                      ExpressionCase{"(1)(2)", ""}, ExpressionCase{"2(3)", "括号不完整"}, ExpressionCase{"1+(2", ""},
                      ExpressionCase{"(((1+2)*3)-4)*5", "25"}));

INSTANTIATE_TEST_SUITE_P(TokensWithoutAnOperatorBetween, ExpressionTest,
                         ::testing::Values(ExpressionCase{"\"a\"\"b\"", ""}, ExpressionCase{"\"a\"b", ""},
                                           ExpressionCase{"\"c\"a+1", ""}, ExpressionCase{"1+\"2\"\"3\"", ""},
                                           ExpressionCase{"MkStr_BeginaMkStr_Endb", ""}));

// A number is written back into the text, and there its sign is an operator: 1E+20 is the variable "1E" and 20.
INSTANTIATE_TEST_SUITE_P(NumbersInExponentForm, ExpressionTest,
                         ::testing::Values(ExpressionCase{"10^20", "20"}, ExpressionCase{"1E+20", "20"},
                                           ExpressionCase{"0.00001*1", "变量不是数字"}, ExpressionCase{"1E20*1", "20"},
                                           ExpressionCase{"10^14", "100000000000000"}));

class OutOfRangeTest : public ::testing::TestWithParam<std::string_view> {};

TEST_P(OutOfRangeTest, RaisesOverflow) {
  Expressions on;
  GiveVariables(on);
  EXPECT_THROW((void)on.Evaluate(GetParam()), OverflowError);
}

INSTANTIATE_TEST_SUITE_P(Expressions, OutOfRangeTest,
                         ::testing::Values("1E308*10", "1E308+1E308", "10^400", "0^negative", "negative^0.5",
                                           "3000000000%7", "7%3000000000", "d+3000000000", "d+99999999", "d-99999999",
                                           "(1E308*10)+a"));

TEST(EvaluatorTest, TheSubmittedRecordIsJoinedAsGiven) {
  Expressions on;
  db::Session session(on.world().connection(), on.services());
  const Value execute_id = 7;
  const Value table_id = "012";
  const Value data_id;
  EXPECT_EQ(expr::GetVariableValue(session, {execute_id, execute_id, table_id, data_id}, "DataID_Submit"),
            "TableID:012,DataID:");
}

TEST(EvaluatorTest, AnExpressionReadsEachScopeByItsPrefix) {
  Expressions on;
  on.Write("x", "tree ");
  on.Write("Private_x", "mine ");
  on.Write("Global_x", "all");
  on.Become(8, 5);
  EXPECT_EQ(on.Evaluate("x+Private_x+Global_x"), "tree all");
}

TEST(EvaluatorTest, AVariableThatHoldsNullCannotBeUsed) {
  Expressions on;
  on.world().Run(
      "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (5,7,'x',NULL)");
  EXPECT_THROW((void)on.Evaluate("1+x"), ConversionError);
}

}  // namespace
}  // namespace talm_flow::test
