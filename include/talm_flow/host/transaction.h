#pragma once

namespace talm_flow::host {

/// What a unit of work needs of a connection: plain transactions, not nested. Every operation raises `DatabaseError`
/// when the engine refuses it.
class Transaction {
 public:
  virtual ~Transaction() = default;
  /// Begins a transaction that may write.
  virtual void Begin() = 0;
  virtual void Commit() = 0;
  /// Takes back everything since `Begin`.
  virtual void Rollback() = 0;
  [[nodiscard]] virtual bool InTransaction() const = 0;
};

}  // namespace talm_flow::host
