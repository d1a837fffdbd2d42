#include "talm_flow/command_catalogue.h"

#include "commands/command_table.h"

namespace talm_flow {

std::optional<CommandDescription> DescribeCommand(std::string_view name) {
  const auto* const row = engine::FindCommand(commands::Commands(), name);
  if (row == nullptr) return std::nullopt;
  CommandDescription description{row->number, row->name, row->title, row->summary, {}};
  description.parameters.reserve(row->parameters.size());
  for (const auto& parameter : row->parameters) description.parameters.push_back({parameter.title, parameter.note});
  return description;
}

}  // namespace talm_flow
