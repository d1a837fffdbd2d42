#pragma once

#include "engine/command_table.h"

namespace talm_flow::commands {

/// The one table of all commands: what the walk does after each, what each takes, what each is for.
[[nodiscard]] const engine::CommandTable& Commands();

}  // namespace talm_flow::commands
