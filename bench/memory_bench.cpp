/// The memory of a running call: the most that component, adapter and host hold at once beyond what they held before,
/// and how often they ask for it. The engine's own memory (its page cache above all) is not in it; "rss" is the peak of
/// the whole process so far, all of it included.
///
/// The program fails when a long chain, or many waiting instances, need more memory than short and few ones.

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <string>

#include "multiplied.h"
#include "office.h"

namespace {

struct Use {
  std::size_t held = 0;
  std::size_t peak = 0;
  std::size_t requests = 0;
};
Use use;

}  // namespace

// Not inlined: the compiler would see a pair of functions that it does not know for one.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  use.held += malloc_usable_size(memory);
  use.peak = std::max(use.peak, use.held);
  ++use.requests;
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  use.held -= malloc_usable_size(memory);
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace talm_flow::bench {
namespace {

constexpr int kFlow = 7;

/// The peak of each benchmark, by its first and then by its further sizes.
class Peaks {
 public:
  /// @returns whether it is about what the same took at its first size.
  bool Note(const std::string& name, std::size_t bytes) {
    const auto [first, is_new] = first_.try_emplace(name, bytes);
    return is_new || bytes <= first->second + kTolerated;
  }

 private:
  static constexpr std::size_t kTolerated = 4096;
  std::map<std::string, std::size_t> first_;
};

template <typename Call>
void Measure(benchmark::State& state, const std::string& name, const Call& call) {
  static Peaks peaks;
  call();  // buffers that a connection keeps have grown
  std::size_t peak = 0;
  std::size_t requests = 0;
  for (auto _ : state) {
    const Use before = use;
    use.peak = use.held;
    call();
    peak = std::max(peak, use.peak - before.held);
    requests = use.requests - before.requests;
  }
  rusage process{};
  getrusage(RUSAGE_SELF, &process);
  state.counters["peak_bytes"] = static_cast<double>(peak);
  state.counters["requests"] = static_cast<double>(requests);
  state.counters["rss_MiB"] = static_cast<double>(process.ru_maxrss) / 1024;
  if (!peaks.Note(name, peak)) {
    std::fprintf(stderr, "%s: the peak grows with the size: %zu bytes\n", name.c_str(), peak);
    std::exit(1);
  }
}

void Chain(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddChain(kFlow, static_cast<int>(state.range(0)));
  Measure(state, "Chain", [&] { office.Start(office.database(), kFlow); });
}
BENCHMARK(Chain)->Arg(10)->Arg(1000)->Arg(30000)->Iterations(1)->Unit(benchmark::kMillisecond);

void Loop(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddLoop(kFlow);
  Measure(state, "Loop", [&] { office.Start(office.database(), kFlow); });
}
BENCHMARK(Loop)->Iterations(1)->Unit(benchmark::kMillisecond);

void Waiting(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddApprovalFlow(kFlow);
  AddWaitingInstances(office, kFlow, static_cast<int>(state.range(0)));
  Measure(state, "Waiting", [&] { office.RunApproval(office.database(), kFlow, true); });
}
BENCHMARK(Waiting)->Arg(10)->Arg(1000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

/// One MiB each, copied from one record to another.
void CopiedFiles(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.database().CreateFormTable(14, {{"Doc", "UpLoadFile"}});
  office.Run("Insert Into TableData14 (ID) Values (1)");
  office.Run("Insert Into TableData14 (ID) Values (2)");
  for (std::int64_t file = 0; file < state.range(0); ++file) {
    office.Run(
        "Insert Into TableFile (TableID,DataID,InUnitID,FileName,FileContent) "
        "Values (14,1,'Doc','file',zeroblob(1048576))");
  }
  office.Step(kFlow, 1, 0, "C_76");
  office.Parameter(kFlow, 1, "C_76_1", "\"TableID:14,DataID:1\"");
  office.Parameter(kFlow, 1, "C_76_2", "\"TableID:14,DataID:2\"");
  Measure(state, "CopiedFiles", [&] { office.Start(office.database(), kFlow); });
  const auto copies = office.database().Open("select count(*) as n from TableFile where DataID=2");
  state.counters["copies"] = static_cast<double>(copies->Field("n").Whole());
}
BENCHMARK(CopiedFiles)->Arg(1)->Arg(10)->Arg(100)->Iterations(1)->Unit(benchmark::kMillisecond);

/// All children of a step are pending at once: this grows, by one entry a child.
void PendingChildren(benchmark::State& state) {
  Office office("sqlite::memory:");
  office.AddChain(kFlow, 1);
  for (int step = 2; step <= state.range(0); ++step) office.Step(kFlow, step, 1, "C_0");
  Measure(state, "PendingChildren" + std::to_string(state.range(0)), [&] { office.Start(office.database(), kFlow); });
}
BENCHMARK(PendingChildren)->Arg(10)->Arg(1000)->Arg(10000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace talm_flow::bench
