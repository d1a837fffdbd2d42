#include "talm_flow/adapters/database.h"

#include <algorithm>
#include <array>

#include "adapters/schema_text.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

#if TALM_FLOW_HAS_ODBC
#include "adapters/odbc_database.h"
#endif
#if TALM_FLOW_HAS_POSTGRESQL
#include "adapters/postgresql_database.h"
#endif
#if TALM_FLOW_HAS_SQLITE
#include "adapters/sqlite_database.h"
#endif

namespace talm_flow::adapters {
namespace {

#if TALM_FLOW_HAS_SQLITE
std::unique_ptr<Database> OpenSqlite(std::string_view rest, OpenMode mode) {
  const std::size_t mark = rest.find('?');
  const std::string_view path = rest.substr(0, mark);
  auto synchronous = SqliteDatabase::Synchronous::kFull;
  const std::string_view options = mark == rest.npos ? std::string_view() : rest.substr(mark + 1);
  for (const std::string_view option : Split(options, "&")) {
    if (option == "synchronous=normal") {
      synchronous = SqliteDatabase::Synchronous::kNormal;
    } else if (option == "synchronous=full") {
      synchronous = SqliteDatabase::Synchronous::kFull;
    } else {
      throw ArgumentError("\"" + std::string(option) +
                          "\" is no option of a sqlite URL; known are synchronous=full and synchronous=normal");
    }
  }
  if (path.empty()) throw ArgumentError("the sqlite URL names no file; sqlite::memory: is a database in memory");
  return std::make_unique<SqliteDatabase>(path == ":memory:" ? std::string() : std::string(path), mode, synchronous);
}
#else
constexpr auto OpenSqlite = nullptr;
#endif

#if TALM_FLOW_HAS_ODBC
std::unique_ptr<Database> OpenOdbc(std::string_view rest, OpenMode /*mode*/) {
  return std::make_unique<OdbcDatabase>(ParseOdbcUrl(rest));
}
#else
constexpr auto OpenOdbc = nullptr;
#endif

#if TALM_FLOW_HAS_POSTGRESQL
std::unique_ptr<Database> OpenPostgresql(std::string_view rest, OpenMode) {
  return std::make_unique<PostgresqlDatabase>("postgresql:" + std::string(rest));
}
#else
constexpr auto OpenPostgresql = nullptr;
#endif

struct Engine {
  std::string_view name;  ///< what stands before the first ":" of the URL
  std::unique_ptr<Database> (*open)(std::string_view rest, OpenMode mode);  ///< null when the adapter was not built
};

constexpr std::array kEngines = {
    Engine{.name = "sqlite", .open = OpenSqlite},
    Engine{.name = "postgresql", .open = OpenPostgresql},
    Engine{.name = "odbc", .open = OpenOdbc},
};

/// Hides the values of a setting: in a URL's options, which "&" parts, or between the semicolons of a connection string,
/// where braces may stand around a value.
void HideSetting(std::string& url, std::string_view name, std::string_view hidden) {
  const bool options = !url.starts_with("odbc:");
  std::size_t begin = 0;
  while ((begin = LowerCase(url).find(name, begin)) != url.npos) {
    begin = url.find_first_not_of(' ', begin + name.size());
    if (begin == url.npos) return;
    if (url[begin] != '=') continue;
    begin = std::min(url.find_first_not_of(' ', begin + 1), url.size());
    std::size_t end = begin;
    if (!options && end < url.size() && url[end] == '{') {
      do {
        end = url.find('}', end + 1);
      } while (end != url.npos && ++end < url.size() && url[end] == '}');
    }
    end = std::min(url.find_first_of(options ? ";&" : ";", end), url.size());
    url.replace(begin, end - begin, hidden);
  }
}

}  // namespace

std::unique_ptr<Database> Open(std::string_view url, OpenMode mode) {
  const std::size_t colon = url.find(':');
  if (colon == url.npos) {
    throw ArgumentError("\"" + std::string(url) + "\" is no database URL; one is sqlite:PATH");
  }
  const std::string name(url.substr(0, colon));
  std::string known;
  for (const Engine& engine : kEngines) {
    if (engine.name == name) {
      if (engine.open == nullptr) throw ArgumentError("this build has no adapter for \"" + name + ":\" URLs");
      return engine.open(url.substr(colon + 1), mode);
    }
    known.append(known.empty() ? "" : ", ").append(engine.name);
  }
  throw ArgumentError("unknown database engine \"" + name + "\"; known: " + known);
}

std::string WithoutPassword(std::string_view url) {
  constexpr std::string_view kHidden = "***";
  std::string shown(url);
  // USER:PASSWORD@ in front of a host; the password may hold anything but "@" and "/".
  if (const std::size_t authority = shown.find("://"); authority != shown.npos) {
    const std::size_t begin = authority + 3;
    const std::size_t at = shown.substr(0, shown.find_first_of("/?", begin)).rfind('@');
    const std::size_t colon = at == shown.npos ? shown.npos : shown.find(':', begin);
    if (colon < at) shown.replace(colon + 1, at - colon - 1, kHidden);
  }
  for (const std::string_view name : {"password", "pwd"}) HideSetting(shown, name, kHidden);
  return shown;
}

std::string SchemaScript(std::string_view dialect) {
  std::string script;
  for (const std::string& statement : SchemaStatements(DialectNamed(dialect))) script += statement + ";\n";
  return script;
}

}  // namespace talm_flow::adapters
