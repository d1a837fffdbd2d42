#pragma once

#include "subcommand.h"

namespace talm_flow::program {

void AddManualPageSubcommands(CLI::App& parent, Subcommands& all);  // manual

}  // namespace talm_flow::program
