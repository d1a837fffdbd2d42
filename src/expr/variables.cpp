#include "expr/variables.h"

namespace talm_flow::expr {

namespace {

constexpr std::int32_t kRootScope = 1;
constexpr std::int32_t kInstanceScope = 2;
constexpr std::int32_t kSystemScope = 3;

constexpr std::string_view kByName = "Select Top 1 VariableValue From WorkFlowVariable Where VariableName=";
constexpr std::string_view kUpdate = "Update WorkFlowVariable set VariableValue=";
constexpr std::string_view kNamed = " Where VariableName=";
constexpr std::string_view kInsert =
    "insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) values (";
constexpr std::string_view kOfInstance = " And ExecuteID=";
constexpr std::string_view kOfRoot = " And RootExecuteID=";

/// The rows that a name stands for: those with the name and, unless the whole system shares them, this owner.
struct Owner {
  std::string_view condition;
  const Value* id = nullptr;
};

Owner OwnerOf(std::string_view name, const Value& execute_id, const Value& root_execute_id) {
  switch (GetVarTypeByName(name)) {
    case kInstanceScope:
      return {kOfInstance, &execute_id};
    case kSystemScope:
      return {};
    default:
      return {kOfRoot, &root_execute_id};
  }
}

}  // namespace

std::int32_t GetVarTypeByName(std::string_view name) {
  if (name.starts_with("Private_")) return kInstanceScope;
  if (name.starts_with("Global_")) return kSystemScope;
  return kRootScope;
}

void UpdateVariableValue(db::Session& session, const Value& execute_id, const Value& root_execute_id,
                         std::string_view name, std::string_view text) {
  const db::Quoted quoted_name(name);
  const db::Quoted quoted_text(text);
  const Owner owner = OwnerOf(name, execute_id, root_execute_id);
  if (owner.id == nullptr) {
    if (session.AnyRow(kByName, quoted_name)) {
      session.Execute(kUpdate, quoted_text, kNamed, quoted_name);
    } else {
      session.Execute(kInsert, "0,0,", quoted_name, ",", quoted_text, ")");
    }
    return;
  }
  if (session.AnyRow(kByName, quoted_name, owner.condition, *owner.id)) {
    session.Execute(kUpdate, quoted_text, kNamed, quoted_name, owner.condition, *owner.id);
  } else {
    session.Execute(kInsert, root_execute_id, ",", execute_id, ",", quoted_name, ",", quoted_text, ")");
  }
}

std::string ReadVariable(db::Session& session, const Scope& scope, std::string_view name) {
  const db::Quoted quoted_name(name);
  const Owner owner = OwnerOf(name, scope.execute_id, scope.root_execute_id);
  if (owner.id == nullptr) return session.FirstText("VariableValue", kByName, quoted_name);
  return session.FirstText("VariableValue", kByName, quoted_name, owner.condition, *owner.id);
}

}  // namespace talm_flow::expr
