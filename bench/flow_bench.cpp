/// Whole instances on a database in memory: chains, approvals, loops, child flows. Time, and statements an instance.

#include <benchmark/benchmark.h>

#include "office.h"

namespace talm_flow::bench {
namespace {

constexpr int kFlow = 7;
constexpr int kChildFlow = 8;

/// Starts and ends an instance each time.
void RunFlow(benchmark::State& state, Office& office, std::int64_t units) {
  const auto run = [&](Connection& connection) { office.Start(connection, kFlow); };
  state.counters["statements"] = static_cast<double>(CountStatements(office, run));
  for (auto _ : state) run(office.database());
  // Per step, per round, per child: this is what is to stay the same.
  state.counters["each"] = benchmark::Counter(
      static_cast<double>(units), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Chain(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddChain(kFlow, static_cast<int>(state.range(0)));
  RunFlow(state, office, state.range(0));
}
BENCHMARK(Chain)->Arg(1)->Arg(10)->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMicrosecond);

void Siblings(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddChain(kFlow, 1);
  for (int step = 2; step <= state.range(0); ++step) office.Step(kFlow, step, 1, "C_0");
  RunFlow(state, office, state.range(0));
}
BENCHMARK(Siblings)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

/// A jump runs 200 times; each round is a jump and an assignment.
void Loop(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddLoop(kFlow);
  RunFlow(state, office, 200);
}
BENCHMARK(Loop)->Unit(benchmark::kMicrosecond);

void ChildFlows(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddParent(kFlow, kChildFlow, static_cast<int>(state.range(0)));
  RunFlow(state, office, state.range(0));
}
BENCHMARK(ChildFlows)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

void Approval(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddApprovalFlow(kFlow);
  const bool in_transactions = state.range(0) != 0;
  const auto run = [&](Connection& connection) { office.RunApproval(connection, kFlow, in_transactions); };
  state.counters["statements"] = static_cast<double>(CountStatements(office, run));
  for (auto _ : state) run(office.database());
}
BENCHMARK(Approval)->ArgName("transactions")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace talm_flow::bench
