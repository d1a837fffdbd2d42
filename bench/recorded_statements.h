#pragma once

/// The statements of one instance as the embedded engine saw them, replayed without component and adapter.
///
/// While one instance runs, every statement that the engine runs is recorded (those of the reference host included):
/// its text with marks, the bound values, and whether it gives rows. The numbers that differ from instance to instance
/// are recognised because the recorded instance is given numbers that nothing else has; a replay takes them from the
/// rows of the statements that ask for them, as a program written for this one workload would.

#include <sqlite3.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace talm_flow::bench {

class RecordedStatements {
 public:
  /// Runs `body` once and records what the engine runs meanwhile.
  /// @param instance, task  the numbers that the recorded instance and its task have.
  RecordedStatements(sqlite3* database, std::int64_t instance, std::int64_t task, const std::function<void()>& body);

  [[nodiscard]] std::size_t size() const { return statements_.size(); }

  /// Runs all statements on prepared handles with bound values; every column of every row is read.
  void RunBound();

  /// Prepares every statement anew from a text with its values inside; every column of every row is read.
  void RunPreparedAnew();

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  /// The numbers of the running instance.
  struct Numbers {
    std::int64_t instance = 0;
    std::int64_t task = 0;
  };
  using Number = std::int64_t Numbers::*;
  struct Bound {
    Number number = nullptr;  // null for a value that is always the same
    std::int64_t whole = 0;
    std::string text;
    bool is_text = false;
  };
  struct Piece {
    std::string text;
    Number number = nullptr;  // what follows the text, unless null
  };
  struct Statement {
    std::string marked;         // with marks
    std::vector<Piece> pieces;  // with values
    std::vector<Bound> values;
    Number gives = nullptr;                // what the first column of its row is
    std::shared_ptr<sqlite3_stmt> handle;  // shared by all statements of this text
  };

  void Record(sqlite3_stmt* running, std::int64_t instance, std::int64_t task);
  void Prepare();
  [[noreturn]] void Fail() const;
  void Drain(sqlite3_stmt* handle, Number gives, Numbers& numbers) const;

  sqlite3* database_;
  std::vector<Statement> statements_;
  std::string text_;
};

}  // namespace talm_flow::bench
