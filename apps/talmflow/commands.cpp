#include <algorithm>
#include <iostream>
#include <string_view>

#include "listing.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/text.h"
#include "terminal.h"

namespace talm_flow::program {
namespace {

constexpr std::string_view kRunCap = "At most 200 runs of the step in one instance; further ones are passed over.";

std::string ShortEffect(const CommandDescription& command) {
  switch (command.effect) {
    case CommandEffect::kWaits:
      return "waits";
    case CommandEffect::kByResult:
      return "by result";
    case CommandEffect::kJumps:
      return "jumps";
    case CommandEffect::kContinues:
      break;
  }
  return "continues";
}

std::string TakenWord(ParameterTaken taken) {
  switch (taken) {
    case ParameterTaken::kAsStored:
      return "stored";
    case ParameterTaken::kVariable:
      return "variable";
    case ParameterTaken::kStoredOrEvaluated:
      return "stored or evaluated";
    case ParameterTaken::kEvaluatedOrStored:
      return "evaluated or stored";
    case ParameterTaken::kEvaluated:
      break;
  }
  return "evaluated";
}

std::string ParameterName(const CommandDescription& command, std::size_t index) {
  return std::string(command.name) + "_" + std::to_string(index + 1);
}

/// "evaluated; a number; required"
std::string HowTaken(const ParameterDescription& parameter) {
  std::string told(ToldTaken(parameter.taken));
  if (!parameter.note.empty()) told += "; " + std::string(parameter.note);
  if (parameter.required) told += "; required";
  return told;
}

Json CommandAsJson(const CommandDescription& command) {
  Json parameters = Json::array();
  for (std::size_t i = 0; i < command.parameters.size(); ++i) {
    const auto& parameter = command.parameters[i];
    parameters.push_back({{"name", ParameterName(command, i)},
                          {"title", parameter.title},
                          {"taken", TakenWord(parameter.taken)},
                          {"required", parameter.required},
                          {"note", parameter.note},
                          {"example", parameter.example}});
  }
  return {{"command", command.name},        {"title", command.title},     {"summary", command.summary},
          {"effect", ShortEffect(command)}, {"run_cap", command.run_cap}, {"parameters", std::move(parameters)}};
}

/// The text in lines of at most `width` columns, each behind `indent` blanks.
std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width) {
  std::string lines;
  std::size_t column = width;
  for (const auto word : Split(text, " ")) {
    if (column + 1 + word.size() > width) {
      if (!lines.empty()) lines += '\n';
      lines.append(indent, ' ');
      column = indent;
    } else {
      lines += ' ';
      ++column;
    }
    lines += word;
    column += word.size();
  }
  return lines + "\n";
}

/// A multi-line text with every line behind `indent` blanks.
std::string Indented(std::string_view text, std::size_t indent) {
  std::string lines;
  for (const auto line : Split(text, "\n")) {
    if (!line.empty()) lines += std::string(indent, ' ') + std::string(line) + "\n";
  }
  return lines;
}

constexpr std::size_t kWidth = 100;

void PrintPage(const CommandDescription& command) {
  std::cout << Bold(std::string(command.name) + "  " + std::string(command.title)) << "\n\n"
            << Wrapped(command.summary, 2, kWidth) << Wrapped(ToldEffect(command), 2, kWidth);
  if (command.run_cap) std::cout << Wrapped(kRunCap, 2, kWidth);
  if (command.parameters.empty()) {
    std::cout << "  It takes no parameters.\n";
  } else {
    std::cout << '\n' << Bold("Parameters") << '\n';
  }
  for (std::size_t i = 0; i < command.parameters.size(); ++i) {
    std::cout << "  " << ParameterName(command, i) << "  " << command.parameters[i].title << '\n'
              << Wrapped(HowTaken(command.parameters[i]), 6, kWidth);
  }
  std::cout << '\n' << Bold("Example") << '\n' << Indented(ExampleStep(command), 2);
}

/// A text as Markdown shows it literally, inside a table too.
std::string MarkdownText(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '<') {
      escaped += "&lt;";
    } else {
      if (c == '|' || c == '*' || c == '\\' || c == '`') escaped += '\\';
      escaped += c;
    }
  }
  return escaped;
}

