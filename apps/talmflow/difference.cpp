#include "difference.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "talm_flow/command_catalogue.h"
#include "talm_flow/text.h"
#include "terminal.h"

namespace talm_flow::program {
namespace {

struct PartName {
  DefinitionPart part;
  std::string_view name;  ///< in JSON
  std::string_view told;  ///< to people
};

constexpr std::array<PartName, 12> kParts = {{{DefinitionPart::kRemark, "remark", "The flow's remark"},
                                              {DefinitionPart::kStep, "step", "step"},
                                              {DefinitionPart::kStepRemark, "step remark", "caption"},
                                              {DefinitionPart::kStepCommand, "step command", "command"},
                                              {DefinitionPart::kStepSerial, "step serial", "serial number"},
                                              {DefinitionPart::kParameter, "parameter", "parameter"},
                                              {DefinitionPart::kChildOrder, "child order", "order of children"},
                                              {DefinitionPart::kInput, "input", "input parameter"},
                                              {DefinitionPart::kInputTitle, "input title", "title"},
                                              {DefinitionPart::kInputOrder, "input order", "order number"},
                                              {DefinitionPart::kInputSort, "input sort", "kind"},
                                              {DefinitionPart::kInputContent, "input content", "content"}}};

const PartName& NameOf(DefinitionPart part) { return *std::ranges::find(kParts, part, &PartName::part); }

std::string_view NameOf(ChangeKind kind) {
  switch (kind) {
    case ChangeKind::kAdded:
      return "added";
    case ChangeKind::kRemoved:
      return "removed";
    case ChangeKind::kMoved:
      return "moved";
    case ChangeKind::kChanged:
      break;
  }
  return "changed";
}

std::string Quoted(std::string_view text) { return '"' + Printable(text) + '"'; }

/// "C_2 Approval task", or the stored text for an unknown command.
std::string CommandTold(const std::string& command) {
  const auto known = DescribeCommand(command);
  return known ? command + " " + std::string(known->title) : Quoted(command);
}

/// "Approvers (C_2_2)", or the stored name.
std::string ParameterTold(const std::string& name) {
  const auto end = name.rfind('_');
  const auto command = end == std::string::npos ? std::nullopt : DescribeCommand(name.substr(0, end));
  const auto count = command ? command->parameters.size() : 0;
  for (std::size_t k = 1; k <= count; ++k) {
    if (name.substr(end + 1) == std::to_string(k)) {
      return std::string(command->parameters[k - 1].title) + " (" + name + ")";
    }
  }
  return Printable(name);
}

class Teller {
 public:
  std::string Take(const DefinitionChanges& changes) {
    for (const auto& change : changes) Tell(change);
    return std::move(out_);
  }

 private:
  void Tell(const DefinitionChange& change) {
    switch (change.part) {
      case DefinitionPart::kRemark:
        return Line("The flow's remark:", Apart(BeforeAndAfter(change)));
      case DefinitionPart::kStep:
        return TellStep(change);
      case DefinitionPart::kChildOrder:
        return Line(change.step == "0" ? "The steps at the top" : "The children of step " + Printable(change.step),
                    " run in the order " + change.after + " (before: " + change.before + ")");
      case DefinitionPart::kInput:
        Heading("Input parameter " + Quoted(change.name), change.kind == ChangeKind::kAdded ? "+" : "-");
        return;
      case DefinitionPart::kInputTitle:
      case DefinitionPart::kInputOrder:
      case DefinitionPart::kInputSort:
      case DefinitionPart::kInputContent:
        Heading("Input parameter " + Quoted(change.name), "~");
        return Attribute(change, std::string(NameOf(change.part).told), BeforeAndAfter(change));
      case DefinitionPart::kStepCommand:
        Heading("Step " + Printable(change.step), "~");
        return Attribute(change, "command",
                         change.kind == ChangeKind::kAdded
                             ? CommandTold(change.after)
                             : CommandTold(change.before) + " -> " + CommandTold(change.after));
      case DefinitionPart::kParameter:
        Heading("Step " + Printable(change.step), "~");
        return Attribute(change, ParameterTold(change.name), BeforeAndAfter(change));
      case DefinitionPart::kStepRemark:
      case DefinitionPart::kStepSerial:
        Heading("Step " + Printable(change.step), "~");
        return Attribute(change, std::string(NameOf(change.part).told), BeforeAndAfter(change));
    }
  }

  void TellStep(const DefinitionChange& change) {
    const auto step = "Step " + Printable(change.step);
    if (change.kind == ChangeKind::kMoved) {
      Heading(step, "~");
      return Attribute(change, "parent", "step " + change.before + " -> step " + change.after);
    }
    const bool added = change.kind == ChangeKind::kAdded;
    Heading(step, added ? "+" : "-");
    const auto& caption = added ? change.after : change.before;
    if (!caption.empty()) out_.insert(out_.size() - 1, "  " + Quoted(caption));
  }

  /// Begins a step or an input parameter, unless the change before concerned it too.
  void Heading(const std::string& subject, std::string_view sign) {
    if (subject == subject_) return;
    subject_ = subject;
    out_ += Bold(std::string(sign) + " " + subject) + "\n";
  }

  void Attribute(const DefinitionChange& change, const std::string& what, const std::string& how) {
    const auto* const sign = change.kind == ChangeKind::kAdded ? "+" : change.kind == ChangeKind::kRemoved ? "-" : "~";
    out_ += std::string("    ") + sign + " " + Dim(what + ":") + Apart(how) + "\n";
  }

  void Line(const std::string& what, const std::string& how) {
    subject_.clear();
    out_ += Bold("~ " + what) + how + "\n";
  }

  static std::string BeforeAndAfter(const DefinitionChange& change) {
    if (change.kind == ChangeKind::kAdded) return Value(change.after);
    if (change.kind == ChangeKind::kRemoved) return Value(change.before);
    constexpr std::size_t kShort = 60;
    const auto before = Value(change.before);
    const auto after = Value(change.after);
    if (DisplayWidth(before) + DisplayWidth(after) <= kShort) return before + " -> " + after;
    return "\n        - " + before + "\n        + " + after;
  }

  /// Behind a colon: on the same line, unless it brings its own lines.
  static std::string Apart(const std::string& how) { return how.starts_with('\n') ? how : " " + how; }

  static std::string Value(const std::string& text) { return text.empty() ? "(empty)" : Printable(text); }

  std::string subject_;
  std::string out_;
};

}  // namespace

std::string Told(const DefinitionChanges& changes) { return Teller().Take(changes); }

Json AsJson(const DefinitionChanges& changes) {
  Json all = Json::array();
  for (const auto& change : changes) {
    Json one = {{"change", NameOf(change.kind)}, {"part", NameOf(change.part).name}};
    if (!change.step.empty()) one["step"] = change.step;
    if (!change.name.empty()) one["name"] = change.name;
    if (change.kind != ChangeKind::kAdded) one["before"] = change.before;
    if (change.kind != ChangeKind::kRemoved) one["after"] = change.after;
    all.push_back(std::move(one));
  }
  return all;
}

}  // namespace talm_flow::program
