#include <iostream>

#include "json.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

class Init : public Subcommand {
 public:
  explicit Init(CLI::App& parent)
      : Subcommand(parent, "init", "Create the database, or the tables that it lacks",
                   "talmflow init\ntalmflow --db sqlite:/var/lib/flows.db init") {}

  void Run(const GlobalOptions& options) override {
    Workspace workspace(options, Need::kAny);
    const auto missing = MissingTables(workspace, options.db);
    workspace.database().CreateTables();
    const std::string shown = adapters::WithoutPassword(options.db);
    if (options.json) {
      std::cout << Dump({{"database", shown}, {"created", missing}}) << '\n';
    } else if (missing.empty()) {
      std::cout << shown << " has all tables\n";
    } else {
      std::cout << shown << ": created " << missing.size() << " tables\n";
    }
  }

 private:
  static std::vector<std::string> MissingTables(Workspace& workspace, const std::string& url) {
    try {
      return workspace.database().MissingTables();
    } catch (const DatabaseError& error) {
      throw UserError("cannot use \"" + adapters::WithoutPassword(url) + "\" as a database: " + error.what());
    }
  }
};

class Schema : public Subcommand {
 public:
  explicit Schema(CLI::App& parent)
      : Subcommand(parent, "schema", "Print the script that creates all tables and indexes",
                   "talmflow schema\ntalmflow schema --dialect postgresql") {
    app()
        .add_option("--dialect", dialect_, "Whose dialect the script is in: sqlite, postgresql, mariadb or tsql")
        ->capture_default_str();
  }

  void Run(const GlobalOptions& options) override {
    const auto script = Script();
    std::cout << (options.json ? Dump({{"dialect", dialect_}, {"script", script}}) + "\n" : script);
  }

 private:
  [[nodiscard]] std::string Script() const {
    try {
      return adapters::SchemaScript(dialect_);
    } catch (const ArgumentError& error) {
      throw UsageError("--dialect: " + std::string(error.what()));
    }
  }

  std::string dialect_ = "sqlite";
};

}  // namespace

void AddDatabaseSubcommands(CLI::App& parent, Subcommands& all) {
  all.push_back(std::make_unique<Init>(parent));
  all.push_back(std::make_unique<Schema>(parent));
}

}  // namespace talm_flow::program
