// Reading a definition text for the checks: the same pass as the loader's, with an eye on what the loader passes over.

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "check/blanks.h"
#include "check/definition.h"
#include "check/report.h"
#include "commands/command_table.h"
#include "design/definition_parser.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::check {
namespace {

using design::Attributes;
using design::Parted;

/// Whether a line begins "C_" n "_" k ":" in digits; behind the first line of a value it is no name that is known.
bool LooksLikeParameter(std::string_view line) {
  if (!line.starts_with("C_") && !line.starts_with("c_")) return false;
  constexpr std::string_view kDigits = "0123456789";
  const std::size_t middle = line.find_first_not_of(kDigits, 2);
  if (middle == 2 || middle == std::string_view::npos || line[middle] != '_') return false;
  const std::size_t end = line.find_first_not_of(kDigits, middle + 1);
  return end != middle + 1 && end != std::string_view::npos && line[end] == ':';
}

class LineIndex {
 public:
  explicit LineIndex(std::string_view text) : text_(text) {
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', end + 1)) {
      ends_.push_back(end);
    }
  }

  /// The line, from 1, of a place inside the text.
  [[nodiscard]] std::size_t Of(std::string_view view) const {
    const auto offset = static_cast<std::size_t>(view.data() - text_.data());
    return static_cast<std::size_t>(std::ranges::lower_bound(ends_, offset) - ends_.begin()) + 1;
  }

 private:
  std::string_view text_;
  std::vector<std::size_t> ends_;
};

/// The sink of the parser.
class TextReader {
 public:
  TextReader(std::string_view text, Definition& definition, Report& report)
      : text_(text), lines_(text), definition_(definition), report_(report) {}

  void Remark(std::string_view remark) {
    definition_.remark = remark;
    lost_block_ = false;
    CheckContinuation(remark, {});
  }

  void Step(std::string_view begin, const Attributes<5>& read) {
    lost_block_ = false;
    check::Step& step = definition_.steps.emplace_back();
    const auto& values = read.values;
    step.line = lines_.Of(values[design::kFlowNo].value_or(begin));
    step.number = Number("FlowNo", values[design::kFlowNo], &step);
    step.parent = Number("ParentNo", values[design::kParentNo], &step);
    (void)Number("Serial", values[design::kSerial], &step);
    step.serial = values[design::kSerial].value_or("0");
    step.remark = values[design::kRemark].value_or("");
    step.command = values[design::kCommand].value_or("");
    step.command_line = values[design::kCommand] ? lines_.Of(*values[design::kCommand]) : step.line;
    step.row = engine::FindCommand(commands::Commands(), step.command);
    for (const auto& value : values) {
      if (value) CheckContinuation(*value, {.step = &step, .line = lines_.Of(*value)});
    }
  }

  void Parameter(std::string_view name, std::string_view data) {
    if (lost_block_) return;
    if (definition_.steps.empty()) {
      ReportLost(name, "no step stands before it");
      return;
    }
    check::Step& step = definition_.steps.back();
    check::Parameter& parameter = step.parameters.emplace_back();
    parameter.name = name;
    parameter.data = data;
    parameter.line = lines_.Of(name);
    CheckContinuation(data, {.step = &step, .parameter = &parameter});
  }

  void InputParameter(std::string_view, const Attributes<4>& read) {
    lost_block_ = false;
    const auto& values = read.values;
    definition_.inputs.push_back(
        {std::string(values[design::kInputTitle].value_or("")), std::string(values[design::kOrderNo].value_or("0")),
         std::string(values[design::kSort].value_or("0")), std::string(values[design::kClassContent].value_or(""))});
    (void)Number("OrderNo", read.values[design::kOrderNo], nullptr);
    (void)Number("Sort", read.values[design::kSort], nullptr);
    for (const auto& value : read.values) {
      if (value) CheckContinuation(*value, {.line = lines_.Of(*value)});
    }
  }

  void NoParameter(std::string_view value) {
    const bool is_end = value.starts_with("ParameterEnd");
    report_.Add(Code::kNoParameter, {.step = LastStep(), .line = lines_.Of(value)},
                Shown(design::SeparateLine(value).front) +
                    (is_end ? " is followed by a line that belongs to it, so that it does not end the parameters."
                            : " stands in a parameter block, but is no parameter; loading the text fails here."),
                is_end ? "Remove the lines, blank ones too, between \"ParameterEnd\" and the next key."
                       : "End the block with \"ParameterEnd\", or write a parameter as \"C_2_1:value\".");
  }

  void NotClosed(std::string_view begin) {
    report_.Add(Code::kNotClosed, {.step = LastStep(), .line = lines_.Of(begin)},
                "The parameters that begin here have no end; loading the text fails.",
                "Write a line \"ParameterEnd\" behind the last parameter of the step.");
  }

