/// The "Approval" workload against its own statements.
///
/// Each store and mode is run three ways in turn: through component and adapter; the same statements directly on the
/// engine, prepared once and bound; and prepared anew each time. What counts are the ratios of one run, printed at the
/// end from the medians of CPU times. Run with --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true,
/// as `make bench` does.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "adapters/sqlite_database.h"
#include "office.h"
#include "recorded_statements.h"
#include "talm_flow/conversion.h"

namespace talm_flow::bench {
namespace {

enum class Side { kComponent, kBound, kPreparedAnew };

struct Store {
  const char* name;
  const char* options;  // null for memory
};
constexpr Store kStores[] = {{"memory", nullptr}, {"wal-normal", "?synchronous=normal"}, {"default", ""}};

constexpr int kFlow = 7;
constexpr std::int64_t kRecordedInstance = 777000001;
constexpr std::int64_t kRecordedTask = 888000001;

/// A database with the flow, warmed up, and its statements recorded.
class Bench {
 public:
  Bench(const Store& store, bool in_transactions) : in_transactions_(in_transactions) {
    std::string url = "sqlite::memory:";
    if (store.options != nullptr) {
      char name[] = "/tmp/talm_flow_bench_XXXXXX";
      folder_ = mkdtemp(name);
      url = "sqlite:" + folder_.string() + "/bench.db" + store.options;
    }
    office_ = std::make_unique<Office>(url);
    office_->AddApprovalFlow(kFlow);
    Component();
    // The numbers behind the recorded ones are the next to be given.
    office_->Run("update sqlite_sequence set seq=" + std::to_string(kRecordedInstance - 1) +
                 " where name='WorkFlowExecuteID'");
    office_->Run("update sqlite_sequence set seq=" + std::to_string(kRecordedTask - 1) + " where name='DataApp'");
    recorded_ =
        std::make_unique<RecordedStatements>(engine(), kRecordedInstance, kRecordedTask, [this] { Component(); });
  }
  ~Bench() {
    recorded_.reset();
    office_.reset();
    if (!folder_.empty()) std::filesystem::remove_all(folder_);
  }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  void Run(Side side) {
    switch (side) {
      case Side::kComponent:
        return Component();
      case Side::kBound:
        return recorded_->RunBound(engine(), NextInstance(), NextTask());
      case Side::kPreparedAnew:
        return recorded_->RunPreparedAnew(engine(), NextInstance(), NextTask());
    }
  }
  [[nodiscard]] std::size_t statements() const { return recorded_->size(); }

 private:
  void Component() { office_->RunApproval(office_->database(), kFlow, in_transactions_); }
  [[nodiscard]] sqlite3* engine() { return static_cast<adapters::SqliteDatabase&>(office_->database()).engine(); }
  std::int64_t NextNumber(const char* query) { return ToInt32(office_->database().Open(query)->FieldAt(0)) + 1; }
  std::int64_t NextInstance() { return NextNumber("select seq from sqlite_sequence where name='WorkFlowExecuteID'"); }
  std::int64_t NextTask() { return NextNumber("select seq from sqlite_sequence where name='DataApp'"); }

  bool in_transactions_;
  std::filesystem::path folder_;
  std::unique_ptr<Office> office_;
  std::unique_ptr<RecordedStatements> recorded_;
};

std::string NameOf(const Store& store, bool in_transactions) {
  return std::string(store.name) + (in_transactions ? "/transactions" : "/plain");
}

/// Prints the usual lines, and the ratios at the end.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    benchmark::ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      const std::string name = run.run_name.function_name;
      medians_[name] = run.GetAdjustedCPUTime();
    }
  }

  void PrintRatios() const {
    std::printf("\n%-26s %12s %12s %12s %18s %18s\n", "store/mode", "component", "bound", "anew", "component/bound",
                "component/anew");
    for (const Store& store : kStores) {
      for (const bool in_transactions : {false, true}) {
        const std::string name = NameOf(store, in_transactions);
        const double component = Median(name + "/component");
        const double bound = Median(name + "/bound");
        const double anew = Median(name + "/anew");
        if (component == 0 || bound == 0 || anew == 0) continue;
        std::printf("%-26s %9.1f us %9.1f us %9.1f us %18.3f %18.3f\n", name.c_str(), component, bound, anew,
                    component / bound, component / anew);
      }
    }
  }

 private:
  [[nodiscard]] double Median(const std::string& name) const {
    const auto found = medians_.find(name);
    return found == medians_.end() ? 0 : found->second;
  }

  std::map<std::string, double> medians_;
};

void Register() {
  for (const Store& store : kStores) {
    for (const bool in_transactions : {false, true}) {
      // The three sides share a database, so that they find it in the same state.
      const auto bench = std::make_shared<std::unique_ptr<Bench>>();
      for (const auto& [side, side_name] : {std::pair{Side::kComponent, "component"}, std::pair{Side::kBound, "bound"},
                                            std::pair{Side::kPreparedAnew, "anew"}}) {
        const std::string name = NameOf(store, in_transactions) + "/" + side_name;
        benchmark::RegisterBenchmark(name.c_str(), [bench, store, in_transactions,
                                                    side = side](benchmark::State& state) {
          if (!*bench) *bench = std::make_unique<Bench>(store, in_transactions);
          for (auto _ : state) (*bench)->Run(side);
          state.counters["statements"] = static_cast<double>((*bench)->statements());
        })->Unit(benchmark::kMicrosecond);
      }
    }
  }
}

}  // namespace
}  // namespace talm_flow::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  talm_flow::bench::Register();
  talm_flow::bench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
}
