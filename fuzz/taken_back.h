#pragma once

#include "talm_flow/host/transaction.h"

namespace talm_flow::fuzz {

/// A transaction that ends with the object and leaves nothing behind, so that every input finds the same database.
class TakenBack {
 public:
  explicit TakenBack(host::Transaction& transaction) : transaction_(transaction) { transaction_.Begin(); }
  TakenBack(const TakenBack&) = delete;
  TakenBack& operator=(const TakenBack&) = delete;
  ~TakenBack() { transaction_.Rollback(); }

 private:
  host::Transaction& transaction_;
};

}  // namespace talm_flow::fuzz
