#include <optional>
#include <set>
#include <string>

#include "design/definition_parser.h"
#include "properties.h"
#include "property.h"
#include "support/world.h"
#include "taken_back.h"
#include "talm_flow/conversion.h"
#include "talm_flow/definition_check.h"
#include "talm_flow/definition_diff.h"
#include "talm_flow/error.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"

namespace talm_flow::fuzz {
namespace {

/// Whether loading the text writes rows of which each can be told apart: numbers go into statements as they stand, and
/// what is no number is the engine's to read; parameters belong to the number of their step.
class PlainNumbers {
 public:
  void Remark(std::string_view) {}
  void Step(std::string_view, const design::Attributes<5>& step) {
    Number(step.values[design::kParentNo]);
    Number(step.values[design::kSerial]);
    const auto& number = step.values[design::kFlowNo];
    Number(number);
    const auto value = ParseNumber(number.value_or("0"));
    if (value && !steps_.insert(*value).second) plain_ = false;
  }
  void Parameter(std::string_view, std::string_view) {}
  void InputParameter(std::string_view, const design::Attributes<4>& input) {
    Number(input.values[design::kOrderNo]);
    Number(input.values[design::kSort]);
  }
  void NoParameter(std::string_view) {}
  void NotClosed(std::string_view) {}
  void PassedOver(std::string_view) {}
  void End(std::string_view) {}

  [[nodiscard]] bool plain() const { return plain_; }

 private:
  void Number(const std::optional<std::string_view>& text) {
    constexpr std::size_t kSafeDigits = 15;
    if (!text) return;
    plain_ =
        plain_ && !text->empty() && text->size() <= kSafeDigits && text->find_first_not_of("0123456789") == text->npos;
  }

  std::set<double> steps_;
  bool plain_ = true;
};

/// Flow 1 with nothing in it; every input finds it so.
class Catalogue {
 public:
  Catalogue() { world_.Run("Insert Into WorkFlowName (FlowName,Creater,Remark) Values ('f','c','')"); }

  void Check(std::string_view text) {
    const TakenBack taken_back(world_.database());
    CheckStable(text);
  }

 private:
  void CheckStable(std::string_view text) {
    InOut in_out(world_.services());
    try {
      if (in_out.CreatFlow(world_.database(), 1, Value(text)) != 0) return;
    } catch (const ArgumentError&) {
      return;
    }
    const std::string written = in_out.MakeConstructionBak(world_.database(), 1);
    Require(in_out.CreatFlow(world_.database(), 1, written) == 0, "what is written out can be loaded");
    RequireEqual(in_out.MakeConstructionBak(world_.database(), 1), written,
                 "loading what was written out changes nothing");
    const StoredFlow stored{world_.database(), services_, 1};
    const std::string_view view = written;
    Require(CompareDefinitions(stored, view).empty(), "a flow does not differ from what is written out");
    (void)CheckFlow(world_.database(), services_, 1);
  }

  test::World world_;
  host::Services services_ = world_.services();
};

}  // namespace

void CheckDefinitionText(std::string_view input) {
  for (const Finding& finding : CheckDefinition(input)) {
    Require(!finding.problem.empty() && !finding.advice.empty(), "a finding tells what is wrong and what to do");
  }
  Require(CompareDefinitions(input, input).empty(), "a definition does not differ from itself");
  PlainNumbers numbers;
  design::DefinitionParser(input, numbers).Parse();
  if (!numbers.plain()) return;
  static Catalogue catalogue;
  catalogue.Check(input);
}

}  // namespace talm_flow::fuzz
