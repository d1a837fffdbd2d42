#pragma once

/// The statements of one instance as the embedded engine saw them, replayed without component and adapter.
///
/// While one instance runs, every statement that the engine runs is recorded (those of the reference host included):
/// its text with marks, the bound values, and whether it gives rows. The numbers that differ from instance to instance
/// are recognised because the recorded instance is given numbers that nothing else has.

#include <sqlite3.h>

#include <cstdint>
#include <functional>
#include <map>
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
  void RunBound(sqlite3* database, std::int64_t instance, std::int64_t task);

  /// Prepares every statement anew from a text with its values inside.
  void RunPreparedAnew(sqlite3* database, std::int64_t instance, std::int64_t task);

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  struct Bound {
    enum class Kind { kInstance, kTask, kWhole, kText } kind;
    std::int64_t whole = 0;
    std::string text;
  };
  struct Statement {
    std::string marked;    // with marks
    std::string expanded;  // with values
    std::vector<Bound> values;
    std::shared_ptr<sqlite3_stmt> handle;  // shared by all statements of this text
  };

  void Record(sqlite3_stmt* statement);

  std::int64_t instance_;
  std::int64_t task_;
  std::vector<Statement> statements_;
};

}  // namespace talm_flow::bench
