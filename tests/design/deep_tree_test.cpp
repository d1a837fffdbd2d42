#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "design/design_test.h"
#include "support/small_stack.h"

namespace talm_flow::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

constexpr int kDeepest = 32767;

std::size_t Cells(std::string_view drawing) {
  std::size_t cells = 0;
  for (std::size_t at = drawing.find(kCell); at != drawing.npos; at = drawing.find(kCell, at + 1)) ++cells;
  return cells;
}

class DeepTreeTest : public DesignTest {
 protected:
  /// Flow 1 becomes a chain of steps from 1 down.
  void Chain(int count) {
    world.database().Begin();
    for (int step = 1; step <= count; ++step) world.Step(1, step, step - 1, "C_1");
    world.database().Commit();
  }

  /// Flow 1 becomes a root with that many leaves.
  void Fan(int count) {
    world.database().Begin();
    world.Step(1, 1, 0, "C_1");
    for (int step = 2; step <= count + 1; ++step) world.Step(1, step, 1, "C_1");
    world.database().Commit();
  }

  /// Past the trace, which would keep every statement.
  Connection& untraced = world.database();
};

std::string NumbersUpTo(int first, int last) {
  std::string list = std::to_string(first);
  for (int number = first + 1; number <= last; ++number) list += ',' + std::to_string(number);
  return list;
}

TEST_F(DeepTreeTest, AChainIsMeasuredAndListedOnASmallStack) {
  Chain(kDeepest);
  RunOnSmallStack([&] {
    EXPECT_EQ(construction.GetStepQty(untraced, 1, kDeepest), kDeepest);
    EXPECT_EQ(construction.GetMaxStepQty(untraced, 1, 0), kDeepest);
    EXPECT_TRUE(construction.GetChildFlowNo(untraced, 1, 0) == NumbersUpTo(1, kDeepest));
    EXPECT_TRUE(construction.InChild(untraced, 1, 0, kDeepest));
  });
}

TEST_F(DeepTreeTest, AChainIsDrawnOnASmallStack) {
  Chain(kDeepest);
  std::string expected = "<center>" + Box(1, 0);
  for (int step = 2; step <= kDeepest; ++step) {
    expected += kRow;
    expected += kCell;
    expected += "↓" + Box(step, step - 1);
  }
  for (int step = 2; step <= kDeepest; ++step) expected += "</td></tr></table>";
  expected += "</center>";
  RunOnSmallStack([&] { EXPECT_TRUE(construction.DisplayFlow(untraced, 1, 0, "") == expected); });
}

TEST_F(DeepTreeTest, AHeightBeyondSixteenBitsOverflows) {
  Chain(kDeepest);
  world.Step(1, -1, kDeepest, "C_1");
  EXPECT_EQ(construction.GetMaxStepQty(untraced, 1, 1), kDeepest);
  EXPECT_THROW((void)construction.GetMaxStepQty(untraced, 1, 0), OverflowError);
}

TEST_F(DeepTreeTest, ChildFlowsThatStartEachOtherInAChainAreFoundOnASmallStack) {
  world.database().Begin();
  for (int flow = 1; flow <= kDeepest; ++flow) world.Parameter(flow, 1, "C_18_1", std::to_string(flow + 1));
  world.database().Commit();
  RunOnSmallStack(
      [&] { EXPECT_TRUE(construction.GetChildFlowIDStrByFlowID(untraced, 1) == NumbersUpTo(2, kDeepest + 1)); });
}

TEST_F(DeepTreeTest, AFanOfFiveThousandLeavesIsMeasuredListedAndDrawn) {
  constexpr int kLeaves = 5000;
  Fan(kLeaves);
  EXPECT_EQ(construction.GetMaxStepQty(untraced, 1, 1), 1);
  EXPECT_TRUE(construction.GetChildFlowNo(untraced, 1, 1) == NumbersUpTo(2, kLeaves + 1));
  EXPECT_EQ(Cells(construction.DisplayFlow(untraced, 1, 1, "f")), std::size_t{kLeaves});
}

