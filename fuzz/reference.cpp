#include "db/reference.h"

#include "properties.h"
#include "property.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"
#include "talm_flow/host/reference_host.h"
#include "talm_flow/text.h"

namespace talm_flow::fuzz {
namespace {

bool Same(const std::optional<db::RecordReference>& a, const std::optional<db::RecordReference>& b) {
  if (!a || !b) return !a && !b;
  return a->table_id == b->table_id && a->data_id == b->data_id;
}

void CheckRecord(std::string_view input) {
  std::optional<db::RecordReference> record;
  try {
    record = db::SeparateTableIDAndDataID(input);
  } catch (const OverflowError&) {
    return;  // the table's number has no 16 bits
  }
  Require(Same(record, db::SeparateTableIDAndDataID(LowerCase(input))), "keys are read in any case");
  if (!record) return;
  Require(record->table_id >= 1 && record->table_id <= 32767 && record->data_id >= 1,
          "a record's numbers are in range");
  Require(Same(record, db::SeparateTableIDAndDataID(record->Text())), "a written record is read back");
  const std::string turned =
      "dataID:" + std::to_string(record->data_id) + ",TABLEid:" + std::to_string(record->table_id);
  Require(Same(record, db::SeparateTableIDAndDataID(turned)), "the parts of a record come in either order");
}

void CheckNumberUnder(std::string_view key, std::string_view input,
                      std::optional<std::int32_t> (*separate)(std::string_view)) {
  const auto number = separate(input);
  Require(number == separate(LowerCase(input)), "keys are read in any case");
  if (!number) return;
  Require(*number >= 1, "a reference's number is at least 1");
  Require(separate(std::string(key) + std::to_string(*number)) == number, "a written reference is read back");
}

}  // namespace

void CheckReference(std::string_view input) {
  CheckRecord(input);
  CheckNumberUnder("TableID:", input, db::SeparateTableID);
  CheckNumberUnder("fileid:", input, db::SeparateFileID);
  CheckNumberUnder("tablepicdataid:", input, db::SeparateTablePicDataID);

  host::ReferenceHost host;
  const auto& common = host.services().common;
  const auto unit = db::SeparateInUnitID(input, common);
  if (!unit) return;
  Require(common.CheckInUnitID(*unit), "a unit's code is one");
  RequireEqual(UpperCase(*unit), *unit, "a unit's code is in upper case");
  Require(db::SeparateInUnitID("inunitid:" + *unit, common) == unit, "a written unit is read back");
  Require(db::SeparateInUnitID(*unit, common) == unit, "a unit's code alone is read back");
}

}  // namespace talm_flow::fuzz
