#include <exception>
#include <iostream>
#include <new>

#include "manual_page.h"
#include "subcommand.h"
#include "workspace.h"

namespace {

using namespace talm_flow::program;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

void AddGlobalOptions(CLI::App& app, GlobalOptions& options) {
  app.add_option("--db", options.db, "The database: sqlite:PATH, sqlite::memory:, postgresql://... or odbc:...")
      ->envname("TALMFLOW_DB")
      ->capture_default_str();
  app.add_flag("--json", options.json, "Print results as JSON");
  app.add_flag("--trace", options.trace, "Print each statement of the component on standard error");
  app.add_option("--clock", options.clock, "Let the clock stand still at a moment, as \"2026-01-31 09:30:00\"");
  app.add_flag("--no-transaction", options.no_transaction, "Keep what was written before an error");
  app.set_version_flag("--version", "talmflow " TALM_FLOW_VERSION);
}

int Complain(int status, const char* sentence) {
  std::cout.flush();
  std::cerr << "talmflow: " << sentence << '\n';
  return status;
}

int Run(int argc, char** argv) {
  CLI::App app("Runs and keeps workflows in a database.", "talmflow");
  app.footer(
      Examples("talmflow init\ntalmflow import leave.txt\ntalmflow run leave --record 12/1 --operator kim\n"
               "\nEvery subcommand tells its own options and examples with --help."));
  app.require_subcommand(1);
  GlobalOptions options;
  AddGlobalOptions(app, options);
  Subcommands subcommands;
  AddDatabaseSubcommands(app, subcommands);
  AddCopySubcommands(app, subcommands);
  AddDoctorSubcommands(app, subcommands);
  AddFormSubcommands(app, subcommands);
  AddRecordSubcommands(app, subcommands);
  AddTransferSubcommands(app, subcommands);
  AddCatalogueSubcommands(app, subcommands);
  AddDrawSubcommands(app, subcommands);
  AddDiffSubcommands(app, subcommands);
  AddRunSubcommands(app, subcommands);
  AddListSubcommands(app, subcommands);
  AddCheckSubcommands(app, subcommands);
  AddManualSubcommands(app, subcommands);
  AddLateBoundSubcommands(app, subcommands);
  AddShellSubcommands(app, subcommands);
  AddManualPageSubcommands(app, subcommands);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    // The option reader complains of a missing subcommand before it looks at what stands in its place.
    const auto surplus = app.remaining();
    const bool unknown = app.get_subcommands().empty() && !surplus.empty();
    Complain(kWrongUsage, unknown ? ("there is no subcommand \"" + surplus.front() + "\"").c_str() : error.what());
    std::cerr << "Run with --help for what is possible.\n";
    return kWrongUsage;
  }
  int status = 0;
  for (const auto& subcommand : subcommands) {
    if (!subcommand->IsChosen()) continue;
    subcommand->Run(options);
    status = subcommand->Status();
  }
  std::cout.flush();
  return std::cout ? status : Complain(kFailed, "standard output could not be written");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const UsageError& error) {
    return Complain(kWrongUsage, error.what());
  } catch (const talm_flow::FlowError& error) {
    return Complain(kFailed, Told(error).c_str());
  } catch (const std::bad_alloc&) {
    return Complain(kFailed, "out of memory");
  } catch (const std::exception& error) {
    return Complain(kFailed, error.what());
  }
}
