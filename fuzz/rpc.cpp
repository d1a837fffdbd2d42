#include "rpc_session.h"

#include <array>
#include <nlohmann/json.hpp>

#include "properties.h"
#include "property.h"
#include "support/world.h"
#include "taken_back.h"
#include "talm_flow/adapters/database.h"
#include "talm_flow/error.h"
#include "talm_flow/host/file_system.h"
#include "talm_flow/text.h"

namespace talm_flow::fuzz {
namespace {

/// No file is touched.
class NoFiles : public host::FileSystem {
 public:
  void RequireEncodable(std::string_view, std::string_view) override {}
  [[nodiscard]] bool FileExists(std::string_view) override { return false; }
  void DeleteFile(std::string_view name) override { throw FileError(std::string(name) + " is not there"); }
  [[nodiscard]] std::unique_ptr<host::TextStream> CreateTextFile(std::string_view name) override {
    throw FileError(std::string(name) + " cannot be written");
  }
};

/// Hands on what reads and writes rows, and nothing that reaches beyond the database in memory or takes its time.
class RowsOnly : public adapters::Database {
 public:
  explicit RowsOnly(adapters::Database& inner) : inner_(inner) {}

  std::unique_ptr<RowSet> Execute(std::string_view statement) override {
    Watch(statement);
    return inner_.Execute(statement);
  }
  [[nodiscard]] std::unique_ptr<RowSet> Open(std::string_view query) override {
    Watch(query);
    return inner_.Open(query);
  }
  [[nodiscard]] Connection& Unobserved() override { return inner_.Unobserved(); }

  void Begin() override { inner_.Begin(); }
  void Commit() override { inner_.Commit(); }
  void Rollback() override { inner_.Rollback(); }
  [[nodiscard]] bool InTransaction() const override { return inner_.InTransaction(); }
  [[nodiscard]] std::vector<std::string> MissingTables() override { return inner_.MissingTables(); }
  void CreateTables() override { inner_.CreateTables(); }
  void CreateFormTable(std::int32_t table_id, const std::vector<std::pair<std::string, std::string>>& units) override {
    inner_.CreateFormTable(table_id, units);
  }
  [[nodiscard]] std::vector<adapters::TableDescription> DescribeTables() override { return inner_.DescribeTables(); }
  void CreateFormTableLike(const adapters::TableDescription& form) override { inner_.CreateFormTableLike(form); }
  [[nodiscard]] std::int64_t LastKey(const adapters::TableDescription& table) override { return inner_.LastKey(table); }
  void ContinueKeys(const adapters::TableDescription& table, std::int64_t key) override {
    inner_.ContinueKeys(table, key);
  }

 private:
  static void Watch(std::string_view statement) {
    const std::string lowered = LowerCase(statement);
    const auto begins = [&](std::string_view word) { return TrimBlanks(lowered).starts_with(word); };
    constexpr std::array<std::string_view, 6> kTooMuch = {"blob", "printf", "format", "with", "replace(", "join"};
    bool refused = !(begins("select") || begins("insert") || begins("update") || begins("delete"));
    for (const std::string_view word : kTooMuch) refused = refused || lowered.find(word) != lowered.npos;
    if (refused) throw DatabaseError("refused", std::string(statement));
  }

  adapters::Database& inner_;
};

bool IsBlank(std::string_view line) { return line.find_first_not_of(" \t\r\n") == line.npos; }

void CheckAnswer(const nlohmann::json& answer) {
  Require(answer.is_object() && answer.value("jsonrpc", "") == "2.0", "an answer is of the protocol");
  Require(answer.contains("id"), "an answer has an id");
  Require(answer.contains("result") != answer.contains("error"), "an answer is a result or an error");
  if (answer.contains("result")) {
    Require(answer["result"].contains("value") && answer["result"]["params"].is_array(), "a result has both its parts");
    return;
  }
  const int code = answer["error"]["code"].get<int>();
  constexpr std::array<int, 5> kCodes = {-32700, -32600, -32601, -32602, -32000};
  Require(std::find(kCodes.begin(), kCodes.end(), code) != kCodes.end(),
          "an error has one of the known codes: " + answer.dump());
}

class Sessions {
 public:
  Sessions() {
    world_.Run("Insert Into WorkFlowName (FlowName,Creater,Remark) Values ('f','c','r')");
    world_.Step(1, 1, 0, "C_39");
    world_.Parameter(1, 1, "C_39_1", "x");
    world_.Parameter(1, 1, "C_39_2", "1+2");
  }

  void Check(std::string_view input) {
    const TakenBack taken_back(world_.database());
    RowsOnly rows(world_.database());
    program::RpcSession session(rows, Services(), {.trace = input.size() % 2 == 0});
    while (!input.empty()) {
      const std::size_t end = std::min(input.find('\n'), input.size());
      CheckLine(session, input.substr(0, end));
      input.remove_prefix(std::min(end + 1, input.size()));
    }
    const auto answer = session.Answer(
        R"({"jsonrpc":"2.0","id":"last","method":"Command.GetVariableValue","params":[0,0,"1+2*3",0,0]})");
    Require(answer && nlohmann::json::parse(*answer)["result"]["value"] == "7", "a session goes on after any line");
  }

 private:
  host::Services Services() {
    const host::Services all = world_.services();
    return {all.common, all.records, all.tables, all.user_lists, all.forms, all.dates, all.urls, all.clock, files_};
  }

  static void CheckLine(program::RpcSession& session, std::string_view line) {
    const auto answer = session.Answer(line);
    if (!answer) {
      if (IsBlank(line)) return;
      const auto request = nlohmann::json::parse(line);
      Require(request.is_object() || request.is_array(), "only notifications are not answered");
      return;
    }
    Require(!IsBlank(line), "a blank line is not answered");
    Require(answer->find('\n') == answer->npos, "an answer is one line");
    const auto read = nlohmann::json::parse(*answer);
    if (!read.is_array()) return CheckAnswer(read);
    Require(!read.empty(), "the answer to a batch is not empty");
    for (const auto& one : read) CheckAnswer(one);
  }

  test::World world_;
  NoFiles files_;
};

}  // namespace

void CheckRpc(std::string_view input) {
  static Sessions sessions;
  sessions.Check(input);
}

}  // namespace talm_flow::fuzz
