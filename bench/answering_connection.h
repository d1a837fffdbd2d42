#pragma once

/// A connection that answers without a database: what remains of a run's time is the component's and the host's own.
///
/// It first hands every statement on and keeps all rows; afterwards the same statements in the same order get the same
/// rows again, and no text is looked at.

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/host/connection.h"

namespace talm_flow::bench {

/// The rows that one statement gave.
struct Answer {
  bool gives_rows = false;
  std::vector<std::string> names;
  std::vector<Value> values;  // row after row
};

class AnsweringConnection : public Connection {
 public:
  explicit AnsweringConnection(Connection& database) : database_(database) {}

  void AnswerFromMemory() { recording_ = false; }
  /// The next statement is the first again.
  void Restart() { next_ = 0; }

  std::unique_ptr<RowSet> Execute(std::string_view statement) override;
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override;

 private:
  void Keep(RowSet* rows);
  std::unique_ptr<RowSet> NextAnswer();

  Connection& database_;
  bool recording_ = true;
  std::deque<Answer> answers_;  // readers refer to them
  std::size_t next_ = 0;
};

}  // namespace talm_flow::bench
