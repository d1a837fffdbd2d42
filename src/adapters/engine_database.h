#pragma once

/// What the connections of all engines have in common: the tables of a complete installation, and those of forms.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/dialect.h"
#include "adapters/row_sets.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::adapters {

class EngineDatabase : public Database, protected RowAdder {
 public:
  [[nodiscard]] std::vector<std::string> MissingTables() override;
  void CreateTables() override;
  void CreateFormTable(std::int32_t table_id, const std::vector<std::pair<std::string, std::string>>& units) override;
  [[nodiscard]] std::vector<TableDescription> DescribeTables() override;
  void CreateFormTableLike(const TableDescription& form) override;
  [[nodiscard]] std::int64_t LastKey(const TableDescription& table) override;
  void ContinueKeys(const TableDescription& table, std::int64_t key) override;

 protected:
  /// @param dialect  outlives this object.
  explicit EngineDatabase(const Dialect& dialect) : dialect_(dialect) {}

  [[nodiscard]] const Dialect& dialect() const { return dialect_; }

  /// Whether the table or view exists. The name is spelled as in the schema; the engine may know it in another case.
  [[nodiscard]] virtual bool HasTable(std::string_view table) = 0;
  /// Whether the creation of tables can be taken back. If not, it runs outside of transactions.
  [[nodiscard]] virtual bool CreatesTablesInTransactions() const { return true; }
  /// Runs a statement that creates something, in the engine's dialect.
  virtual void RunDefinition(const std::string& statement) { (void)Execute(statement); }

 private:
  template <typename Work>
  void RunWhole(Work work);

  const Dialect& dialect_;
};

}  // namespace talm_flow::adapters
