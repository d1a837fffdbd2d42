#pragma once

/// @file
/// What the commands are, for programs that show, explain or check flow definitions.
///
/// Everything here is constant data: the texts live as long as the program, and any number of threads may ask.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/export.h"

namespace talm_flow {

/// What happens to a step's children after its command.
enum class CommandEffect {
  kContinues,  ///< they run at once
  kWaits,      ///< they run when the host resumes the step
  kByResult,   ///< they run when the command's result is True
  kJumps,      ///< they do not run: another step runs in their place
};

/// How a command takes a parameter.
enum class ParameterTaken {
  kEvaluated,          ///< the text is an expression
  kAsStored,           ///< the text itself is the value
  kVariable,           ///< the text itself names the variable that is written
  kStoredOrEvaluated,  ///< taken as stored when it fits as it is (a number, a flag), else evaluated
  kEvaluatedOrStored,  ///< evaluated; taken as stored when the value is the empty text
};

/// One parameter of a command.
struct TALM_FLOW_API ParameterDescription {
  std::string_view title;                             ///< what it is, in a few words
  ParameterTaken taken = ParameterTaken::kEvaluated;  ///< how its text is read
  bool required = false;                              ///< without it the command does nothing that it is for
  std::string_view note;     ///< what fits, the default, and what a value that does not fit does; may be empty
  std::string_view example;  ///< a text that fits, as a definition holds it
};

/// One command.
struct TALM_FLOW_API CommandDescription {
  int number = 0;                                    ///< 1 to 98
  std::string_view name;                             ///< "C_1" ... "C_98"
  std::string_view title;                            ///< a few words
  std::string_view summary;                          ///< what it does, in sentences
  CommandEffect effect = CommandEffect::kContinues;  ///< what becomes of the step's children
  bool run_cap = false;                          ///< skipped silently once the step has run 200 times in one instance
  std::vector<ParameterDescription> parameters;  ///< parameter k, stored as "C_n_k", at k - 1
};

/// The command of that name, compared exactly; nothing for every other text.
[[nodiscard]] TALM_FLOW_API std::optional<CommandDescription> DescribeCommand(std::string_view name);

/// All commands, ascending by number.
[[nodiscard]] TALM_FLOW_API std::vector<CommandDescription> DescribeCommands();

/// The name of the command that a misspelt text most likely means: "c_2", "C2" and "C_02" mean C_2, "C_77x" means C_77.
/// Nothing when no command is near.
[[nodiscard]] TALM_FLOW_API std::optional<std::string_view> NearestCommand(std::string_view text);

/// What an effect means, as a sentence about the step's children.
[[nodiscard]] TALM_FLOW_API std::string_view ToldEffect(const CommandDescription& command);

/// How a parameter is taken, in words that can stand before its note.
[[nodiscard]] TALM_FLOW_API std::string_view ToldTaken(ParameterTaken taken);

/// A step with the command and all its parameters as lines of a definition text, the examples of the table filled in;
/// lines end with LF. Runs as step 2 below step 1; other steps that an example names are 3, flows 4.
[[nodiscard]] TALM_FLOW_API std::string ExampleStep(const CommandDescription& command);

}  // namespace talm_flow
