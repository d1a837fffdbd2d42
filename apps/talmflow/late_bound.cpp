#include "talm_flow/late_bound.h"

#include <iostream>

#include "json.h"
#include "rpc_session.h"
#include "talm_flow/conversion.h"
#include "workspace.h"

namespace talm_flow::program {
namespace {

/// "null" is Null; "\null" is the text "null", and with each further backslash one more of them stays.
late_bound::Argument ArgumentOf(const std::string& word) {
  const auto backslashes = word.find_first_not_of('\\');
  if (backslashes == std::string::npos || word.compare(backslashes, std::string::npos, "null") != 0) return word;
  if (backslashes == 0) return nullptr;
  return word.substr(1);
}

std::string Printed(const Json& json) { return json.is_string() ? json.get<std::string>() : Dump(json, 2); }

class Call : public Subcommand {
 public:
  explicit Call(CLI::App& parent)
      : Subcommand(
            parent, "call", "Call any public operation of Command, Construction, InOut or Name",
            "talmflow call Name.FlowExists 7\n"
            "talmflow call Name.GetAll 7 null null null\n"
            "talmflow call Command.SeparateTableID TableID:12 null\n"
            "\nArguments are texts, in order, without the connection; null is Null, and \\null is the text null.\n"
            "The result is printed first, then the arguments that the operation takes by reference.\n"
            "After an error nothing of what the operation wrote stays, unless --no-transaction is given.") {
    app().add_option("operation", operation_, "CLASS.OPERATION")->required();
    app().add_option("arguments", arguments_, "The operation's arguments");
  }

  void Run(const GlobalOptions& options) override {
    const auto& operation = Operation();
    Workspace workspace(options, Need::kExisting);
    std::vector<late_bound::Argument> arguments;
    late_bound::Result result;
    workspace.Together([&] {
      arguments.clear();  // a call that is repeated begins with what was given
      for (const auto& word : arguments_) arguments.push_back(ArgumentOf(word));
      result = late_bound::Call(operation, workspace.connection(), workspace.services(), arguments);
    });
    if (options.json) {
      Json params = Json::array();
      for (const auto& argument : arguments) params.push_back(ToJson(argument));
      std::cout << Dump({{"value", ToJson(result)}, {"params", params}}) << '\n';
      return;
    }
    if (!std::holds_alternative<std::monostate>(result)) std::cout << Printed(ToJson(result)) << '\n';
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      if (operation.IsByReference(i)) {
        std::cout << operation.ArgumentName(i) << " = " << Printed(ToJson(arguments[i])) << '\n';
      }
    }
  }

 private:
  [[nodiscard]] const late_bound::Operation& Operation() const {
    try {
      const auto& operation = late_bound::Resolve(operation_);
      late_bound::RequireCount(operation, arguments_.size());
      return operation;
    } catch (const ArgumentError& error) {
      throw UsageError(error.what());
    }
  }

  std::string operation_;
  std::vector<std::string> arguments_;
};

class Rpc : public Subcommand {
 public:
  explicit Rpc(CLI::App& parent)
      : Subcommand(parent, "rpc", "Answer JSON-RPC 2.0 requests, one a line, on standard input and output",
                   "talmflow rpc\n"
                   "talmflow --db sqlite::memory: rpc --init --trace --clock \"2026-01-31 09:30:00\"\n"
                   "echo '{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"Name.MaxFlowID\"}' | talmflow rpc\n"
                   "\nMethods are CLASS.OPERATION with the operation's arguments by position, and Connection.Execute\n"
                   "with one statement. With --trace every answer tells the component's statements.\n"
                   "What a failing request wrote stays, unless --all-or-nothing is given: then each request is a\n"
                   "transaction, done again when another connection is in the way.") {
    app().add_flag("--init", init_, "Create the database, or the tables that it lacks");
    app().add_flag("--all-or-nothing", all_or_nothing_, "Take back what a failing request wrote");
  }

  void Run(const GlobalOptions& options) override {
    GlobalOptions quiet = options;
    quiet.trace = false;
    Workspace workspace(quiet, init_ ? Need::kAny : Need::kExisting);
    if (init_) workspace.database().CreateTables();
    RpcSession session(workspace.database(), workspace.services(),
                       {.trace = options.trace, .all_or_nothing = all_or_nothing_});
    for (std::string line; std::getline(std::cin, line);) {
      if (const auto answer = session.Answer(line)) std::cout << *answer << std::endl;
    }
  }

 private:
  bool init_ = false;
  bool all_or_nothing_ = false;
};

}  // namespace

void AddLateBoundSubcommands(CLI::App& parent, Subcommands& all) {
  all.push_back(std::make_unique<Call>(parent));
  all.push_back(std::make_unique<Rpc>(parent));
}

}  // namespace talm_flow::program
