// Every public operation, made to fail at every statement and at every access to a row.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include "faults/scenes.h"
#include "support/fault_sweep.h"
#include "support/figures.h"
#include "talm_flow/command_catalogue.h"

namespace talm_flow::test {
namespace {

/// Operations that ask neither the database nor the file system.
constexpr std::string_view kPure[] = {"Command.ExpressToArr",
                                      "Command.GetVarTypeByName",
                                      "Command.SeparateFileID",
                                      "Command.SeparateInUnitID",
                                      "Command.SeparateTableID",
                                      "Command.SeparateTableIDAndDataID",
                                      "Command.SeparateTablePicDataID",
                                      "InOut.GetFunctionValue",
                                      "InOut.GetStepValue",
                                      "InOut.IsFlowRemark",
                                      "InOut.IsSeparateLine",
                                      "InOut.SeparateLine",
                                      "InOut.SeparateValue"};

bool IsPure(std::string_view operation) { return std::ranges::find(kPure, operation) != std::end(kPure); }

std::string TitleOf(const Scene& scene) {
  std::string title = scene.operation + scene.title;
  std::erase(title, '.');
  std::erase(title, '_');
  return title;
}

class OperationSweepTest : public testing::TestWithParam<Scene> {};

INSTANTIATE_TEST_SUITE_P(Scenes, OperationSweepTest, testing::ValuesIn(Scenes()),
                         [](const auto& test) { return TitleOf(test.param); });

TEST_P(OperationSweepTest, TellsEveryFaultAndKeepsNothingBehindIt) {
  const Scene& scene = GetParam();
  Stage stage(scene);
  const host::Services services = stage.world().services();
  const SweepResult result =
      Sweep(stage.world().database(), services, [&](Connection& connection, const host::Services& given) {
        RecordingConnection recording(connection, scene.operation);
        return stage.Call(recording, given);
      });
  EXPECT_EQ(result.points == 0, IsPure(scene.operation)) << "the scene does not reach what the operation does";
  // The command under test is there to do something; C_11 answers only.
  const auto command = DescribeCommand(scene.operation.substr(scene.operation.find('.') + 1));
  if (command && command->name != "C_11") {
    EXPECT_TRUE(result.changes_rows) << "the scene's command does nothing";
  }
  AddToFigure("statements_made_to_fail", result.statements);
  AddToFigure("failure_points_visited", result.points);
}

TEST(ScenesTest, PlayEveryPublicOperation) {
  std::set<std::string> played;
  std::set<std::string> titles;
  for (const Scene& scene : Scenes()) {
    played.insert(scene.operation);
    EXPECT_TRUE(titles.insert(TitleOf(scene)).second) << TitleOf(scene) << " appears twice";
  }
  std::set<std::string> operations;
  for (const auto& operation : late_bound::Operations()) {
    operations.emplace(operation.name);
    if (operation.takes_connection) ExpectStatementsOf(operation.name);
  }
  EXPECT_EQ(played, operations);
  AddToFigure("operations_swept", operations.size());
  AddToFigure("scenes_swept", titles.size());
}

}  // namespace
}  // namespace talm_flow::test
