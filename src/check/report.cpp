#include "check/report.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

#include "talm_flow/text.h"

namespace talm_flow::check {
namespace {

struct Row {
  Code code;
  CheckCode told;
};

// Frozen: people write these codes down. 1xx structure, 2xx commands and parameters, 3xx expressions, 4xx flow of
// control.
constexpr Row kRows[] = {
    {Code::kNoFirstStep, {"E101", "No step 1"}},
    {Code::kDuplicateStep, {"E102", "Step number given twice"}},
    {Code::kBadStepNumber, {"E103", "Step number outside 1 to 32767"}},
    {Code::kCircle, {"E104", "Steps below each other in a circle"}},
    {Code::kOrphan, {"W105", "Step below a step that is not there"}},
    {Code::kNeverRun, {"W106", "Step that is never run"}},
    {Code::kTooManyChildren, {"W107", "More than 10000 children"}},
    {Code::kNoSteps, {"W108", "Flow without steps"}},
    {Code::kNoVersion, {"E111", "No version line"}},
    {Code::kNotClosed, {"E112", "Parameters without an end"}},
    {Code::kNoParameter, {"E113", "Line in a parameter block that is no parameter"}},
    {Code::kBadNumber, {"E114", "Attribute that takes a number"}},
    {Code::kLostMarker, {"E115", "Marker line that is not recognised"}},
    {Code::kLostLine, {"W116", "Line that is not read"}},
    {Code::kSwallowedKey, {"W117", "Key that is read as part of a value"}},
    {Code::kNotCarried, {"W118", "Value that no definition text can carry"}},
    {Code::kUnknownCommand, {"E201", "Unknown command"}},
    {Code::kNoCommand, {"W202", "Step without a command"}},
    {Code::kMissingParameter, {"E203", "Missing parameter"}},
    {Code::kSurplusParameter, {"W204", "Parameter that the command does not read"}},
    {Code::kRepeatedParameter, {"W205", "Parameter given twice"}},
    {Code::kBadStep, {"E206", "No step of the flow"}},
    {Code::kBadSign, {"E207", "No comparison, or no operator"}},
    {Code::kBadFlag, {"E208", "Flag that is neither 1 nor 0"}},
    {Code::kBadVariable, {"E209", "Name that no expression can read"}},
    {Code::kBlankInVariable, {"W210", "Variable's name with blanks or line breaks"}},
    {Code::kBadReference, {"E211", "No reference"}},
    {Code::kBadNumericValue, {"E212", "No number that fits"}},
    {Code::kBadDate, {"E213", "No date"}},
    {Code::kBadPosition, {"E214", "No position"}},
    {Code::kBadFlow, {"E215", "No flow number"}},
    {Code::kNoSuchFlow, {"E216", "Child flow that does not exist"}},
    {Code::kBadCondition, {"E217", "Condition that does not parse"}},
    {Code::kBadConditionValue, {"E218", "Value that never fits its field"}},
    {Code::kTooManyTokens, {"E301", "More than 101 tokens"}},
    {Code::kParentheses, {"E302", "Parentheses that do not match"}},
    {Code::kOperandMissing, {"E303", "Operand missing"}},
    {Code::kOperatorMissing, {"E304", "Operator missing"}},
    {Code::kErrorText, {"E305", "Only an error text can come out"}},
    {Code::kNegative, {"E306", "Negative result"}},
    {Code::kNotRepresentable, {"E307", "Result too large or too small"}},
    {Code::kNotClosedLiteral, {"E308", "Quotes or markers that are not closed"}},
    {Code::kBlankBesideLiteral, {"W309", "Blank beside a quoted text or a parenthesis"}},
    {Code::kBlankInName, {"W310", "Blank beside a variable's name"}},
    {Code::kLiteralInName, {"W311", "Quotes or a parenthesis inside a variable's name"}},
    {Code::kUnquoted, {"W312", "Text without quotes"}},
    {Code::kDateComputed, {"W313", "Date without quotes"}},
    {Code::kCommaInNumber, {"W314", "Comma inside a number"}},
    {Code::kMisspeltName, {"W315", "Misspelt special name"}},
    {Code::kJumpToItself, {"E401", "Jump to itself"}},
    {Code::kEndlessJump, {"W402", "Jump that only the cap ends"}},
    {Code::kEndlessChildren, {"E403", "Flows that start each other without end"}},
    {Code::kChildCircle, {"W404", "Flows that start each other in a circle"}},
    {Code::kNoApproval, {"W405", "Approval outcome without an approval"}},
    {Code::kFillInOutcome, {"W406", "Fill-in outcome below a fill-in"}},
    {Code::kReturnedTooMuch, {"W407", "Value handed back to no variable"}},
};

constexpr std::size_t kCount = std::size(kRows);

constexpr std::array<CheckCode, kCount> ToldRows() {
  std::array<CheckCode, kCount> told;
  for (std::size_t i = 0; i < kCount; ++i) told[i] = kRows[i].told;
  return told;
}

constexpr std::array<CheckCode, kCount> kTold = ToldRows();

constexpr bool RowsFollowTheCodes() {
  for (std::size_t i = 0; i < kCount; ++i) {
    if (static_cast<std::size_t>(kRows[i].code) != i) return false;
    if (i > 0 && kRows[i].told.code.substr(1) <= kRows[i - 1].told.code.substr(1)) return false;
  }
  return true;
}
static_assert(RowsFollowTheCodes());

}  // namespace

void Report::Add(Code code, const Place& place, std::string problem, std::string advice) {
  Finding finding;
  finding.code = kRows[static_cast<std::size_t>(code)].told.code;
  if (place.step != nullptr) finding.step = place.step->number;
  finding.parameter = place.parameter != nullptr ? place.parameter->name : place.parameter_name;
  finding.line = place.line;
  if (finding.line == 0 && place.parameter != nullptr) finding.line = place.parameter->line;
  if (finding.line == 0 && place.step != nullptr) finding.line = place.step->line;
  finding.problem = std::move(problem);
  finding.advice = std::move(advice);
  entries_.push_back({place.step, std::move(finding)});
}

Findings Report::Take(const Definition& definition) {
  std::unordered_map<const Step*, std::size_t> positions;
  for (const Step& step : definition.steps) positions.emplace(&step, positions.size() + 1);
  const auto key = [&](const Entry& entry) {
    const auto found = positions.find(entry.step);
    return std::pair(entry.finding.line, found == positions.end() ? 0 : found->second);
  };
  std::ranges::stable_sort(entries_, {}, key);
  Findings findings;
  findings.reserve(entries_.size());
  for (Entry& entry : entries_) {
    entry.finding.flow = definition.flow;
    findings.push_back(std::move(entry.finding));
  }
  entries_.clear();
  return findings;
}

std::string Shown(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  const std::string_view cut = FirstCharacters(text, kLongest);
  std::string shown = "\"";
  for (const char c : cut) {
    switch (c) {
      case '\r':
        break;
      case '\n':
        shown += "\\n";
        break;
      case '\t':
        shown += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') {
          shown += '?';
        } else {
          shown += c;
        }
    }
  }
  shown += cut.size() < text.size() ? "...\"" : "\"";
  return shown;
}

}  // namespace talm_flow::check

namespace talm_flow {

std::span<const CheckCode> CheckCodes() { return check::kTold; }

}  // namespace talm_flow
