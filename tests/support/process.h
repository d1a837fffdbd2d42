#pragma once

/// A program that runs beside the test.

#include <sys/types.h>

#include <string>
#include <vector>

namespace talm_flow::test {

class Process {
 public:
  /// Starts a program. Its standard input is empty, its output goes nowhere, what it complains about to the test's own
  /// standard error unless `quiet`.
  Process(const std::string& program, std::vector<std::string> arguments, bool quiet = false);
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  /// Kills what still runs.
  ~Process();

  /// Ends it at once, as nothing can that it could prepare for.
  void Kill() const;

  /// Waits for its end. @returns its exit status; 128 + the signal's number when a signal ended it.
  [[nodiscard]] int Wait();

 private:
  pid_t id_ = -1;
};

/// A program that was built beside the test's own.
[[nodiscard]] std::string NeighbourPath(const std::string& name);

}  // namespace talm_flow::test
