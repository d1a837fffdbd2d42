/// Tasks for people: approvals (C_2), attentions (C_3) and fill-ins (C_97), and how the first and the last came out.

#include "engine/tasks.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/inputs.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {
namespace {

/// What the tasks of one step have in common.
struct TaskTexts {
  std::string title;
  std::string button;
  std::string_view edit_flag;
  std::string information;
};

std::string ShownButtonText(const Step& step, int k, std::string_view usual_text) {
  std::string text = EvaluatedOrStored(step, k);
  if (text.empty()) text = usual_text;
  text.resize(FirstCharacters(text, kMaxButton).size());
  return text;
}

std::string_view EditFlag(const Step& step, int k) { return Flag(step, k) ? "1" : "0"; }

void Notify(const Step& step, const db::RecordReference& record, std::string_view person, const TaskTexts& texts) {
  if (texts.title.empty()) return;
  step.session().Execute("Insert Into DataNotice (Sort,TableID,DataID,Recver,NoticeTitle) Values(2,", record.table_id,
                         ",", record.data_id, ",", db::Quoted(person), ",", db::Quoted(texts.title), ")");
}

/// The number of the newest row of a task table, which is taken for the row just written.
std::int32_t NewestNumber(const Step& step, std::string_view field, std::string_view query) {
  const auto number = step.session().FirstField(field, query);
  return number ? ToInt32(*number) : 0;
}

/// A task with a time limit waits in the table that the host's scheduler looks through.
void AwaitTimeOut(const Step& step, std::int32_t task, std::string_view command_piece, std::int32_t time_limit,
                  std::string_view person) {
  if (time_limit == 0) return;
  step.session().Execute("Insert Into WorkFlowExecute (ExecuteID,DataAppID,FlowNo,Command,WaitTime,Appover) Values(",
                         step.call().ExecuteID, ",", task, ",", step.call().FlowNo, command_piece, time_limit, ",",
                         db::Quoted(person), ")");
}

void StoreWhetherAgreed(const Step& step, std::string_view variable, const std::optional<Value>& status) {
  constexpr double kAgreed = 3;
  step.StoreVariable(variable, status && SwitchIs(*status, kAgreed) ? "1" : "0");
}

}  // namespace

Outcome C_2(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  const std::string approvers = step.host().user_lists.UserNames(step.connection(), step.Evaluated(2));
  const auto form = Table(step, 3);
  if (!form || !step.host().tables.AcceptsApprovalForm(step.connection(), *form)) return Outcome::Done();
  TaskTexts texts;
  texts.title = EvaluatedAndCut(step, 4, kMaxNotice);
  texts.button = ShownButtonText(step, 5, "审批");
  texts.edit_flag = EditFlag(step, 6);
  const std::int32_t time_limit = Count(step, 7);
  texts.information = EvaluatedAndCut(step, 8, kMaxNotice);

  std::int32_t relation = 0;
  ForEachItem(approvers, [&](std::string_view approver) {
    Notify(step, *record, approver, texts);
    step.session().Execute(
        "Insert Into DataApp (ExecuteID,AppedTableID,AppedDataID,Appover,WaitTime,FlowNo,ButtonText,EditEnable,"
        "AppTableID,NoticInf) Values(",
        step.call().ExecuteID, ",", record->table_id, ",", record->data_id, ",", db::Quoted(approver), ",", time_limit,
        ",", step.call().FlowNo, ",", db::Quoted(texts.button), ",", texts.edit_flag, ",", *form, ",",
        db::Quoted(texts.information), ")");
    const std::int32_t task =
        NewestNumber(step, "DataAppID", "Select Top 1 DataAppID From DataApp Order By DataAppID Desc");
    if (relation == 0) relation = task;
    step.session().Execute("Update DataApp Set RelatingID=", relation, " Where DataAppID=", task);
    AwaitTimeOut(step, task, ",'C_2',", time_limit, approver);
  });
  return Outcome::Done();
}

Outcome C_3(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  const auto form = Table(step, 3);
  if (!form || !step.host().tables.AcceptsAttentionForm(step.connection(), *form)) return Outcome::Done();
  const std::string people = step.Evaluated(2);
  TaskTexts texts;
  texts.title = EvaluatedAndCut(step, 4, kMaxNotice);
  texts.button = ShownButtonText(step, 5, "附加");
  texts.edit_flag = EditFlag(step, 6);
  texts.information = EvaluatedAndCut(step, 7, kMaxNotice);

  ForEachItem(people, [&](std::string_view person) {
    Notify(step, *record, person, texts);
    step.session().Execute(
        "Insert Into DataAtt (ExecuteID,AttedTableID,AttedDataID,AttName,FlowNo,ButtonText,EditEnable,AttTableID,"
        "NoticInf) Values(",
        step.call().ExecuteID, ",", record->table_id, ",", record->data_id, ",", db::Quoted(person), ",",
        step.call().FlowNo, ",", db::Quoted(texts.button), ",", texts.edit_flag, ",", *form, ",",
        db::Quoted(texts.information), ")");
  });
  return Outcome::Done();
}

Outcome C_68(Step& step) {
  const std::string variable = step.Stored(1);
  const std::int32_t task_step = engine::GetFlowNoApprov(step.session(), step.call().FlowID, step.call().FlowNo);
  const auto status =
      step.session().FirstField("Status", "select Top 1 Status from DataApp where ExecuteID=", step.call().ExecuteID,
                                " and FlowNo=", task_step, " Order by DataAppID desc");
  StoreWhetherAgreed(step, variable, status);
  return Outcome::Done();
}

Outcome C_97(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  const auto unit = FindUnit(step, record->table_id, step.Evaluated(2));
  if (!unit) return Outcome::Done();
  const std::string people = step.Evaluated(3);
  TaskTexts texts;
  texts.title = EvaluatedAndCut(step, 4, kMaxNotice);
  texts.button = ShownButtonText(step, 5, "填写");
  texts.edit_flag = EditFlag(step, 6);
  const std::int32_t time_limit = Count(step, 7);
  texts.information = EvaluatedAndCut(step, 8, kMaxNotice);
  const std::string unit_piece = UnitPiece(step, unit->code);

  ForEachItem(people, [&](std::string_view person) {
    Notify(step, *record, person, texts);
    step.session().Execute(
        "Insert Into InUnitSub (ExecuteID,TableID,DataID,InUnitID,InPuter,WaitTime,FlowNo,ButtonText,EditEnable,"
        "NoticInf) Values(",
        step.call().ExecuteID, ",", record->table_id, ",", record->data_id, ",", unit_piece, ",", db::Quoted(person),
        ",", time_limit, ",", step.call().FlowNo, ",", db::Quoted(texts.button), ",", texts.edit_flag, ",",
        db::Quoted(texts.information), ")");
    const std::int32_t task = NewestNumber(step, "ID", "Select Top 1 ID From InUnitSub Order By ID Desc");
    AwaitTimeOut(step, task, ",'C_97',", time_limit, person);
  });
  return Outcome::Done();
}

Outcome C_98(Step& step) {
  const std::string variable = step.Stored(1);
  const std::int32_t task_step = engine::GetFlowNoInUnitSub(step.session(), step.call().FlowID, step.call().FlowNo);
  const auto status =
      step.session().FirstField("Status", "select Top 1 Status from InUnitSub where ExecuteID=", step.call().ExecuteID,
                                " and FlowNo=", task_step, " Order by ID desc");
  StoreWhetherAgreed(step, variable, status);
  return Outcome::Done();
}

}  // namespace talm_flow::commands
