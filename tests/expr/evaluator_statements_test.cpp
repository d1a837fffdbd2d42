// What an evaluation asks of the database, and where it ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "expr/evaluator.h"
#include "expr/expressions.h"
#include "support/failing_connection.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct LookupsCase {
  std::string_view expression;
  std::vector<std::string_view> names;  ///< of the variables read, in order
};

class LookupsTest : public ::testing::TestWithParam<LookupsCase> {};

TEST_P(LookupsTest, VariablesAreReadWhenTheirOperatorIsApplied) {
  Expressions on;
  for (const auto name : {"a", "b", "c"}) on.Given(name, "2");
  (void)on.Evaluate(GetParam().expression);
  std::vector<std::string> expected;
  for (const auto name : GetParam().names) expected.push_back(ReadingOf(name));
  EXPECT_THAT(on.trace(), ElementsAreArray(expected));
}

INSTANTIATE_TEST_SUITE_P(
    Orders, LookupsTest,
    ::testing::Values(LookupsCase{"a", {"a"}}, LookupsCase{"a+b", {"a", "b"}}, LookupsCase{"a+b*c", {"b", "c", "a"}},
                      LookupsCase{"a+b%c*a", {"b", "c", "a", "a"}}, LookupsCase{"(a+b)*c", {"a", "b", "c"}},
                      LookupsCase{"c*(a+b)", {"a", "b", "c"}}, LookupsCase{"(a)+((b)+c)", {"a", "b", "c"}},
                      LookupsCase{"a+a+a", {"a", "a", "a"}}, LookupsCase{"a-unknown", {"a", "unknown"}},
                      LookupsCase{"a+ b", {"a", " b"}}, LookupsCase{"1+-3", {"-"}}, LookupsCase{"(+a", {"(", "a"}},
                      LookupsCase{"(", {"("}}, LookupsCase{"O'Brien", {"O'Brien"}}));

INSTANTIATE_TEST_SUITE_P(ErrorsEndTheEvaluation, LookupsTest,
                         ::testing::Values(LookupsCase{"1/0+a", {}}, LookupsCase{"a-\"x\"+b", {"a"}},
                                           LookupsCase{"a+", {}}, LookupsCase{"+a", {}}, LookupsCase{"a+b)", {}},
                                           LookupsCase{"(a+b))", {"a", "b"}}, LookupsCase{"\"x\"a", {}},
                                           LookupsCase{"(1/0)+a", {"a"}}));

INSTANTIATE_TEST_SUITE_P(NoVariables, LookupsTest,
                         ::testing::Values(LookupsCase{"", {}}, LookupsCase{"12", {}}, LookupsCase{"\"a\"", {}},
                                           LookupsCase{"MkStr_BeginaMkStr_End", {}}, LookupsCase{"DataID_Submit", {}},
                                           LookupsCase{"1+2*(3-\"1\")", {}}));

TEST(EvaluatorStatementsTest, TheNameDecidesTheLookup) {
  Expressions on;
  (void)on.Evaluate("Private_x+Global_x");
  EXPECT_THAT(on.trace(),
              ElementsAre("Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Private_x' And "
                          "ExecuteID=7",
                          "Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Global_x'"));
}

TEST(EvaluatorStatementsTest, AFailingLookupEndsTheCallAtOnce) {
  for (const std::size_t failing : {1U, 2U, 3U}) {
    Expressions on;
    FailingConnection connection(on.world().connection(), failing);
    db::Session session(connection, on.services());
    EXPECT_THROW((void)expr::GetVariableValue(session, on.scope(), "(a+b)+c"), DatabaseError);
    EXPECT_EQ(connection.count(), failing);
  }
}

/// `operands` ones, added up.
std::string SumOfOnes(int operands) {
  std::string text = "1";
  for (int i = 1; i < operands; ++i) text += "+1";
  return text;
}

