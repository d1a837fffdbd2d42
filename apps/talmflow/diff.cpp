#include <filesystem>
#include <iostream>
#include <optional>

#include "definition_text.h"
#include "difference.h"
#include "lookup.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

/// One side: a file's text, or a stored flow of a workspace that is opened when the first one is named.
struct Side {
  std::string title;
  std::string text;
  std::int64_t flow = 0;  ///< 0 for a text
};

class Diff : public Subcommand {
 public:
  explicit Diff(CLI::App& parent)
      : Subcommand(parent, "diff", "Tell how two flow definitions differ",
                   "talmflow diff 3 4\n"
                   "talmflow diff \"Leave request\" leave.flow\n"
                   "talmflow diff old.flow new.flow --json\n"
                   "\nWhat is told is what has to change in the first to give the second. Two FILES are compared\n"
                   "without a database. The exit status is 0 when they are alike, 1 when they differ, and 2 when they\n"
                   "cannot be compared.") {
    app().add_option("BEFORE", before_, "A definition text's file, or a stored flow by number or name")->required();
    app().add_option("AFTER", after_, "The other one")->required();
  }

  void Run(const GlobalOptions& options) override {
    try {
      Compare(options);
    } catch (const UserError& error) {
      // Status 1 tells a difference.
      throw UsageError(error.what());
    } catch (const FlowError& error) {
      throw UsageError(Told(error));
    }
  }

  [[nodiscard]] int Status() const override { return status_; }

 private:
  void Compare(const GlobalOptions& options) {
    if (before_ == "-" && after_ == "-") throw UsageError("only one definition can come from standard input");
    std::optional<Workspace> workspace;
    const auto before = Read(options, before_, workspace);
    const auto after = Read(options, after_, workspace);
    const auto changes = CompareDefinitions(SourceOf(before, workspace), SourceOf(after, workspace));
    if (!changes.empty()) status_ = 1;
    if (options.json) {
      std::cout << Dump(AsJson(changes), 2) << '\n';
    } else if (changes.empty()) {
      std::cout << before.title << " and " << after.title << " are alike.\n";
    } else {
      std::cout << "From " << before.title << " to " << after.title << ":\n" << Told(changes);
    }
  }

  static Side Read(const GlobalOptions& options, const std::string& word, std::optional<Workspace>& workspace) {
    std::error_code ignored;
    if (word == "-" || std::filesystem::is_regular_file(word, ignored)) {
      return {word == "-" ? "standard input" : word, ReadDefinition(word), 0};
    }
    if (!workspace) workspace.emplace(options, Need::kComplete);
    const auto flow = FlowOf(*workspace, word);
    return {FlowTitle(*workspace, flow), {}, flow};
  }

  static DefinitionSource SourceOf(const Side& side, std::optional<Workspace>& workspace) {
    if (side.flow == 0) return side.text;
    return StoredFlow{workspace->connection(), workspace->services(), side.flow};
  }

  std::string before_;
  std::string after_;
  int status_ = 0;
};

}  // namespace

void AddDiffSubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Diff>(parent)); }

}  // namespace talm_flow::program
