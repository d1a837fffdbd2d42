#include "talm_flow/command_catalogue.h"

#include <algorithm>
#include <cstddef>

#include "commands/command_table.h"
#include "talm_flow/text.h"

namespace talm_flow {
namespace {

using engine::Effect;
using engine::Taken;

CommandEffect EffectOf(Effect effect) {
  switch (effect) {
    case Effect::kWaits:
      return CommandEffect::kWaits;
    case Effect::kByResult:
      return CommandEffect::kByResult;
    case Effect::kJumps:
      return CommandEffect::kJumps;
    case Effect::kContinues:
      break;
  }
  return CommandEffect::kContinues;
}

ParameterTaken TakenOf(Taken taken) {
  switch (taken) {
    case Taken::kAsStored:
      return ParameterTaken::kAsStored;
    case Taken::kVariable:
      return ParameterTaken::kVariable;
    case Taken::kStoredOrEvaluated:
      return ParameterTaken::kStoredOrEvaluated;
    case Taken::kEvaluatedOrStored:
      return ParameterTaken::kEvaluatedOrStored;
    case Taken::kEvaluated:
      break;
  }
  return ParameterTaken::kEvaluated;
}

CommandDescription Describe(const engine::CommandRow& row) {
  CommandDescription description{.number = row.number,
                                 .name = row.name,
                                 .title = row.title,
                                 .summary = row.summary,
                                 .effect = EffectOf(row.effect),
                                 .run_cap = row.run_cap,
                                 .parameters = {}};
  description.parameters.reserve(row.parameters.size());
  for (const auto& parameter : row.parameters) {
    description.parameters.push_back(
        {parameter.title, TakenOf(parameter.taken), parameter.required, parameter.note, parameter.example});
  }
  return description;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::optional<CommandDescription> DescribeCommand(std::string_view name) {
  const auto* const row = engine::FindCommand(commands::Commands(), name);
  if (row == nullptr) return std::nullopt;
  return Describe(*row);
}

std::vector<CommandDescription> DescribeCommands() {
  std::vector<CommandDescription> all;
  all.reserve(engine::kCommandCount);
  for (const auto& row : commands::Commands()) all.push_back(Describe(row));
  return all;
}

// The number decides: a name is "C_" and digits, and people spoil what stands around them.
std::optional<std::string_view> NearestCommand(std::string_view text) {
  constexpr std::size_t kLongest = 12;
  text = TrimBlanks(text);
  if (text.empty() || text.size() > kLongest) return std::nullopt;
  const auto first = std::ranges::find_if(text, IsDigit);
  auto last = std::find_if_not(first, text.end(), IsDigit);
  const auto before = text.substr(0, static_cast<std::size_t>(first - text.begin()));
  if (before.size() > 3 || std::any_of(last, text.end(), IsDigit)) return std::nullopt;
  std::string_view digits(first, last);
  while (digits.starts_with('0')) digits.remove_prefix(1);
  // One digit too many: the first two are meant.
  if (digits.size() == 3) digits.remove_suffix(1);
  const auto* const row = engine::FindCommand(commands::Commands(), "C_" + std::string(digits));
  if (row == nullptr) return std::nullopt;
  return row->name;
}

std::string_view ToldEffect(const CommandDescription& command) {
  switch (command.effect) {
    case CommandEffect::kWaits:
      return "The children run when the host resumes the step.";
    case CommandEffect::kByResult:
      return command.number == 18 ? "The children run when the child flow has ended and lets its parent go on."
                                  : "The children run when the comparison holds.";
    case CommandEffect::kJumps:
      return "The other step runs; the children do not.";
    case CommandEffect::kContinues:
      break;
  }
  return "The children run at once.";
}

std::string_view ToldTaken(ParameterTaken taken) {
  switch (taken) {
    case ParameterTaken::kAsStored:
    case ParameterTaken::kVariable:
      return "as stored";
    case ParameterTaken::kStoredOrEvaluated:
      return "as stored when it fits so, else evaluated";
    case ParameterTaken::kEvaluatedOrStored:
      return "evaluated; as stored when that gives the empty text";
    case ParameterTaken::kEvaluated:
      break;
  }
  return "evaluated";
}

std::string ExampleStep(const CommandDescription& command) {
  std::string text = "StepBegin\nFlowNo:2\nParentNo:1\nSerial:2\nRemark:";
  text += command.title;
  text += "\nCommand:";
  text += command.name;
  text += "\nParameterBegin\n";
  for (std::size_t i = 0; i < command.parameters.size(); ++i) {
    text += command.name;
    text += '_' + std::to_string(i + 1) + ':';
    text += command.parameters[i].example;
    text += '\n';
  }
  text += "ParameterEnd\n";
  return text;
}

}  // namespace talm_flow
