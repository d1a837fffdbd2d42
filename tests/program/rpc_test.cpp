#include "program/talmflow.h"
#include "support/definitions.h"

namespace talm_flow::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

/// A session on a database in memory.
class RpcTest : public TalmflowTest {
 protected:
  /// The answers, one a line.
  std::vector<json> Session(const std::string& input, const Words& options = {}) const {
    Words words = {"--db", "sqlite::memory:", "rpc", "--init"};
    words.insert(words.end(), options.begin(), options.end());
    const auto out = Succeed(words, input);
    std::vector<json> answers;
    for (std::size_t begin = 0; begin < out.size();) {
      const auto end = out.find('\n', begin);
      answers.push_back(json::parse(out.substr(begin, end - begin)));
      begin = end + 1;
    }
    return answers;
  }
  json Only(const std::string& input, const Words& options = {}) const {
    auto answers = Session(input, options);
    EXPECT_EQ(answers.size(), 1U);
    return answers.empty() ? json() : answers.front();
  }
};

std::string Request(const std::string& method, const json& params, const json& id = 1) {
  return json{{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", params}}.dump() + "\n";
}

TEST_F(RpcTest, AnAnswerHoldsValueAndParams) {
  EXPECT_EQ(Only(Request("Command.SeparateTableID", {"TableID:12", nullptr})),
            json::parse(R"({"jsonrpc":"2.0","id":1,"result":{"value":true,"params":["TableID:12",12]}})"));
}

TEST_F(RpcTest, AnswersComeInOrderWithTheirIds) {
  auto answers = Session(Request("Name.Add", {"Leave", "kim", ""}, "a") + Request("Name.MaxFlowID", json::array(), 2) +
                         Request("Name.GetFlowName", {1}, nullptr) + Request("Name.GetFlowName", {1}, 1.5));
  ASSERT_EQ(answers.size(), 4U);
  EXPECT_EQ(answers[0]["id"], "a");
  EXPECT_EQ(answers[0]["result"]["value"], 0);
  EXPECT_EQ(answers[1]["id"], 2);
  EXPECT_EQ(answers[1]["result"]["value"], 1);
  EXPECT_EQ(answers[2]["id"], nullptr);
  EXPECT_EQ(answers[2]["result"]["value"], "Leave");
  EXPECT_EQ(answers[3]["id"], 1.5);
}

TEST_F(RpcTest, ParamsMayBeLeftOff) {
  EXPECT_EQ(Only(R"({"jsonrpc":"2.0","id":1,"method":"Name.MaxFlowID"})")["result"],
            json::parse(R"({"value":0,"params":[]})"));
}

TEST_F(RpcTest, RowSetsAreArraysOfObjectsInColumnOrder) {
  const auto out = Succeed({"--db", "sqlite::memory:", "rpc", "--init"},
                           Request("Name.Add", {"Leave", "kim", nullptr}) + Request("Name.GetRs", json::array()));
  EXPECT_THAT(out, HasSubstr(R"("value":[{"FlowID":1,"FlowName":"Leave","Creater":"kim","Remark":""}])"));
}

TEST_F(RpcTest, StatementsRunOnTheSameConnection) {
  auto answers = Session(Request("Connection.Execute", {"Insert Into WorkFlowName (FlowName) Values ('Leave')"}) +
                         Request("Connection.Execute", {"Select Top 1 FlowID,FlowName,Creater from WorkFlowName"}) +
                         Request("Name.FlowExists", {1}) +
                         Request("Connection.Execute", {"select FlowID from WorkFlowName where 1=0"}));
  EXPECT_EQ(answers[0]["result"]["value"], nullptr);
  EXPECT_EQ(answers[0]["result"]["params"], json({"Insert Into WorkFlowName (FlowName) Values ('Leave')"}));
  EXPECT_EQ(answers[1]["result"]["value"], json::parse(R"([{"FlowID":1,"FlowName":"Leave","Creater":null}])"));
  EXPECT_EQ(answers[2]["result"]["value"], true);
  EXPECT_EQ(answers[3]["result"]["value"], json::array());
}

TEST_F(RpcTest, TheTraceTellsTheStatementsOfEachCall) {
  auto answers = Session(Request("Name.Update", {1, "Leave", "kim", ""}) + Request("Command.GetVarTypeByName", {"x"}) +
                             Request("Connection.Execute", {"select 1 as one"}) + Request("Name.FlowExists", {"x"}) +
                             Request("Name.Nothing", json::array()) + "nonsense\n" + "[]\n",
                         {"--trace"});
  EXPECT_EQ(answers[0]["result"]["statements"],
            json::parse(R"(["Select Top 1 FlowID from WorkFlowName Where FlowID=1"])"));
  EXPECT_EQ(answers[1]["result"]["statements"], json::array());
  EXPECT_EQ(answers[2]["result"]["statements"], json::array());
  EXPECT_EQ(answers[3]["error"]["data"]["statements"],
            json::parse(R"(["Select Top 1 FlowID from WorkFlowName Where FlowID=x"])"));
  for (const std::size_t i : {4U, 5U, 6U}) EXPECT_EQ(answers[i]["error"]["data"]["statements"], json::array()) << i;
}

TEST_F(RpcTest, WithoutATraceNoStatementsAreTold) {
  EXPECT_FALSE(Only(Request("Name.MaxFlowID", json::array()))["result"].contains("statements"));
}

TEST_F(RpcTest, TheClockMayStandStill) {
  auto answers = Session(
      Request(
          "Connection.Execute",
          {"Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (1,1,'C_60_1','now')"}) +
          Request("Command.C_60", {7, 1, 7, 12, 1, 1, "kim", "", 0, 0}) +
          Request("Connection.Execute", {"select VariableValue from WorkFlowVariable"}),
      {"--clock", "2026-01-31 09:30:00"});
  EXPECT_EQ(answers[2]["result"]["value"][0]["VariableValue"], "2026/1/31 9:30:00");
}

struct ErrorCase {
  const char* name;
  std::string line;
  int code;
};

class RpcErrorTest : public RpcTest, public testing::WithParamInterface<ErrorCase> {};

TEST_P(RpcErrorTest, IsAnsweredAndTheSessionGoesOn) {
  auto answers = Session(GetParam().line + "\n" + Request("Name.MaxFlowID", json::array(), "next"));
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0]["error"]["code"], GetParam().code) << answers[0];
  EXPECT_FALSE(answers[0]["error"]["message"].get<std::string>().empty());
  EXPECT_FALSE(answers[0].contains("result"));
  EXPECT_EQ(answers[1]["id"], "next");
  EXPECT_EQ(answers[1]["result"]["value"], 0);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, RpcErrorTest,
    testing::Values(
        ErrorCase{"NoJson", "{\"jsonrpc\"", -32700}, ErrorCase{"TwoValues", "{} {}", -32700},
        ErrorCase{"NoUtf8", "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"\xFF\"}", -32700},
        ErrorCase{"HugeNumber", R"({"jsonrpc":"2.0","id":1,"method":"Name.FlowExists","params":[1e999]})", -32700},
        ErrorCase{"DeepNesting", std::string(100000, '['), -32700}, ErrorCase{"AText", "\"hello\"", -32600},
        ErrorCase{"EmptyBatch", "[]", -32600}, ErrorCase{"NoVersion", R"({"id":1,"method":"Name.MaxFlowID"})", -32600},
        ErrorCase{"OldVersion", R"({"jsonrpc":"1.0","id":1,"method":"Name.MaxFlowID"})", -32600},
        ErrorCase{"NoMethod", R"({"jsonrpc":"2.0","id":1})", -32600},
        ErrorCase{"MethodNoText", R"({"jsonrpc":"2.0","id":1,"method":5})", -32600},
        ErrorCase{"ParamsNoArray", R"({"jsonrpc":"2.0","id":1,"method":"Name.FlowExists","params":5})", -32600},
        ErrorCase{"IdAnArray", R"({"jsonrpc":"2.0","id":[1],"method":"Name.MaxFlowID"})", -32600},
        ErrorCase{"UnknownClass", R"({"jsonrpc":"2.0","id":1,"method":"Nobody.Add"})", -32601},
        ErrorCase{"UnknownOperation", R"({"jsonrpc":"2.0","id":1,"method":"Name.add"})", -32601},
        ErrorCase{"EmptyMethod", R"({"jsonrpc":"2.0","id":1,"method":""})", -32601},
        ErrorCase{"ByName", R"({"jsonrpc":"2.0","id":1,"method":"Name.FlowExists","params":{"FlowID":1}})", -32602},
        ErrorCase{"AnArrayArgument", R"({"jsonrpc":"2.0","id":1,"method":"Name.FlowExists","params":[[1]]})", -32602},
        ErrorCase{"AnObjectArgument", R"({"jsonrpc":"2.0","id":1,"method":"Name.FlowExists","params":[{}]})", -32602},
        ErrorCase{"ExecuteNothing", R"({"jsonrpc":"2.0","id":1,"method":"Connection.Execute","params":[]})", -32602},
        ErrorCase{"ExecuteANumber", R"({"jsonrpc":"2.0","id":1,"method":"Connection.Execute","params":[1]})", -32602},
        ErrorCase{"ExecuteNonsense", R"({"jsonrpc":"2.0","id":1,"method":"Connection.Execute","params":["x"]})",
                  -32000},
        ErrorCase{"RefusedStatement", R"({"jsonrpc":"2.0","id":1,"method":"Name.FlowExists","params":["x"]})", -32000}),
    [](const auto& test) { return test.param.name; });

