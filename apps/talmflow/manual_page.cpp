#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "manual_page.h"

namespace talm_flow::program {
namespace {

/// A text as the manual's formatter takes it: hyphens as they are typed, nothing taken for a request.
std::string ManualText(std::string_view text) {
  std::string out;
  bool at_begin = true;
  for (const char c : text) {
    if (at_begin && (c == '.' || c == '\'')) out += "\\&";
    at_begin = c == '\n';
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else {
      out += c;
    }
  }
  return out;
}

std::string ManualBold(std::string_view text) { return "\\fB" + ManualText(text) + "\\fR"; }
std::string ManualItalic(std::string_view text) { return "\\fI" + ManualText(text) + "\\fR"; }

/// Descriptions on the command line are no whole sentences.
std::string Sentence(const std::string& description) {
  if (description.empty() || description.back() == '.') return ManualText(description);
  return ManualText(description) + ".";
}

/// Whether the program takes it in every place, so that it is told once.
bool IsGlobal(const CLI::Option& option, const CLI::App& app, const CLI::App& root) {
  return &app != &root && option.check_lname("help");
}

std::string OptionHeading(const CLI::Option& option) {
  if (option.get_positional()) return ManualItalic(option.get_name(true));
  std::string names;
  const auto add = [&](const std::string& name) { names += (names.empty() ? "" : ", ") + ManualBold(name); };
  for (const auto& name : option.get_snames()) add("-" + name);
  for (const auto& name : option.get_lnames()) add("--" + name);
  if (option.get_items_expected_max() > 0) names += " " + ManualItalic(option.get_type_name());
  return names;
}

void PrintOption(const CLI::Option& option) {
  std::cout << ".TP\n" << OptionHeading(option) << '\n' << Sentence(option.get_description());
  if (!option.get_default_str().empty()) std::cout << "\nWithout it: " << ManualBold(option.get_default_str()) << '.';
  if (!option.get_envname().empty())
    std::cout << "\nThe environment gives it as " << ManualBold(option.get_envname()) << '.';
  std::cout << '\n';
}

std::string Synopsis(const CLI::App& app, const std::string& path) {
  std::string line = ManualBold(path) + " [" + ManualItalic("options") + "]";
  for (const CLI::Option* option : app.get_options()) {
    if (!option->get_positional()) continue;
    const std::string name =
        ManualItalic(option->get_name(true)) + (option->get_items_expected_max() > 1 ? " ..." : "");
    line += option->get_required() ? " " + name : " [" + name + "]";
  }
  return line;
}

/// What stands below a help text: command lines, then prose where an empty line parts them.
void PrintFooter(const std::string& footer) {
  const auto lines = footer.find('\n');
  if (lines == std::string::npos) return;
  std::cout << ".PP\nExamples:\n.PP\n.nf\n.RS\n";
  for (std::size_t begin = lines + 1; begin < footer.size();) {
    const auto end = std::min(footer.find('\n', begin), footer.size());
    const auto first = footer.find_first_not_of(' ', begin);
    if (first < end) std::cout << ManualText(footer.substr(first, end - first)) << '\n';
    if (end == begin) std::cout << ".sp\n";
    begin = end + 1;
  }
  std::cout << ".RE\n.fi\n";
}

void PrintSubcommand(const CLI::App& app, const std::string& path, const CLI::App& root) {
  std::cout << ".SS " << ManualText(path) << '\n' << Sentence(app.get_description()) << "\n.PP\n";
  std::cout << Synopsis(app, path) << '\n';
  for (const CLI::Option* option : app.get_options()) {
    if (!IsGlobal(*option, app, root)) PrintOption(*option);
  }
  PrintFooter(app.get_footer());
}

void PrintSubcommands(const CLI::App& root) {
  std::vector<std::pair<const CLI::App*, std::string>> pending = {{&root, root.get_name()}};
  while (!pending.empty()) {
    const auto [app, path] = std::move(pending.back());
    pending.pop_back();
    const auto children = app->get_subcommands([](const CLI::App*) { return true; });
    if (app != &root && children.empty()) PrintSubcommand(*app, path, root);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      pending.emplace_back(*child, path + " " + (*child)->get_name());
    }
  }
}

void PrintProgramPage(const CLI::App& root) {
  const std::string& name = root.get_name();
  std::cout
      << ".TH TALMFLOW 1 \"\" \"talmflow " << TALM_FLOW_VERSION << "\" \"User Commands\"\n"
      << ".SH NAME\n"
      << name << " \\- run and keep workflows in a database\n"
      << ".SH SYNOPSIS\n"
      << Synopsis(root, name) << ' ' << ManualItalic("subcommand") << " ...\n"
      << ".SH DESCRIPTION\n"
      << Sentence(root.get_description()) << '\n'
      << "A flow is a stored tree of steps. A run walks the tree, waits in rows of the database, and goes on when\n"
      << "somebody has finished a task.\n";
  PrintFooter(root.get_footer());
  std::cout << ".SH OPTIONS\nEvery subcommand takes these too.\n";
  for (const CLI::Option* option : root.get_options()) PrintOption(*option);
  std::cout << ".SH SUBCOMMANDS\n";
  PrintSubcommands(root);
  std::cout << ".SH EXIT STATUS\n"
            << ".TP\n0\nAll went well.\n"
            << ".TP\n1\nThe request could not be carried out, or a check found errors; standard error tells why.\n"
            << ".TP\n2\nThe command line is wrong.\n";
}

class ManualPage : public Subcommand {
 public:
  explicit ManualPage(CLI::App& parent)
      : Subcommand(parent, "manual", "Print this program's manual page", "talmflow manual | man -l -"), root_(parent) {}

  void Run(const GlobalOptions&) override { PrintProgramPage(root_); }

 private:
  const CLI::App& root_;
};

}  // namespace

void AddManualPageSubcommands(CLI::App& parent, Subcommands& all) {
  all.push_back(std::make_unique<ManualPage>(parent));
}

}  // namespace talm_flow::program
