#pragma once

/// Instances of flows: their rows, the links from child to parent, and their end.

#include <cstdint>
#include <optional>

#include "db/session.h"
#include "talm_flow/invocation_context.h"

namespace talm_flow::engine {

/// The values that stay the same for all steps of one running instance.
struct Instance {
  Value execute_id{};
  Value root_execute_id{};
  Value table_id;
  Value data_id;
  Value flow_id;
  Value operator_name;
  Value ip_address;
  Value other_table_id;
  Value other_data_id;
};

/// The instance that a call's values stand for.
[[nodiscard]] Instance InstanceOf(const InvocationContext& call);

/// The link of a child instance to the parent step that started it.
struct ParentLink {
  Value parent_execute_id;
  Value parent_flow_no;
  Value execute_parent;
};

/// The instance's row, or nothing when it does not exist.
[[nodiscard]] std::optional<Instance> FindInstance(db::Session& session, const Value& execute_id);

/// Inserts a top instance, its own root. `started` holds all but the two ids, which are set.
void InsertTopInstance(db::Session& session, Instance& started);

/// Inserts a child instance of flow `flow_id` with its link to the step `call.FlowNo`.
[[nodiscard]] Instance InsertChildInstance(db::Session& session, const InvocationContext& call, const Value& flow_id);

[[nodiscard]] std::optional<ParentLink> FindParentLink(db::Session& session, const Value& child_execute_id);
void DeleteParentLink(db::Session& session, const Value& child_execute_id);

/// Whether the parent is to go on when the child ends; so too when there is no link.
[[nodiscard]] bool ParentGoesOn(db::Session& session, const Value& child_execute_id);

/// Whether the one instance has no open task and no child that hangs on it. Timers are not looked at.
[[nodiscard]] bool ChildFlowFinish(db::Session& session, const Value& execute_id);

/// Removes the instance's whole tree when nothing in it waits.
void EndFlow(db::Session& session, const Value& execute_id);

}  // namespace talm_flow::engine
