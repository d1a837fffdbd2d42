#pragma once

/// Large tables in little time: rows of what ran once, written again under other numbers.

#include "office.h"

namespace talm_flow::bench {

/// Starts one instance of an approval flow and adds `count` - 1 that wait as it does: their rows in all tables.
void AddWaitingInstances(Office& office, int flow_id, int count);

/// Adds `count` - 1 definitions that are as that of flow `flow_id`, with numbers above it.
void AddDefinitions(Office& office, int flow_id, int count);

}  // namespace talm_flow::bench
