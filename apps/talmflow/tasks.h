#pragma once

/// Tasks of people, and what instances wait for.

#include <cstdint>
#include <string>
#include <vector>

#include "listing.h"
#include "lookup.h"
#include "workspace.h"

namespace talm_flow::program {

enum class TaskKind { kApproval, kFillIn };

struct Task {
  TaskKind kind = TaskKind::kApproval;
  std::int64_t id = 0;
  std::int64_t instance = 0;
  std::int64_t step = 0;
  std::string person;
  Record record;
  std::string button;
  std::string notice;
  std::int64_t status = 0;
  std::int64_t form = 0;   ///< of an approval: the table in which it is filled in
  std::int64_t group = 0;  ///< of an approval: the number that the approvals of one step share
  std::string unit;        ///< of a fill-in: the input unit

  /// "A12", "F3".
  [[nodiscard]] std::string Name() const;
  [[nodiscard]] bool IsOpen() const { return status < 2; }
};

/// The tasks that meet a condition of a statement, by number.
[[nodiscard]] std::vector<Task> Approvals(Workspace& workspace, const std::string& condition);
[[nodiscard]] std::vector<Task> FillIns(Workspace& workspace, const std::string& condition);

/// The task that a word names: "A12", "F3", or the bare number where only one kind has it.
/// @throws UserError  there is none, or the number alone does not tell the kind.
[[nodiscard]] Task TaskOf(Workspace& workspace, const std::string& word);

/// Tasks as rows for people.
[[nodiscard]] Listing ListTasks(Workspace& workspace, const std::vector<Task>& tasks);

/// The timer rows that meet a condition of a statement.
[[nodiscard]] Listing ListTimers(Workspace& workspace, const std::string& condition);

/// Where an instance's tree stands.
struct Standing {
  std::int64_t instance = 0;
  bool ended = false;  ///< its rows are gone
  std::vector<Task> tasks;
  Listing timers;
};

/// @param root  the top instance of the instance's tree.
[[nodiscard]] Standing StandingOf(Workspace& workspace, std::int64_t instance, std::int64_t root);

/// The standing as JSON members, or as text on standard output.
[[nodiscard]] Json AsJson(Workspace& workspace, const Standing& standing);
void Print(Workspace& workspace, const Standing& standing);

}  // namespace talm_flow::program
