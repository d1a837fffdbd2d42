#pragma once

/// One subcommand: its words on the command line, its help, and what it does.

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

namespace talm_flow::program {

/// What stands before the subcommand (and may stand behind it).
struct GlobalOptions {
  std::string db = "sqlite:talmflow.db";
  std::string db_option = "--db";  ///< as the database's URL is called on the command line
  std::string clock;
  bool json = false;
  bool trace = false;
  bool no_transaction = false;
};

/// The request cannot be carried out; the text is a whole sentence for the user. Exit status 1.
class UserError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The command line itself is wrong. Exit status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Command lines, one a line, as they stand below a help text; what follows an empty line is prose.
[[nodiscard]] std::string Examples(const std::string& lines);

class Subcommand {
 public:
  /// @param examples  whole command lines, one a line, shown below the help.
  Subcommand(CLI::App& parent, const std::string& name, const std::string& description, const std::string& examples);
  Subcommand(const Subcommand&) = delete;
  Subcommand& operator=(const Subcommand&) = delete;
  virtual ~Subcommand() = default;

  /// Whether this is the one that the command line names.
  [[nodiscard]] bool IsChosen() const { return app_->parsed() && app_->get_subcommands().empty(); }
  virtual void Run(const GlobalOptions& options) = 0;
  /// The exit status after a run that came to its end.
  [[nodiscard]] virtual int Status() const { return 0; }

 protected:
  [[nodiscard]] CLI::App& app() { return *app_; }

 private:
  CLI::App* app_;
};

using Subcommands = std::vector<std::unique_ptr<Subcommand>>;

// Each adds the subcommands of one theme.
void AddDatabaseSubcommands(CLI::App& parent, Subcommands& all);   // init, schema
void AddCopySubcommands(CLI::App& parent, Subcommands& all);       // copy
void AddDoctorSubcommands(CLI::App& parent, Subcommands& all);     // doctor
void AddFormSubcommands(CLI::App& parent, Subcommands& all);       // form add, form list
void AddRecordSubcommands(CLI::App& parent, Subcommands& all);     // record add, record show
void AddTransferSubcommands(CLI::App& parent, Subcommands& all);   // import, export
void AddCatalogueSubcommands(CLI::App& parent, Subcommands& all);  // flows, show
void AddDrawSubcommands(CLI::App& parent, Subcommands& all);       // draw
void AddDiffSubcommands(CLI::App& parent, Subcommands& all);       // diff
void AddRunSubcommands(CLI::App& parent, Subcommands& all);        // run, approve, finish
void AddListSubcommands(CLI::App& parent, Subcommands& all);       // tasks, instances, variables, timers
void AddCheckSubcommands(CLI::App& parent, Subcommands& all);      // check
void AddManualSubcommands(CLI::App& parent, Subcommands& all);     // commands
void AddLateBoundSubcommands(CLI::App& parent, Subcommands& all);  // call, rpc
void AddShellSubcommands(CLI::App& parent, Subcommands& all);      // completion

}  // namespace talm_flow::program
