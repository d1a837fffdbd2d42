#pragma once

/// @file
/// A connection that tells every statement text before it hands it on.

#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::host {

/// Hands everything on to another connection. One thread at a time, as that one.
class TALM_FLOW_API TracingConnection : public Connection {
 public:
  /// @param inner     runs the statements; outlives this object.
  /// @param observer  called with each text, before it runs; a text whose running fails has been told too.
  TracingConnection(Connection& inner, std::function<void(std::string_view)> observer)
      : inner_(inner), observer_(std::move(observer)) {}

  std::unique_ptr<RowSet> Execute(std::string_view statement) override {
    observer_(statement);
    return inner_.Execute(statement);
  }
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override {
    observer_(query);
    return inner_.Open(query);
  }
  [[nodiscard]] Connection& Unobserved() override { return inner_.Unobserved(); }

 private:
  Connection& inner_;
  std::function<void(std::string_view)> observer_;
};

}  // namespace talm_flow::host
