#pragma once

#include "adapters/rewriter.h"

struct sqlite3;

namespace talm_flow::adapters {

/// Asks the engine: the key of a table is its row number, or its primary key where it has no row numbers.
class SqliteTableKeys : public TableKeys {
 public:
  explicit SqliteTableKeys(const Dialect& dialect) : dialect_(dialect) {}
  /// Which database is asked from now on.
  void Ask(sqlite3* database) { database_ = database; }
  [[nodiscard]] TableKey Find(const TableName& table) override;

 private:
  const Dialect& dialect_;
  sqlite3* database_ = nullptr;
};

}  // namespace talm_flow::adapters