TEST_F(RpcTest, MissingAndSurplusArgumentsAreNamed) {
  auto answers = Session(Request("Name.Add", {"x"}) + Request("Name.FlowExists", {1, 2, 3}));
  EXPECT_EQ(answers[0]["error"]["code"], -32602);
  EXPECT_EQ(answers[0]["error"]["message"],
            "Name.Add: the argument Creater is missing; expected (FlowName,Creater,Remark)");
  EXPECT_EQ(answers[0]["error"]["data"],
            json::parse(R"({"missing":["Creater","Remark"],"expected":["FlowName","Creater","Remark"]})"));
  EXPECT_EQ(answers[1]["error"]["data"], json::parse(R"({"surplus":2,"expected":["FlowID"]})"));
}

TEST_F(RpcTest, ErrorsOfTheComponentTellTheirKind) {
  auto answers = Session(Request("Name.FlowExists", {"x"}) +
                         Request("Command.SeparateTableIDAndDataID", {"TableID:70000,DataID:1", nullptr, nullptr}) +
                         Request("Command.GetVariableValue", {1, 1, "10^400", 12, 1}));
  EXPECT_EQ(answers[0]["error"]["code"], -32000);
  EXPECT_EQ(answers[0]["error"]["data"]["kind"], "DatabaseError");
  EXPECT_EQ(answers[0]["error"]["data"]["statement"], "Select Top 1 FlowID from WorkFlowName Where FlowID=x");
  EXPECT_THAT(answers[0]["error"]["message"].get<std::string>(), HasSubstr("x"));
  EXPECT_EQ(answers[1]["error"]["data"], json::parse(R"({"kind":"OverflowError"})"));
  EXPECT_EQ(answers[2]["error"]["data"], json::parse(R"({"kind":"OverflowError"})"));
}

