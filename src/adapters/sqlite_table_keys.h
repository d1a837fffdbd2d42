#pragma once

#include "adapters/rewriter.h"

struct sqlite3;

namespace talm_flow::adapters {

/// Asks the engine: the key of a table is its row number, or its primary key where it has no row numbers.
class SqliteTableKeys : public TableKeys {
 public:
  explicit SqliteTableKeys(sqlite3* database) : database_(database) {}
  [[nodiscard]] TableKey Find(const TableName& table) override;

 private:
  sqlite3* database_;
};

}  // namespace talm_flow::adapters
