/// What people may do with records and forms: edit (C_6), add (C_7), transfer (C_8), answer (C_9); and the host's own
/// operation on a form (C_10).

#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/inputs.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {
namespace {

bool HasProperties(const Step& step, const db::RecordReference& record) {
  return step.session().AnyRow("select Top 1 ID From DataPro Where TableID=", record.table_id,
                               " and DataID=", record.data_id);
}

}  // namespace

Outcome C_6(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  const std::string names = step.Evaluated(2);
  const bool may_edit = Flag(step, 3);
  ForEachItem(names, [&](std::string_view name) {
    if (may_edit) {
      step.session().Execute("Insert Into DataAllowEdit (TableID,DataID,Name) Values (", record->table_id, ",",
                             record->data_id, ",", db::Quoted(name), ")");
    } else {
      step.session().Execute("delete from DataAllowEdit where TableID=", record->table_id,
                             " and dataid=", record->data_id, " and Name=", db::Quoted(name));
    }
  });
  return Outcome::Done();
}

Outcome C_7(Step& step) {
  const auto table_id = AcceptedTable(step, 1);
  if (!table_id) return Outcome::Done();
  step.session().Execute("Update TableName Set AddEnable=", Flag(step, 2) ? "1" : "0", " Where TableID=", *table_id);
  return Outcome::Done();
}

Outcome C_8(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  const std::string_view flag = Flag(step, 2) ? "1" : "0";
  if (HasProperties(step, *record)) {
    step.session().Execute("Update DataPro Set TranEnable=", flag, " Where TableID=", record->table_id,
                           " and DataID=", record->data_id);
  } else {
    step.session().Execute("Insert Into DataPro (TableID,DataID,TranEnable) Values (", record->table_id, ",",
                           record->data_id, ",", flag, ")");
  }
  return Outcome::Done();
}

Outcome C_9(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  db::Session& session = step.session();
  if (Flag(step, 2)) {
    const auto form = AcceptedTable(step, 3);
    if (!form) return Outcome::Done();
    if (HasProperties(step, *record)) {
      session.Execute("Update DataPro Set AnswerEnable=1,AnswerTableID=", *form, " Where TableID=", record->table_id,
                      " and DataID=", record->data_id);
    } else {
      session.Execute("Insert Into DataPro (TableID,DataID,AnswerEnable,AnswerTableID) Values (", record->table_id, ",",
                      record->data_id, ",1,", *form, ")");
    }
  } else if (HasProperties(step, *record)) {
    session.Execute("Update DataPro Set AnswerEnable=0 Where TableID=", record->table_id,
                    " and DataID=", record->data_id);
  } else {
    session.Execute("Insert Into DataPro (TableID,DataID,AnswerEnable) Values (", record->table_id, ",",
                    record->data_id, ",0)");
  }
  return Outcome::Done();
}

Outcome C_10(Step& step) {
  const auto table_id = AcceptedTable(step, 1);
  if (table_id) step.host().tables.OperateOnTable(step.connection(), *table_id, kSystemUser);
  return Outcome::Done();
}

}  // namespace talm_flow::commands
