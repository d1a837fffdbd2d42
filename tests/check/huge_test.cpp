// Definitions as large, deep and odd as they can be: checked on a small stack, in proportion to their size.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "support/definitions.h"
#include "support/small_stack.h"
#include "support/world.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

constexpr int kSteps = 32767;

/// Steps 1 to `kSteps`, each below the one before it.
std::string Chain(int first_parent, std::string_view command = "C_73", std::string_view parameters = {}) {
  std::string steps;
  for (int i = 1; i <= kSteps; ++i) steps += StepLines(i, i == 1 ? first_parent : i - 1, command, parameters);
  return steps;
}

TEST(HugeCheckTest, TheDeepestChainIsCheckedOnASmallStack) {
  const auto text = Text(Chain(0));
  Findings findings;
  RunOnSmallStack([&] { findings = CheckDefinition(text); });
  EXPECT_EQ(Codes(findings), "");
}

TEST(HugeCheckTest, TheDeepestCircleIsToldOnce) {
  const auto text = Text(Chain(kSteps));
  Findings findings;
  RunOnSmallStack([&] { findings = CheckDefinition(text); });
  ASSERT_EQ(Codes(findings), "E104");
  EXPECT_NE(findings[0].problem.find("1, 2, 3, 4, 5 and 32762 more"), std::string::npos) << findings[0].problem;
}

TEST(HugeCheckTest, AChainOfJumpsIsFollowed) {
  std::string steps = StepLines(1, 0, "C_16", "C_16_1:2\n");
  for (int i = 2; i <= kSteps; ++i) {
    steps += StepLines(i, 0, "C_16", "C_16_1:" + std::to_string(i == kSteps ? 1 : i + 1) + "\n");
  }
  Findings findings;
  RunOnSmallStack([&] { findings = CheckDefinition(Text(steps)); });
  EXPECT_EQ(findings.size(), static_cast<std::size_t>(kSteps));
  EXPECT_EQ(findings[0].code, "W402");
}

TEST(HugeCheckTest, EveryStepMayHaveFindings) {
  const auto findings = CheckDefinition(Text(Chain(0, "C_68", "C_68_1:a b+\nC_68_9:x\n")));
  EXPECT_EQ(findings.size(), static_cast<std::size_t>(kSteps) * 3);
}

TEST(HugeCheckTest, LongCirclesOfChildFlowsAreFollowed) {
  constexpr int kFlows = 1500;
  World world;
  Name names(world.services());
  for (int i = 1; i <= kFlows; ++i) {
    const auto next = std::to_string(i == kFlows ? 1 : i + 1);
    ASSERT_EQ(names.FlowAdd(world.connection(), "Flow", "kim", Text(StepLines(1, 0, "C_18", "C_18_1:" + next + "\n"))),
              0);
  }
  RunOnSmallStack([&] { EXPECT_EQ(Codes(CheckFlow(world.connection(), world.services(), 1)), "E403"); });
}

TEST(HugeCheckTest, LongValuesAreShownShort) {
  const auto findings = CheckDefinition(Assigning("\"" + std::string(1000000, 'x')));
  ASSERT_EQ(Codes(findings), "E308");
  EXPECT_LT(findings[0].problem.size(), 200U);
}

TEST(HugeCheckTest, ControlCharactersOfValuesAreShownAsSigns) {
  const auto findings = CheckDefinition(Assigning("\"a\tb\x1B[2J\x7F"));
  ASSERT_EQ(Codes(findings), "E308");
  EXPECT_NE(findings[0].problem.find("a\\tb?[2J?"), std::string::npos) << findings[0].problem;
}

TEST(HugeCheckTest, DeepParenthesesAreChecked) {
  EXPECT_EQ(CodesOf(Assigning(std::string(50, '(') + "x" + std::string(50, ')'))), "");
  EXPECT_EQ(CodesOf(Assigning(std::string(100000, '('))), "E301");
  EXPECT_EQ(CodesOf(Text(StepLines(1, 0, "C_77", "C_77_1:12\nC_77_2:" + std::string(100000, '(') + "\nC_77_3:x\n"))),
            "E217");
}

// Whatever bytes a text holds, it is checked, and findings about it can be shown.
TEST(HugeCheckTest, AnyTextIsChecked) {
  constexpr std::string_view kPieces[] = {"\r\n",
                                          "\n",
                                          "StepBegin",
                                          "ParameterBegin",
                                          "ParameterEnd",
                                          "FlowEnd",
                                          "FlowNo:",
                                          "ParentNo:",
                                          "Command:",
                                          "C_2",
                                          "C_16",
                                          "C_77",
                                          "C_2_1:",
                                          "C_16_1:",
                                          "C_77_2:",
                                          "C_99_1:",
                                          "1",
                                          "2",
                                          "-",
                                          "\"",
                                          "(",
                                          ")",
                                          " ",
                                          " and ",
                                          "//",
                                          "\xFF",
                                          "\xE5\xBC",
                                          "张",
                                          "\0",
                                          "Ver:",
                                          "FunctionParameterBegin",
                                          "Sort:",
                                          "Remark:",
                                          "MkStr_Begin"};
  std::mt19937 random(7);
  for (int i = 0; i < 5000; ++i) {
    std::string text = "//\r\nVer:Flow_V600\r\n";
    for (auto count = random() % 40; count > 0; --count) {
      text += kPieces[random() % std::size(kPieces)];
      if (random() % 2 == 0) text += "\r\n";
    }
    for (const auto& finding : CheckDefinition(text)) {
      EXPECT_FALSE(finding.problem.empty());
      EXPECT_FALSE(finding.advice.empty());
      EXPECT_LE(finding.line, static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
    }
  }
}

}  // namespace
}  // namespace talm_flow::test
