#pragma once

/// What the benchmarks work on: a database with forms, flows and the reference host, and the "Approval" workload.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "talm_flow/adapters/database.h"
#include "talm_flow/command.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/host/tracing_connection.h"

namespace talm_flow::bench {

class Office {
 public:
  /// All tables, request form 12 with record 1, approval form 13.
  explicit Office(std::string_view url);

  [[nodiscard]] adapters::Database& database() { return *database_; }
  [[nodiscard]] Command& command() { return command_; }
  [[nodiscard]] host::Services services() { return host_.services(); }

  void Run(std::string_view statement) { (void)database_->Execute(statement); }
  void Step(int flow_id, int flow_no, int parent_no, std::string_view command);
  void Parameter(int flow_id, int flow_no, std::string_view name, std::string_view data);

  /// A chain of assignment steps.
  void AddChain(int flow_id, int steps);

  /// Ten assignments, an approval with a notice and a time limit, two more assignments.
  void AddApprovalFlow(int flow_id);

  /// An assignment, and a jump back to it that runs as often as a step may.
  void AddLoop(int flow_id);

  /// A step that starts `children` child flows, one after another, each of one assignment.
  void AddParent(int flow_id, int child_flow_id, int children);

  /// A task that waits, and the instance and step that wait for it.
  struct Task {
    Value task;
    Value instance;
    Value step;
  };

  // The four calls of a host in the life of one instance, and how it learns of the task.
  void Start(Connection& connection, int flow_id);
  [[nodiscard]] static Task NewestTask(Connection& connection);
  void Finish(Connection& connection, const Task& task);
  void Resume(Connection& connection, const Task& task);
  void End(Connection& connection, const Task& task);

  /// Starts a flow of `AddApprovalFlow`, gives the approval, resumes and ends it.
  /// @param in_transactions  each call of the host in one transaction.
  void RunApproval(Connection& connection, int flow_id, bool in_transactions);

 private:
  std::unique_ptr<adapters::Database> database_;
  host::ReferenceHost host_;
  Command command_{host_.services()};
};

/// How many statements the component hands over while `body` runs on the connection it is given.
template <typename Body>
std::int64_t CountStatements(Office& office, const Body& body) {
  std::int64_t count = 0;
  host::TracingConnection counting(office.database(), [&count](std::string_view) { ++count; });
  body(counting);
  return count;
}

}  // namespace talm_flow::bench
