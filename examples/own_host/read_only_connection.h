#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "talm_flow/error.h"
#include "talm_flow/host/connection.h"

namespace office {

// snippet: connection
/// Lets queries through and nothing else: for pages that show flows to people who may not touch them.
class ReadOnlyConnection : public talm_flow::Connection {
 public:
  /// @param inner  runs the queries; outlives this object.
  explicit ReadOnlyConnection(talm_flow::Connection& inner) : inner_(inner) {}

  std::unique_ptr<talm_flow::RowSet> Execute(std::string_view statement) override {
    throw talm_flow::DatabaseError("this connection only reads", std::string(statement));
  }
  [[nodiscard]] std::unique_ptr<talm_flow::RowSet> Open(std::string_view query) override { return inner_.Open(query); }

 private:
  talm_flow::Connection& inner_;
};
// snippet end

}  // namespace office
