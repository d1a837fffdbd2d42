#include "db/session.h"

#include "talm_flow/error.h"

namespace talm_flow::db {

void Quoted::AppendTo(std::string& out, const host::CommonFunctions& common) const {
  if (value_ == nullptr) {
    common.SqlText(text_, out);
  } else if (value_->IsText()) {
    common.SqlText(value_->Text(), out);
  } else {
    common.SqlText(JoinedText(*value_), out);
  }
}

std::int32_t Session::NewExecuteId() {
  constexpr std::string_view kStatement = "SELECT @@IDENTITY AS ExecuteID";
  const auto rows = connection_.Execute(kStatement);
  if (!rows || !HasRow(*rows)) throw DatabaseError("the connection gave no new key", std::string(kStatement));
  return ToInt32(rows->Field("ExecuteID"));
}

}  // namespace talm_flow::db
