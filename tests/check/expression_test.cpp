// What is told about expressions: piece by piece, and against the evaluator itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <random>
#include <string>
#include <utility>

#include "check/expression_check.h"
#include "expr/evaluator.h"
#include "support/definitions.h"
#include "support/world.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

struct Told {
  const char* expression;
  const char* codes;
};

class ExpressionCheckTest : public testing::TestWithParam<Told> {};

TEST_P(ExpressionCheckTest, TellsExactly) {
  EXPECT_EQ(CodesOf(Assigning(GetParam().expression)), GetParam().codes) << GetParam().expression;
}

INSTANTIATE_TEST_SUITE_P(
    Correct, ExpressionCheckTest,
    testing::Values(Told{"", ""}, Told{"12", ""}, Told{" 12 ", ""}, Told{"007", ""}, Told{"1.5", ""}, Told{"\"\"", ""},
                    Told{"\"a b\"", ""}, Told{"\"a+b\"", ""}, Told{"\"-3\"", ""}, Told{"\"a\"+\"b\"", ""},
                    Told{"\"Amount: \"+amount", ""}, Told{"amount", ""}, Told{"金额", ""}, Told{"two words", ""},
                    Told{"1 + 2", ""}, Told{"1+2*3", ""}, Told{"(1+2)*3", ""}, Told{"((x))", ""}, Told{"a-b", ""},
                    Told{"2^3^2", ""}, Told{"7%3", ""}, Told{"x/y", ""}, Told{"now+24", ""}, Told{"now-1", ""},
                    Told{"\"2026-01-31\"+24", ""}, Told{"\"2026-01-31\"-hours", ""}, Told{"8-5+1", ""},
                    Told{"1,000*2", ""}, Told{"12,345,678.5+x", ""}, Told{"\"-3\"+5", ""}, Told{"DataID_Submit", ""},
                    Told{"DataID_PerApp", ""}, Told{"MkStr_Beginsay \"hi\"MkStr_End", ""},
                    Told{"MkStr_Begina\"bMkStr_End+x", ""}, Told{"\"x\"+(1+2)", ""}, Told{"(a)+(b)", ""},
                    Told{"\"'\"", ""}, Told{"x+\"\"", ""}, Told{"Private_x+1", ""}));

INSTANTIATE_TEST_SUITE_P(
    Wrong, ExpressionCheckTest,
    testing::Values(Told{"-3", "E303"}, Told{"+3", "E303"}, Told{"-x", "E303"}, Told{"1+", "E303"}, Told{"*x", "E303"},
                    Told{"x+-3", "E303"}, Told{"x--y", "E303"}, Told{"(-3)", "E303"}, Told{"()", "E303"},
                    Told{"+", "E303"}, Told{"x+()", "E303"}, Told{"(", "E302"}, Told{")", "E302"}, Told{"(1+2", "E302"},
                    Told{"1+2)", "E302"}, Told{"max(a)", "E302"}, Told{"a+ (b)", "E302"}, Told{"3(1+2)", "E302"},
                    Told{"((a)", "E302"}, Told{"\"a\" +\"b\"", "E304"}, Told{"\"a\" \"b\"", "E304"},
                    Told{"\"a\"\"b\"", "E304"}, Told{"\"a\"b", "E304"}, Told{"(a)(b)", "E304"}, Told{"(a) +b", "E304"},
                    Told{"\"a\" ", "E304"}, Told{"1/0", "E305"}, Told{"x/0", "E305"}, Told{"x%0.4", "E305"},
                    Told{"7%0.4", "E305"}, Told{"\"a\"*2", "E305"}, Told{"x*\"a\"", "E305"}, Told{"5+-", "E303"},
                    Told{"2+(", "E302"}, Told{"x-\"a\"", "E305"}, Told{"\"a\"-x", "E305"},
                    Told{"\"2026-01-31\"*2", "E305"}, Told{"\"a\"+(1/0)", "E305"}, Told{"5-8", "E306"},
                    Told{"5-8+1", "E306"}, Told{"x+(1-2)", "E306"}, Told{"\"-3\"*2", "E306"}, Told{"10^20", "E307"},
                    Told{"10^400", "E307"}, Told{"1/100000", "E307"}, Told{"1E-5", "E307"},
                    Told{"5000000000%7", "E307"}, Told{"\"2026-01-31\"+90000000", "E307"}, Told{"\"abc", "E308"},
                    Told{"x+\"abc", "E308"}, Told{"MkStr_Beginabc", "E308"},
                    Told{"MkStr_BeginaMkStr_BeginbMkStr_End", "E308"}));

INSTANTIATE_TEST_SUITE_P(
    Traps, ExpressionCheckTest,
    testing::Values(Told{"\"a\"+ \"b\"", "W309"}, Told{" \"b\"", "W309"}, Told{"1*\"2\" +3", "W309"},
                    Told{"2*(x) +1", "W309"}, Told{"f(x", "W311"}, Told{" MkStr_BeginbMkStr_End", "W309"},
                    Told{"x + 1", "W310"}, Told{" x", "W310"}, Told{"x ", "W310"}, Told{"  ", "W310"},
                    Told{" DataID_Submit", "W310"}, Told{"x\"text\"", "W311"}, Told{"1+2\"a\"", "W311"},
                    Told{"kim,lee", "W312"}, Told{"张三，李四", "W312"}, Told{"TableID:12,DataID:3", "W312"},
                    Told{"@board", "W312"}, Told{"9:05", "W312"}, Told{";", "W312"}, Told{"2026-01-31", "W313"},
                    Told{"2026/1/31 9:05", "W313"}, Told{"1,5*x", "W314"}, Told{"1,5+1", "W314"},
                    Told{"12,34*x", "W314"}, Told{"1000,000+x", "W314"}, Told{"dataid_submit", "W315"},
                    Told{"x+DATAID_PERAPP", "W315"}, Told{" x + y ", "W310 W310"}));

