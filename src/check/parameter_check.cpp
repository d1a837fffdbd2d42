// Commands and their parameters.

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_set>

#include "check/checks.h"
#include "db/reference.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::check {
namespace {

using engine::Fits;
using engine::ParameterRow;
using engine::Taken;

bool FitsIn32Bits(double number) {
  return std::fabs(RoundHalfEven(number)) <= std::numeric_limits<std::int32_t>::max();
}

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// The table number of a record reference may be one that raises an error when the reference is taken apart.
bool HasHugeTable(std::string_view text) {
  for (const std::string_view part : Split(text, ",")) {
    const auto colon = part.find(':');
    if (colon == std::string_view::npos || !EqualIgnoringAsciiCase(part.substr(0, colon), "tableid")) continue;
    const auto number = ParseNumber(part.substr(colon + 1));
    if (number && std::fabs(RoundHalfEven(*number)) > std::numeric_limits<std::int16_t>::max()) return true;
  }
  return false;
}

/// Names of variables that steps of the flow write, and that C_18 receives.
VariableNames WrittenNames(const Definition& definition) {
  VariableNames names;
  for (const Step& step : definition.steps) {
    if (step.row == nullptr) continue;
    for (std::size_t i = 0; i < step.row->parameters.size(); ++i) {
      const Fits fits = step.row->parameters[i].fits;
      const std::string_view data = step.Data(static_cast<int>(i) + 1);
      if (fits == Fits::kVariable) names.insert(data);
      if (fits != Fits::kVariableList) continue;
      for (const std::string_view name : Split(data, "|^|")) names.insert(name);
    }
  }
  return names;
}

class ParameterCheck {
 public:
  ParameterCheck(const Definition& definition, const Tree& tree, Report& report)
      : definition_(definition), tree_(tree), report_(report), written_(WrittenNames(definition)) {}

  void Run() {
    for (const Step& step : definition_.steps) {
      if (step.row == nullptr) {
        CheckUnknown(step);
      } else {
        CheckNames(step);
        for (std::size_t i = 0; i < step.row->parameters.size(); ++i) Check(step, static_cast<int>(i) + 1);
      }
    }
  }

 private:
  void CheckUnknown(const Step& step) {
    const Place place{.step = &step, .line = step.command_line};
    if (step.command.empty()) {
      report_.Add(Code::kNoCommand, place, "The step has no command; only its children run.",
                  "Name a command, C_1 to C_98.");
      return;
    }
    const auto nearest = NearestCommand(step.command);
    const bool lines = step.command.find('\n') != std::string::npos;
    report_.Add(Code::kUnknownCommand, place,
                Shown(step.command) + " is no command; the step does nothing, and its children run.",
                lines     ? "Remove the line behind the command, a blank one too: it is read as a part of it."
                : nearest ? "Write " + std::string(*nearest) + ", if that is meant."
                          : "Write one of C_1 to C_98.");
  }

  void CheckNames(const Step& step) {
    std::unordered_set<std::string_view> seen;
    for (const Parameter& parameter : step.parameters) {
      const Place place{.step = &step, .parameter = &parameter};
      if (!Reads(*step.row, parameter.name)) {
        report_.Add(
            Code::kSurplusParameter, place,
            Shown(parameter.name) + " is no parameter of " + std::string(step.row->name) + "; nothing reads it.",
            step.row->parameters.empty() ? std::string(step.row->name) + " takes no parameters; remove it."
                                         : std::string(step.row->name) + " takes " + std::string(step.row->name) +
                                               "_1 to _" + std::to_string(step.row->parameters.size()) + ".");
      } else if (!seen.insert(parameter.name).second) {
        report_.Add(Code::kRepeatedParameter, place, "The parameter is given twice; only the first is read.",
                    "Remove one of the two.");
      }
    }
  }

  static bool Reads(const engine::CommandRow& row, std::string_view name) {
    if (!name.starts_with(row.name) || name.size() != row.name.size() + 2 || name[row.name.size()] != '_') return false;
    const char digit = name.back();
    return digit >= '1' && digit <= '9' && static_cast<std::size_t>(digit - '0') <= row.parameters.size();
  }

