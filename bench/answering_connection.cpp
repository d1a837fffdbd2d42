#include "answering_connection.h"

#include <memory>

#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::bench {
namespace {

class AnswerRows : public RowSet {
 public:
  explicit AnswerRows(const Answer& answer) : answer_(answer) {}

  [[nodiscard]] bool AtEnd() const override { return begin_ == answer_.values.size(); }
  [[nodiscard]] bool BeforeBegin() const override { return answer_.values.empty(); }
  void MoveNext() override { begin_ += answer_.names.size(); }
  [[nodiscard]] Value Field(std::string_view name) const override {
    for (std::size_t i = 0; i < answer_.names.size(); ++i) {
      if (EqualIgnoringAsciiCase(answer_.names[i], name)) return FieldAt(i);
    }
    throw DatabaseError("no such column: " + std::string(name));
  }
  [[nodiscard]] std::size_t ColumnCount() const override { return answer_.names.size(); }
  [[nodiscard]] std::string_view ColumnName(std::size_t index) const override { return answer_.names.at(index); }
  [[nodiscard]] Value FieldAt(std::size_t index) const override { return answer_.values.at(begin_ + index); }

  void AddNew() override { Refuse(); }
  void SetField(std::string_view, const Value&) override { Refuse(); }
  void SetBinary(std::string_view, std::string_view) override { Refuse(); }
  void Update() override { Refuse(); }
  void Close() override { begin_ = answer_.values.size(); }

 private:
  [[noreturn]] static void Refuse() { throw DatabaseError("answers take no new rows"); }

  const Answer& answer_;
  std::size_t begin_ = 0;
};

}  // namespace

std::unique_ptr<RowSet> AnsweringConnection::Execute(std::string_view statement) {
  if (recording_) Keep(database_.Execute(statement).get());
  return NextAnswer();
}

std::unique_ptr<RowSet> AnsweringConnection::Open(std::string_view query) {
  if (recording_) Keep(database_.Open(query).get());
  return NextAnswer();
}

void AnsweringConnection::Keep(RowSet* rows) {
  Answer& answer = answers_.emplace_back();
  if (rows == nullptr) return;
  answer.gives_rows = true;
  for (std::size_t i = 0; i < rows->ColumnCount(); ++i) answer.names.emplace_back(rows->ColumnName(i));
  for (; !rows->AtEnd(); rows->MoveNext()) {
    for (std::size_t i = 0; i < rows->ColumnCount(); ++i) answer.values.push_back(rows->FieldAt(i));
  }
}

std::unique_ptr<RowSet> AnsweringConnection::NextAnswer() {
  const Answer& answer = answers_.at(next_++);
  if (!answer.gives_rows) return nullptr;
  return std::make_unique<AnswerRows>(answer);
}

}  // namespace talm_flow::bench
