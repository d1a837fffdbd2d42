/// Values into form records: into one input unit (C_4, C_5), or all of another record's (C_76).

#include <string>
#include <utility>
#include <vector>

#include "commands/form_writing.h"
#include "commands/handlers.h"
#include "commands/inputs.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {
namespace {

enum class Pictures { kWritten, kLeftAlone };

void WriteOneUnit(const Step& step, Pictures pictures) {
  const auto target = AcceptedRecord(step, 1);
  if (!target) return;
  const auto unit = FindUnit(step, target->table_id, step.Evaluated(2));
  if (!unit) return;
  const std::string value = step.Evaluated(3);
  if (pictures == Pictures::kLeftAlone && GroupOfType(unit->type) == UnitGroup::kPicture) return;
  WriteUnit(step, *target, *unit, value);
}

/// Code and type of the input units of a form, in the order in which the form lists them.
std::vector<std::pair<std::string, std::string>> UnitsOfForm(const Step& step, std::int32_t table_id) {
  std::vector<std::pair<std::string, std::string>> units;
  const auto rows = step.session().Open("Select Top 10000 * From TableInUnitConstruction where TableID=", table_id);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    units.emplace_back(JoinedText(rows->Field("InUnitID")), JoinedText(rows->Field("InUnitType")));
  }
  return units;
}

}  // namespace

Outcome C_4(Step& step) {
  WriteOneUnit(step, Pictures::kWritten);
  return Outcome::Done();
}

Outcome C_5(Step& step) {
  WriteOneUnit(step, Pictures::kLeftAlone);
  return Outcome::Done();
}

// Both records must be ones that the host accepts: the values of a source that is not there would blank the target.
Outcome C_76(Step& step) {
  const auto source = AcceptedRecord(step, 1);
  if (!source) return Outcome::Done();
  const auto target = AcceptedRecord(step, 2);
  if (!target) return Outcome::Done();
  host::FormService& forms = step.host().forms;
  for (auto& [code, type] : UnitsOfForm(step, source->table_id)) {
    if (GroupOfType(type) == UnitGroup::kNone) continue;
    auto unit = forms.FindUnit(step.connection(), source->table_id, code);
    if (!unit) continue;
    unit->type = std::move(type);
    WriteUnit(step, *target, *unit, forms.UnitValue(step.connection(), source->table_id, source->data_id, *unit));
  }
  return Outcome::Done();
}

}  // namespace talm_flow::commands
