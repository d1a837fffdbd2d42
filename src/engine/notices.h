#pragma once

/// Telling users about documents: single notices, and forwarding a document to several receivers.

#include "db/session.h"

namespace talm_flow::engine {

/// Writes one notice of the flow's own kind for one receiver.
void FlowNotice(db::Session& session, const Value& table_id, const Value& data_id, const db::Quoted& receiver,
                const db::Quoted& title);

/// Forwards a document to the ","-separated receivers, an empty one between two commas included: a notice, a receipt
/// that counts as unread again, and a row in the transfer log each. Nothing happens when the host does not allow it.
void DataTran(db::Session& session, const Value& table_id, const Value& data_id, const Value& tran_name,
              const Value& receivers, const Value& remark);

}  // namespace talm_flow::engine
