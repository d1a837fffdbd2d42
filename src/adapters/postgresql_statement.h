#pragma once

/// Prepared statements of PostgreSQL, and what literals become as their parameters.
///
/// The server decides about a parameter's type by what stands around it. Texts compare numbers with texts and hold
/// numbers of any form; the embedded engine's answer is given where the server can give it:
///
///   a number where a text is expected         the text of the number, in the form the embedded engine gives it
///   '5', '5.0', 5.0 where a whole is expected  5
///   5.5, a number beyond 64 bits              compared as a number of any size; refused where it would be stored
///   'abc' compared with a number              more than every number; refused where it would be stored

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/postgresql_connection.h"
#include "adapters/rewriter.h"
#include "adapters/row_sets.h"

namespace talm_flow::adapters {

/// A statement that the server keeps prepared. Its name is handed in when nobody needs it any more.
class PostgresqlPrepared {
 public:
  using Names = std::shared_ptr<std::vector<std::string>>;

  PostgresqlPrepared(std::string name, Names unneeded) : name_(std::move(name)), unneeded_(std::move(unneeded)) {}
  PostgresqlPrepared(const PostgresqlPrepared&) = delete;
  PostgresqlPrepared& operator=(const PostgresqlPrepared&) = delete;
  ~PostgresqlPrepared() { unneeded_->push_back(name_); }

  [[nodiscard]] const std::string& name() const { return name_; }

  std::vector<Oid> types;                      ///< of the parameters
  std::vector<bool> any_number;                ///< parameters that take numbers of any size in a whole number's place
  std::shared_ptr<const ColumnNames> columns;  ///< null for a statement without a result

 private:
  std::string name_;
  Names unneeded_;
};

/// Everything known of a shape: prepared as the server sees it, and again for literals that do not fit that.
struct PostgresqlShape {
  Rewritten rewritten;
  std::vector<std::unique_ptr<PostgresqlPrepared>> prepared;
  /// What follows an insert that gives keys itself: the server's next key comes behind them. Empty for all others.
  std::string key_follows;
};

/// The literals that `prepared` cannot take because it wants whole numbers there; empty when it takes all.
[[nodiscard]] std::vector<bool> UnfitLiterals(const Rewritten& rewritten, const PostgresqlPrepared& prepared,
                                              const std::vector<Literal>& literals);

/// @throws DatabaseError  a text holds a NUL character.
void AddLiterals(const Rewritten& rewritten, const PostgresqlPrepared& prepared, const std::vector<Literal>& literals,
                 PostgresqlParameters& parameters);

/// @param type  of the column that the field is for.
void AddField(const NewField& field, Oid type, PostgresqlParameters& parameters);

/// A field of a result; binary content as a text of its bytes.
[[nodiscard]] Value FieldOf(const PGresult* result, int row, int column);

}  // namespace talm_flow::adapters
