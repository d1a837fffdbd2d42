#include "page.h"

#include <set>
#include <string_view>

#include "digest.h"
#include "html.h"
#include "json.h"
#include "listing.h"
#include "mapped_rows.h"
#include "page_assets.h"
#include "page_steps.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/construction.h"
#include "talm_flow/conversion.h"
#include "talm_flow/name.h"
#include "talm_flow/text.h"

namespace talm_flow::program {
namespace {

/// What a field shows to the script arrays. The arrays make free texts safe themselves; names and numbers go in bare.
Value ForScript(const host::CommonFunctions& common, std::string_view column, Value stored) {
  if (EqualIgnoringAsciiCase(column, "Sort")) {
    if (stored.IsNull()) return Value("null");
    return stored.IsText() ? Value('"' + common.ScriptText(stored) + '"') : stored;
  }
  if (!stored.IsText()) return stored;
  for (const std::string_view bare :
       {"FlowName", "Creater", "FlowNo", "ParentNo", "Serial", "Command", "ParameterName"}) {
    if (EqualIgnoringAsciiCase(column, bare)) return common.ScriptText(stored);
  }
  return stored;
}

/// The script between the tags of the script arrays.
std::string ArraysScript(Workspace& workspace, std::int64_t flow) {
  const auto& common = workspace.services().common;
  MappedRows rows(workspace.connection(),
                  [&](std::string_view column, Value stored) { return ForScript(common, column, std::move(stored)); });
  const auto element = WellFormed(Construction(workspace.services()).CreateFlowArr(rows, flow));
  constexpr std::string_view kBegin = "<Script>";
  constexpr std::string_view kEnd = "</Script>";
  std::string_view script = element;
  const bool framed = script.starts_with(kBegin) && script.ends_with(kEnd);
  if (framed) script = script.substr(kBegin.size(), script.size() - kBegin.size() - kEnd.size());
  if (!framed || script.find('<') != std::string_view::npos) {
    throw UserError("the flow's script arrays cannot stand in a page safely");
  }
  return std::string(script);
}

std::string DrawingMarkup(Workspace& workspace, std::int64_t flow, bool editable) {
  const auto& common = workspace.services().common;
  MappedRows rows(workspace.connection(), [&](std::string_view column, Value stored) {
    if (stored.IsText() && EqualIgnoringAsciiCase(column, "Command")) stored = common.DisplayText(stored);
    return stored;
  });
  return WellFormed(Construction(workspace.services()).DisplayFlow(rows, flow, editable ? 1 : 0, Value(kStepForm)));
}

/// How a parameter is taken and what fits, in one line.
std::string Hint(const ParameterDescription& parameter) {
  std::string hint(ToldTaken(parameter.taken));
  if (!parameter.note.empty()) hint += "; " + std::string(parameter.note);
  return hint;
}

Json CommandsAsJson() {
  Json commands = Json::object();
  for (const auto& command : DescribeCommands()) {
    Json parameters = Json::array();
    for (const auto& parameter : command.parameters) {
      parameters.push_back({parameter.title, Hint(parameter), parameter.example});
    }
    commands[std::string(command.name)] = {
        {"title", command.title}, {"summary", command.summary}, {"parameters", std::move(parameters)}};
  }
  return commands;
}

/// The names of the fields that parameters go into: those of the catalogue, and what else the steps have.
std::vector<std::string> ParameterFields(const std::vector<PageStep>& steps) {
  std::vector<std::string> fields;
  std::set<std::string> known;
  const auto add = [&](const std::string& name) {
    if (known.insert(name).second) fields.push_back(name);
  };
  for (const auto& command : DescribeCommands()) {
    for (std::size_t k = 1; k <= command.parameters.size(); ++k) {
      add(std::string(command.name) + "_" + std::to_string(k));
    }
  }
  for (const auto& step : steps) {
    if (!FitsForm(step)) continue;
    for (const auto& [name, data] : step.parameters) add(name);
  }
  return fields;
}

class Page {
 public:
  Page(Workspace& workspace, std::int64_t flow, bool editable)
      : workspace_(workspace), flow_(flow), editable_(editable) {}

  std::string Make() {
    steps_ = ReadPageSteps(workspace_, flow_);
    (void)Name(workspace_.services()).GetAll(workspace_.connection(), flow_, name_, creater_, remark_);
    arrays_ = ArraysScript(workspace_, flow_);
    WriteHead();
    WriteHeader();
    out_ += "<main>\n<section id=\"Drawing\" lang=\"zh\" aria-label=\"The tree of steps\"></section>\n";
    if (editable_) WritePanel();
    out_ += "</main>\n<noscript><p>The drawing needs the page's script.</p></noscript>\n";
    WriteScripts();
    out_ += "</body>\n</html>\n";
    return std::move(out_);
  }

