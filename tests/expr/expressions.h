#pragma once

/// What the tests of variables and expressions work on: instance 7 of the tree whose top is instance 5, on record 345 of
/// form 12.

#include <string>
#include <string_view>

#include "db/session.h"
#include "expr/evaluator.h"
#include "expr/variables.h"
#include "support/world.h"

namespace talm_flow::test {

class Expressions {
 public:
  [[nodiscard]] World& world() { return world_; }
  [[nodiscard]] const std::vector<std::string>& trace() const { return world_.trace(); }
  [[nodiscard]] const host::Services& services() const { return services_; }
  [[nodiscard]] const expr::Scope& scope() const { return scope_; }

  /// Writes as instance 7.
  void Write(std::string_view name, std::string_view text) {
    expr::UpdateVariableValue(session_, execute_id_, root_execute_id_, name, text);
  }

  [[nodiscard]] std::string Read(std::string_view name) { return expr::ReadVariable(session_, scope_, name); }

  [[nodiscard]] std::string Evaluate(std::string_view expression) {
    return expr::GetVariableValue(session_, scope_, expression);
  }

  /// Puts a variable into the tree, below the trace.
  void Given(std::string_view name, std::string_view text) {
    world_.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (5,7," +
               Literal(name) + "," + Literal(text) + ")");
  }

  /// All variables, in the order of their first writing.
  [[nodiscard]] std::vector<std::string> Variables() {
    return world_.Rows("Select RootExecuteID,ExecuteID,VariableName,VariableValue From WorkFlowVariable");
  }

  /// Turns to another instance.
  void Become(int execute_id, int root_execute_id) {
    execute_id_ = execute_id;
    root_execute_id_ = root_execute_id;
  }

 private:
  World world_;
  host::Services services_ = world_.services();
  db::Session session_{world_.connection(), services_};
  Value execute_id_ = 7;
  Value root_execute_id_ = 5;
  Value table_id_ = 12;
  Value data_id_ = 345;
  expr::Scope scope_{execute_id_, root_execute_id_, table_id_, data_id_};
};

/// The statement that reads a variable of the tree.
[[nodiscard]] inline std::string ReadingOf(std::string_view name) {
  return "Select Top 1 VariableValue From WorkFlowVariable Where VariableName=" + Literal(name) +
         " And RootExecuteID=5";
}

}  // namespace talm_flow::test
