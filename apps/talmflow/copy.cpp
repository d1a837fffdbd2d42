#include <algorithm>
#include <iostream>

#include "json.h"
#include "listing.h"
#include "lookup.h"
#include "talm_flow/conversion.h"
#include "talm_flow/host/unit_of_work.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

using adapters::ColumnDescription;
using adapters::ColumnKind;
using adapters::TableDescription;

/// How many rows are read at once. A server hands over all rows of a query before the first is seen.
constexpr int kBatch = 500;

/// One table's rows in the order of its key, a batch after the other.
class KeyedRows {
 public:
  KeyedRows(Connection& connection, const TableDescription& table) : connection_(connection), table_(table) {}

  /// The next row; null behind the last.
  [[nodiscard]] const RowSet* Next() {
    if (rows_ != nullptr) rows_->MoveNext();
    if (rows_ == nullptr || rows_->AtEnd()) {
      rows_ = connection_.Open("Select Top " + std::to_string(kBatch) + " * From " + table_.name + Behind() +
                               " Order By " + table_.key);
      if (rows_->AtEnd()) return nullptr;
    }
    last_ = NumberOf(rows_->Field(table_.key));
    return rows_.get();
  }

  /// The key of the row last given.
  [[nodiscard]] std::optional<std::int64_t> last() const { return last_; }

 private:
  [[nodiscard]] std::string Behind() const {
    return last_ ? " Where " + table_.key + ">" + std::to_string(*last_) : std::string();
  }

  Connection& connection_;
  const TableDescription& table_;
  std::unique_ptr<RowSet> rows_;
  std::optional<std::int64_t> last_;
};

/// The same value; engines differ in which of a number's two forms they give.
bool AreSame(const Value& one, const Value& other) {
  if (one.IsNull() || other.IsNull()) return one.IsNull() && other.IsNull();
  const bool texts = one.IsText();
  if (texts != other.IsText()) return false;
  return texts ? one.Text() == other.Text() : ToDouble(one) == ToDouble(other) && JoinedText(one) == JoinedText(other);
}

struct CopiedTable {
  std::string name;
  std::size_t rows = 0;
  std::int64_t last_key = 0;
};

class Copying {
 public:
  Copying(adapters::Database& from, adapters::Database& to) : from_(from), to_(to) {}

  /// Makes the tables that the target lacks. @throws UserError  it holds a row, or its tables do not fit.
  void Prepare() {
    RequireEmpty();
    tables_ = from_.DescribeTables();
    for (const auto& table : tables_) {
      if (table.key.empty())
        throw UserError("the table " + table.name + " has no key, so its rows cannot be told apart");
    }
    to_.CreateTables();
    for (const auto& table : tables_) {
      if (table.FormNumber()) to_.CreateFormTableLike(table);
    }
    RequireColumns();
  }

  /// All rows into the target, each compared with what came of it.
  [[nodiscard]] std::vector<CopiedTable> Run() {
    RequireEmpty();  // somebody else may have written since
    std::vector<CopiedTable> copied;
    for (const auto& table : tables_) {
      auto& report = copied.emplace_back();
      report.name = table.name;
      const auto highest = CopyRows(table);
      report.last_key = std::max(from_.LastKey(table), highest);
      if (report.last_key > 0) to_.ContinueKeys(table, report.last_key);
      report.rows = CompareRows(table);
    }
    return copied;
  }

 private:
  void RequireEmpty() const {
    for (const auto& table : to_.DescribeTables()) {
      if (to_.Open("Select Top 1 * From " + table.name)->AtEnd()) continue;
      throw UserError("--to: the database has rows in " + table.name + "; only an empty one can be copied into");
    }
  }

  void RequireColumns() const {
    const auto targets = to_.DescribeTables();
    for (const auto& table : tables_) {
      const auto target = std::find_if(targets.begin(), targets.end(),
                                       [&](const TableDescription& other) { return other.name == table.name; });
      if (target == targets.end()) throw UserError("--to: the table " + table.name + " could not be made");
      for (const auto& column : table.columns) {
        const auto* const found = target->FindColumn(column.name);
        if (found == nullptr || found->kind != column.kind) {
          throw UserError("--to: the table " + table.name + " has no " + std::string(Told(column.kind)) + " column " +
                          column.name + "; drop it to have it made again");
        }
      }
    }
  }

