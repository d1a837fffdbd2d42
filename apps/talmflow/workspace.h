#pragma once

/// What a subcommand works on: the open database, the reference host, and a connection that watches what passes.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "subcommand.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/error.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/host/tracing_connection.h"

namespace talm_flow::program {

/// How a subcommand wants its database.
enum class Need {
  kComplete,  ///< it exists and has all tables
  kExisting,  ///< it exists (one in memory does when it is opened)
  kAny,       ///< created when it is missing
};

/// What went wrong, with the statement where there is one.
[[nodiscard]] std::string Told(const FlowError& error);

/// One row of a query, column by column.
using Row = std::vector<Value>;

class Workspace {
 public:
  /// @throws UserError   the URL is malformed; the database is missing, is none, or lacks tables.
  /// @throws UsageError  the clock's text is malformed.
  Workspace(const GlobalOptions& options, Need need);

  [[nodiscard]] adapters::Database& database() { return *database_; }
  /// The connection for the component's operations.
  [[nodiscard]] Connection& connection() { return watched_; }
  [[nodiscard]] const host::Services& services() const { return services_; }

  /// Runs `work` so that either all of what it writes stays or nothing. It may be run again from its start when another
  /// connection is in the way.
  /// @throws UserError  `work` raised an error of the library; tells where it happened.
  void Together(const std::function<void()>& work);

  /// All rows of a query of the program's own.
  [[nodiscard]] std::vector<Row> Rows(std::string_view query);
  /// The only field of the first row; Null when there is no row.
  [[nodiscard]] Value FirstField(std::string_view query);

  /// A text as a literal of a statement.
  [[nodiscard]] std::string Literal(std::string_view text) const;

  /// The flow instance that the first `FlowExecute` of this workspace made.
  [[nodiscard]] std::optional<std::int64_t> NewInstance() const { return new_instance_; }

 private:
  void Watch(std::string_view statement);

  bool trace_;
  bool together_;
  host::ReferenceHost host_;
  std::unique_ptr<adapters::Database> database_;
  host::Services services_;
  host::TracingConnection watched_;
  std::optional<std::int64_t> new_instance_;
  std::string place_;  ///< "in flow 3 at step 5: " while a step runs
};

}  // namespace talm_flow::program
