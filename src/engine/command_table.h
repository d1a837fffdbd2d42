#pragma once

/// What a command is, as rows of one table. The rows themselves stand in commands/command_table.cpp; the walk gets the
/// table handed in, so that the engine knows no command by name.

#include <array>
#include <charconv>
#include <cstdint>
#include <span>
#include <string_view>

#include "engine/outcome.h"

namespace talm_flow::engine {

class Step;

/// What the walk does after a command.
enum class Effect {
  kContinues,  ///< the children run at once
  kWaits,      ///< the children run when the host resumes the step
  kByResult,   ///< the children run when the command's result is True
  kJumps,      ///< another step runs in place of the children
};

/// How a command takes a parameter.
enum class Taken {
  kEvaluated,          ///< the text is an expression
  kAsStored,           ///< the text itself is the value
  kVariable,           ///< the text itself names the variable that is written
  kStoredOrEvaluated,  ///< taken as stored when it fits as it is (a number, a flag), else evaluated
  kEvaluatedOrStored   ///< evaluated; taken as stored when the value is the empty text
};

/// What a command makes of a parameter's text.
enum class Fits {
  kText,          ///< any text
  kRecord,        ///< "TableID:n,DataID:m"
  kTable,         ///< "TableID:n", or the number alone
  kUnit,          ///< an input unit's code, or "inunitid:code"
  kFile,          ///< "fileid:n"
  kPicture,       ///< "tablepicdataid:n"
  kNumber,        ///< numeric text
  kWholeNumber,   ///< numeric text that is taken as a whole number of 32 bits
  kDate,          ///< date text
  kFlag,          ///< "1" or "0"
  kCompared,      ///< a side of a comparison
  kStep,          ///< the number of a step of the same flow
  kFlow,          ///< the number of a flow
  kPosition,      ///< a position, from 1, as stored
  kComparison,    ///< >= <= < > <> =
  kOperator,      ///< + - * /
  kCondition,     ///< a condition by which records are looked up
  kVariable,      ///< a variable's name
  kVariableList,  ///< names of variables separated by "|^|"
};

struct ParameterRow {
  std::string_view title;
  Taken taken = Taken::kEvaluated;
  Fits fits = Fits::kText;
  bool required = false;    ///< without it, or empty, the command does nothing that it is for
  std::string_view note{};  ///< what fits, the default, and what a value that does not fit does
  std::string_view example = "\"...\"";
};

using Handler = Outcome (*)(Step&);

struct CommandRow {
  int number = 0;
  std::string_view name;  ///< "C_1" ... "C_98", as stored in a step
  Handler handler = nullptr;
  std::span<const ParameterRow> parameters{};
  Effect effect = Effect::kContinues;
  bool run_cap = false;  ///< skipped silently once the step has run 200 times in one instance
  std::string_view title;
  std::string_view summary;
};

inline constexpr int kCommandCount = 98;

/// All commands, ascending by number.
using CommandTable = std::array<CommandRow, kCommandCount>;

/// The row of a command name, compared exactly; null for every other text.
[[nodiscard]] inline const CommandRow* FindCommand(const CommandTable& table, std::string_view name) {
  if (name.size() < 3 || name.size() > 4 || name[0] != 'C' || name[1] != '_' || name[2] == '0') return nullptr;
  int number = 0;
  const auto [end, error] = std::from_chars(name.data() + 2, name.data() + name.size(), number);
  if (error != std::errc() || end != name.data() + name.size() || number < 1 || number > kCommandCount) return nullptr;
  return &table[static_cast<std::size_t>(number - 1)];
}

}  // namespace talm_flow::engine