void PrintMarkdownOf(const CommandDescription& command) {
  std::cout << "\n## " << command.name << " " << command.title << "\n\n"
            << MarkdownText(command.summary) << ' ' << ToldEffect(command);
  if (command.run_cap) std::cout << ' ' << kRunCap;
  std::cout << '\n';
  if (!command.parameters.empty()) std::cout << "\n| Parameter | Title | How it is taken |\n|---|---|---|\n";
  for (std::size_t i = 0; i < command.parameters.size(); ++i) {
    std::cout << "| `" << ParameterName(command, i) << "` | " << MarkdownText(command.parameters[i].title) << " | "
              << MarkdownText(HowTaken(command.parameters[i])) << " |\n";
  }
  std::cout << "\n```\n" << ExampleStep(command) << "```\n";
}

void PrintMarkdown(const std::vector<CommandDescription>& all) {
  std::cout << "# Commands\n\n"
               "Every step of a flow names one command and carries its parameters. This page is written by\n"
               "`talmflow commands --markdown`; `talmflow commands C_2` shows the page of one command in a terminal.\n"
               "\n"
               "A parameter that is *evaluated* holds an expression: text stands in double quotes, a word without\n"
               "quotes is a variable. One that is taken *as stored* holds the value itself. A required parameter that\n"
               "is missing or empty makes the command do nothing; `talmflow check` reports it.\n"
               "\n| Command | Title | Children | Summary |\n|---|---|---|---|\n";
  for (const auto& command : all) {
    std::cout << "| `" << command.name << "` | " << MarkdownText(command.title) << " | " << ShortEffect(command)
              << " | " << MarkdownText(command.summary) << " |\n";
  }
  for (const auto& command : all) PrintMarkdownOf(command);
}

class Commands : public Subcommand {
 public:
  explicit Commands(CLI::App& parent)
      : Subcommand(parent, "commands", "List the commands that steps can have, or explain some",
                   "talmflow commands\ntalmflow commands C_2\ntalmflow commands C_2 C_97 --json\n"
                   "\nA step names one command; its parameters are stored under the names shown here.") {
    app().add_option("COMMAND", names_, "Commands to explain, as C_2");
    app().add_flag("--markdown", markdown_, "Print the pages of all commands as Markdown")->excludes("COMMAND");
  }

  void Run(const GlobalOptions& options) override {
    if (markdown_) return PrintMarkdown(DescribeCommands());
    if (names_.empty()) return List(options);
    std::vector<CommandDescription> chosen;
    for (const auto& name : names_) chosen.push_back(Named(name));
    if (options.json) {
      Json pages = Json::array();
      for (const auto& command : chosen) pages.push_back(CommandAsJson(command));
      std::cout << Dump(pages.size() == 1 ? pages.front() : pages, 2) << '\n';
      return;
    }
    for (std::size_t i = 0; i < chosen.size(); ++i) {
      if (i > 0) std::cout << '\n';
      PrintPage(chosen[i]);
    }
  }

 private:
  static CommandDescription Named(const std::string& name) {
    if (auto command = DescribeCommand(name)) return *std::move(command);
    const auto nearest = NearestCommand(name);
    throw UserError("there is no command \"" + Printable(name) + "\"; " +
                    (nearest ? "did you mean " + std::string(*nearest) + "?" : "the commands are C_1 to C_98"));
  }

  static void List(const GlobalOptions& options) {
    if (options.json) {
      Json all = Json::array();
      for (const auto& command : DescribeCommands()) all.push_back(CommandAsJson(command));
      std::cout << Dump(all, 2) << '\n';
      return;
    }
    Listing listing({"Command", "Title", "Children", "Summary"});
    for (const auto& command : DescribeCommands()) {
      listing.Add({command.name, command.title, ShortEffect(command), command.summary});
    }
    listing.Print(options, "There are no commands.");
  }

  std::vector<std::string> names_;
  bool markdown_ = false;
};

}  // namespace

void AddManualSubcommands(CLI::App& parent, Subcommands& all) { all.push_back(std::make_unique<Commands>(parent)); }

}  // namespace talm_flow::program