 private:
  std::string Shown(const Value& value) const { return Escaped(WellFormed(JoinedText(value))); }

  std::string Policy() const {
    std::string policy = "default-src 'none'; base-uri 'none'; form-action 'none'; style-src ";
    policy += HashSource(kPageStyle);
    policy += "; script-src ";
    policy += HashSource(kPageScript);
    policy += ' ' + HashSource(arrays_);
    if (!editable_) return policy;
    policy += " 'unsafe-hashes'";
    for (const auto& step : steps_) {
      if (FitsForm(step)) policy += ' ' + HashSource(BoxHandler(step, workspace_.services().common));
    }
    return policy;
  }

  void WriteHead() {
    out_ += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
    out_ += "<meta http-equiv=\"Content-Security-Policy\" content=\"" + Policy() + "\">\n";
    out_ += "<meta name=\"referrer\" content=\"no-referrer\">\n";
    out_ += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
    out_ += "<title>" + Shown(name_) + "</title>\n<style>";
    out_ += kPageStyle;
    out_ += "</style>\n</head>\n<body>\n";
  }

  void WriteHeader() {
    out_ += "<header>\n<h1>" + Shown(name_) + "</h1>\n<p class=\"facts\">Flow " + std::to_string(flow_) + " · " +
            std::to_string(steps_.size()) + (steps_.size() == 1 ? " step" : " steps");
    if (!JoinedText(creater_).empty()) out_ += " · by " + Shown(creater_);
    out_ += "</p>\n";
    if (!JoinedText(remark_).empty()) out_ += "<p class=\"remark\">" + Shown(remark_) + "</p>\n";
    if (editable_) WriteNotice();
    out_ += "</header>\n";
  }

  /// Tells of the steps whose boxes do nothing.
  void WriteNotice() {
    std::string numbers;
    for (const auto& step : steps_) {
      if (FitsForm(step)) continue;
      numbers += (numbers.empty() ? "" : ", ") + Shown(step.number);
    }
    if (numbers.empty()) return;
    out_ += "<div class=\"notice\" role=\"note\"><p>These steps cannot be opened, because a number of theirs or a ";
    out_ += "parameter's name is none: " + numbers + "</p></div>\n";
  }

  void WritePanel() {
    out_ +=
        "<aside id=\"Panel\" aria-live=\"polite\"><div class=\"sheet\">\n"
        "<p class=\"empty\">Choose a step to see its parameters.</p>\n"
        "<form name=\"" +
        std::string(kStepForm) +
        "\" autocomplete=\"off\">\n"
        "<div class=\"bar\"><h2 id=\"StepTitle\"></h2><button type=\"button\" id=\"Close\">Close</button></div>\n"
        "<p id=\"CommandTitle\"></p>\n<p id=\"CommandSummary\"></p>\n<div id=\"Editors\"></div>\n";
    for (const std::string_view name : {"FlowNo", "FlowNoNow", "OldFlowNo", "ParentNo", "Remark", "Command"}) {
      WriteField(name);
    }
    for (const auto& name : ParameterFields(steps_)) WriteField(name);
    out_ += "</form>\n</div></aside>\n";
  }

  void WriteField(std::string_view name) {
    out_ += "<input type=\"hidden\" name=\"";
    out_ += name;
    out_ += "\">\n";
  }

  void WriteScripts() {
    out_ += "<script>" + arrays_ + "</script>\n";
    Json captions = Json::array();
    for (const auto& step : steps_) captions.push_back({JoinedText(step.number), WellFormed(JoinedText(step.remark))});
    Json data = {{"captions", std::move(captions)},
                 {"drawing", DrawingMarkup(workspace_, flow_, editable_)},
                 {"commands", editable_ ? CommandsAsJson() : Json::object()}};
    // In data "<" could begin the end of the element that holds it.
    out_ += "<script type=\"application/json\" id=\"PageData\">" + ReplaceAll(Dump(data), "<", "\\u003c") +
            "</script>\n<script>";
    out_ += kPageScript;
    out_ += "</script>\n";
  }

  Workspace& workspace_;
  std::int64_t flow_;
  bool editable_;
  std::vector<PageStep> steps_;
  Value name_;
  Value creater_;
  Value remark_;
  std::string arrays_;
  std::string out_;
};

}  // namespace

std::string MakePage(Workspace& workspace, std::int64_t flow, bool editable) {
  return Page(workspace, flow, editable).Make();
}

}  // namespace talm_flow::program
