#include "adapters/row_sets.h"

#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {

std::string InsertStatement(const Dialect& dialect, const TableName& table, const std::vector<NewField>& fields) {
  std::string text = "insert into ";
  if (!table.schema.empty()) text.append(QuotedName(dialect, table.schema)).append(".");
  text += QuotedName(dialect, table.name);
  if (fields.empty()) return text.append(dialect.default_row);
  std::string marks;
  for (const NewField& field : fields) {
    text.append(marks.empty() ? " (" : ",").append(QuotedName(dialect, field.name));
    if (!marks.empty()) marks += ',';
    marks += dialect.numbered_marks ? "$" + std::to_string(&field - fields.data() + 1) : "?";
  }
  return text + ") values (" + marks + ")";
}

// ---- Adding ---------------------------------------------------------------------------------------------------------

void AddingRowSet::AddNew() {
  if (closed_) throw DatabaseError("the row set is closed");
  if (Table().name.empty()) throw DatabaseError("rows can be added to a query of one table only");
  new_row_.emplace();
}

NewField& AddingRowSet::FieldOfNewRow(std::string_view name) {
  if (!new_row_) throw DatabaseError("no new row was begun");
  for (NewField& field : *new_row_) {
    if (EqualIgnoringAsciiCase(field.name, name)) return field;
  }
  if (!adder_.HasColumn(Table(), name)) throw DatabaseError("no such column: " + std::string(name));
  NewField& added = new_row_->emplace_back();
  added.name = name;
  return added;
}

void AddingRowSet::SetField(std::string_view name, const Value& value) {
  NewField& field = FieldOfNewRow(name);
  field.value = value;
  field.binary = false;
}

void AddingRowSet::SetBinary(std::string_view name, std::string_view bytes) {
  NewField& field = FieldOfNewRow(name);
  field.value = bytes;
  field.binary = true;
}

void AddingRowSet::Update() {
  if (!new_row_) throw DatabaseError("no new row was begun");
  adder_.InsertRow(Table(), *new_row_);
  new_row_.reset();
}

void AddingRowSet::EndAdding() {
  new_row_.reset();
  closed_ = true;
}

// ---- Reading --------------------------------------------------------------------------------------------------------

std::size_t ColumnNames::Find(std::string_view name) const {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i].size() == name.size() && (names[i] == name || EqualIgnoringAsciiCase(names[i], name))) return i;
  }
  return kNone;
}

void CompleteRowSet::MoveNext() {
  if (AtEnd()) throw DatabaseError("the row set is at its end");
  if (++at_ == row_count_) End();
}

void CompleteRowSet::RequireRow() const {
  if (AtEnd()) throw DatabaseError("the row set has no current row");
}

Value CompleteRowSet::Field(std::string_view name) const {
  RequireRow();
  const std::size_t index = Columns().Find(name);
  if (index == ColumnNames::kNone) throw DatabaseError("no such column: " + std::string(name));
  return ValueAt(at_, index);
}

Value CompleteRowSet::FieldAt(std::size_t index) const {
  RequireRow();
  if (index >= ColumnCount()) throw DatabaseError("no such column: number " + std::to_string(index));
  return ValueAt(at_, index);
}

void CompleteRowSet::End() {
  at_ = row_count_;
  DropRows();
}

void CompleteRowSet::Close() {
  if (!AtEnd()) End();
  EndAdding();
}

}  // namespace talm_flow::adapters