TEST_F(RpcTest, NothingIsTakenBackWhenACallFails) {
  auto answers =
      Session(Request("Connection.Execute", {"Insert Into WorkFlowName (FlowName) Values ('Leave')"}) +
              Request("InOut.CreatFlow", {1, "//\r\nVer:Flow_V600\r\nFlowRemark:new\r\nStepBegin\r\nFlowNo:x"}) +
              Request("Name.GetRemark", {1}));
  EXPECT_EQ(answers[1]["error"]["data"]["kind"], "DatabaseError");
  EXPECT_EQ(answers[2]["result"]["value"], "new");
}

TEST_F(RpcTest, ABatchIsAnsweredByAnArray) {
  auto answer = Only(R"([{"jsonrpc":"2.0","id":1,"method":"Name.Add","params":["a","",""]}, 5,)"
                     R"({"jsonrpc":"2.0","method":"Name.Add","params":["b","",""]},)"
                     R"({"jsonrpc":"2.0","id":2,"method":"Name.MaxFlowID"}])"
                     "\n");
  ASSERT_EQ(answer.size(), 3U);
  EXPECT_EQ(answer[0]["result"]["value"], 0);
  EXPECT_EQ(answer[1]["error"]["code"], -32600);
  EXPECT_EQ(answer[1]["id"], nullptr);
  EXPECT_EQ(answer[2]["result"]["value"], 2);
}

TEST_F(RpcTest, ADeeplyNestedLineDoesNoHarm) {
  const std::string deep = std::string(100000, '[') + std::string(100000, ']');
  const auto request = R"({"jsonrpc":"2.0","id":1,"method":"Name.FlowExists","params":)" + deep + "}\n";
  auto answers = Session(deep + "\n" + request);
  ASSERT_EQ(answers.size(), 2U);
  EXPECT_EQ(answers[0][0]["error"]["code"], -32600);
  EXPECT_EQ(answers[1]["error"]["code"], -32602);
}

TEST_F(RpcTest, NotificationsAreCarriedOutWithoutAnAnswer) {
  auto answers = Session(
      "{\"jsonrpc\":\"2.0\",\"method\":\"Name.Add\",\"params\":[\"a\",\"\",\"\"]}\n"
      "{\"jsonrpc\":\"2.0\",\"method\":\"Nobody.Add\"}\n"
      "[{\"jsonrpc\":\"2.0\",\"method\":\"Name.Add\",\"params\":[\"b\",\"\",\"\"]}]\n" +
      Request("Name.MaxFlowID", json::array()));
  ASSERT_EQ(answers.size(), 1U);
  EXPECT_EQ(answers[0]["result"]["value"], 2);
}

