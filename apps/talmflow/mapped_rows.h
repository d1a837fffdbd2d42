#pragma once

/// A connection whose rows show some fields in another form than they are stored.

#include <functional>
#include <memory>
#include <string_view>

#include "talm_flow/host/connection.h"

namespace talm_flow::program {

class MappedRows : public Connection {
 public:
  /// Gives what a field shows for what is stored. The column's name comes as the reader spells it.
  using Map = std::function<Value(std::string_view column, Value stored)>;

  /// @param inner  runs the statements; outlives this object.
  MappedRows(Connection& inner, Map map) : inner_(inner), map_(std::move(map)) {}

  std::unique_ptr<RowSet> Execute(std::string_view statement) override { return inner_.Execute(statement); }
  /// The row set must not outlive this object.
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;
  [[nodiscard]] Connection& Unobserved() override { return inner_.Unobserved(); }

 private:
  Connection& inner_;
  Map map_;
};

}  // namespace talm_flow::program
