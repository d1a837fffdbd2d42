#include <iostream>
#include <string>
#include <vector>

#include "subcommand.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/late_bound.h"

namespace talm_flow::program {
namespace {

/// What the words of one place of the command line can be.
struct Place {
  std::string path;  ///< the subcommands before it, joined by a blank
  std::string options;
  std::string options_with_values;
  std::string words;
};

void AddWord(std::string& list, std::string_view word) {
  if (!list.empty()) list += ' ';
  list += word;
}

void AddOptions(const CLI::App& app, Place& place) {
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_positional()) continue;
    std::vector<std::string> names;
    for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    for (const auto& name : option->get_snames()) names.push_back("-" + name);
    for (const auto& name : names) {
      if ((" " + place.options + " ").find(" " + name + " ") != std::string::npos) continue;
      AddWord(place.options, name);
      if (option->get_items_expected_max() > 0) AddWord(place.options_with_values, name);
    }
  }
}

/// The words that are known beforehand for what a subcommand takes.
std::string KnownWords(const std::string& path) {
  std::string words;
  if (path == "call") {
    for (const auto& operation : late_bound::Operations()) AddWord(words, operation.name);
  } else if (path == "commands") {
    for (const auto& command : DescribeCommands()) AddWord(words, command.name);
  } else if (path == "completion") {
    words = "bash zsh";
  }
  return words;
}

void AddPlaces(const CLI::App& root, std::vector<Place>& places) {
  std::vector<std::pair<const CLI::App*, std::string>> pending = {{&root, ""}};
  while (!pending.empty()) {
    const auto [app, path] = std::move(pending.back());
    pending.pop_back();
    Place place{path, {}, {}, KnownWords(path)};
    AddOptions(*app, place);
    if (app != &root) AddOptions(root, place);
    for (const CLI::App* child : app->get_subcommands([](const CLI::App*) { return true; })) {
      AddWord(place.words, child->get_name());
      pending.emplace_back(child, path.empty() ? child->get_name() : path + " " + child->get_name());
    }
    places.push_back(std::move(place));
  }
}

void PrintScript(const std::vector<Place>& places) {
  std::cout << R"(_talmflow() {
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
  local path= word i options= valued= words=
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    [[ ${COMP_WORDS[i-1]} == --@(db|clock) ]] && continue
    case "${path:+$path }$word" in
)";
  for (const auto& place : places) {
    if (!place.path.empty()) std::cout << "      '" << place.path << "') path='" << place.path << "' ;;\n";
  }
  std::cout << "    esac\n  done\n  case \"$path\" in\n";
  for (const auto& place : places) {
    std::cout << "    '" << place.path << "')\n      options='" << place.options << "'\n      valued='"
              << place.options_with_values << "'\n      words='" << place.words << "' ;;\n";
  }
  // A value of an option, and an argument without known words, may be a file: that is what no reply leads to.
  std::cout << R"(  esac
  if [[ " $valued " == *" $prev "* ]]; then
    return
  elif [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$cur"))
  elif [[ -n $words ]]; then
    compopt +o default +o bashdefault 2>/dev/null
    COMPREPLY=($(compgen -W "$words" -- "$cur"))
  fi
}
complete -o default -o bashdefault -F _talmflow talmflow
)";
}

class Completion : public Subcommand {
 public:
  explicit Completion(CLI::App& parent)
      : Subcommand(parent, "completion", "Print a script that completes this program's words in a shell",
                   "source <(talmflow completion bash)\n"
                   "talmflow completion bash > ~/.local/share/bash-completion/completions/talmflow\n"
                   "source <(talmflow completion zsh)"),
        root_(parent) {
    app().add_option("SHELL", shell_, "bash or zsh")->required();
  }

  void Run(const GlobalOptions&) override {
    if (shell_ != "bash" && shell_ != "zsh") {
      throw UsageError("there is no completion for the shell \"" + shell_ + "\", only for bash and zsh");
    }
    std::vector<Place> places;
    AddPlaces(root_, places);
    if (shell_ == "zsh") std::cout << "autoload -U bashcompinit && bashcompinit\n";
    PrintScript(places);
  }

 private:
  const CLI::App& root_;
  std::string shell_;
};

}  // namespace

void AddShellSubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Completion>(parent)); }

}  // namespace talm_flow::program
