#include "talm_flow/adapters/database.h"

#include <array>

#include "adapters/sqlite_database.h"
#include "adapters/sqlite_schema.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

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

struct Engine {
  std::string_view name;  ///< what stands before the first ":" of the URL
  std::unique_ptr<Database> (*open)(std::string_view rest, OpenMode mode);
  std::vector<std::string> (*schema)();
};

constexpr std::array kEngines = {
    Engine{.name = "sqlite", .open = OpenSqlite, .schema = SqliteSchema},
};

const Engine& EngineNamed(std::string_view name) {
  std::string known;
  for (const Engine& engine : kEngines) {
    if (engine.name == name) return engine;
    known.append(known.empty() ? "" : ", ").append(engine.name);
  }
  throw ArgumentError("unknown database engine \"" + std::string(name) + "\"; known: " + known);
}

}  // namespace

std::unique_ptr<Database> Open(std::string_view url, OpenMode mode) {
  const std::size_t colon = url.find(':');
  if (colon == url.npos) {
    throw ArgumentError("\"" + std::string(url) + "\" is no database URL; one is sqlite:PATH");
  }
  return EngineNamed(url.substr(0, colon)).open(url.substr(colon + 1), mode);
}

std::string SchemaScript(std::string_view engine) {
  std::string script;
  for (const std::string& statement : EngineNamed(engine).schema()) script += statement + ";\n";
  return script;
}

}  // namespace talm_flow::adapters
