#pragma once

/// One run of one step, as a command's handler sees it.

#include <cstdint>
#include <string>
#include <string_view>

#include "db/session.h"
#include "engine/command_table.h"
#include "talm_flow/invocation_context.h"

namespace talm_flow::engine {

class Step {
 public:
  Step(db::Session& session, const InvocationContext& call, const CommandRow& row)
      : session_(session), call_(call), row_(row) {}

  [[nodiscard]] db::Session& session() const { return session_; }
  [[nodiscard]] const host::Services& host() const { return session_.host(); }
  [[nodiscard]] Connection& connection() const { return session_.connection(); }
  /// The eleven values of this run.
  [[nodiscard]] const InvocationContext& call() const { return call_; }

  /// Parameter k of the command ("C_n_k") as stored; the empty text when the step has none.
  [[nodiscard]] std::string Stored(int k) const;

  /// The value of an expression in this instance.
  [[nodiscard]] std::string Evaluate(std::string_view expression) const;

  /// Parameter k, evaluated.
  [[nodiscard]] std::string Evaluated(int k) const { return Evaluate(Stored(k)); }

  /// Writes a flow variable in the scope that its name selects.
  void StoreVariable(std::string_view name, std::string_view value) const;

 private:
  db::Session& session_;
  const InvocationContext& call_;
  const CommandRow& row_;
};

}  // namespace talm_flow::engine
