#pragma once

#include "talm_flow/error.h"

namespace talm_flow::host {

/// What a unit of work needs of a connection. Every operation raises `DatabaseError` when the engine refuses it.
class Transaction {
 public:
  virtual ~Transaction() = default;
  /// Begins a transaction that may write.
  virtual void Begin() = 0;
  virtual void Commit() = 0;
  /// Takes back everything since `Begin`.
  virtual void Rollback() = 0;
  [[nodiscard]] virtual bool InTransaction() const = 0;

  /// Whether the three savepoint operations work. They nest: each concerns the innermost savepoint that is set.
  [[nodiscard]] virtual bool OffersSavepoints() const { return false; }
  virtual void SetSavepoint() { throw DatabaseError("the connection offers no savepoints"); }
  /// Drops the savepoint and keeps what was done since.
  virtual void ReleaseSavepoint() { throw DatabaseError("the connection offers no savepoints"); }
  /// Takes back everything since the savepoint, and drops it.
  virtual void RollbackToSavepoint() { throw DatabaseError("the connection offers no savepoints"); }

  /// Whether the error says that another connection was in the way, so that the same work may succeed when it is done
  /// again from its start.
  [[nodiscard]] virtual bool MayBeRepeated(const DatabaseError& /*error*/) const { return false; }
};

}  // namespace talm_flow::host
