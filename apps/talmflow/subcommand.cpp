#include "subcommand.h"

#include <algorithm>

namespace talm_flow::program {

std::string Examples(const std::string& lines) {
  std::string text = "Examples:\n";
  for (std::size_t begin = 0; begin < lines.size();) {
    const auto end = std::min(lines.find('\n', begin), lines.size());
    if (end > begin) text += "  " + lines.substr(begin, end - begin);
    text += '\n';
    begin = end + 1;
  }
  return text;
}

Subcommand::Subcommand(CLI::App& parent, const std::string& name, const std::string& description,
                       const std::string& examples)
    : app_(parent.add_subcommand(name, description)) {
  app_->footer(Examples(examples));
  app_->fallthrough();
}

}  // namespace talm_flow::program
