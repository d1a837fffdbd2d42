/// The "Approval" workload against its own statements.
///
/// Each store and mode is run three ways in turn: through component and adapter; the same statements directly on the
/// engine, prepared once and bound; and prepared anew each time. What counts are the ratios of one run, printed at the
/// end from the medians of CPU times. Run with --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true,
/// as `make bench` does. "own" is the component and the reference host alone, on a connection that has all answers in
/// memory. The program fails when an instance is not exactly 109 statements.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "adapters/sqlite_database.h"
#include "answering_connection.h"
#include "median_reporter.h"
#include "office.h"
#include "recorded_statements.h"

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

  /// Not inlined, so that a profiler can be told to look at nothing else.
  [[gnu::noinline]] void Run(Side side) {
    switch (side) {
      case Side::kComponent:
        return Component();
      case Side::kBound:
        return recorded_->RunBound();
      case Side::kPreparedAnew:
        return recorded_->RunPreparedAnew();
    }
  }
  /// What the component hands over, and what the engine runs for it: with the host's checks and the transactions.
  [[nodiscard]] std::int64_t statements() {
    return CountStatements(*office_,
                           [this](Connection& connection) { office_->RunApproval(connection, kFlow, false); });
  }
  [[nodiscard]] std::size_t engine_statements() const { return recorded_->size(); }

 private:
  void Component() { office_->RunApproval(office_->database(), kFlow, in_transactions_); }
  [[nodiscard]] sqlite3* engine() { return static_cast<adapters::SqliteDatabase&>(office_->database()).engine(); }

  bool in_transactions_;
  std::filesystem::path folder_;
  std::unique_ptr<Office> office_;
  std::unique_ptr<RecordedStatements> recorded_;
};

std::string NameOf(const Store& store, bool in_transactions) {
  return std::string(store.name) + (in_transactions ? "/transactions" : "/plain");
}

/// What a ratio is not to exceed; 0 for none.
struct Limits {
  const char* name;
  double to_bound;
  double to_anew;
};
constexpr Limits kLimits[] = {{"memory/plain", 1.30, 0.28},
                              {"memory/transactions", 1.35, 0},
                              {"wal-normal/plain", 1.12, 0},
                              {"wal-normal/transactions", 1.25, 0}};

void PrintRatios(const MedianReporter& reporter, const std::string& name) {
  const double component = reporter.Median(name + "/component");
  const double bound = reporter.Median(name + "/bound");
  const double anew = reporter.Median(name + "/anew");
  if (component == 0 || bound == 0 || anew == 0) return;
  Limits limits{nullptr, 0, 0};
  for (const Limits& candidate : kLimits) {
    if (candidate.name == name) limits = candidate;
  }
  std::printf("%-24s %9.1f us %9.1f us %9.1f us %s %s\n", name.c_str(), component, bound, anew,
              MedianReporter::Ratio(component / bound, limits.to_bound).c_str(),
              MedianReporter::Ratio(component / anew, limits.to_anew).c_str());
}

void PrintRatios(const MedianReporter& reporter) {
  std::printf("\n%-24s %12s %12s %12s %24s %24s\n", "store/mode", "component", "bound", "anew", "component/bound",
              "component/anew");
  for (const Store& store : kStores) {
    for (const bool in_transactions : {false, true}) PrintRatios(reporter, NameOf(store, in_transactions));
  }
  if (const double own = reporter.Median("own"); own != 0) std::printf("own work: %.1f us (at most 20)\n", own);
}

constexpr std::int64_t kStatements = 109;

void RegisterSide(const std::string& name, Side side, const Store& store, bool in_transactions,
                  const std::shared_ptr<std::unique_ptr<Bench>>& bench) {
  const auto run = [=](benchmark::State& state) {
    if (!*bench) *bench = std::make_unique<Bench>(store, in_transactions);
    for (auto _ : state) (*bench)->Run(side);
    const std::int64_t statements = (*bench)->statements();
    if (statements != kStatements) {
      std::fprintf(stderr, "an instance is %lld statements\n", static_cast<long long>(statements));
      std::exit(1);
    }
    state.counters["statements"] = static_cast<double>(statements);
    state.counters["engine"] = static_cast<double>((*bench)->engine_statements());
  };
  benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMicrosecond);
}

/// The same calls on a connection that runs no statement.
void RunOwnWork(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddApprovalFlow(kFlow);
  AnsweringConnection connection(office.database());
  office.RunApproval(connection, kFlow, false);
  connection.AnswerFromMemory();
  for (auto _ : state) {
    connection.Restart();
    office.RunApproval(connection, kFlow, false);
  }
}

void Register() {
  for (const Store& store : kStores) {
    for (const bool in_transactions : {false, true}) {
      // The three sides share a database, so that they find it in the same state.
      const auto bench = std::make_shared<std::unique_ptr<Bench>>();
      const std::string name = NameOf(store, in_transactions);
      RegisterSide(name + "/component", Side::kComponent, store, in_transactions, bench);
      RegisterSide(name + "/bound", Side::kBound, store, in_transactions, bench);
      RegisterSide(name + "/anew", Side::kPreparedAnew, store, in_transactions, bench);
    }
  }
  benchmark::RegisterBenchmark("own", RunOwnWork)->Unit(benchmark::kMicrosecond);
}

}  // namespace
}  // namespace talm_flow::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  talm_flow::bench::Register();
  talm_flow::bench::MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  talm_flow::bench::PrintRatios(reporter);
}
