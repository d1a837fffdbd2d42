#pragma once

/// A flow definition as the checks and the comparison see it, from a database or from a text.

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "db/session.h"
#include "engine/command_table.h"

namespace talm_flow::check {

class Report;

struct Parameter {
  std::string name;
  std::string data;
  std::size_t line = 0;
};

struct Step {
  std::optional<std::int64_t> number;  ///< nothing when it is no whole number
  std::optional<std::int64_t> parent;
  std::string serial;
  std::string remark;
  std::string command;
  const engine::CommandRow* row = nullptr;  ///< of the command; null for an unknown name
  std::size_t line = 0;
  std::size_t command_line = 0;
  std::vector<Parameter> parameters;

  [[nodiscard]] bool Is(int command_number) const { return row != nullptr && row->number == command_number; }
  /// Parameter k of the command as it is read: the first of its name; the empty text when there is none.
  [[nodiscard]] std::string_view Data(int k) const;
  /// The parameter itself, or null.
  [[nodiscard]] const Parameter* Find(int k) const;
};

struct InputParameter {
  std::string title;
  std::string order;
  std::string sort;
  std::string content;
};

struct Definition {
  std::optional<std::int64_t> flow;
  std::optional<std::string> remark;   ///< of the flow; nothing for a text without one, which keeps the flow's own
  std::deque<Step> steps;              ///< in the order in which the walk takes siblings; their addresses stay
  std::vector<InputParameter> inputs;  ///< in stored order
};

/// A stored flow. Values that no definition text can carry are reported.
[[nodiscard]] Definition ReadFlow(db::Session& session, std::int64_t flow_id, Report& report);

/// A definition text. What cannot be loaded, and what would be lost, is reported.
[[nodiscard]] Definition ReadText(std::string_view text, Report& report);

/// The flow's remark and input parameters, which the checks of a stored flow have no need of.
void ReadSurroundings(db::Session& session, std::int64_t flow_id, Definition& definition);

/// The whole number that a text or a column holds; nothing when there is none.
[[nodiscard]] std::optional<std::int64_t> WholeNumber(std::string_view text);

}  // namespace talm_flow::check
