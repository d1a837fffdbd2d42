#pragma once

/// Faults on order.

#include <cstddef>
#include <memory>
#include <string_view>

#include "talm_flow/error.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::test {

/// Hands statements on, except for the one that is to fail. Host services read below it and are not counted.
class FailingConnection : public Connection {
 public:
  /// @param failing  which statement fails, from 1; 0 for none.
  FailingConnection(Connection& inner, std::size_t failing) : inner_(inner), failing_(failing) {}

  std::unique_ptr<RowSet> Execute(std::string_view statement) override {
    Count();
    return inner_.Execute(statement);
  }
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override {
    Count();
    return inner_.Open(query);
  }
  [[nodiscard]] Connection& Unobserved() override { return inner_.Unobserved(); }

  /// How many statements came, the failed one included.
  [[nodiscard]] std::size_t count() const { return count_; }

 private:
  void Count() {
    if (++count_ == failing_) throw DatabaseError("the statement was made to fail");
  }

  Connection& inner_;
  std::size_t failing_;
  std::size_t count_ = 0;
};

}  // namespace talm_flow::test
