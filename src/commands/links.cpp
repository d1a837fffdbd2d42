/// HTML links for pages and messages: to a record's display page (C_90) and to a web page (C_91).

#include <string>

#include "commands/handlers.h"
#include "commands/inputs.h"
#include "talm_flow/conversion.h"

namespace talm_flow::commands {

Outcome C_90(Step& step) {
  const auto record = Record(step, 1);
  if (!record) return Outcome::Done();
  const std::string encoded =
      step.host().urls.EncodeUrl(step.host().records.EncodeRecord(record->table_id, record->data_id));
  const std::string text = EvaluatedOrStored(step, 2);
  if (text.empty()) return Outcome::Done();

  std::string link = R"(<A Href="PerDataDisplay.asp?DataEncode=)";
  link += encoded;
  link += R"(" onclick="window.open(this.href,'_blank','toolbar=no,location=no,directories=no,status=no,menubar=no,)";
  link += R"(scrollbars=yes,resizable=yes,width=500,height=400');return false;">)";
  link += text;
  link += "</A>";
  step.StoreVariable(step.Stored(3), link);
  return Outcome::Done();
}

Outcome C_91(Step& step) {
  const std::string stored_page = step.Stored(1);
  auto page = ParseNumber(stored_page);
  if (!page) page = ParseNumber(step.Evaluate(stored_page));
  if (!page) return Outcome::Done();
  const std::string page_number = std::to_string(ToInt32(*page));
  const std::string text = EvaluatedOrStored(step, 2);
  if (text.empty()) return Outcome::Done();
  const std::string parameter = step.host().urls.EncodeUrl(EvaluatedOrStored(step, 3));

  std::string link = R"(<A Href="WorkWeb.asp?WebID=)";
  link += page_number;
  link += "&TableDataParam=";
  link += parameter;
  link += R"(" onclick="window.open(this.href,'_blank','toolbar=no,location=no,directories=no,status=no,menubar=no,)";
  link += R"(scrollbars=yes,resizable=yes');return false;">)";
  link += text;
  link += "</A>";
  step.StoreVariable(step.Stored(4), link);
  return Outcome::Done();
}

}  // namespace talm_flow::commands