TEST(ExpressionCheckTest, AnOddNameThatTheFlowWritesIsMeant) {
  const auto steps =
      StepLines(1, 0, "C_22", "C_22_1:kim,lee\nC_22_2:x\n") + StepLines(2, 1, "C_39", "C_39_1:copy\nC_39_2:kim,lee\n");
  EXPECT_EQ(CodesOf(Text(steps)), "");
}

TEST(ExpressionCheckTest, TextsThatServeAsStoredNeedNoQuotes) {
  const auto approval = [](const std::string& button) {
    return CodesOf(Text(
        StepLines(1, 0, "C_2", "C_2_1:DataID_Submit\nC_2_2:\"kim\"\nC_2_3:\"TableID:13\"\nC_2_5:" + button + "\n")));
  };
  EXPECT_EQ(approval("同意, 请签字"), "");
  EXPECT_EQ(approval("Yes: approve"), "");
  EXPECT_EQ(approval("Yes - approve"), "W310 W310");
  EXPECT_EQ(approval("\"Yes"), "E308");
}

TEST(ExpressionCheckTest, APlaceAndAnAdviceAreTold) {
  const auto findings = CheckDefinition(Assigning("x + 1"));
  ASSERT_EQ(findings.size(), 1U);
  EXPECT_EQ(findings[0].step, 1);
  EXPECT_EQ(findings[0].parameter, "C_39_2");
  EXPECT_EQ(findings[0].line, 13U);
  EXPECT_FALSE(findings[0].flow);
  EXPECT_FALSE(findings[0].IsError());
  EXPECT_THAT(findings[0].problem, HasSubstr("\"x \""));
  EXPECT_FALSE(findings[0].advice.empty());
}

/// What evaluating gives, with the variable x set or not; nothing when it raises an error.
class Evaluated {
 public:
  explicit Evaluated(const char* x) : session_(world_.connection(), services_) {
    if (x != nullptr) {
      world_.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (1,1,'x'," +
                 Literal(x) + ")");
    }
  }

  std::optional<std::string> operator()(std::string_view expression) {
    world_.ForgetTrace();
    try {
      return expr::GetVariableValue(session_, {one_, one_, one_, one_}, expression);
    } catch (const FlowError&) {
      return std::nullopt;
    }
  }

  /// Whether the last evaluation asked the database for anything.
  [[nodiscard]] bool ReadAnything() const { return !world_.trace().empty(); }

 private:
  World world_;
  host::Services services_ = world_.services();
  Value one_ = 1;
  db::Session session_;
};

bool TellsAnError(const std::optional<std::string>& value) {
  if (!value || value->empty()) return true;
  for (const char* text : {"括号不完整", "除数为0", "变量不是数字", "缺少运算数"}) {
    if (value->find(text) != std::string::npos) return true;
  }
  return false;
}

std::string RandomExpression(std::mt19937& random) {
  constexpr std::array<const char*, 26> kPieces = {
      "+", "+", "-", "*", "/", "%", "^",   "(",    ")", "(",   ")",      "\"a\"",          "\"7\"",
      "1", "2", "3", "8", "0", "5", "x+1", "\"\"", "x", "0.5", "\"-2\"", "\"2026-01-31\"", "MkStr_Beginb\"MkStr_End"};
  std::string expression;
  for (auto count = 1 + random() % 8; count > 0; --count) expression += kPieces[random() % kPieces.size()];
  return expression;
}

// Whatever is told must be so: a result that is promised comes out whatever x is, and a constant is what the evaluator
// computes.
TEST(ExpressionCheckTest, AgreesWithTheEvaluator) {
  std::array<Evaluated, 3> evaluated = {Evaluated(nullptr), Evaluated("6"), Evaluated("text")};
  std::mt19937 random(20260131);
  const check::VariableNames none;
  int constants = 0;
  int errors = 0;
  for (int i = 0; i < 20000; ++i) {
    const auto expression = RandomExpression(random);
    check::Report report;
    const auto value = check::CheckExpression(expression, {none, {}, report});
    const auto findings = report.Take({});
    const bool error = std::ranges::any_of(findings, &Finding::IsError);
    // What comes out of a group goes on into the rest.
    const bool promised = error && expression.find('(') == std::string::npos &&
                          findings[0].problem.find("the result is") != std::string::npos;
    for (auto& evaluate : evaluated) {
      const auto result = evaluate(expression);
      if (promised) {
        EXPECT_TRUE(TellsAnError(result)) << expression << " gives " << result.value_or("") << ", told "
                                          << findings[0].code << ": " << findings[0].problem;
      }
      if (value) {
        EXPECT_EQ(result, value) << expression;
      }
    }
    constants += value ? 1 : 0;
    errors += promised ? 1 : 0;
    // Where no variable is read everything is known, so that nothing may be missed.
    if (findings.empty() && !evaluated[0].ReadAnything()) {
      EXPECT_TRUE(value) << expression;
    }
  }
  EXPECT_GT(constants, 1000);
  EXPECT_GT(errors, 2000);
}

}  // namespace
}  // namespace talm_flow::test
