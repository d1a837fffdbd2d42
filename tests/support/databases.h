#pragma once

/// The databases that tests run on. A further one is a line of the table in databases.cpp.
///
/// Environment: TALM_FLOW_TEST_SERVERS names the file with the servers' URLs, as tools/test_servers writes it;
/// TALM_FLOW_TEST_DATABASE chooses one database by its name.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/adapters/database.h"

namespace talm_flow::test {

/// The one that is chosen; without a choice the embedded engine in memory.
[[nodiscard]] std::string ChosenDatabase();

/// The chosen one; without a choice all that can be reached.
[[nodiscard]] std::vector<std::string> DatabasesToCover();

/// A database of this process alone.
class Place {
 public:
  virtual ~Place() = default;
  [[nodiscard]] virtual const std::string& url() const = 0;
  [[nodiscard]] virtual adapters::Database& database() = 0;
  /// Makes it as new again. @returns false when it is to be thrown away.
  virtual bool Clean() = 0;
};

/// A database with all tables and without any row, whose keys begin at 1; for one test. Several exist side by side.
class CleanDatabase {
 public:
  explicit CleanDatabase(const std::string& name);
  CleanDatabase(const CleanDatabase&) = delete;
  CleanDatabase& operator=(const CleanDatabase&) = delete;
  ~CleanDatabase();

  [[nodiscard]] adapters::Database& operator*() const { return place_->database(); }
  [[nodiscard]] adapters::Database* operator->() const { return &place_->database(); }
  /// Opens further connections to the same database, unless it is in memory.
  [[nodiscard]] const std::string& url() const { return place_->url(); }

 private:
  std::string name_;
  std::unique_ptr<Place> place_;
};

/// The URL of a server by its name in the file of URLs; the empty text when there is none.
[[nodiscard]] std::string ServerUrl(std::string_view name);

}  // namespace talm_flow::test
