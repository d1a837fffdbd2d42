#include "mapped_rows.h"

#include <utility>

namespace talm_flow::program {
namespace {

class Mapped : public RowSet {
 public:
  Mapped(std::unique_ptr<RowSet> inner, const MappedRows::Map& map) : inner_(std::move(inner)), map_(map) {}

  [[nodiscard]] bool AtEnd() const override { return inner_->AtEnd(); }
  [[nodiscard]] bool BeforeBegin() const override { return inner_->BeforeBegin(); }
  void MoveNext() override { inner_->MoveNext(); }
  [[nodiscard]] Value Field(std::string_view name) const override { return map_(name, inner_->Field(name)); }
  [[nodiscard]] std::size_t ColumnCount() const override { return inner_->ColumnCount(); }
  [[nodiscard]] std::string_view ColumnName(std::size_t index) const override { return inner_->ColumnName(index); }
  [[nodiscard]] Value FieldAt(std::size_t index) const override {
    return map_(inner_->ColumnName(index), inner_->FieldAt(index));
  }
  void AddNew() override { inner_->AddNew(); }
  void SetField(std::string_view name, const Value& value) override { inner_->SetField(name, value); }
  void SetBinary(std::string_view name, std::string_view bytes) override { inner_->SetBinary(name, bytes); }
  void Update() override { inner_->Update(); }
  void Close() override { inner_->Close(); }

 private:
  std::unique_ptr<RowSet> inner_;
  const MappedRows::Map& map_;
};

}  // namespace

std::unique_ptr<RowSet> MappedRows::Open(std::string_view query) {
  return std::make_unique<Mapped>(inner_.Open(query), map_);
}

}  // namespace talm_flow::program
