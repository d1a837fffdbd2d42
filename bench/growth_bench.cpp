/// What an instance costs as tables and definitions grow: instances that wait, definitions that are there, steps of a
/// chain. The program prints how much a large database costs of what a small one does.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "median_reporter.h"
#include "multiplied.h"
#include "office.h"

namespace talm_flow::bench {
namespace {

constexpr int kFlow = 7;

enum class Growth { kWaiting, kDefinitions, kChain };

struct Series {
  Growth growth;
  const char* name;
  int smallest;
  int largest;
  double limit;  // of the ratio of the largest to the smallest
};
constexpr Series kSeries[] = {{Growth::kWaiting, "waiting", 10, 100000, 1.2},
                              {Growth::kDefinitions, "definitions", 10, 10000, 1.5},
                              {Growth::kChain, "chain-step", 10, 10000, 1.1}};

std::unique_ptr<Office> MakeOffice(Growth growth, int size) {
  auto office = std::make_unique<Office>("sqlite::memory:");
  if (growth == Growth::kChain) {
    office->AddChain(kFlow, size);
    return office;
  }
  office->AddApprovalFlow(kFlow);
  if (growth == Growth::kWaiting) AddWaitingInstances(*office, kFlow, size);
  if (growth == Growth::kDefinitions) AddDefinitions(*office, kFlow, size);
  return office;
}

std::string NameOf(const Series& series, int size) { return std::string(series.name) + "/" + std::to_string(size); }

void Register(const Series& series, int size) {
  // Made once, whatever the number of repetitions.
  const auto office = std::make_shared<std::unique_ptr<Office>>();
  const auto run = [=](benchmark::State& state) {
    if (!*office) *office = MakeOffice(series.growth, size);
    for (auto _ : state) {
      if (series.growth == Growth::kChain) {
        (*office)->Start((*office)->database(), kFlow);
      } else {
        (*office)->RunApproval((*office)->database(), kFlow, false);
      }
    }
  };
  benchmark::RegisterBenchmark(NameOf(series, size).c_str(), run)->Unit(benchmark::kMicrosecond);
}

void PrintRatios(const MedianReporter& reporter) {
  std::printf("\n%-14s %10s %10s %24s\n", "growth", "smallest", "largest", "cost of largest/smallest");
  for (const Series& series : kSeries) {
    const double small = reporter.Median(NameOf(series, series.smallest));
    double large = reporter.Median(NameOf(series, series.largest));
    if (small == 0 || large == 0) continue;
    if (series.growth == Growth::kChain) large *= static_cast<double>(series.smallest) / series.largest;
    std::printf("%-14s %10d %10d %s\n", series.name, series.smallest, series.largest,
                MedianReporter::Ratio(large / small, series.limit).c_str());
  }
}

}  // namespace
}  // namespace talm_flow::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  using talm_flow::bench::kSeries;
  for (const auto& series : kSeries) {
    for (int size = series.smallest; size <= series.largest; size *= 10) talm_flow::bench::Register(series, size);
  }
  talm_flow::bench::MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  talm_flow::bench::PrintRatios(reporter);
}
