#pragma once

/// Prints the usual lines of a benchmark program and keeps the medians, from which a program prints its ratios.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace talm_flow::bench {

class MedianReporter : public benchmark::ConsoleReporter {
 public:
  enum class Time { kCpu, kElapsed };

  explicit MedianReporter(Time time = Time::kCpu) : benchmark::ConsoleReporter(OO_Tabular), time_(time) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    benchmark::ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      medians_[run.run_name.function_name] = time_ == Time::kCpu ? run.GetAdjustedCPUTime() : run.GetAdjustedRealTime();
    }
  }

  /// Time in the benchmark's unit; of the last run when there was only one. 0 when there was none.
  [[nodiscard]] double Median(const std::string& name) const {
    const auto found = medians_.find(name);
    return found == medians_.end() ? 0 : found->second;
  }

  /// A ratio with what it is not to exceed (0 for nothing).
  static std::string Ratio(double ratio, double limit) {
    char text[64];
    if (limit == 0) {
      std::snprintf(text, sizeof text, "%24.3f", ratio);
    } else {
      std::snprintf(text, sizeof text, "%9.3f (at most %4.2f)", ratio, limit);
    }
    return text;
  }

 private:
  Time time_;
  std::map<std::string, double> medians_;
};

}  // namespace talm_flow::bench