  void PassedOver(std::string_view value) {
    const Parted line = design::SeparateLine(value);
    const bool is_title = value.data() == text_.data();
    if (value.starts_with("//") || value.starts_with("Ver:")) return CheckNothingFollows(line);
    for (const std::string_view marker : {"StepBegin", "ParameterBegin", "FunctionParameterBegin"}) {
      if (value.starts_with(marker)) return ReportMarker(marker, value);
    }
    for (const std::string_view marker : {"FlowBegin", "FlowEnd", "StepEnd", "ParameterEnd", "FunctionParameterEnd"}) {
      if (line.front == marker) return CheckNothingFollows(line);
    }
    if (!is_title && !lost_block_ && !IsBlank(value)) ReportLost(value, "it stands in no block that has such lines");
  }

  void End(std::string_view rest) {
    while (!rest.empty()) {
      const auto [line, behind] = design::SeparateLine(rest);
      if (!IsBlank(line) && !line.starts_with("//")) return ReportLost(line, "the definition ends before it");
      rest = behind;
    }
  }

 private:
  [[nodiscard]] const check::Step* LastStep() const {
    return definition_.steps.empty() ? nullptr : &definition_.steps.back();
  }

  std::optional<std::int64_t> Number(std::string_view key, std::optional<std::string_view> value,
                                     const check::Step* step) {
    if (!value) return 0;
    const auto trimmed = value->substr(0, value->find_last_not_of(kBlanks) + 1);
    if (!IsNumeric(trimmed) || trimmed.find(',') != std::string_view::npos) {
      report_.Add(Code::kBadNumber, {.step = step, .line = lines_.Of(*value)},
                  "\"" + std::string(key) + ":\" takes a number, not " + Shown(*value) + "; loading the text fails.",
                  "Write a whole number in digits.");
      return std::nullopt;
    }
    return WholeNumber(trimmed);
  }

  /// A value's further lines may be keys that the format does not know.
  void CheckContinuation(std::string_view value, const Place& place) {
    auto [first, rest] = design::SeparateLine(value);
    while (!rest.empty()) {
      const auto [line, behind] = design::SeparateLine(rest);
      if (LooksLikeParameter(line)) {
        Place there = place;
        there.line = lines_.Of(line);
        report_.Add(Code::kSwallowedKey, there,
                    Shown(line) +
                        " is read as a further line of the value before it: commands end at 98, parameters "
                        "at 8.",
                    "Write the command's own parameter names; talmflow commands tells them.");
      }
      rest = behind;
    }
  }

  void CheckNothingFollows(const Parted& value) {
    if (!IsBlank(value.back) && !lost_block_) {
      ReportLost(value.back.substr(value.back.find_first_not_of(kBlanks)),
                 "it belongs to the line " + Shown(value.front) + " before it");
    }
  }

  void ReportMarker(std::string_view marker, std::string_view value) {
    lost_block_ = true;
    report_.Add(
        Code::kLostMarker, {.line = lines_.Of(value)},
        "\"" + std::string(marker) +
            "\" is not alone on its line, or is followed by a line that is no key, so "
            "that what it begins is not read.",
        "Write \"" + std::string(marker) + "\" alone on its line, without blanks, and the first key on the next line.");
  }

  void ReportLost(std::string_view value, const std::string& why) {
    report_.Add(Code::kLostLine, {.line = lines_.Of(value)},
                Shown(design::SeparateLine(value).front) + " is not read: " + why + ".",
                "Move the line to where it belongs, or begin it with \"//\" to make it a comment.");
  }

  std::string_view text_;
  LineIndex lines_;
  Definition& definition_;
  Report& report_;
  bool lost_block_ = false;  // what follows belongs to a marker that was not recognised, which was told
};

void CheckVersion(std::string_view text, Report& report) {
  if (text.find("\r\nVer:Flow_V600\r\n") != std::string_view::npos) return;
  const std::size_t found = text.find("Ver:Flow_V600");
  const auto line = found == std::string_view::npos
                        ? 1
                        : static_cast<std::size_t>(
                              std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(found), '\n')) +
                              1;
  const bool has_crlf = text.find("\r\n") != std::string_view::npos;
  report.Add(Code::kNoVersion, {.line = line},
             found == std::string_view::npos
                 ? "The text has no line \"Ver:Flow_V600\"; it is not taken for a definition."
             : has_crlf && line == 1 ? "The version line comes first, where it is not found."
             : has_crlf              ? "The version line is not a whole line of its own."
                                     : "The lines end with LF; a definition's lines end with CR LF.",
             has_crlf || found == std::string_view::npos
                 ? "Write \"Ver:Flow_V600\" as a whole line behind a first line \"//\"."
                 : "Save the text with CR LF line ends.");
}

}  // namespace

Definition ReadText(std::string_view text, Report& report) {
  Definition definition;
  CheckVersion(text, report);
  TextReader reader(text, definition, report);
  design::DefinitionParser(text, reader).Parse();
  return definition;
}

}  // namespace talm_flow::check
