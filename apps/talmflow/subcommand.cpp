#include "subcommand.h"

namespace talm_flow::program {
namespace {

std::string Footer(const std::string& examples) {
  std::string footer = "Examples:\n  ";
  for (const char c : examples) {
    footer += c;
    if (c == '\n') footer += "  ";
  }
  return footer;
}

}  // namespace

Subcommand::Subcommand(CLI::App& parent, const std::string& name, const std::string& description,
                       const std::string& examples)
    : app_(parent.add_subcommand(name, description)) {
  app_->footer(Footer(examples));
  app_->fallthrough();
}

}  // namespace talm_flow::program
