/// Looking records of a form up by a condition: the newest one (C_77), or one field of all of them (C_79).

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/inputs.h"
#include "commands/lookup_condition.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {
namespace {

struct Lookup {
  std::int32_t table_id = 0;
  std::string where;
};

/// The first two parameters, which both commands take alike.
std::optional<Lookup> TakeLookup(const Step& step) {
  const auto table_id = AcceptedTable(step, 1);
  if (!table_id) return std::nullopt;
  auto where = WhereClause(step, *table_id, step.Stored(2));
  if (!where) return std::nullopt;
  return Lookup{*table_id, std::move(*where)};
}

}  // namespace

Outcome C_77(Step& step) {
  const auto lookup = TakeLookup(step);
  if (!lookup) return Outcome::Done();
  const std::string variable = step.Stored(3);
  const auto id = step.session().FirstField("ID", "Select Top 1 ID from TableData", lookup->table_id, lookup->where,
                                            " Order By ID Desc");
  std::string reference;
  if (id) reference = db::RecordReference{lookup->table_id, ToInt32(*id)}.Text();
  step.StoreVariable(variable, reference);
  return Outcome::Done();
}

Outcome C_79(Step& step) {
  const auto lookup = TakeLookup(step);
  if (!lookup) return Outcome::Done();
  const auto field = FindField(step, lookup->table_id, step.Evaluated(3));
  if (!field) return Outcome::Done();
  const std::string variable = step.Stored(4);

  std::string texts;
  const auto rows = step.session().Open("Select Top 10000 ", field->column, " from TableData", lookup->table_id,
                                        lookup->where, " Order By ID");
  for (bool first = true; !rows->AtEnd(); rows->MoveNext(), first = false) {
    if (!first) texts += ',';
    AppendJoined(texts, rows->FieldAt(0));
  }
  rows->Close();
  step.StoreVariable(variable, texts);
  return Outcome::Done();
}

}  // namespace talm_flow::commands
