#pragma once

/// The engine itself, without an adapter before it.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/host/transaction.h"

struct sqlite3;

namespace talm_flow::fuzz {

/// What a statement gave: names of columns, and rows of fields, each written with its type.
struct Given {
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

class ReferenceEngine : public host::Transaction {
 public:
  ReferenceEngine();

  /// Runs one statement to its end. Nothing when the engine refuses it.
  [[nodiscard]] std::optional<Given> Run(const std::string& statement);

  void Begin() override { (void)Run("begin"); }
  void Commit() override { (void)Run("commit"); }
  void Rollback() override { (void)Run("rollback"); }
  [[nodiscard]] bool InTransaction() const override;

 private:
  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::unique_ptr<sqlite3, Closer> database_;
};

}  // namespace talm_flow::fuzz
