#pragma once

/// Starting a flow and resuming an instance. Told in `Command`.

#include "db/session.h"
#include "engine/command_table.h"
#include "engine/instance.h"

namespace talm_flow::engine {

/// `started` holds what the caller gave; its two ids are set once the instance is inserted.
void FlowExecute(db::Session& session, const CommandTable& commands, Instance started);

void FlowExecuteAfter(db::Session& session, const CommandTable& commands, const Value& execute_id,
                      const Value& flow_no);

}  // namespace talm_flow::engine
