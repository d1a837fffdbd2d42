#pragma once

/// What a test works on: a clean database with all tables (the chosen one, see support/databases.h), the reference host with a clock that stands still,
/// and a trace of every statement that the component hands over.

#include <string>
#include <string_view>
#include <vector>

#include "support/databases.h"
#include "support/recording_connection.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/host/tracing_connection.h"

namespace talm_flow::test {

class World {
 public:
  /// The clock stands at 2026-01-31 09:05:00.
  World();

  [[nodiscard]] adapters::Database& database() { return *database_; }
  /// The connection to hand to operations: traced.
  [[nodiscard]] Connection& connection() { return tracing_; }
  [[nodiscard]] host::Services services() { return host_.services(); }

  /// The texts handed over since the world was made or `ForgetTrace` was called, in order.
  [[nodiscard]] const std::vector<std::string>& trace() const { return trace_; }
  void ForgetTrace() { trace_.clear(); }

  /// Runs a statement below the trace.
  void Run(std::string_view statement);

  /// The rows of a query below the trace, one text a row: the fields joined by "|", Null as "NULL".
  [[nodiscard]] std::vector<std::string> Rows(std::string_view query);

  /// The first row in the form of `Rows`; the empty text when there is none.
  [[nodiscard]] std::string Row(std::string_view query);

  /// Adds a step to a flow's tree.
  void Step(int flow_id, int flow_no, int parent_no, std::string_view command);

  /// Stores a parameter of a step, as it is.
  void Parameter(int flow_id, int flow_no, std::string_view name, std::string_view data);

 private:
  CleanDatabase database_;
  RecordingConnection recording_;
  std::vector<std::string> trace_;
  host::TracingConnection tracing_;
  host::ReferenceHost host_;
};

/// A text as a literal of a statement.
[[nodiscard]] std::string Literal(std::string_view text);

}  // namespace talm_flow::test
