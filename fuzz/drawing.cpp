#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "properties.h"
#include "property.h"
#include "script_text.h"
#include "support/html.h"
#include "support/world.h"
#include "taken_back.h"
#include "talm_flow/construction.h"
#include "talm_flow/name.h"
#include "talm_flow/text.h"

namespace talm_flow::fuzz {
namespace {

struct DrawnStep {
  std::size_t parent = 0;
  std::string caption;
  std::vector<std::string> data;
};

struct DrawnInput {
  std::string title;
  std::string options;
};

/// The rows that an input stands for.
struct Rows {
  std::string remark;
  std::string values;
  std::vector<DrawnStep> steps;
  std::vector<DrawnInput> inputs;

  explicit Rows(std::string_view input) {
    constexpr std::size_t kMostSteps = 30;
    for (const std::string_view record : Records(input)) {
      if (record.empty()) continue;
      const std::string text(record.substr(1));
      switch (record.front()) {
        case 'S':
          if (steps.size() < kMostSteps) AddStep(text);
          break;
        case 'P':
          if (!steps.empty() && steps.back().data.size() < 8) steps.back().data.push_back(text);
          break;
        case 'I':
          inputs.push_back({text, {}});
          break;
        case 'O':
          if (!inputs.empty()) inputs.back().options = text;
          break;
        case 'N':
          remark = text;
          break;
        case 'V':
          values = text;
          break;
        default:
          break;
      }
    }
  }

 private:
  void AddStep(const std::string& text) {
    // The parent is one of the steps before, so that the steps make a tree.
    const std::size_t choice = text.empty() ? 0 : static_cast<unsigned char>(text.front());
    steps.push_back(
        {steps.empty() ? 0 : choice % steps.size() + 1, text.substr(std::min<std::size_t>(1, text.size())), {}});
  }
};

std::string CaptionEnd(const DrawnStep& step, bool clickable) {
  return "说明：" + step.caption + (clickable ? "</a>" : "") + "</td></tr></table>";
}

/// Steps in the order in which they are drawn.
void AppendDrawn(const Rows& rows, std::size_t number, std::vector<const DrawnStep*>& drawn) {
  drawn.push_back(&rows.steps[number - 1]);
  for (std::size_t i = number; i < rows.steps.size(); ++i) {
    if (rows.steps[i].parent == number) AppendDrawn(rows, i + 1, drawn);
  }
}

class Designer {
 public:
  void Check(const Rows& rows) {
    const TakenBack taken_back(world_.database());
    Store(rows);
    for (const bool clickable : {false, true}) CheckTree(rows, clickable);
    CheckScript(rows);
    CheckLists(rows);
    for (const int format : {1, 2}) CheckForm(rows, format);
  }

 private:
  void Store(const Rows& rows) {
    world_.Run("Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (7,'Flow','kim'," +
               test::Literal(rows.remark) + ")");
    for (std::size_t i = 0; i < rows.steps.size(); ++i) {
      const DrawnStep& step = rows.steps[i];
      const std::string number = std::to_string(i + 1);
      world_.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (7," + number +
                 "," + std::to_string(step.parent) + ",0," + test::Literal(step.caption) + ",'C_2')");
      for (std::size_t k = 0; k < step.data.size(); ++k) {
        world_.Parameter(7, static_cast<int>(i + 1), "C_2_" + std::to_string(k + 1), step.data[k]);
      }
    }
    for (std::size_t i = 0; i < rows.inputs.size(); ++i) {
      world_.Run("Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values (7," +
                 test::Literal(rows.inputs[i].title) + "," + std::to_string(i) + "," + std::to_string(i % 10) + "," +
                 test::Literal(rows.inputs[i].options) + ")");
    }
  }

  /// Captions stand in the drawing as they are stored; without them it is balanced, and every box's handler puts the
  /// stored texts into the fields.
  void CheckTree(const Rows& rows, bool clickable) {
    const std::string drawing =
        Construction(services_).DisplayFlow(world_.database(), 7, clickable ? 1 : 0, Value("StepForm"));
    std::vector<const DrawnStep*> drawn;
    if (!rows.steps.empty()) AppendDrawn(rows, 1, drawn);
    std::string framework;
    std::string_view rest = drawing;
    for (const DrawnStep* step : drawn) {
      const std::string end = CaptionEnd(*step, clickable);
      // Nothing before a caption holds the words that announce it: handlers have them escaped or inside of a value.
      const std::size_t at = rest.find("<br>" + end);
      Require(at != rest.npos, "every caption stands in its box");
      framework += rest.substr(0, at + 4);
      framework += std::string_view(end).substr(std::string_view("说明：").size() + step->caption.size());
      rest.remove_prefix(at + 4 + end.size());
    }
    framework += rest;
    const auto reading = test::ReadHtml(framework);
    RequireEqual(reading.fault, "", "a drawing is balanced");
    std::size_t boxes = 0;
    for (const auto& element : reading.elements) {
      if (element.name != "a") continue;
      Require(clickable && boxes < drawn.size(), "there are no more boxes than steps");
      Require(element.attributes.size() == 2 && element.attributes[1].first == "onclick", "a box has its handler");
      CheckHandler(*drawn[boxes++], element.attributes[1].second);
    }
    Require(boxes == (clickable ? drawn.size() : 0), "every step has its box");
  }

