#pragma once

/// Rows that are shown as aligned columns or as JSON objects.

#include <string>
#include <vector>

#include "json.h"
#include "subcommand.h"

namespace talm_flow::program {

class Listing {
 public:
  Listing() = default;
  /// @param columns  the columns' headings; in lower case, with "_" for a blank, the members of the JSON objects.
  explicit Listing(std::vector<std::string> columns) : columns_(std::move(columns)) {}

  /// One row: a cell a column. Texts show as they are, null as nothing, anything else as JSON.
  void Add(std::vector<Json> cells) { rows_.push_back(std::move(cells)); }

  /// The rows as an array of objects.
  [[nodiscard]] Json AsJson() const;

  /// Prints the rows on standard output in the form that the options ask for; `none` stands for no rows.
  void Print(const GlobalOptions& options, const std::string& none) const;

  /// Prints the aligned columns, each line behind `indent`.
  void PrintColumns(const std::string& indent = {}) const;

 private:
  std::vector<std::string> columns_;
  std::vector<std::vector<Json>> rows_;
};

}  // namespace talm_flow::program
