#include "program/talmflow.h"
#include "support/definitions.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

class CallTest : public TalmflowTest {
 protected:
  CallTest() {
    (void)Succeed({"init"});
    Write("leave.txt", Definition({{1, 0, "C_73"}}, "Leave requests"));
    (void)Succeed({"import", "leave.txt", "--creater", "kim"});
  }
};

TEST_F(CallTest, ResultAndByReferenceArgumentsArePrinted) {
  EXPECT_EQ(Succeed({"call", "Name.FlowExists", "1"}), "true\n");
  EXPECT_EQ(Succeed({"call", "Name.GetFlowName", "1"}), "leave\n");
  EXPECT_EQ(Succeed({"call", "Name.GetAll", "1", "null", "null", "null"}),
            "true\nFlowName = leave\nCreater = kim\nRemark = Leave requests\n");
}

TEST_F(CallTest, AnOperationWithoutAResultPrintsNoResult) {
  EXPECT_EQ(Succeed({"call", "Command.AddExecuteTimes", "5", "1"}), "");
  EXPECT_EQ(Rows("select Times from WorkFlowExecuteTimes"), nlohmann::json::parse(R"([{"Times":1}])"));
}

TEST_F(CallTest, ResultsAreGivenAsJson) {
  EXPECT_EQ(SucceedJson({"call", "Command.SeparateTableIDAndDataID", "TableID:12,DataID:345", "null", "null"}),
            nlohmann::json::parse(R"({"value":true,"params":["TableID:12,DataID:345",12,345]})"));
  EXPECT_EQ(SucceedJson({"call", "Command.ExpressToArr", "A=1", "null"}),
            nlohmann::json::parse(R"({"value":null,"params":["A=1",["a","=","1"]]})"));
  EXPECT_EQ(SucceedJson({"call", "Name.GetRs"})["value"],
            nlohmann::json::parse(R"([{"FlowID":1,"FlowName":"leave","Creater":"kim","Remark":"Leave requests"}])"));
}

TEST_F(CallTest, NullIsAWordThatCanBeEscaped) {
  EXPECT_EQ(SucceedJson({"call", "Name.Add", "\\null", "null", "\\\\null"})["params"],
            nlohmann::json::parse(R"(["null",null,"\\null"])"));
  EXPECT_EQ(Succeed({"call", "Name.GetFlowName", "2"}), "null\n");
}

TEST_F(CallTest, NegativeNumbersAreArguments) { EXPECT_EQ(Succeed({"call", "Name.FlowExists", "-1"}), "false\n"); }

TEST_F(CallTest, UnknownOperationsAndWrongCountsAreWrongUsage) {
  EXPECT_THAT(Fail(2, {"call", "Nobody.Add"}), HasSubstr("there is no class \"Nobody\""));
  EXPECT_THAT(Fail(2, {"call", "Name.Ad"}), HasSubstr("there is no operation \"Name.Ad\""));
  EXPECT_EQ(Fail(2, {"call", "Name.Add", "x"}),
            "talmflow: Name.Add: the argument Creater is missing; expected (FlowName,Creater,Remark)\n");
  EXPECT_EQ(Fail(2, {"call", "Name.FlowExists", "1", "2"}),
            "talmflow: Name.FlowExists: 1 argument too many; expected (FlowID)\n");
}

TEST_F(CallTest, DatabaseErrorsTellTheStatement) {
  EXPECT_THAT(
      Fail(1, {"call", "Name.FlowExists", "x"}),
      HasSubstr("the database refused the statement \"Select Top 1 FlowID from WorkFlowName Where FlowID=x\": "));
}

TEST_F(CallTest, NothingOfAFailingCallStaysUnlessItIsWanted) {
  (void)Rows("drop table WorkFlowParameter");
  const Words call = {"call", "Name.FlowAdd", "half", "kim", WithCrLf(Definition({{1, 0, "C_73", {"x"}}}))};
  const auto failed = Talmflow(call);
  EXPECT_EQ(failed.status, 1) << failed.out;
  EXPECT_EQ(Rows("select FlowName from WorkFlowName"), nlohmann::json::parse(R"([{"FlowName":"leave"}])"));
  Words keeping = call;
  keeping.insert(keeping.begin(), "--no-transaction");
  EXPECT_EQ(Talmflow(keeping).status, 1);
  EXPECT_EQ(Rows("select FlowName from WorkFlowName").size(), 2U);
}

}  // namespace
}  // namespace talm_flow::test