  static void CheckHandler(const DrawnStep& step, std::string_view attribute) {
    const std::string handler = WithoutReferences(attribute);
    std::string_view rest = handler;
    std::vector<std::pair<std::string, std::string>> fields;
    constexpr std::string_view kField = "document.StepForm.";
    while (rest.starts_with(kField)) {
      rest.remove_prefix(kField.size());
      const std::size_t end = rest.find(".value=");
      Require(end != rest.npos, "a field is given a value");
      std::string field(rest.substr(0, end));
      rest.remove_prefix(end + 7);
      auto value = TakeScriptString(rest, '\'');
      Require(value && rest.starts_with(';'), "a field's value ends where it should");
      rest.remove_prefix(1);
      fields.emplace_back(std::move(field), std::move(*value));
    }
    RequireEqual(rest, "buttoncon();opendiv();return false;", "a handler does nothing but fill the form");
    Require(fields.size() == 6 + step.data.size(), "every field is filled once");
    RequireEqual(fields[4].second, step.caption, "the caption reaches its field");
    for (std::size_t k = 0; k < step.data.size(); ++k) {
      RequireEqual(fields[6 + k].first, "C_2_" + std::to_string(k + 1), "parameters come in order");
      RequireEqual(fields[6 + k].second, step.data[k], "a parameter reaches its field");
    }
  }

  /// The strings of the script, in order: all that was stored.
  void CheckScript(const Rows& rows) {
    const std::string arrays = Construction(services_).CreateFlowArr(world_.database(), 7);
    const auto reading = test::ReadHtml(arrays);
    RequireEqual(reading.fault, "", "the script arrays are balanced");
    Require(reading.elements.size() == 1 && reading.elements[0].name == "script", "the script arrays are one script");
    std::vector<std::string> due = {"", "", "", "Flow", "kim", rows.remark};
    for (const DrawnInput& input : rows.inputs) due.insert(due.end(), {input.title, input.options});
    for (std::size_t i = 0; i < rows.steps.size(); ++i) {
      const DrawnStep& step = rows.steps[i];
      due.insert(due.end(), {std::to_string(i + 1), std::to_string(step.parent), "0", step.caption, "C_2"});
      for (std::size_t k = 0; k < step.data.size(); ++k) {
        due.insert(due.end(), {"C_2_" + std::to_string(k + 1), step.data[k]});
      }
    }
    std::vector<std::string> found;
    std::string_view rest = reading.elements[0].text;
    while (!rest.empty()) {
      if (rest.front() != '"') {
        Require(rest.front() != '\'' && rest.front() != '\\', "nothing else is quoted");
        rest.remove_prefix(1);
        continue;
      }
      auto value = TakeScriptString(rest, '"');
      Require(value.has_value(), "a script string ends where it should");
      found.push_back(std::move(*value));
    }
    Require(found == due, "the script arrays hold the stored texts");
  }

  void CheckLists(const Rows& rows) {
    Construction construction(services_);
    const Value name("List");
    // Titles stand in their list as they are stored.
    const bool plain = std::none_of(rows.inputs.begin(), rows.inputs.end(),
                                    [](const DrawnInput& input) { return input.title.find('<') != input.title.npos; });
    if (plain) CheckList(construction.InputParameterSelect(world_.database(), 7, name, 1, 5, 0, 1, 1, nullptr));
    world_.Run("Update WorkFlowName Set FlowName=Remark");
    CheckList(Name(services_).FlowSelect(world_.database(), name, 0, 1, 120, 1, 7, nullptr));
    world_.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (6,1,'C_18_1','7')");
    CheckList(construction.VarSelect(world_.database(), 6, name, 0, 1, 120, 1, rows.values, nullptr));
  }

  static void CheckList(const std::string& html) {
    const auto reading = test::ReadHtml(html);
    RequireEqual(reading.fault, "", "a list is balanced");
    for (const auto& element : reading.elements) {
      const bool known = element.name == "select" || element.name == "option";
      Require(known, "a list holds options and nothing else");
      for (const auto& [attribute, value] : element.attributes) {
        const bool own = attribute == "name" || attribute == "size" || attribute == "style" || attribute == "multiple";
        Require(element.name == "select" ? own : attribute == "value" || attribute == "selected",
                "an option has no attributes of a stored text's making: " + attribute);
      }
    }
  }

  void CheckForm(const Rows& rows, int format) {
    const std::string form =
        Construction(services_).DisplayInputParameter(world_.database(), 7, format, Value(rows.values));
    const auto reading = test::ReadHtml(form);
    RequireEqual(reading.fault, "", "an input form is balanced");
    constexpr std::string_view kKnown[] = {"table", "tr",    "th",       "td",     "ul",     "li",
                                           "label", "input", "textarea", "select", "option", "span"};
    for (const auto& element : reading.elements) {
      Require(std::find(std::begin(kKnown), std::end(kKnown), element.name) != std::end(kKnown),
              "an input form holds no element of a stored text's making: " + element.name);
      for (const auto& [attribute, value] : element.attributes) {
        Require(!attribute.starts_with("on"), "an input form has no handlers");
      }
    }
  }

  test::World world_;
  host::Services services_ = world_.services();
};

}  // namespace

void CheckDrawing(std::string_view input) {
  static Designer designer;
  designer.Check(Rows(input));
}

}  // namespace talm_flow::fuzz
