#include "engine/notices.h"

#include <string>

#include "talm_flow/text.h"

namespace talm_flow::engine {

void FlowNotice(db::Session& session, const Value& table_id, const Value& data_id, const db::Quoted& receiver,
                const db::Quoted& title) {
  session.Execute("insert into DataNotice (sort,TableID,DataID,Recver,NoticeTitle) values (2,", table_id, ",", data_id,
                  ",", receiver, ",", title, ")");
}

void DataTran(db::Session& session, const Value& table_id, const Value& data_id, const Value& tran_name,
              const Value& receivers, const Value& remark) {
  if (!session.host().records.CheckDocument(session.connection(), table_id, data_id)) return;
  const std::string title = JoinedText(tran_name) + "转发来新文件";
  const std::string receiver_list = JoinedText(receivers);
  for (const std::string_view name : Split(receiver_list, ",")) {
    const db::Quoted receiver(name);
    FlowNotice(session, table_id, data_id, receiver, db::Quoted(title));
    if (session.AnyRow("select Top 1 * from DataRec where TableID=", table_id, " and DataID=", data_id,
                       " and Recver=", receiver)) {
      session.Execute("update DataRec Set Status=0 where TableID=", table_id, " and DataID=", data_id,
                      " and Recver=", receiver);
    } else {
      session.Execute("insert into DataRec (TableID,DataID,Recver) values (", table_id, ",", data_id, ",", receiver,
                      ")");
    }
    session.Execute("insert into DataTran (TableID,DataID,TranName,RecName,Remark) values (", table_id, ",", data_id,
                    ",", db::Quoted(tran_name), ",", receiver, ",", db::Quoted(remark), ")");
  }
}

}  // namespace talm_flow::engine
