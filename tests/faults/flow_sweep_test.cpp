// Every example flow, brought to its end by a host whose every call is made to fail at every statement and at every
// access to a row before it succeeds.

#include <gtest/gtest.h>

#include <string>

#include "support/example_office.h"
#include "support/fault_sweep.h"
#include "support/figures.h"
#include "support/flow_host.h"
#include "support/rows.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

constexpr int kMostWaits = 40;

std::string NewestFlow(Connection& connection, const host::Services& services) {
  return std::to_string(Name(services).MaxFlowID(connection));
}

class FlowSweepTest : public testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(Examples, FlowSweepTest, testing::ValuesIn(ExampleFlowNames()),
                         [](const auto& test) { return test.param; });

TEST_P(FlowSweepTest, TellsEveryFaultAndKeepsNothingBehindIt) {
  ExampleOffice office;
  World& world = office.world();
  const host::Services services = world.services();
  SweepResult visited;
  FlowHost host(world, [&](const SweptCall& call) {
    if (testing::Test::HasFailure()) return;
    const SweepResult result = Sweep(world.database(), services, call, NewestFlow);
    visited.statements += result.statements;
    visited.points += result.points;
    (void)call(world.connection(), services);
  });
  for (const auto& flow : office.flows()) {
    if (flow.name == GetParam()) host.Start(flow.number);
  }
  EXPECT_TRUE(host.Settle(kMostWaits));
  EXPECT_GT(visited.points, visited.statements);
  AddToFigure("statements_made_to_fail", visited.statements);
  AddToFigure("failure_points_visited", visited.points);
  AddToFigure("example_flows_swept", 1);

  // The calls that succeeded in between left what they leave without any fault.
  ExampleOffice undisturbed;
  FlowHost untroubled(undisturbed.world());
  for (const auto& flow : undisturbed.flows()) {
    if (flow.name == GetParam()) untroubled.Start(flow.number);
  }
  EXPECT_TRUE(untroubled.Settle(kMostWaits));
  EXPECT_EQ(Dump(world.database()), Dump(undisturbed.world().database()));
}

}  // namespace
}  // namespace talm_flow::test
