#include "commands/inputs.h"

#include <cstdlib>
#include <limits>

#include "talm_flow/conversion.h"
#include "talm_flow/error.h"

namespace talm_flow::commands {

using engine::Step;

std::optional<db::RecordReference> Record(const Step& step, int k) {
  return db::SeparateTableIDAndDataID(step.Evaluated(k));
}

std::optional<db::RecordReference> AcceptedRecord(const Step& step, int k) {
  auto record = Record(step, k);
  if (record && !step.host().records.AcceptsRecord(step.connection(), record->table_id, record->data_id)) {
    record.reset();
  }
  return record;
}

std::optional<std::int32_t> Table(const Step& step, int k) { return db::SeparateTableID(step.Evaluated(k)); }

std::optional<std::int32_t> AcceptedTable(const Step& step, int k) {
  auto table_id = Table(step, k);
  if (table_id && !step.host().tables.AcceptTable(step.connection(), *table_id)) table_id.reset();
  return table_id;
}

std::optional<host::InputUnit> FindUnit(const Step& step, std::int32_t table_id, std::string_view name) {
  const auto code = db::SeparateInUnitID(name, step.host().common);
  if (!code) return std::nullopt;
  return step.host().forms.FindUnit(step.connection(), table_id, *code);
}

bool Flag(const Step& step, int k) {
  const std::string stored = step.Stored(k);
  if (stored == "1" || stored == "0") return stored == "1";
  return step.Evaluate(stored) == "1";
}

std::int32_t Count(const Step& step, int k) {
  const std::string stored = step.Stored(k);
  auto number = ParseNumber(stored);
  if (!number) number = ParseNumber(step.Evaluate(stored));
  const std::int32_t count = ToInt32(number.value_or(0));
  if (count == std::numeric_limits<std::int32_t>::min()) {
    throw OverflowError("the absolute value of " + std::to_string(count) + " does not fit in 32 bits");
  }
  return std::abs(count);
}

std::string EvaluatedOrStored(const Step& step, int k) {
  std::string stored = step.Stored(k);
  std::string value = step.Evaluate(stored);
  return value.empty() ? stored : value;
}

std::string EvaluatedAndCut(const Step& step, int k, std::size_t count) {
  std::string value = step.Evaluated(k);
  value.resize(FirstCharacters(value, count).size());
  return value;
}

std::string UnitPiece(const Step& step, std::string_view code) {
  std::string piece;
  if (IsNumeric(code)) {
    piece = code;
  } else {
    step.host().common.SqlText(code, piece);
  }
  return piece;
}

}  // namespace talm_flow::commands