  void Check(const Step& step, int k) {
    const ParameterRow& row = step.row->parameters[static_cast<std::size_t>(k) - 1];
    const std::string_view data = step.Data(k);
    const Place place{.step = &step,
                      .parameter = step.Find(k),
                      .parameter_name = std::string(step.row->name) + "_" + std::to_string(k)};
    if (data.empty()) {
      const bool answers_allowed = step.Is(9) && k == 3 && step.Data(2) == "1";
      if (row.required || answers_allowed) TellMissing(row, place);
      return;
    }
    switch (row.taken) {
      case Taken::kAsStored:
      case Taken::kVariable:
        return CheckStored(step, k, row.fits, data, place);
      case Taken::kStoredOrEvaluated:
        if (IsFittingAsStored(row.fits, data)) {
          if (row.fits == Fits::kWholeNumber) CheckWholeNumber(data, place);
          return;
        }
        break;
      default:
        break;
    }
    const Plain plain = row.taken == Taken::kEvaluatedOrStored ? Plain::kAccepted : Plain::kSuspect;
    const auto value = CheckExpression(data, {written_, place, report_, plain});
    if (value) CheckConstant(step, row, *value, place);
  }

  void TellMissing(const ParameterRow& row, const Place& place) {
    report_.Add(Code::kMissingParameter, place,
                (place.parameter == nullptr ? "The parameter \"" : "The empty parameter \"") + std::string(row.title) +
                    (place.parameter == nullptr ? "\" is missing" : "\" never fits") +
                    "; without it the command does nothing.",
                "Write it; talmflow commands tells what fits.");
  }

  static bool IsFittingAsStored(Fits fits, std::string_view data) {
    if (fits == Fits::kFlag) return data == "1" || data == "0";
    if (fits == Fits::kWholeNumber) return IsNumeric(data);
    return data == ",";  // a separator
  }

  void CheckStored(const Step& step, int k, Fits fits, std::string_view data, const Place& place) {
    switch (fits) {
      case Fits::kStep:
        return CheckStep(step, k, data, place);
      case Fits::kFlow:
        if (!IsNumeric(data) || !FitsIn32Bits(*ParseNumber(data))) {
          report_.Add(Code::kBadFlow, place,
                      Shown(data) + " is no number of a flow; no child flow is started, and the branch ends here.",
                      "Write the number of the flow, in digits.");
        }
        return;
      case Fits::kPosition:
        return CheckPosition(data, place);
      case Fits::kComparison:
      case Fits::kOperator:
        return CheckSign(fits, data, place);
      case Fits::kVariable:
        return CheckVariable(data, place);
      case Fits::kVariableList:
        for (const std::string_view name : Split(data, "|^|")) {
          if (!name.empty()) CheckVariable(name, place);
        }
        return;
      case Fits::kCondition:
        return check::CheckCondition(data, {written_, place, report_});
      default:
        return;
    }
  }

  void CheckStep(const Step& step, int k, std::string_view data, const Place& place) {
    if (tree_.Target(step, k)) {
      if (HasStrayComma(data)) CheckComma(data, place, report_);
      return;
    }
    report_.Add(Code::kBadStep, place,
                IsNumeric(data)
                    ? "The flow has no step " + std::string(TrimBlanks(data)) + "; the command does nothing."
                    : Shown(data) + " is no step number, and it is not evaluated; the command does nothing.",
                "Write the number of a step of this flow, in digits.");
  }

  void CheckPosition(std::string_view data, const Place& place) {
    const auto number = ParseNumber(data);
    if (number && *number >= 1) return;
    report_.Add(
        Code::kBadPosition, place,
        Shown(data) + (number ? " is no position of a list; the value reaches no variable."
                              : " is no number, and it is not evaluated; nothing is handed back."),
        "Write the position, from 1, in the list of receiving variables (C_18_3) of the step that starts this flow.");
  }

  void CheckSign(Fits fits, std::string_view data, const Place& place) {
    const bool comparison = fits == Fits::kComparison;
    for (const std::string_view sign : {">=", "<=", "<", ">", "<>", "="}) {
      if (comparison && data == sign) return;
    }
    for (const std::string_view sign : {"+", "-", "*", "/"}) {
      if (!comparison && data == sign) return;
    }
    report_.Add(Code::kBadSign, place,
                Shown(data) + (comparison ? " is no comparison; the condition is never met."
                                          : " is no operator; nothing is assigned."),
                comparison ? "Write one of >= <= < > <> =, without blanks and quotes."
                           : "Write one of + - * /, without blanks and quotes.");
  }

  void CheckVariable(std::string_view name, const Place& place) {
    if (!IsReadableName(name)) {
      report_.Add(Code::kBadVariable, place,
                  Shown(name) +
                      " is no name that an expression can read: it is a number, a quoted text, a special name, or "
                      "holds an operator.",
                  "Name the variable with letters, digits and \"_\", without quotes.");
    } else if (IsSpace(name.front()) || IsSpace(name.back()) || name.find('\n') != std::string_view::npos) {
      report_.Add(Code::kBlankInVariable, place,
                  "The blanks or line breaks in " + Shown(name) + " belong to the variable's name.",
                  "Remove the blanks and line breaks.");
    }
  }

