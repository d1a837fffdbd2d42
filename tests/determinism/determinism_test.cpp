// The same calls on the same rows give the same statements and the same rows: every example flow, and flows that nobody
// wrote.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "support/definitions.h"
#include "support/example_office.h"
#include "support/figures.h"
#include "support/flow_host.h"
#include "support/html.h"
#include "support/random_flow.h"
#include "support/rows.h"
#include "talm_flow/construction.h"
#include "talm_flow/definition_check.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

constexpr int kMostWaits = 20;
/// A seed makes so many flows, which start each other.
constexpr int kFlowsPerSeed = 5;
constexpr std::uint32_t kSeeds = 100;

/// What a run leaves: what it handed to the connection, and the rows.
struct Left {
  std::vector<std::string> trace;
  std::string rows;
  int errors = 0;

  friend bool operator==(const Left&, const Left&) = default;
};

/// Starts a flow and settles what waits. An error ends the call, as it would for any host; the rest goes on.
void RunToItsEnd(ExampleOffice& office, int flow, Left& left) {
  World& world = office.world();
  FlowHost host(world, [&](const SweptCall& call) {
    try {
      (void)call(world.connection(), world.services());
    } catch (const FlowError& error) {
      left.trace.push_back(std::string(error.Kind()) + ": " + error.what());
      ++left.errors;
    }
    left.trace.insert(left.trace.end(), world.trace().begin(), world.trace().end());
    world.ForgetTrace();
  });
  host.Start(flow);
  (void)host.Settle(kMostWaits);
}

Left RunExample(const std::string& name) {
  ExampleOffice office;
  Left left;
  for (const auto& flow : office.flows()) {
    if (flow.name == name) RunToItsEnd(office, flow.number, left);
  }
  left.rows = Dump(office.world().database());
  return left;
}

std::vector<int> AddRandomFlows(ExampleOffice& office, std::uint32_t seed, std::vector<std::string>* texts = nullptr) {
  RandomFlow random(seed);
  Name names(office.world().services());
  Connection& connection = office.world().connection();
  const int first = names.MaxFlowID(connection) + 1;
  std::vector<int> flows;
  for (int flow = first; flow < first + kFlowsPerSeed; ++flow) {
    const std::string text = random.Next(first, flow);
    EXPECT_EQ(names.FlowAdd(connection, "random", "kim", text), 0);
    if (texts != nullptr) texts->push_back(text);
    flows.push_back(flow);
  }
  return flows;
}

Left RunRandomFlows(std::uint32_t seed) {
  ExampleOffice office;
  Left left;
  for (const int flow : AddRandomFlows(office, seed)) RunToItsEnd(office, flow, left);
  left.rows = Dump(office.world().database());
  return left;
}

class ExampleDeterminismTest : public testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(Examples, ExampleDeterminismTest, testing::ValuesIn(ExampleFlowNames()),
                         [](const auto& test) { return test.param; });

TEST_P(ExampleDeterminismTest, GivesTheSameStatementsAndRowsTwice) {
  const Left first = RunExample(GetParam());
  EXPECT_FALSE(first.trace.empty());
  EXPECT_EQ(first.errors, 0);
  EXPECT_EQ(first, RunExample(GetParam()));
  AddToFigure("example_flows_run_twice", 1);
  AddToFigure("statements_compared", first.trace.size());
}

TEST(RandomFlowTest, GivesTheSameStatementsAndRowsTwice) {
  // How statements begin that approvals, fill-ins, timers, jumps, child flows and ends leave in a trace.
  std::map<std::string, int> signs = {{"update DataApp set Status=2", 0},   {"update InUnitSub set Status=2", 0},
                                      {"insert into WorkFlowExecute (", 0}, {"update WorkFlowExecuteTimes", 0},
                                      {"Insert Into WorkFlowChildRec", 0},  {"delete from WorkFlowExecuteID", 0}};
  std::size_t statements = 0;
  int errors = 0;
  for (std::uint32_t seed = 1; seed <= kSeeds && !testing::Test::HasFailure(); ++seed) {
    const Left first = RunRandomFlows(seed);
    EXPECT_TRUE(first == RunRandomFlows(seed)) << "seed " << seed;
    for (const auto& statement : first.trace) {
      for (auto& [sign, count] : signs) count += statement.starts_with(sign) ? 1 : 0;
    }
    statements += first.trace.size();
    errors += first.errors;
    AddToFigure("made_up_flows_run_twice", kFlowsPerSeed);
  }
  AddToFigure("statements_compared", statements);
  for (const auto& [sign, count] : signs) EXPECT_GT(count, 10) << sign;
  // The flows do something, and hardly ever something that fails.
  EXPECT_GT(statements, std::size_t{kSeeds} * kFlowsPerSeed * 10);
  EXPECT_LT(errors, static_cast<int>(kSeeds) * kFlowsPerSeed / 20);
}

TEST(RandomFlowTest, UsesEveryCommand) {
  std::string all;
  for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
    RandomFlow random(seed);
    for (int flow = 1; flow <= kFlowsPerSeed; ++flow) all += random.Next(1, flow);
  }
  for (int n = 1; n <= 98; ++n) {
    EXPECT_NE(all.find("Command:C_" + std::to_string(n) + "\r\n"), std::string::npos) << n;
  }
}

TEST(RandomFlowTest, IsExportedAsItWasImported) {
  for (std::uint32_t seed = 1; seed <= kSeeds / 5; ++seed) {
    ExampleOffice office;
    Connection& connection = office.world().connection();
    InOut in_out(office.world().services());
    for (const int flow : AddRandomFlows(office, seed)) {
      const std::string exported = in_out.MakeConstructionBak(connection, flow);
      EXPECT_EQ(in_out.CreatFlow(connection, flow, exported), 0);
      EXPECT_EQ(in_out.MakeConstructionBak(connection, flow), exported) << "seed " << seed;
    }
  }
}

TEST(RandomFlowTest, IsCheckedAndDrawn) {
  for (std::uint32_t seed = 1; seed <= kSeeds / 5; ++seed) {
    ExampleOffice office;
    Connection& connection = office.world().connection();
    Construction construction(office.world().services());
    std::vector<std::string> texts;
    const auto flows = AddRandomFlows(office, seed, &texts);
    for (std::size_t i = 0; i < flows.size(); ++i) {
      for (const auto& finding : CheckDefinition(texts[i])) {
        EXPECT_NE(finding.problem, "") << finding.code;
      }
      (void)CheckFlow(connection, office.world().services(), flows[i]);
      EXPECT_EQ(ReadHtml(construction.DisplayFlow(connection, flows[i], 1, "f")).fault, "") << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace talm_flow::test