TEST_F(RpcTest, BlankLinesAreIgnoredAndTheLastLineNeedsNoEnd) {
  EXPECT_EQ(Only("\n  \r\n{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"Name.MaxFlowID\"}")["id"], 1);
  EXPECT_TRUE(Session("").empty());
}

TEST_F(RpcTest, LinesMayBeVeryLong) {
  const std::string text(3000000, 'x');
  EXPECT_EQ(Only(Request("InOut.IsFlowRemark", {text}))["result"]["params"][0], text);
}

TEST_F(RpcTest, NumbersKeepTheirKind) {
  auto params = Only(R"({"jsonrpc":"2.0","id":1,"method":"Command.ExecuteIDExists","params":)"
                     R"([0,9007199254740993,1.5,1.0,18446744073709551615,true,null,"\u0000x",-3]})"
                     "\n")["result"]["params"];
  EXPECT_EQ(params[1], 9007199254740993);
  EXPECT_TRUE(params[1].is_number_integer());
  EXPECT_EQ(params[2], 1.5);
  EXPECT_TRUE(params[3].is_number_float());
  EXPECT_EQ(params[4], 18446744073709551616.0);
  EXPECT_EQ(params[5], true);
  EXPECT_EQ(params[6], nullptr);
  EXPECT_EQ(params[7], std::string("\0x", 2));
  EXPECT_EQ(params[8], -3);
}

TEST_F(RpcTest, BytesThatAreNoUtf8AreReplaced) {
  auto answers = Session(Request("Connection.Execute", {"select cast(x'41FF42' as text) as t"}));
  EXPECT_EQ(answers[0]["result"]["value"][0]["t"],
            "A\xEF\xBF\xBD"
            "B");
}

TEST_F(RpcTest, ADatabaseFileIsCreatedOnlyWhenItIsAskedFor) {
  EXPECT_THAT(Fail(1, {"rpc"}), HasSubstr("there is no database"));
  EXPECT_FALSE(Exists("talmflow.db"));
  (void)Succeed({"rpc", "--init"}, Request("Name.Add", {"Leave", "", ""}));
  EXPECT_EQ(Rows("select FlowName from WorkFlowName"), json::parse(R"([{"FlowName":"Leave"}])"));
}

TEST_F(RpcTest, WithoutInitADatabaseInMemoryIsEmpty) {
  const auto out = Succeed({"--db", "sqlite::memory:", "rpc"}, Request("Name.MaxFlowID", json::array()));
  EXPECT_EQ(json::parse(out)["error"]["data"]["kind"], "DatabaseError");
}

// ---- What a failing request leaves ------------------------------------------------------------------------------------

/// A request that writes a row and then fails, and one that looks for the row.
std::string FailingRequest() {
  return Request("Connection.Execute", {"drop table WorkFlowConstruction"}) +
         Request("Name.FlowAdd", {"half", "kim", WithCrLf(Definition({{1, 0, "C_17"}}))}) +
         Request("Name.MaxFlowID", json::array());
}

TEST_F(RpcTest, WhatAFailingRequestWroteStays) {
  const auto answers = Session(FailingRequest());
  ASSERT_EQ(answers.size(), 3U);
  EXPECT_TRUE(answers[1].contains("error"));
  EXPECT_EQ(answers[2]["result"]["value"], 1);
}

TEST_F(RpcTest, RequestsCanBeAllOrNothing) {
  const auto answers = Session(FailingRequest(), {"--all-or-nothing"});
  ASSERT_EQ(answers.size(), 3U);
  EXPECT_EQ(answers[1]["error"]["data"]["kind"], "DatabaseError");
  EXPECT_EQ(answers[2]["result"]["value"], 0);
}

TEST_F(RpcTest, AllOrNothingRequestsGoIntoTheCallersTransaction) {
  const auto answers =
      Session(Request("Connection.Execute", {"begin"}) + Request("Name.Add", {"a", "kim", ""}) +
                  Request("Connection.Execute", {"rollback"}) + Request("Name.MaxFlowID", json::array()),
              {"--all-or-nothing", "--trace"});
  ASSERT_EQ(answers.size(), 4U);
  EXPECT_THAT(answers[1]["result"]["statements"].dump(), HasSubstr("WorkFlowName"));
  EXPECT_EQ(answers[3]["result"]["value"], 0);
}

}  // namespace
}  // namespace talm_flow::test
