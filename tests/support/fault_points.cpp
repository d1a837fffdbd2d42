#include "support/fault_points.h"

#include <utility>

namespace talm_flow::test {
namespace {

class FaultyRowSet : public RowSet {
 public:
  FaultyRowSet(std::unique_ptr<RowSet> inner, FaultPoints& points) : inner_(std::move(inner)), points_(points) {
    ++points_.open_row_sets;
  }
  ~FaultyRowSet() override { MarkClosed(); }

  [[nodiscard]] bool AtEnd() const override { return inner_->AtEnd(); }
  [[nodiscard]] bool BeforeBegin() const override { return inner_->BeforeBegin(); }
  void MoveNext() override {
    points_.Reach();
    inner_->MoveNext();
  }
  [[nodiscard]] Value Field(std::string_view name) const override {
    points_.Reach();
    return inner_->Field(name);
  }
  [[nodiscard]] std::size_t ColumnCount() const override { return inner_->ColumnCount(); }
  [[nodiscard]] std::string_view ColumnName(std::size_t index) const override { return inner_->ColumnName(index); }
  [[nodiscard]] Value FieldAt(std::size_t index) const override {
    points_.Reach();
    return inner_->FieldAt(index);
  }
  void AddNew() override {
    points_.Reach();
    inner_->AddNew();
  }
  void SetField(std::string_view name, const Value& value) override {
    points_.Reach();
    inner_->SetField(name, value);
  }
  void SetBinary(std::string_view name, std::string_view bytes) override {
    points_.Reach();
    inner_->SetBinary(name, bytes);
  }
  void Update() override {
    points_.Reach();
    inner_->Update();
  }
  void Close() override {
    MarkClosed();
    inner_->Close();
  }

 private:
  void MarkClosed() {
    if (std::exchange(open_, false)) --points_.open_row_sets;
  }

  std::unique_ptr<RowSet> inner_;
  FaultPoints& points_;
  bool open_ = true;
};

class FaultyTextStream : public host::TextStream {
 public:
  FaultyTextStream(std::unique_ptr<host::TextStream> inner, FaultPoints& points)
      : inner_(std::move(inner)), points_(points) {}
  void WriteLine(std::string_view text) override {
    points_.Reach();
    inner_->WriteLine(text);
  }
  void Close() override {
    points_.Reach();
    inner_->Close();
  }

 private:
  std::unique_ptr<host::TextStream> inner_;
  FaultPoints& points_;
};

}  // namespace

FaultPoints::FaultPoints(std::size_t failing)
    : failing_(failing),
      fault_(std::make_exception_ptr(InjectedFault("fault point " + std::to_string(failing) + " was made to fail"))) {}

void FaultPoints::Reach() {
  ++reached_;
  if (observer_) observer_();
  if (reached_ == failing_) std::rethrow_exception(fault_);
}

std::unique_ptr<RowSet> FaultyConnection::Execute(std::string_view statement) {
  ReachStatement();
  auto rows = inner_.Execute(statement);
  if (!rows) return nullptr;
  return std::make_unique<FaultyRowSet>(std::move(rows), points_);
}

std::unique_ptr<RowSet> FaultyConnection::Open(std::string_view query) {
  ReachStatement();
  return std::make_unique<FaultyRowSet>(inner_.Open(query), points_);
}

void FaultyConnection::ReachStatement() {
  ++points_.statements;
  points_.Reach();
}

void FaultyFileSystem::RequireEncodable(std::string_view file_name, std::string_view text) {
  points_.Reach();
  inner_.RequireEncodable(file_name, text);
}

bool FaultyFileSystem::FileExists(std::string_view file_name) {
  points_.Reach();
  return inner_.FileExists(file_name);
}

void FaultyFileSystem::DeleteFile(std::string_view file_name) {
  points_.Reach();
  inner_.DeleteFile(file_name);
}

std::unique_ptr<host::TextStream> FaultyFileSystem::CreateTextFile(std::string_view file_name) {
  points_.Reach();
  return std::make_unique<FaultyTextStream>(inner_.CreateTextFile(file_name), points_);
}

}  // namespace talm_flow::test
