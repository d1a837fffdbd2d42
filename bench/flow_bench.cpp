/// Whole instances and single evaluations on a database in memory: time, and statements an instance.

#include <benchmark/benchmark.h>

#include "office.h"

namespace talm_flow::bench {
namespace {

void StartAndEndAChain(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddChain(7, static_cast<int>(state.range(0)));
  const auto run = [&](Connection& connection) {
    office.command().FlowExecute(connection, 7, 12, 1, "kim", "127.0.0.1", 0, 0);
  };
  state.counters["statements"] = static_cast<double>(CountStatements(office, run));
  for (auto _ : state) run(office.database());
}
BENCHMARK(StartAndEndAChain)->Arg(1)->Arg(10)->Arg(1000)->Unit(benchmark::kMicrosecond);

void StartApproveAndEnd(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddApprovalFlow(7);
  const bool in_transactions = state.range(0) != 0;
  const auto run = [&](Connection& connection) { office.RunApproval(connection, 7, in_transactions); };
  state.counters["statements"] = static_cast<double>(CountStatements(office, run));
  for (auto _ : state) run(office.database());
}
BENCHMARK(StartApproveAndEnd)->ArgName("transactions")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void EvaluateAnExpression(benchmark::State& state, const char* expression) {
  Office office("sqlite::memory:");
  office.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (1,1,'a','20')");
  const Value one = 1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(office.command().GetVariableValue(office.database(), one, one, expression, 12, 1));
  }
}
BENCHMARK_CAPTURE(EvaluateAnExpression, number, "12")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(EvaluateAnExpression, literal, "\"a text\"")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(EvaluateAnExpression, variable, "a")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(EvaluateAnExpression, arithmetic, "(1+2)*3-4/2")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(EvaluateAnExpression, mixed, "(a+2)*3+\" days\"")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace talm_flow::bench
