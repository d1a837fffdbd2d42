#include "support/databases.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <stdexcept>
#include <utility>

#include "support/server_place.h"
#include "support/temporary_folder.h"
#include "talm_flow/text.h"

namespace talm_flow::test {
namespace {

std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

constexpr std::string_view kFolder = "FOLDER/";  ///< stands for a folder in a URL
constexpr std::string_view kFile = "flow.db";

/// The folder with a file that has all tables. It is made once by a process and copied for each test, which takes a
/// fraction of the time.
const TemporaryFolder& FolderWithTables(std::string_view url) {
  static std::map<std::string, TemporaryFolder, std::less<>> folders;
  const auto [found, is_new] = folders.try_emplace(std::string(url));
  if (is_new) adapters::Open(ReplaceAll(url, kFolder, found->second.File("")))->CreateTables();
  return found->second;
}

/// The embedded engine: a new database for each test.
class EmbeddedPlace : public Place {
 public:
  explicit EmbeddedPlace(std::string_view url) : url_(ReplaceAll(url, kFolder, folder_.File(""))) {
    const bool is_file = url_ != url;
    if (is_file) std::filesystem::copy_file(FolderWithTables(url).File(kFile), folder_.File(kFile));
    database_ = adapters::Open(url_);
    if (!is_file) database_->CreateTables();
  }
  [[nodiscard]] const std::string& url() const override { return url_; }
  [[nodiscard]] adapters::Database& database() override { return *database_; }
  bool Clean() override { return false; }

 private:
  TemporaryFolder folder_;
  std::string url_;
  std::unique_ptr<adapters::Database> database_;
};

std::unique_ptr<Place> Embedded(std::string_view url) { return std::make_unique<EmbeddedPlace>(url); }
std::unique_ptr<Place> OnPostgresql(std::string_view name) { return PostgresqlPlace(ServerUrl(name)); }
#if TALM_FLOW_HAS_ODBC
std::unique_ptr<Place> OnMariadb(std::string_view name) { return MariadbPlace(ServerUrl(name)); }
#endif

struct Entry {
  std::string_view name;
  std::unique_ptr<Place> (*make)(std::string_view from);
  std::string_view url;  // empty: what the servers' file gives for the name
};

constexpr std::array kDatabases = {
    Entry{"sqlite", Embedded, "sqlite::memory:"},
    Entry{"sqlite_file", Embedded, "sqlite:FOLDER/flow.db"},
#if TALM_FLOW_HAS_ODBC
    Entry{"odbc_sqlite", Embedded, "odbc:Driver=SQLite3;Database=FOLDER/flow.db;SyncPragma=OFF;dialect=sqlite"},
#endif
    Entry{"postgresql", OnPostgresql, ""},
#if TALM_FLOW_HAS_ODBC
    Entry{"odbc_postgresql", OnPostgresql, ""},
    Entry{"mariadb", OnMariadb, ""},
#endif
};

const Entry& EntryOf(std::string_view name) {
  for (const Entry& entry : kDatabases) {
    if (entry.name == name) return entry;
  }
  throw std::runtime_error("TALM_FLOW_TEST_DATABASE: no database is called " + std::string(name));
}

/// Those that no test uses at the moment. On servers they are gone when the process ends.
std::map<std::string, std::vector<std::unique_ptr<Place>>>& IdlePlaces() {
  static std::map<std::string, std::vector<std::unique_ptr<Place>>> idle;
  return idle;
}

}  // namespace

std::string ChosenDatabase() {
  const std::string chosen = Variable("TALM_FLOW_TEST_DATABASE");
  return chosen.empty() ? std::string(kDatabases.front().name) : chosen;
}

std::vector<std::string> DatabasesToCover() {
  if (std::string chosen = Variable("TALM_FLOW_TEST_DATABASE"); !chosen.empty()) return {std::move(chosen)};
  std::vector<std::string> names;
  for (const Entry& entry : kDatabases) {
    if (!entry.url.empty() || !ServerUrl(entry.name).empty()) names.emplace_back(entry.name);
  }
  return names;
}

std::string ServerUrl(std::string_view name) {
  std::ifstream file(Variable("TALM_FLOW_TEST_SERVERS"));
  for (std::string line; std::getline(file, line);) {
    const std::size_t equals = line.find('=');
    if (std::string_view(line).substr(0, equals) == name) return line.substr(equals + 1);
  }
  return {};
}

CleanDatabase::CleanDatabase(const std::string& name) : name_(name) {
  auto& idle = IdlePlaces()[name_];
  while (!idle.empty() && !place_) {
    place_ = std::move(idle.back());
    idle.pop_back();
    if (!place_->Clean()) place_.reset();
  }
  if (!place_) {
    const Entry& entry = EntryOf(name_);
    place_ = entry.make(entry.url.empty() ? entry.name : entry.url);
  }
}

CleanDatabase::~CleanDatabase() { IdlePlaces()[name_].push_back(std::move(place_)); }

}  // namespace talm_flow::test
