#pragma once

/// A connection that knows variables and nothing else, and counts the questions.

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "talm_flow/error.h"
#include "talm_flow/host/connection.h"

namespace talm_flow::fuzz {

/// At most one row of one column.
class OneValue : public RowSet {
 public:
  explicit OneValue(const std::string* value) : value_(value) {}

  [[nodiscard]] bool AtEnd() const override { return value_ == nullptr; }
  [[nodiscard]] bool BeforeBegin() const override { return value_ == nullptr; }
  void MoveNext() override { value_ = nullptr; }
  [[nodiscard]] Value Field(std::string_view) const override { return FieldAt(0); }
  [[nodiscard]] std::size_t ColumnCount() const override { return 1; }
  [[nodiscard]] std::string_view ColumnName(std::size_t) const override { return "VariableValue"; }
  [[nodiscard]] Value FieldAt(std::size_t) const override {
    if (value_ == nullptr) throw DatabaseError("there is no current row");
    return *value_;
  }
  void AddNew() override { Refuse(); }
  void SetField(std::string_view, const Value&) override { Refuse(); }
  void SetBinary(std::string_view, std::string_view) override { Refuse(); }
  void Update() override { Refuse(); }
  void Close() override { value_ = nullptr; }

 private:
  [[noreturn]] static void Refuse() { throw DatabaseError("no rows are taken here"); }

  const std::string* value_;
};

class VariableConnection : public Connection {
 public:
  void Set(std::string_view name, std::string_view value) { values_.insert_or_assign(std::string(name), value); }

  [[nodiscard]] std::size_t count() const { return count_; }

  std::unique_ptr<RowSet> Execute(std::string_view statement) override {
    throw DatabaseError("only variables are asked for, not: " + std::string(statement));
  }

  /// The value of the variable that the statement's first literal names; no row for any other question.
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override {
    ++count_;
    constexpr std::string_view kHead = "Select Top 1 VariableValue From WorkFlowVariable Where VariableName='";
    if (!query.starts_with(kHead)) return std::make_unique<OneValue>(nullptr);
    std::string name;
    for (std::size_t at = kHead.size(); at < query.size(); ++at) {
      if (query[at] == '\'' && query.substr(at, 2) != "''") break;
      if (query[at] == '\'') ++at;
      name += query[at];
    }
    const auto found = values_.find(name);
    return std::make_unique<OneValue>(found == values_.end() ? nullptr : &found->second);
  }

 private:
  std::map<std::string, std::string> values_;
  std::size_t count_ = 0;
};

}  // namespace talm_flow::fuzz
