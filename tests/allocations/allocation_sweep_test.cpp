// Every public operation, and the checker, with memory running out at every allocation in turn.

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "allocations/allocation_sweep.h"
#include "faults/scenes.h"
#include "support/definitions.h"
#include "support/rows.h"
#include "talm_flow/definition_check.h"

namespace talm_flow::test {
namespace {

using Case = std::tuple<Scene, Shortage>;

std::string NameOf(const testing::TestParamInfo<Case>& test) {
  const auto& [scene, shortage] = test.param;
  std::string name = scene.operation + scene.title + (shortage == Shortage::kLasting ? "WithALastingShortage" : "");
  std::erase(name, '.');
  std::erase(name, '_');
  return name;
}

class AllocationSweepTest : public testing::TestWithParam<Case> {};

INSTANTIATE_TEST_SUITE_P(Scenes, AllocationSweepTest,
                         testing::Combine(testing::ValuesIn(Scenes()),
                                          testing::Values(Shortage::kPassing, Shortage::kLasting)),
                         NameOf);

TEST_P(AllocationSweepTest, TellsTheCallerAndLeaksNothing) {
  const auto& [scene, shortage] = GetParam();
  Stage stage(scene);
  auto& database = stage.world().database();
  const auto services = stage.world().services();
  const std::string rows = Dump(database);
  database.Begin();
  SweepAllocations(
      shortage, [&] { return stage.Call(database, services); },
      [&] {
        database.Rollback();
        database.Begin();
      });
  database.Rollback();
  EXPECT_EQ(Dump(database), rows);
}

TEST(CheckAllocationsTest, TellTheCallerAndLeakNothing) {
  const std::string text = Text(StepLines(1, 0, "C_2", "C_2_1:DataID_Submit\nC_2_3:(1+\n") + StepLines(1, 5, "C_16"));
  SweepAllocations(
      Shortage::kPassing, [&] { return Codes(CheckDefinition(text)); }, [] {});
}

}  // namespace
}  // namespace talm_flow::test
