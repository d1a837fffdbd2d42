#pragma once

/// What the tests of the commands that write variables work on: a step of a flow whose parameters a test gives, and the
/// variables it finds afterwards.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "support/failing_connection.h"
#include "support/invocation.h"
#include "support/world.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"

namespace talm_flow::test {

/// A command by its number and its public operation.
struct Operation {
  int number;
  void (Command::*call)(InvocationContext&);
};

using TextViews = std::vector<std::string_view>;

/// A run of a command: its parameters in order, and what the variable "target" holds afterwards; nothing when it is not
/// to be written.
struct ValueCase {
  Operation operation;
  TextViews parameters;
  std::optional<std::string_view> written;
};

inline void PrintTo(const ValueCase& value_case, std::ostream* out) {
  *out << "C_" << value_case.operation.number;
  for (const auto text : value_case.parameters) *out << " | " << text;
}

/// The same command with several parameter lists.
struct OneRun {
  TextViews parameters;
  std::optional<std::string_view> written;
};
[[nodiscard]] inline std::vector<ValueCase> Runs(const std::vector<Operation>& operations,
                                                 const std::vector<OneRun>& runs) {
  std::vector<ValueCase> cases;
  for (const auto& operation : operations) {
    for (const auto& run : runs) cases.push_back({operation, run.parameters, run.written});
  }
  return cases;
}

class ValueCommands {
 public:
  /// Forms 12 (kind 0), 21 (kind 1) and 23 (kind 3) with a record each; the instance works on record 345 of form 12 and
  /// passes record 8 of form 21 through. The variables "text", "n", "moment" and "empty" have values.
  ValueCommands() {
    auto& database = world_.database();
    database.CreateFormTable(12, {{"Title", "InputText"}, {"Files", "UpLoadFile"}, {"Sign", "InputDigitalSign"}});
    database.CreateFormTable(21, {});
    database.CreateFormTable(23, {});
    world_.Run("Update TableName set Sort=1 Where TableID=21");
    world_.Run("Update TableName set Sort=3 Where TableID=23");
    world_.Run("Insert Into TableData12 (ID,inputtime,Title) Values (345,'2026-01-30 10:00:00','合同 O''Brien')");
    world_.Run("Insert Into TableData21 (ID) Values (8)");
    world_.Run("Insert Into TableData23 (ID) Values (9)");
    call_.other_table_id = 21;
    call_.other_data_id = 8;
    Given("text", "a,b,c");
    Given("n", "5");
    Given("moment", "2026-01-31 09:05:07");
    Given("empty", "");
    world_.ForgetTrace();
  }

  [[nodiscard]] World& world() { return world_; }
  [[nodiscard]] Invocation& call() { return call_; }
  [[nodiscard]] const std::vector<std::string>& trace() const { return world_.trace(); }

  void Given(std::string_view name, std::string_view text) {
    world_.Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (901,901," +
               Literal(name) + "," + Literal(text) + ")");
  }

  void GiveParameters(const Operation& operation, const TextViews& parameters) {
    world_.Run("delete from WorkFlowParameter");
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      world_.Parameter(7, 1, ParameterName(operation, i + 1), parameters[i]);
    }
  }

  void Call(const Operation& operation, Connection& connection) {
    Command command(world_.services());
    InvocationContext context = call_.On(connection);
    (command.*operation.call)(context);
  }
  void Call(const Operation& operation) { Call(operation, world_.connection()); }

  /// Stores the parameters and runs the command.
  void RunStep(const Operation& operation, const TextViews& parameters) {
    GiveParameters(operation, parameters);
    Call(operation);
  }

  /// What a variable of the tree holds; nothing when it has no row.
  [[nodiscard]] std::optional<std::string> Variable(std::string_view name = "target") {
    const auto rows = world_.Rows("Select VariableValue From WorkFlowVariable Where VariableName=" + Literal(name) +
                                  " And RootExecuteID=901");
    if (rows.empty()) return std::nullopt;
    EXPECT_EQ(rows.size(), 1U) << "a variable has one row";
    return rows.front();
  }

  [[nodiscard]] static std::string ParameterName(const Operation& operation, std::size_t k) {
    return "C_" + std::to_string(operation.number) + "_" + std::to_string(k);
  }

  /// The statement that reads parameter k.
  [[nodiscard]] static std::string ReadingOf(const Operation& operation, std::size_t k) {
    return "Select Top 1 ParameterData From WorkFlowParameter Where ParameterName='" + ParameterName(operation, k) +
           "' And FlowID=7 And FlowNo=1";
  }

  /// The statement that reads a variable, be it for its value or to see whether it exists.
  [[nodiscard]] static std::string ReadingOf(std::string_view variable) {
    return "Select Top 1 VariableValue From WorkFlowVariable Where VariableName=" + Literal(variable) +
           " And RootExecuteID=901";
  }

  /// The statement that makes a variable.
  [[nodiscard]] static std::string InsertingOf(std::string_view variable, std::string_view value) {
    return "insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) values (901,901," +
           Literal(variable) + "," + Literal(value) + ")";
  }

 private:
  World world_;
  Invocation call_;
};

class ValueCommandTest : public ::testing::Test, protected ValueCommands {};

/// A suite of `ValueCase`s needs one test only: each writes what it is to write.
class ValueCaseTest : public ::testing::TestWithParam<ValueCase>, protected ValueCommands {
 protected:
  void ExpectWritten() {
    const auto& [operation, parameters, written] = GetParam();
    RunStep(operation, parameters);
    EXPECT_EQ(Variable(), written);
  }
};

}  // namespace talm_flow::test
