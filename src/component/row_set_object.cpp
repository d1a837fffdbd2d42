#include "component/row_set_object.h"

#include <cstddef>
#include <cstdint>

#include "component/host_connection.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::component {
namespace {

void Give(const Use& use, const Value& value) {
  if (use.result != nullptr) Hold(*use.result, value);
}

void Give(const Use& use, Reference<TalmDispatch> object) {
  if (use.result != nullptr) Hold(*use.result, std::move(object));
}

/// The column that a key names: a name in any case, or its number from 0.
std::string ColumnOf(const RowSet& rows, const Value& key) {
  if (!key.IsText()) {
    const std::int32_t index = ToInt32(key);
    if (index < 0 || static_cast<std::size_t>(index) >= rows.ColumnCount()) {
      throw DatabaseError("the row set has no column number " + std::to_string(index));
    }
    return std::string(rows.ColumnName(static_cast<std::size_t>(index)));
  }
  for (std::size_t i = 0; i < rows.ColumnCount(); ++i) {
    if (EqualIgnoringAsciiCase(rows.ColumnName(i), key.Text())) return std::string(rows.ColumnName(i));
  }
  throw DatabaseError("the row set has no column " + key.Text());
}

/// One column: its value is that of the row set's current row.
class FieldObject : public MemberObject<FieldObject> {
 public:
  FieldObject(Own<RowSetObject> rows, std::string name) : rows_(std::move(rows)), name_(std::move(name)) {}

  static constexpr bool kHasDefault = true;
  static const Member<FieldObject> kMembers[2];

 private:
  [[nodiscard]] std::string ClassName() const override { return "TALM_Flow.Field"; }

  void ValueOf(const Use& use) {
    if (!use.Puts()) return Give(use, rows_->rows().Field(name_));
    const TalmVariant& given = Followed(use[0]);
    const bool bytes = (given.type & kTalmArray) != 0;
    const Value value = ArgumentOf(use, 0);
    bytes ? rows_->rows().SetBinary(name_, value.Text()) : rows_->rows().SetField(name_, value);
  }
  void Name(const Use& use) { Give(use, name_); }

  Own<RowSetObject> rows_;
  std::string name_;
};

const Member<FieldObject> FieldObject::kMembers[] = {{"Value", kRead | kTalmPut, 0, 0, &FieldObject::ValueOf},
                                                     {"Name", kRead, 0, 0, &FieldObject::Name}};

Reference<TalmDispatch> NewField(RowSetObject& rows, const Value& key) {
  const auto field = Own<FieldObject>::Make(Own<RowSetObject>::Counting(&rows), ColumnOf(rows.rows(), key));
  return field->AsDispatch();
}

class FieldsObject : public MemberObject<FieldsObject> {
 public:
  explicit FieldsObject(Own<RowSetObject> rows) : rows_(std::move(rows)) {}

  static constexpr bool kHasDefault = true;
  static const Member<FieldsObject> kMembers[2];

 private:
  [[nodiscard]] std::string ClassName() const override { return "TALM_Flow.Fields"; }

  void Item(const Use& use) { Give(use, NewField(*rows_, ArgumentOf(use, 0))); }
  void Count(const Use& use) { Give(use, rows_->rows().ColumnCount()); }

  Own<RowSetObject> rows_;
};

const Member<FieldsObject> FieldsObject::kMembers[] = {{"Item", kRead, 1, 1, &FieldsObject::Item},
                                                       {"Count", kRead, 0, 0, &FieldsObject::Count}};

}  // namespace

const Member<RowSetObject> RowSetObject::kMembers[] = {
    {"Fields", kRead, 0, 1, &RowSetObject::Fields},
    {"Field", kRead, 1, 1, &RowSetObject::Field},
    {"EOF", kRead, 0, 0, &RowSetObject::EndOfRows},
    {"BOF", kRead, 0, 0, &RowSetObject::BeginningOfRows},
    {"MoveNext", kTalmMethod, 0, 0, &RowSetObject::MoveNext},
    {"Close", kTalmMethod, 0, 0, &RowSetObject::Close},
    {"AddNew", kTalmMethod, 0, 0, &RowSetObject::AddNew},
    {"Update", kTalmMethod, 0, 0, &RowSetObject::Update},
    {"State", kRead, 0, 0, &RowSetObject::State},
    {"ColumnCount", kRead, 0, 0, &RowSetObject::ColumnCount},
};

void RowSetObject::Fields(const Use& use) {
  if (use.count() == 1) return Give(use, NewField(*this, ArgumentOf(use, 0)));
  const auto fields = Own<FieldsObject>::Make(Own<RowSetObject>::Counting(this));
  Give(use, fields->AsDispatch());
}

void RowSetObject::Field(const Use& use) { Give(use, rows_->Field(ColumnOf(*rows_, ArgumentOf(use, 0)))); }

void RowSetObject::EndOfRows(const Use& use) { Give(use, rows_->AtEnd()); }

void RowSetObject::BeginningOfRows(const Use& use) { Give(use, rows_->BeforeBegin()); }

void RowSetObject::MoveNext(const Use&) { rows_->MoveNext(); }

void RowSetObject::Close(const Use&) {
  rows_->Close();
  open_ = false;
}

void RowSetObject::AddNew(const Use&) { rows_->AddNew(); }

void RowSetObject::Update(const Use&) { rows_->Update(); }

void RowSetObject::State(const Use& use) { Give(use, open_ ? 1 : 0); }

void RowSetObject::ColumnCount(const Use& use) { Give(use, rows_->ColumnCount()); }

Reference<TalmDispatch> RowsForHost(std::unique_ptr<RowSet> rows, std::shared_ptr<adapters::Database> kept) {
  if (auto* const host_rows = dynamic_cast<HostRowSet*>(rows.get())) {
    if (auto own = host_rows->Return()) return own;
  }
  const auto object = Own<RowSetObject>::Make(std::move(rows), std::move(kept));
  return object->AsDispatch();
}

}  // namespace talm_flow::component
