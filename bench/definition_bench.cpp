/// Definitions by size: import from a text, export into one, drawing, and the structure queries that walk the tree.
/// "each" is the time a step: it is to stay the same.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "office.h"
#include "talm_flow/construction.h"
#include "talm_flow/host/unit_of_work.h"
#include "talm_flow/in_out.h"

namespace talm_flow::bench {
namespace {

constexpr int kFlow = 7;

enum class Shape { kChain, kBush };

/// A definition text: a chain, or a tree whose steps have three children each.
std::string DefinitionText(std::int64_t steps, Shape shape) {
  std::string text = "//\r\nVer:Flow_V600\r\nFlowBegin\r\nFlowRemark:measured\r\n";
  for (std::int64_t step = 1; step <= steps; ++step) {
    const std::int64_t parent = shape == Shape::kChain ? step - 1 : (step + 1) / 3;
    text += "StepBegin\r\nFlowNo:" + std::to_string(step) + "\r\nParentNo:" + std::to_string(parent) +
            "\r\nSerial:0\r\nRemark:Keep it\r\nCommand:C_22\r\nParameterBegin\r\nC_22_1:v" + std::to_string(step % 10) +
            "\r\nC_22_2:value\r\nParameterEnd\r\n";
  }
  return text + "FlowEnd\r\n";
}

class Design {
 public:
  Design() : office_("sqlite::memory:") {
    office_.Run("Insert Into WorkFlowName (FlowID,FlowName) Values (" + std::to_string(kFlow) + ",'flow')");
  }
  Design(std::int64_t steps, Shape shape) : Design() { Import(DefinitionText(steps, shape)); }

  void Import(const std::string& text) {
    host::UnitOfWork(office_.database()).Run([&] {
      if (in_out_.CreatFlow(office_.database(), kFlow, text) != 0) std::abort();
    });
  }
  [[nodiscard]] std::string Export() { return in_out_.MakeConstructionBak(office_.database(), kFlow); }
  [[nodiscard]] std::string Draw() { return construction_.DisplayFlow(office_.database(), kFlow, 1, "form1"); }
  [[nodiscard]] std::string Below() { return construction_.GetChildFlowNo(office_.database(), kFlow, 1); }
  [[nodiscard]] int Height() { return construction_.GetMaxStepQty(office_.database(), kFlow, 1); }

 private:
  Office office_;
  InOut in_out_{office_.services()};
  Construction construction_{office_.services()};
};

void CountSteps(benchmark::State& state) {
  state.counters["each"] = benchmark::Counter(
      static_cast<double>(state.range(0)), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void Import(benchmark::State& state) {
  Design design;
  const std::string text = DefinitionText(state.range(0), Shape::kBush);
  for (auto _ : state) design.Import(text);
  CountSteps(state);
}
BENCHMARK(Import)->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMillisecond);

/// A text holds 10,000 steps at most: the longest definition is exported in part.
void Export(benchmark::State& state) {
  Design design(state.range(0), Shape::kBush);
  for (auto _ : state) benchmark::DoNotOptimize(design.Export());
  state.counters["each"] =
      benchmark::Counter(static_cast<double>(std::min<std::int64_t>(state.range(0), 10000)),
                         benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(Export)->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMillisecond);

/// Small drawings, and those without links, are in drawing_bench.cpp.
void Draw(benchmark::State& state, Shape shape) {
  Design design(state.range(0), shape);
  for (auto _ : state) benchmark::DoNotOptimize(design.Draw());
  CountSteps(state);
}
BENCHMARK_CAPTURE(Draw, bush, Shape::kBush)->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Draw, chain, Shape::kChain)->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMillisecond);

void StepsBelow(benchmark::State& state) {
  Design design(state.range(0), Shape::kChain);
  for (auto _ : state) benchmark::DoNotOptimize(design.Below());
  CountSteps(state);
}
BENCHMARK(StepsBelow)->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMillisecond);

void Height(benchmark::State& state) {
  Design design(state.range(0), Shape::kChain);
  for (auto _ : state) benchmark::DoNotOptimize(design.Height());
  CountSteps(state);
}
BENCHMARK(Height)->Arg(1000)->Arg(10000)->Arg(30000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace talm_flow::bench
