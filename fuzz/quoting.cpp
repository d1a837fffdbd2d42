#include <string>

#include "db/session.h"
#include "expr/variables.h"
#include "properties.h"
#include "property.h"
#include "script_text.h"
#include "support/world.h"
#include "taken_back.h"

namespace talm_flow::fuzz {
namespace {

class Store {
 public:
  void Check(std::string_view text) {
    const TakenBack taken_back(world_.database());
    CheckColumn(text);
    CheckVariable(text);
  }

 private:
  void CheckColumn(std::string_view text) {
    db::Session session(world_.database(), services_);
    session.Execute("Insert Into HandSetSend (Content) Values (", db::Quoted(text), ")");
    const auto found =
        session.FirstField("Content", "Select Top 1 Content From HandSetSend Where Content=", db::Quoted(text));
    Require(found && found->IsText(), "a stored text is found by itself");
    RequireEqual(found->Text(), text, "a quoted text comes back from the database as it was");
    RequireEqual(session.FirstText("X", "Select ", db::Quoted(text), " As X"), text, "a selected literal is the text");
  }

  void CheckVariable(std::string_view text) {
    db::Session session(world_.database(), services_);
    const std::string name(text.substr(0, text.size() / 2));
    const Value one = 1;
    const expr::Scope scope{one, one, one, one};
    expr::UpdateVariableValue(session, one, one, name, "before");
    expr::UpdateVariableValue(session, one, one, name, text);
    RequireEqual(expr::ReadVariable(session, scope, name), text, "a variable holds the text that was written last");
    session.Execute("Delete From WorkFlowVariable");
  }

  test::World world_;
  host::Services services_ = world_.services();
};

/// U+2028 and U+2029 come back as themselves; everything else byte by byte.
void CheckScripts(const std::string& text) {
  host::ReferenceHost host;
  const auto& common = host.services().common;
  const std::string script = common.ScriptText(text);
  Require(script.find('<') == script.npos, "a script string opens no tag");
  std::string quoted = '"' + script + '"';
  std::string_view rest = quoted;
  const auto read = TakeScriptString(rest, '"');
  Require(read && rest.empty(), "a script string ends where it should");
  RequireEqual(*read, text, "a script string is the text");

  const std::string shown = common.DisplayText(text);
  Require(shown.find_first_of("<>\"' \t\f=`") == shown.npos || shown.find("\\'") != shown.npos,
          "a displayed text ends no attribute");
  std::string handler = '\'' + WithoutReferences(shown) + '\'';
  rest = handler;
  const auto displayed = TakeScriptString(rest, '\'');
  Require(displayed && rest.empty(), "a displayed script string ends where it should");
  RequireEqual(*displayed, text, "a displayed script string is the text");
}

}  // namespace

void CheckQuoting(std::string_view input) {
  static Store store;
  store.Check(input);
  CheckScripts(std::string(input));
}

}  // namespace talm_flow::fuzz
