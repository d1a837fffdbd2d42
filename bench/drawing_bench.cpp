/// Drawing flows of growing size on a database in memory. The time a step stays the same however deep or wide a tree
/// is; the complexity that is told beside it says so too.

#include <benchmark/benchmark.h>

#include "office.h"
#include "talm_flow/construction.h"

namespace talm_flow::bench {
namespace {

constexpr int kFlow = 7;

enum Shape : int { kChain, kFan };

/// A tree of that many steps: each below the one before it, or all below the first.
void AddTree(Office& office, Shape shape, int steps) {
  office.database().Begin();
  for (int step = 1; step <= steps; ++step) {
    const int parent = step == 1 ? 0 : shape == kChain ? step - 1 : 1;
    const std::string number = std::to_string(step);
    office.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (7," + number +
               "," + std::to_string(parent) + "," + number + ",'Step " + number + "','C_22')");
    office.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (7," + number +
               ",'C_22_1','\"a\" text')");
  }
  office.database().Commit();
}

/// @param draw  gives the text for the flow.
template <typename Draw>
void DrawTree(benchmark::State& state, Shape shape, const Draw& draw) {
  Office office("sqlite::memory:");
  const int steps = static_cast<int>(state.range(0));
  AddTree(office, shape, steps);
  Construction construction(office.services());
  std::size_t size = 0;
  for (auto _ : state) size = draw(construction, office.database()).size();
  state.counters["bytes_a_step"] = static_cast<double>(size) / steps;
  state.counters["time_a_step"] =
      benchmark::Counter(steps, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  state.SetComplexityN(steps);
}

void DrawBoxes(benchmark::State& state, Shape shape) {
  DrawTree(state, shape, [](Construction& construction, Connection& connection) {
    return construction.DisplayFlow(connection, kFlow, 0, "form");
  });
}
void DrawClickableBoxes(benchmark::State& state, Shape shape) {
  DrawTree(state, shape, [](Construction& construction, Connection& connection) {
    return construction.DisplayFlow(connection, kFlow, 1, "form");
  });
}
void WriteScriptArrays(benchmark::State& state, Shape shape) {
  DrawTree(state, shape, [](Construction& construction, Connection& connection) {
    return construction.CreateFlowArr(connection, kFlow);
  });
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond)->Complexity();
}

BENCHMARK_CAPTURE(DrawBoxes, chain, kChain)->Apply(Sizes);
BENCHMARK_CAPTURE(DrawBoxes, fan, kFan)->Apply(Sizes);
BENCHMARK_CAPTURE(DrawClickableBoxes, chain, kChain)->Apply(Sizes);
BENCHMARK_CAPTURE(DrawClickableBoxes, fan, kFan)->Apply(Sizes);
BENCHMARK_CAPTURE(WriteScriptArrays, chain, kChain)->Apply(Sizes);

}  // namespace
}  // namespace talm_flow::bench
