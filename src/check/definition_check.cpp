#include "talm_flow/definition_check.h"

#include "check/checks.h"
#include "talm_flow/conversion.h"

namespace talm_flow {
namespace {

using check::Definition;
using check::Report;
using check::Tree;

/// What a definition tells by itself.
void CheckAlone(const Definition& definition, const Tree& tree, Report& report) {
  check::CheckStructure(definition, tree, report);
  check::CheckParameters(definition, tree, report);
  check::CheckFlowOfControl(tree, report);
}

Findings CheckWithChildren(db::Session& session, const Definition& definition, Report& report) {
  const Tree tree(definition);
  CheckAlone(definition, tree, report);
  check::CheckChildFlows(session, definition, tree, report);
  return report.Take(definition);
}

}  // namespace

Findings CheckFlow(Connection& connection, const host::Services& services, const Value& flow_id) {
  db::Session session(connection, services);
  Report report;
  const Definition definition = check::ReadFlow(session, ToInt32(flow_id), report);
  return CheckWithChildren(session, definition, report);
}

Findings CheckDefinition(std::string_view text) {
  Report report;
  const Definition definition = check::ReadText(text, report);
  CheckAlone(definition, Tree(definition), report);
  return report.Take(definition);
}

Findings CheckDefinition(Connection& connection, const host::Services& services, std::string_view text,
                         const Value& flow_id) {
  db::Session session(connection, services);
  Report report;
  Definition definition = check::ReadText(text, report);
  if (!flow_id.IsNull()) definition.flow = ToInt32(flow_id);
  return CheckWithChildren(session, definition, report);
}

}  // namespace talm_flow
