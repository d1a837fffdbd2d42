/// What an expression costs, by its kind and by its length.

#include <benchmark/benchmark.h>

#include <string>

#include "office.h"

namespace talm_flow::bench {
namespace {

void Evaluate(benchmark::State& state, const std::string& expression) {
  Office office("sqlite::memory:");
  office.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (1,1,'a','20')");
  const Value one = 1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(office.command().GetVariableValue(office.database(), one, one, expression, 12, 1));
  }
  state.counters["statements"] = static_cast<double>(CountStatements(office, [&](Connection& connection) {
    (void)office.command().GetVariableValue(connection, one, one, expression, 12, 1);
  }));
}

void Kind(benchmark::State& state, const char* expression) { Evaluate(state, expression); }
BENCHMARK_CAPTURE(Kind, number, "12");
BENCHMARK_CAPTURE(Kind, literal, "\"a text\"");
BENCHMARK_CAPTURE(Kind, variable, "a");
BENCHMARK_CAPTURE(Kind, arithmetic, "(1+2)*3-4/2");
BENCHMARK_CAPTURE(Kind, mixed, "(a+2)*3+\" days\"");

/// "1+1+1...": an expression has up to 101 tokens.
void NumbersByTokens(benchmark::State& state) {
  std::string expression = "1";
  for (int token = 1; token + 2 <= state.range(0); token += 2) expression += "+1";
  Evaluate(state, expression);
}
BENCHMARK(NumbersByTokens)->Arg(3)->Arg(25)->Arg(51)->Arg(101)->Unit(benchmark::kMicrosecond);

/// As above with a group around each pair.
void GroupsByTokens(benchmark::State& state) {
  std::string expression = "1";
  for (int token = 1; token + 6 <= state.range(0); token += 6) expression += "+(2*3)";
  Evaluate(state, expression);
}
BENCHMARK(GroupsByTokens)->Arg(7)->Arg(25)->Arg(49)->Arg(97)->Unit(benchmark::kMicrosecond);

/// One literal of this many bytes: a text of any length is one token.
void LiteralByBytes(benchmark::State& state) {
  Evaluate(state, "\"" + std::string(static_cast<std::size_t>(state.range(0)), 'x') + "\"");
}
BENCHMARK(LiteralByBytes)->Arg(10)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace talm_flow::bench
