#include "support/random_flow.h"

#include <algorithm>

#include "commands/command_table.h"
#include "support/definitions.h"

namespace talm_flow::test {
namespace {

using engine::Fits;

constexpr const char* kVariables[] = {"v1", "v2", "v3", "Private_p", "Global_g"};
constexpr const char* kOperands[] = {"1", "2", "7.5", "\"a b\"", "\"2026-01-31 9:05\"", "\"x,y\"", "DataID_Submit"};
constexpr const char* kOperators[] = {"+", "-", "*", "/"};
constexpr const char* kComparisons[] = {">=", "<=", "<", ">", "=", "<>"};
constexpr const char* kRecords[] = {"DataID_Submit", "\"TableID:12,DataID:2\"", "\"DataID:1,TableID:12\""};
constexpr const char* kTables[] = {"\"TableID:13\"", "12", "\"TableID:14\""};
constexpr const char* kUnits[] = {"\"Title\"", "\"Amount\"", "\"inunitid:Due\"", "\"Notes\"", "\"Files\"", "\"Seal\""};
constexpr const char* kDates[] = {"\"2026-01-31 9:05\"", "\"2026/2/1\""};
constexpr const char* kConditions[] = {"", "name=v1", "(id>1 or title<>v2) and inputtime>\"2026-01-01\"", "amount>=10"};
constexpr const char* kPeople[] = {"\"kim\"", "\"@board\"", "\"kim,lee\""};
// Commands that make trees worth walking, which would be rare among all.
constexpr const char* kSteering[] = {"C_2", "C_11", "C_15", "C_16", "C_18", "C_86", "C_97"};

}  // namespace

int RandomFlow::Number(int first, int last) {
  return first + static_cast<int>(random_() % static_cast<std::uint32_t>(last - first + 1));
}

std::string RandomFlow::Next(int first_flow, int flow) {
  constexpr int kMostSteps = 12;
  place_ = {.step = 0, .steps = Number(2, kMostSteps), .first_flow = first_flow, .flow = flow};
  std::string steps;
  for (place_.step = 1; place_.step <= place_.steps; ++place_.step) {
    const std::string command = Command();
    const int parent = place_.step == 1 ? 0 : Number(std::max(1, place_.step - 3), place_.step - 1);
    steps += StepLines(place_.step, parent, command, Parameters(command));
  }
  return Text(steps);
}

std::string RandomFlow::Command() {
  constexpr int kSteeringShare = 4;
  if (OneIn(kSteeringShare)) return OneOf(kSteering);
  return "C_" + std::to_string(Number(1, engine::kCommandCount));
}

std::string RandomFlow::Target() {
  constexpr int kBackwards = 40;
  if (place_.step == place_.steps || OneIn(kBackwards)) return std::to_string(Number(1, place_.steps));
  return std::to_string(Number(place_.step + 1, place_.steps));
}

std::string RandomFlow::Parameters(const std::string& command) {
  const engine::CommandRow& row = *engine::FindCommand(commands::Commands(), command);
  const auto value = [this](const engine::ParameterRow& parameter) -> std::string {
    switch (parameter.fits) {
      case Fits::kRecord:
        return OneOf(kRecords);
      case Fits::kTable:
        return OneOf(kTables);
      case Fits::kUnit:
        return OneOf(kUnits);
      case Fits::kFile:
        return "\"fileid:1\"";
      case Fits::kPicture:
        return "\"tablepicdataid:1\"";
      case Fits::kNumber:
      case Fits::kWholeNumber:
        return std::to_string(Number(0, 3));
      case Fits::kDate:
        return OneOf(kDates);
      case Fits::kFlag:
        return std::to_string(Number(0, 1));
      case Fits::kStep:
        return Target();
      case Fits::kFlow:
        // The first has none to start.
        return std::to_string(place_.flow == place_.first_flow ? 0 : Number(place_.first_flow, place_.flow - 1));
      case Fits::kPosition:
        return std::to_string(Number(1, 2));
      case Fits::kComparison:
        return OneOf(kComparisons);
      case Fits::kOperator:
        return OneOf(kOperators);
      case Fits::kCondition:
        return OneOf(kConditions);
      case Fits::kVariable:
        return OneOf(kVariables);
      case Fits::kVariableList:
        return "v1|^|v2";
      case Fits::kCompared:
      case Fits::kText:
        break;
    }
    return parameter.title == "People" || parameter.title == "Approvers" ? OneOf(kPeople) : Expression();
  };
  std::string lines;
  for (std::size_t k = 0; k < row.parameters.size(); ++k) {
    lines += command + '_' + std::to_string(k + 1) + ':' + value(row.parameters[k]) + '\n';
  }
  return lines;
}

std::string RandomFlow::Operand() { return OneIn(2) ? OneOf(kVariables) : OneOf(kOperands); }

std::string RandomFlow::Expression() {
  std::string expression = Operand();
  for (int more = Number(0, 2); more > 0; --more) {
    if (OneIn(3)) {
      expression = '(' + expression + ')';
    }
    expression += OneOf(kOperators) + Operand();
  }
  return expression;
}

}  // namespace talm_flow::test
