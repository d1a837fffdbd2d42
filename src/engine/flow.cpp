#include "engine/flow.h"

#include "design/structure.h"
#include "engine/walk.h"

namespace talm_flow::engine {

void FlowExecute(db::Session& session, const CommandTable& commands, Instance started) {
  if (!design::FlowNoExists(session, started.flow_id, 1)) return;
  InsertTopInstance(session, started);
  Walk(session, commands).RunStep(started, 1);
  EndFlow(session, started.execute_id);
}

void FlowExecuteAfter(db::Session& session, const CommandTable& commands, const Value& execute_id,
                      const Value& flow_no) {
  Value current = execute_id;
  Value step = flow_no;
  while (true) {
    auto instance = FindInstance(session, current);
    if (!instance) return;
    Walk(session, commands).RunChildren(*instance, step);
    if (!ChildFlowFinish(session, current)) return;
    const auto link = FindParentLink(session, current);
    if (!link) return;
    DeleteParentLink(session, current);
    if (ToDouble(link->execute_parent) == 0) return;
    current = link->parent_execute_id;
    step = link->parent_flow_no;
  }
}

}  // namespace talm_flow::engine