  /// @returns the highest key of the table; 0 without rows.
  [[nodiscard]] std::int64_t CopyRows(const TableDescription& table) const {
    KeyedRows rows(from_, table);
    const auto target = to_.Open("Select Top 1 * From " + table.name);
    while (const RowSet* const row = rows.Next()) {
      target->AddNew();
      target->SetField(table.key, row->Field(table.key));
      for (const auto& column : table.columns) {
        const Value value = row->Field(column.name);
        if (column.kind == ColumnKind::kBinary && value.IsText()) {
          target->SetBinary(column.name, value.Text());
        } else {
          target->SetField(column.name, value);
        }
      }
      target->Update();
    }
    return std::max<std::int64_t>(rows.last().value_or(0), 0);
  }

  [[nodiscard]] std::size_t CompareRows(const TableDescription& table) const {
    KeyedRows source(from_, table);
    KeyedRows target(to_, table);
    std::size_t count = 0;
    for (;; ++count) {
      const RowSet* const row = source.Next();
      const RowSet* const copy = target.Next();
      if (row == nullptr && copy == nullptr) return count;
      if (row == nullptr || copy == nullptr || source.last() != target.last()) {
        throw UserError("the rows of " + table.name + " changed while they were copied; nothing is kept");
      }
      const auto differs = std::find_if(
          table.columns.begin(), table.columns.end(),
          [&](const ColumnDescription& column) { return !AreSame(row->Field(column.name), copy->Field(column.name)); });
      if (differs == table.columns.end()) continue;
      throw UserError(table.name + " " + std::to_string(*source.last()) + ": the column " + differs->name +
                      " came out different; nothing is kept");
    }
  }

  adapters::Database& from_;
  adapters::Database& to_;
  std::vector<TableDescription> tables_;
};

class Copy : public Subcommand {
 public:
  explicit Copy(CLI::App& parent)
      : Subcommand(parent, "copy", "Copy a whole database into an empty one, on any engine",
                   "talmflow copy --from sqlite:office.db --to postgresql:///office\n"
                   "talmflow copy --from postgresql:///office --to sqlite:office.db\n"
                   "\nAll tables of the installation and of its forms are copied with their keys, in one transaction,\n"
                   "and every row is compared with its copy before that ends. New rows continue above the highest\n"
                   "key that the source ever gave. Units of work on the source wait meanwhile.") {
    app().add_option("--from", from_, "The database to copy")->required();
    app().add_option("--to", to_, "The database to fill; created where its engine can")->required();
  }

  void Run(const GlobalOptions& options) override {
    if (from_ == to_) throw UsageError("--from and --to name the same database");
    Workspace source(Named(options, from_, "--from"), Need::kComplete);
    Workspace target(Named(options, to_, "--to"), Need::kAny);
    std::vector<CopiedTable> copied;
    try {
      Copying copying(source.database(), target.database());
      copying.Prepare();
      // Neither side changes under the copying: both have their writer.
      host::UnitOfWork(source.database()).Run([&] {
        host::UnitOfWork(target.database()).Run([&] { copied = copying.Run(); });
      });
    } catch (const FlowError& error) {
      throw UserError(Told(error));
    }
    Print(options, copied);
  }

 private:
  static GlobalOptions Named(GlobalOptions options, const std::string& url, const char* option) {
    options.db = url;
    options.db_option = option;
    return options;
  }

  static void Print(const GlobalOptions& options, const std::vector<CopiedTable>& copied) {
    Listing listing({"Table", "Rows", "Last key"});
    std::size_t rows = 0;
    for (const auto& table : copied) {
      listing.Add({table.name, table.rows, table.last_key});
      rows += table.rows;
    }
    if (options.json) {
      std::cout << Dump(listing.AsJson(), 2) << '\n';
      return;
    }
    listing.PrintColumns();
    std::cout << "Copied " << copied.size() << " tables with " << rows << (rows == 1 ? " row" : " rows")
              << "; each row equals its source.\n";
  }

  std::string from_;
  std::string to_;
};

}  // namespace

void AddCopySubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Copy>(parent)); }

}  // namespace talm_flow::program
