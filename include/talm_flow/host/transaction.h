#pragma once

#include "talm_flow/error.h"
#include "talm_flow/export.h"

namespace talm_flow::host {

/// What a unit of work needs of a connection. Every operation raises `DatabaseError` when the engine refuses it.
class TALM_FLOW_API Transaction {
 public:
  virtual ~Transaction() = default;

  /// Begins a transaction that may write. It waits its turn: from its return to the end of the transaction no other
  /// transaction that was begun here writes to the same database, whichever process it belongs to. So a work that
  /// inserts a row and then reads the highest key of the table reads the key of its own row. (An engine may let them
  /// run side by side when it refuses all but one of them at the end, with an error that `MayBeRepeated` knows.)
  ///
  /// Statements that run outside of such transactions are not held up.
  virtual void Begin() = 0;

  /// Ends the transaction and keeps what it did. Returns only when everything is kept; raises also when the engine has
  /// ended the transaction before, or will no longer commit it because a statement in it failed.
  virtual void Commit() = 0;
  /// Takes back everything since `Begin`.
  virtual void Rollback() = 0;
  /// Whether a transaction is open, as far as the connection knows; false when the connection is lost.
  [[nodiscard]] virtual bool InTransaction() const = 0;

  /// Whether the three savepoint operations work. They nest: each concerns the innermost savepoint that is set.
  [[nodiscard]] virtual bool OffersSavepoints() const { return false; }
  /// Sets a savepoint inside the open transaction.
  virtual void SetSavepoint() { throw DatabaseError("the connection offers no savepoints"); }
  /// Drops the savepoint and keeps what was done since.
  virtual void ReleaseSavepoint() { throw DatabaseError("the connection offers no savepoints"); }
  /// Takes back everything since the savepoint, and drops it.
  virtual void RollbackToSavepoint() { throw DatabaseError("the connection offers no savepoints"); }

  /// Whether the error says that another connection was in the way and that nothing of the transaction is kept, so that
  /// the same work may succeed when it is done again from its start: a lock that was not given in time, a deadlock, a
  /// serialisation failure, at the commit too. Never an error of a lost connection: when the connection is lost while a
  /// commit is under way, nobody can tell whether it happened, and work done again might be done twice.
  [[nodiscard]] virtual bool MayBeRepeated(const DatabaseError& /*error*/) const { return false; }
};

}  // namespace talm_flow::host
