#pragma once

/// What the row sets of all engines have in common.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/rewriter.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::adapters {

/// A column of a row to be added.
struct NewField {
  std::string name;
  Value value;
  bool binary = false;
};

/// The insert of a row, with a mark for each field.
[[nodiscard]] std::string InsertStatement(const Dialect& dialect, const TableName& table,
                                          const std::vector<NewField>& fields);

/// A connection that stores them.
class RowAdder {
 public:
  [[nodiscard]] virtual bool HasColumn(const TableName& table, std::string_view column) = 0;
  virtual void InsertRow(const TableName& table, const std::vector<NewField>& fields) = 0;

 protected:
  ~RowAdder() = default;
};

/// A row set with the half that adds rows.
class AddingRowSet : public RowSet {
 public:
  void AddNew() final;
  void SetField(std::string_view name, const Value& value) final;
  void SetBinary(std::string_view name, std::string_view bytes) final;
  void Update() final;

 protected:
  explicit AddingRowSet(RowAdder& adder) : adder_(adder) {}

  /// The table that rows go to; without a name when they cannot be added.
  [[nodiscard]] virtual const TableName& Table() const = 0;
  /// The adding part of `Close`.
  void EndAdding();

 private:
  NewField& FieldOfNewRow(std::string_view name);

  RowAdder& adder_;
  std::optional<std::vector<NewField>> new_row_;
  bool closed_ = false;
};

/// The names of a query's columns.
struct ColumnNames {
  std::vector<std::string> names;

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  /// In any case (ASCII). `kNone` when there is no such column.
  [[nodiscard]] std::size_t Find(std::string_view name) const;
};

/// A row set that has all its rows from the beginning.
class CompleteRowSet : public AddingRowSet {
 public:
  [[nodiscard]] bool AtEnd() const final { return at_ >= row_count_; }
  [[nodiscard]] bool BeforeBegin() const final { return !had_row_; }
  void MoveNext() final;

  [[nodiscard]] Value Field(std::string_view name) const final;
  [[nodiscard]] std::size_t ColumnCount() const final { return Columns().names.size(); }
  [[nodiscard]] std::string_view ColumnName(std::size_t index) const final { return Columns().names.at(index); }
  [[nodiscard]] Value FieldAt(std::size_t index) const final;

  void Close() final;

 protected:
  CompleteRowSet(RowAdder& adder, std::size_t row_count)
      : AddingRowSet(adder), row_count_(row_count), had_row_(row_count > 0) {}

  [[nodiscard]] virtual const ColumnNames& Columns() const = 0;
  [[nodiscard]] virtual Value ValueAt(std::size_t row, std::size_t column) const = 0;
  /// The rows are not needed any more. Called once, when the reader is behind the last or closes the row set.
  virtual void DropRows() = 0;

 private:
  void RequireRow() const;
  void End();

  std::size_t row_count_;
  std::size_t at_ = 0;
  bool had_row_;
};

}  // namespace talm_flow::adapters
