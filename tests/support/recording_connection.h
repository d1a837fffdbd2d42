#pragma once

/// Writing down what the component hands to its connections, for a parser that knows the dialect the texts are in
/// (tests/dialect).
///
/// Environment: TALM_FLOW_STATEMENTS names the file, which is made anew by each process. Without it nothing is written.
/// A line is a JSON object:
///
///   {"place":"Suite.Test","operation":"Command.C_1","ran":true,"shape":"... where FlowID=?","text":"... where FlowID=7"}
///   {"expected":"Command.C_1"}
///
/// A text appears once for each operation and shape (the text without its literals); `ran` tells whether the database
/// took it.

#include <memory>
#include <string_view>

#include "talm_flow/host/connection.h"

namespace talm_flow::test {

/// Hands everything on, and writes down the texts.
class RecordingConnection : public Connection {
 public:
  /// @param inner      runs the statements; outlives this object.
  /// @param operation  the public operation that is called, where that is known; a text that stays.
  explicit RecordingConnection(Connection& inner, std::string_view operation = {})
      : inner_(inner), operation_(operation) {}

  std::unique_ptr<RowSet> Execute(std::string_view statement) override;
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;
  [[nodiscard]] Connection& Unobserved() override { return inner_.Unobserved(); }

 private:
  Connection& inner_;
  std::string_view operation_;
};

/// Writes down that statements of an operation have to be among what is written down.
void ExpectStatementsOf(std::string_view operation);

}  // namespace talm_flow::test