TEST(EvaluatorLimitsTest, AHundredAndOneTokensAreTheMost) {
  Expressions on;
  EXPECT_EQ(on.Evaluate(SumOfOnes(51)), "51");
  EXPECT_THROW((void)on.Evaluate(SumOfOnes(51) + "+"), SubscriptError);
  EXPECT_THROW((void)on.Evaluate("(" + SumOfOnes(51)), SubscriptError);
}

TEST(EvaluatorLimitsTest, TooManyTokensAreFoundBeforeAnythingIsRead) {
  Expressions on;
  EXPECT_THROW((void)on.Evaluate("a+" + SumOfOnes(51)), SubscriptError);
  EXPECT_THAT(on.trace(), IsEmpty());
}

TEST(EvaluatorLimitsTest, ARewrittenTextHasTheSameLimit) {
  Expressions on;
  on.Given("x", "MkStr_End+" + SumOfOnes(51));
  EXPECT_THROW((void)on.Evaluate("x+\"\""), SubscriptError);
}

/// Variables each of which brings in an addition of the next, `length` in all; the last holds "done".
void GiveChain(Expressions& on, int length) {
  for (int i = 1; i < length; ++i) {
    on.Given("x" + std::to_string(i) + "MkStr_End", "MkStr_End+x" + std::to_string(i + 1));
  }
  on.Given("x" + std::to_string(length) + "MkStr_End", "done");
}

TEST(EvaluatorLimitsTest, AThousandRewritesWork) {
  Expressions on;
  GiveChain(on, 1000);
  EXPECT_EQ(on.Evaluate("x1MkStr_End+\"\""), "done");
}

TEST(EvaluatorLimitsTest, TheNextRewriteRaisesNestingError) {
  Expressions on;
  GiveChain(on, 1001);
  EXPECT_THROW((void)on.Evaluate("x1MkStr_End+\"\""), NestingError);
}

TEST(EvaluatorLimitsTest, AVariableThatBringsItsOperatorBackForEverRaisesNestingError) {
  Expressions on;
  on.Given("xMkStr_End", "MkStr_End+x");
  EXPECT_THROW((void)on.Evaluate("xMkStr_End+\"\""), NestingError);
  EXPECT_EQ(on.trace().size(), 1001U);
}

TEST(EvaluatorLimitsTest, AVariableThatOpensGroupAfterGroupRaisesNestingError) {
  Expressions on;
  on.Given("x", "MkStr_End(x+\"\")MkStr_Begin");
  EXPECT_THROW((void)on.Evaluate("x+\"\""), NestingError);
  EXPECT_EQ(on.trace().size(), 1001U);
}

TEST(EvaluatorLimitsTest, GroupsThatAVariableBringsInAreEvaluatedInnermostFirst) {
  Expressions on;
  on.Given("x", "MkStr_End+(\"a\"+(y+\"c\"))+MkStr_Begin");
  on.Given("y", "b");
  EXPECT_EQ(on.Evaluate("(x+\"\")+\"d\""), "abcd");
  EXPECT_THAT(on.trace(), ElementsAre(ReadingOf("x"), ReadingOf("y")));
}

TEST(EvaluatorLimitsTest, AVeryLongLiteralIsAnOperandLikeAnyOther) {
  Expressions on;
  const std::string text(1000000, '+');
  EXPECT_EQ(on.Evaluate("\"" + text + "\"+1"), text + "1");
}

// ---- The latest approval-form record ------------------------------------------------------------------------------

class LatestApprovalTest : public ::testing::Test {
 protected:
  /// Instances 5 (the top) and 7 of one tree, 20 of another; forms 12, 13 and 14.
  LatestApprovalTest() {
    World& world = on_.world();
    world.Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (5,5)");
    world.Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (7,5)");
    world.Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (20,20)");
    for (const int table_id : {12, 13, 14}) world.database().CreateFormTable(table_id, {});
  }

