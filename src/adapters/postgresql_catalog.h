#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/postgresql_connection.h"
#include "adapters/rewriter.h"

namespace talm_flow::adapters {

/// What the server tells of tables: the key of each, and how its columns are spelled. The server folds names to lower
/// case; the spelling is that of the schema, and for a form's table that of its input units. Every table is asked for
/// once, until `Forget`.
class PostgresqlCatalog : public TableKeys {
 public:
  /// @param connection  outlives this object.
  explicit PostgresqlCatalog(PostgresqlConnection& connection) : connection_(connection) {}

  [[nodiscard]] TableKey Find(const TableName& table) override;
  [[nodiscard]] bool HasTable(const TableName& table) { return OfName(table).oid != 0; }
  [[nodiscard]] bool HasColumn(const TableName& table, std::string_view column);
  /// How a column of a result is spelled; nothing when the result does not show the column by its own name.
  [[nodiscard]] std::optional<std::string> Spelling(Oid table, int column, std::string_view shown_as);

  /// What moves a table's next key behind the highest one, after a statement that inserts rows with keys of its own;
  /// empty for every other statement.
  [[nodiscard]] std::string KeyFollowing(std::string_view statement);

  void Forget();

 private:
  struct Column {
    int number;
    std::string name;
    std::string spelling;
  };
  struct Table {
    Oid oid = 0;  // 0 when there is no such table
    std::vector<Column> columns;
    TableKey key;
  };

  const Table& OfName(const TableName& name);
  const Table& OfOid(Oid oid);
  [[nodiscard]] Table Read(std::string_view condition, PostgresqlParameters& parameters);
  void Spell(std::string_view table, std::vector<Column>& columns);

  PostgresqlConnection& connection_;
  std::map<std::string, Table, std::less<>> by_name_;
  std::map<Oid, Table> by_oid_;
};

}  // namespace talm_flow::adapters