  void CheckWholeNumber(std::string_view text, const Place& place) {
    const double number = ParseNumber(text).value_or(0);
    if (!FitsIn32Bits(number)) {
      report_.Add(Code::kBadNumericValue, place,
                  Shown(text) + " is too large for a whole number; the command raises an error.",
                  "Write a number between -2147483647 and 2147483647.");
    } else if (HasStrayComma(text)) {
      CheckComma(text, place, report_);
    }
  }

  /// A constant's value that does not fit.
  void CheckConstant(const Step& step, const ParameterRow& row, const std::string& value, const Place& place) {
    switch (row.fits) {
      case Fits::kRecord:
        return CheckReference(HasHugeTable(value) || !db::SeparateTableIDAndDataID(value), value, "a record reference",
                              "Write a record reference in double quotes, \"TableID:12,DataID:3\", or DataID_Submit; "
                              "tables end at 32767.",
                              place);
      case Fits::kTable:
        return CheckReference(!db::SeparateTableID(value), value, "a table reference",
                              "Write a table reference in double quotes, as \"TableID:12\".", place);
      case Fits::kFile:
        return CheckReference(!db::SeparateFileID(value), value, "a file reference",
                              "Write a file reference in double quotes, as \"fileid:7\".", place);
      case Fits::kPicture:
        return CheckReference(!db::SeparateTablePicDataID(value), value, "a picture reference",
                              "Write a picture reference in double quotes, as \"tablepicdataid:7\".", place);
      case Fits::kUnit: {
        const auto colon = value.find(':');
        return CheckReference(
            value.empty() || (colon != std::string::npos &&
                              !EqualIgnoringAsciiCase(std::string_view(value).substr(0, colon), "inunitid")),
            value, "an input unit", "Write the input unit's code in double quotes, as \"Amount\".", place);
      }
      case Fits::kFlag:
        if (value != "1" && value != "0") {
          report_.Add(Code::kBadFlag, place, "The flag is the constant " + Shown(value) + ", which counts as 0.",
                      "Write 1 or 0.");
        }
        return;
      case Fits::kNumber:
      case Fits::kWholeNumber:
        return CheckNumber(row, value, place);
      case Fits::kDate:
        if (row.required && !IsDate(value)) {
          report_.Add(Code::kBadDate, place, "The constant " + Shown(value) + " is no date; the command does nothing.",
                      "Write a date in double quotes, as \"2026-01-31 9:05\".");
        }
        return;
      case Fits::kCompared: {
        const std::string_view comparison = step.Data(2);
        if (comparison != "=" && comparison != "<>" && IsNumeric(value) && HasStrayComma(value))
          CheckComma(value, place, report_);
        return;
      }
      default:
        if (row.required && value.empty()) TellMissing(row, place);
    }
  }

  void CheckReference(bool wrong, const std::string& value, const std::string& what, const std::string& advice,
                      const Place& place) {
    if (wrong) {
      report_.Add(
          Code::kBadReference, place,
          "The constant " + Shown(value) + " is not " + what + "; the command does nothing, or raises an error.",
          advice);
    }
  }

  // An optional number that is evaluated alone has a default that any text selects.
  void CheckNumber(const ParameterRow& row, const std::string& value, const Place& place) {
    if (!IsNumeric(value)) {
      const bool stands_for_default = row.taken == Taken::kEvaluated && !row.required;
      if (stands_for_default) return;
      report_.Add(Code::kBadNumericValue, place,
                  "The constant " + Shown(value) + " is no number; " +
                      (row.required ? "the command does nothing." : "the default is taken."),
                  "Write a number in digits, or leave the parameter empty.");
    } else if (row.fits == Fits::kWholeNumber) {
      CheckWholeNumber(value, place);
    } else if (HasStrayComma(value)) {
      CheckComma(value, place, report_);
    }
  }

  const Definition& definition_;
  const Tree& tree_;
  Report& report_;
  VariableNames written_;
};

}  // namespace

// Steps are named by numeric texts of any spelling.
std::optional<std::size_t> Tree::Target(const Step& step, int k) const {
  const auto number = ParseNumber(step.Data(k));
  if (!number || !FitsIn32Bits(*number)) return std::nullopt;
  return Find(static_cast<std::int64_t>(RoundHalfEven(*number)));
}

void CheckParameters(const Definition& definition, const Tree& tree, Report& report) {
  ParameterCheck(definition, tree, report).Run();
}

}  // namespace talm_flow::check
