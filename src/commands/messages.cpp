/// Words to people and to the host that make nothing wait: documents sent (C_1), short messages (C_20), e-mails (C_21)
/// and the operation log (C_80).

#include <string>
#include <string_view>

#include "commands/handlers.h"
#include "commands/inputs.h"

namespace talm_flow::commands {
namespace {

/// Calls `use` with each item of a list of receivers, which blanks separate as well as commas.
template <typename Use>
void ForEachReceiver(const std::string& list, Use use) {
  const std::string separated = ReplaceAll(list, " ", ",");
  for (const std::string_view receiver : Split(separated, ",")) {
    if (!receiver.empty()) use(receiver);
  }
}

}  // namespace

Outcome C_1(Step& step) {
  const auto record = AcceptedRecord(step, 1);
  if (!record) return Outcome::Done();
  const std::string title = EvaluatedAndCut(step, 2, kMaxNotice);
  const std::string receivers = step.host().user_lists.UserNames(step.connection(), step.Evaluated(3));

  db::Session& session = step.session();
  ForEachItem(receivers, [&](std::string_view name) {
    const db::Quoted receiver(name);
    if (!title.empty()) {
      session.Execute("Insert Into DataNotice (Sort,TableID,DataID,Recver,NoticeTitle) Values(2,", record->table_id,
                      ",", record->data_id, ",", receiver, ",", db::Quoted(title), ")");
    }
    if (session.AnyRow("Select Top 1 DataRecID From DataRec Where TableID=", record->table_id,
                       " And DataID=", record->data_id, " And Recver=", receiver)) {
      const std::string now = step.host().dates.FormatDateTime(step.host().clock.Now());
      session.Execute("Update DataRec Set RecTime=", db::Quoted(now),
                      ",Status=0,SeeTimes=0 Where TableID=", record->table_id, " And DataID=", record->data_id,
                      " And Recver=", receiver);
    } else {
      session.Execute("Insert Into DataRec (TableID,DataID,Recver) Values (", record->table_id, ",", record->data_id,
                      ",", receiver, ")");
    }
  });
  return Outcome::Done();
}

Outcome C_20(Step& step) {
  const std::string receivers = step.Evaluated(1);
  const std::string text = step.Evaluated(2);
  if (text.empty()) return Outcome::Done();
  ForEachReceiver(receivers, [&](std::string_view receiver) {
    step.session().Execute("insert into HandSetSend (Recver,Content) values(", db::Quoted(receiver), ",",
                           db::Quoted(text), ")");
  });
  return Outcome::Done();
}

Outcome C_21(Step& step) {
  const std::string addresses = step.Evaluated(1);
  const std::string title = step.Evaluated(2);
  const std::string text = step.Evaluated(3);
  const auto& call = step.call();
  ForEachReceiver(addresses, [&](std::string_view address) {
    step.session().Execute("insert into EmailSend (Email,Title,Content,TableID,DataID,FlowID,FlowNo) values(",
                           db::Quoted(address), ",", db::Quoted(title), ",", db::Quoted(text), ",", call.TableID, ",",
                           call.DataID, ",", call.FlowID, ",", call.FlowNo, ")");
  });
  return Outcome::Done();
}

Outcome C_80(Step& step) {
  const std::string entry = EvaluatedAndCut(step, 1, kMaxLogEntry);
  step.session().Execute("Insert InTo OperationRec (Name,IpAddress,Operation) values (", db::Quoted(kSystemUser), ",",
                         db::Quoted("127.0.0.1"), ",", db::Quoted(entry), ")");
  return Outcome::Done();
}

}  // namespace talm_flow::commands