TEST_F(DeepTreeTest, ChildrenBeyondTheTenThousandthAreNotSeen) {
  Fan(10001);
  EXPECT_TRUE(construction.GetChildFlowNo(untraced, 1, 1) == NumbersUpTo(2, 10001));
  EXPECT_FALSE(construction.InChild(untraced, 1, 1, 10002));
  world.Step(1, 10003, 10002, "C_1");
  EXPECT_EQ(construction.GetMaxStepQty(untraced, 1, 1), 1);
  EXPECT_EQ(Cells(construction.DisplayFlow(untraced, 1, 1, "f")), 10000U);
}

struct Cycle {
  std::vector<std::pair<int, int>> steps;  // number and parent
  int start;
  const char* repeated;
};

class CycleTest : public DesignTest, public ::testing::WithParamInterface<Cycle> {};

TEST_P(CycleTest, RaisesAnErrorThatNamesFlowAndStep) {
  for (const auto& [flow_no, parent_no] : GetParam().steps) world.Step(77, flow_no, parent_no, "C_1");
  const Value start = GetParam().start;
  const auto expect_nesting_error = [](const char* repeated, const auto& call) {
    try {
      call();
      ADD_FAILURE() << "no error";
    } catch (const NestingError& error) {
      EXPECT_THAT(error.what(), AllOf(HasSubstr("flow 77 "), HasSubstr(repeated)));
    }
  };
  const char* repeated = GetParam().repeated;
  expect_nesting_error(repeated, [&] { (void)construction.GetMaxStepQty(db, 77, start); });
  expect_nesting_error(repeated, [&] { (void)construction.GetChildFlowNo(db, 77, start); });
  expect_nesting_error(repeated, [&] { (void)construction.InChild(db, 77, start, 5); });
  expect_nesting_error(repeated, [&] { (void)construction.DisplayNextFlowStep(db, 77, start, 0, ""); });
}

INSTANTIATE_TEST_SUITE_P(Trees, CycleTest,
                         ::testing::Values(Cycle{{{1, 1}}, 1, "step 1 "}, Cycle{{{0, 0}}, 0, "step 0 "},
                                           Cycle{{{1, 3}, {2, 1}, {3, 2}}, 1, "step 1 "},
                                           Cycle{{{1, 3}, {2, 1}, {3, 2}}, 2, "step 2 "},
                                           Cycle{{{1, 0}, {2, 1}, {3, 2}, {4, 3}, {3, 4}}, 1, "step 3 "},
                                           Cycle{{{1, 0}, {2, 1}, {3, 1}, {3, 3}}, 1, "step 3 "}));

TEST_F(DeepTreeTest, TheWholeDrawingOfACycleFails) {
  world.Step(1, 1, 2, "C_1");
  world.Step(1, 2, 1, "C_1");
  EXPECT_THROW((void)construction.DisplayFlow(db, 1, 0, ""), NestingError);
}

TEST_F(DeepTreeTest, TheDepthInsideACycleOverflows) {
  world.Step(1, 1, 2, "C_1");
  world.Step(1, 2, 1, "C_1");
  EXPECT_THROW((void)construction.GetStepQty(untraced, 1, 1), OverflowError);
}

TEST_F(DeepTreeTest, TheSameNumberInTwoBranchesIsNoCycle) {
  world.Step(1, 1, 0, "C_1");
  world.Step(1, 2, 1, "C_1");
  world.Step(1, 4, 1, "C_1");
  world.Step(1, 3, 2, "C_1");
  world.Step(1, 3, 4, "C_1");
  EXPECT_EQ(construction.GetChildFlowNo(db, 1, 1), "2,3,4,3");
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, 1), 2);
}

TEST_F(DeepTreeTest, OneQueryAStepIsIssued) {
  Chain(100);
  (void)construction.GetMaxStepQty(db, 1, 1);
  EXPECT_EQ(world.trace().size(), 100U);
  world.ForgetTrace();
  (void)construction.DisplayFlow(db, 1, 1, "f");
  EXPECT_EQ(world.trace().size(), 300U) << "children, box and parameters of every step";
}

}  // namespace
}  // namespace talm_flow::test
