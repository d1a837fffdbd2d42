#include "commands/form_writing.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "commands/inputs.h"
#include "talm_flow/conversion.h"
#include "talm_flow/text.h"

namespace talm_flow::commands {
namespace {

using engine::Step;

constexpr std::array<std::pair<std::string_view, UnitGroup>, 16> kTypes = {{
    {"InputText", UnitGroup::kText},
    {"SelectPosition", UnitGroup::kText},
    {"SelectClass", UnitGroup::kText},
    {"InputCheckBox", UnitGroup::kText},
    {"InputRadioBox", UnitGroup::kText},
    {"InputHide", UnitGroup::kText},
    {"SelectDept", UnitGroup::kText},
    {"SelectOrg", UnitGroup::kText},
    {"SelectUser", UnitGroup::kText},
    {"AutoCal", UnitGroup::kText},
    {"InputNum", UnitGroup::kNumber},
    {"InputTime", UnitGroup::kTime},
    {"InputTextArea", UnitGroup::kLongText},
    {"UpLoadFile", UnitGroup::kFile},
    {"InputDigitalSign", UnitGroup::kPicture},
    {"InputElectroSeal", UnitGroup::kPicture},
}};

void WriteField(const Step& step, const db::RecordReference& target, const host::InputUnit& unit,
                std::string_view value) {
  step.session().Execute("Update TableData", target.table_id, " set ", unit.field, "=", db::Quoted(value),
                         " Where ID=", target.data_id);
}

void CopyPicture(const Step& step, const db::RecordReference& target, std::string_view unit_piece,
                 std::string_view value) {
  const auto number = db::SeparateTablePicDataID(value);
  if (!number) return;
  const auto rows = step.session().Open("Select Top 1 * From TablePicData Where TablePicDataID=", *number);
  if (!db::Session::HasRow(*rows)) return;
  const Value picture = rows->Field("TablePicID");
  const Value name = rows->Field("InputName");
  rows->Close();
  step.session().Execute("delete From TablePicData Where TableID=", target.table_id, " And DataID=", target.data_id,
                         " And InUnitID=", unit_piece);
  step.session().Execute("Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID,InputName) Values (", picture,
                         ",", target.table_id, ",", unit_piece, ",", target.data_id, ",", db::Quoted(name), ")");
}

/// The number of a file that an item of a list names, by a reference or bare.
std::optional<std::int32_t> FileNumber(std::string_view item) {
  if (const auto number = db::SeparateFileID(item)) return number;
  if (!IsNumeric(item)) return std::nullopt;
  return db::SeparateTableID(item);
}

void CopyFile(const Step& step, const db::RecordReference& target, std::string_view unit_code, std::int32_t number) {
  const auto source = step.session().Open("Select Top 1 * From TableFile Where ID=", number);
  if (!db::Session::HasRow(*source)) return;
  const Value content = source->Field("FileContent");
  const Value name = source->Field("FileName");
  const Value size = source->Field("Size");
  const Value type = source->Field("FileType");
  source->Close();
  if (JoinedText(name).empty()) return;

  const auto copy = step.session().Open("Select top 1 * From TableFile");
  copy->AddNew();
  copy->SetField("TableID", target.table_id);
  copy->SetField("DataID", target.data_id);
  copy->SetField("InUnitID", unit_code);
  if (content.IsText()) {
    copy->SetBinary("FileContent", content.Text());
  } else {
    copy->SetField("FileContent", content);
  }
  copy->SetField("FileName", name);
  copy->SetField("Size", size);
  copy->SetField("FileType", type);
  copy->Update();
}

void CopyFiles(const Step& step, const db::RecordReference& target, const host::InputUnit& unit,
               std::string_view list) {
  step.session().Execute("delete From TableFile Where TableID=", target.table_id, " And DataID=", target.data_id,
                         " And InUnitID=", UnitPiece(step, unit.code));
  ForEachItem(list, [&](std::string_view item) {
    if (const auto number = FileNumber(item)) CopyFile(step, target, unit.code, *number);
  });
}

}  // namespace

UnitGroup GroupOfType(std::string_view type) {
  for (const auto& [name, group] : kTypes) {
    if (name == type) return group;
  }
  return UnitGroup::kNone;
}

void WriteUnit(const Step& step, const db::RecordReference& target, const host::InputUnit& unit,
               std::string_view value) {
  switch (GroupOfType(unit.type)) {
    case UnitGroup::kNone:
      break;
    case UnitGroup::kText:
      WriteField(step, target, unit, FirstCharacters(value, kMaxTextField));
      break;
    case UnitGroup::kNumber:
      if (IsNumeric(value)) WriteField(step, target, unit, value);
      break;
    case UnitGroup::kTime:
      if (IsDate(value)) WriteField(step, target, unit, value);
      break;
    case UnitGroup::kLongText:
      WriteField(step, target, unit, value);
      break;
    case UnitGroup::kFile:
      CopyFiles(step, target, unit, value);
      break;
    case UnitGroup::kPicture:
      CopyPicture(step, target, UnitPiece(step, unit.code), value);
      break;
  }
}

}  // namespace talm_flow::commands