  /// An approval of an instance with the record that the approver filled in.
  void Approval(int execute_id, int table_id, int data_id, std::string_view date) {
    const std::string table = std::to_string(table_id);
    const std::string data = std::to_string(data_id);
    on_.world().Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (" + std::to_string(execute_id) + "," +
                    table + "," + data + ")");
    on_.world().Run("Insert Into TableData" + table + " (ID,inputtime) Values (" + data + "," + Literal(date) + ")");
  }

  Expressions on_;
};

TEST_F(LatestApprovalTest, IsFoundWithOneQuery) {
  Approval(7, 12, 1, "2026-01-01 10:00:00");
  on_.world().ForgetTrace();
  EXPECT_EQ(on_.Evaluate("DataID_PerApp"), "TableID:12,DataID:1");
  EXPECT_THAT(on_.trace(), ElementsAre("Select Top 10000 AppTableID,AppDataID From DataApp Where AppDataID<>0 And "
                                       "ExecuteID in (Select Top 10000 ExecuteID From WorkFlowExecuteID Where "
                                       "RootExecuteID=5) Order By AppTableID Desc,AppDataID Desc"));
}

TEST_F(LatestApprovalTest, IsTheOneWithTheLatestDate) {
  Approval(5, 12, 1, "2026-01-01 10:00:00");
  Approval(7, 13, 1, "2026-01-02 10:00:00");
  Approval(7, 14, 1, "2026-01-01 23:59:59");
  EXPECT_EQ(on_.Evaluate("DataID_PerApp"), "TableID:13,DataID:1");
}

TEST_F(LatestApprovalTest, OfEachFormOnlyTheHighestRecordCounts) {
  Approval(7, 12, 1, "2026-01-09 10:00:00");
  Approval(7, 12, 2, "2026-01-01 10:00:00");
  Approval(7, 13, 1, "2026-01-05 10:00:00");
  EXPECT_EQ(on_.Evaluate("DataID_PerApp"), "TableID:13,DataID:1");
}

TEST_F(LatestApprovalTest, OfEqualDatesTheHigherFormWins) {
  Approval(7, 12, 1, "2026-01-01 10:00:00");
  Approval(7, 14, 1, "2026-01-01 10:00:00");
  Approval(7, 13, 1, "2026-01-01 10:00:00");
  EXPECT_EQ(on_.Evaluate("DataID_PerApp"), "TableID:14,DataID:1");
}

TEST_F(LatestApprovalTest, RecordsOfAnotherTreeAndOpenApprovalsDoNotCount) {
  Approval(20, 12, 1, "2026-01-01 10:00:00");
  on_.world().Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (7,13,0)");
  EXPECT_EQ(on_.Evaluate("DataID_PerApp"), "TableID:0,DataID:0");
}

TEST_F(LatestApprovalTest, ARecordWithoutALaterDateThan1900DoesNotCount) {
  Approval(7, 12, 1, "no date");
  Approval(7, 13, 1, "1900-01-01 00:00:00");
  EXPECT_EQ(on_.Evaluate("DataID_PerApp"), "TableID:0,DataID:0");
  Approval(7, 14, 1, "1900-01-01 00:00:01");
  EXPECT_EQ(on_.Evaluate("DataID_PerApp"), "TableID:14,DataID:1");
}

TEST_F(LatestApprovalTest, IsOneOperandAmongOthers) {
  Approval(7, 12, 1, "2026-01-01 10:00:00");
  EXPECT_EQ(on_.Evaluate("\"<\"+DataID_PerApp+\">\""), "<TableID:12,DataID:1>");
}

TEST_F(LatestApprovalTest, AFormWithoutANumberCannotBeConverted) {
  on_.world().Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (7,NULL,1)");
  EXPECT_THROW((void)on_.Evaluate("DataID_PerApp"), ConversionError);
}

TEST_F(LatestApprovalTest, AFormNumberBeyond16BitsRaisesOverflow) {
  on_.world().database().CreateFormTable(40000, {});
  Approval(7, 40000, 1, "2026-01-01 10:00:00");
  EXPECT_THROW((void)on_.Evaluate("DataID_PerApp"), OverflowError);
}

}  // namespace
}  // namespace talm_flow::test
