/// The "Approval" workload on a PostgreSQL server against its own statements.
///
/// Runs only where the environment's TALM_FLOW_BENCH_POSTGRESQL has the URL of an empty database; otherwise it says so
/// and ends. Both sides take turns on one database, and what counts is the ratio of elapsed times, printed at the end.
/// Run with --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true, as `make bench` does.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "median_reporter.h"
#include "office.h"
#include "server_statements.h"

namespace talm_flow::bench {
namespace {

constexpr int kFlow = 7;
constexpr std::int64_t kRecordedInstance = 777000001;
constexpr std::int64_t kRecordedTask = 888000001;
constexpr double kLimit = 1.08;

/// A database with the flow, warmed up, and its statements recorded.
class Bench {
 public:
  explicit Bench(const std::string& url) : office_(url) {
    // Every commit would wait for the disk otherwise, and its pace would hide the rest.
    office_.Run("set synchronous_commit=off");
    office_.AddApprovalFlow(kFlow);
    Component();
    NextNumber("WorkFlowExecuteID", "ExecuteID", kRecordedInstance);
    NextNumber("DataApp", "DataAppID", kRecordedTask);
    recorded_ = std::make_unique<ServerStatements>(
        url + (url.find('?') == url.npos ? "?" : "&") + "options=-csynchronous_commit%3Doff", office_.database(),
        kRecordedInstance, kRecordedTask,
        [this](Connection& connection) { office_.RunApproval(connection, kFlow, false); });
  }

  void Component() { office_.RunApproval(office_.database(), kFlow, false); }
  void Engine() { recorded_->Run(); }
  [[nodiscard]] std::size_t engine_statements() const { return recorded_->size(); }

 private:
  void NextNumber(const std::string& table, const std::string& key, std::int64_t number) {
    office_.Run("alter table " + table + " alter column " + key + " restart with " + std::to_string(number));
  }

  Office office_;
  std::unique_ptr<ServerStatements> recorded_;
};

void Register(Bench& bench) {
  const auto add = [&bench](const char* name, void (Bench::*run)()) {
    benchmark::RegisterBenchmark(name,
                                 [&bench, run](benchmark::State& state) {
                                   for (auto _ : state) (bench.*run)();
                                   state.counters["engine"] = static_cast<double>(bench.engine_statements());
                                 })
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
  };
  add("component", &Bench::Component);
  add("cached", &Bench::Engine);
}

}  // namespace
}  // namespace talm_flow::bench

int main(int argc, char** argv) {
  using namespace talm_flow::bench;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  const char* const url = std::getenv("TALM_FLOW_BENCH_POSTGRESQL");
  if (url == nullptr) {
    std::puts("TALM_FLOW_BENCH_POSTGRESQL names no server: nothing measured");
    return 0;
  }
  Bench bench(url);
  Register(bench);
  MedianReporter reporter(MedianReporter::Time::kElapsed);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  const double component = reporter.Median("component");
  const double cached = reporter.Median("cached");
  if (component == 0 || cached == 0) return 0;
  std::printf("\npostgresql: component %.1f us, cached statements %.1f us, ratio %s\n", component, cached,
              MedianReporter::Ratio(component / cached, kLimit).c_str());
}
