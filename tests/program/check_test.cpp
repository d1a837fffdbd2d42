// `talmflow check`, and what `talmflow import` does with findings.

#include <algorithm>

#include "program/talmflow.h"

namespace talm_flow::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

class CheckTest : public TalmflowTest {
 protected:
  CheckTest() {
    Write("good.flow", Definition({{1, 0, "C_60", {"now"}}}));
    Write("trap.flow", Definition({{1, 0, "C_39", {"sum", "x + 1"}}}));
    Write("bad.flow", Definition({{1, 0, "C_60", {"now"}}, {2, 1, "C_16", {"9"}}, {3, 1, "C_39", {"sum", "x + 1"}}}));
  }
};

constexpr const char* kBadFindings =
    "bad.flow:21: error E206, step 2, C_16_1: The flow has no step 9; the command does nothing.\n"
    "    Write the number of a step of this flow, in digits.\n"
    "bad.flow:31: warning W310, step 3, C_39_2: The blanks beside \"x\" belong to the name; the variable \"x \" is "
    "looked "
    "up.\n"
    "    Remove the blanks around names.";

TEST_F(CheckTest, AFileIsCheckedWithoutADatabase) {
  EXPECT_EQ(Succeed({"check", "good.flow"}), "No findings.\n");
  const auto bad = Talmflow({"check", "bad.flow"});
  EXPECT_EQ(bad.status, 1);
  EXPECT_EQ(bad.err, "");
  EXPECT_EQ(bad.out, std::string(kBadFindings) + "\n1 error, 1 warning.\n");
}

TEST_F(CheckTest, WarningsAloneDoNotFail) {
  EXPECT_THAT(Succeed({"check", "trap.flow"}), HasSubstr("0 errors, 1 warning."));
}

TEST_F(CheckTest, ATextMayComeFromStandardInput) {
  EXPECT_EQ(Succeed({"check", "-"}, Definition({{1, 0, "C_73"}})), "No findings.\n");
}

TEST_F(CheckTest, FindingsAsJsonHaveAllMembers) {
  const auto bad = Talmflow({"check", "bad.flow", "--json"});
  EXPECT_EQ(bad.status, 1);
  const auto findings = json::parse(bad.out);
  ASSERT_EQ(findings.size(), 2U);
  EXPECT_EQ(findings[0], json::parse(R"({"code":"E206","severity":"error","flow":null,"step":2,"parameter":"C_16_1",
    "line":21,"problem":"The flow has no step 9; the command does nothing.",
    "advice":"Write the number of a step of this flow, in digits."})"));
  EXPECT_EQ(SucceedJson({"check", "good.flow"}), json::array());
}

TEST_F(CheckTest, AStoredFlowIsCheckedWithItsChildFlows) {
  (void)Succeed({"init"});
  Write("child.flow", Definition({{1, 0, "C_18", {"5"}}}));
  (void)Load("child.flow");
  const auto result = Talmflow({"check", "child"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, StartsWith("flow 1 \"child\": error E216, step 1, C_18_1: There is no flow 5;"));
  EXPECT_EQ(json::parse(Talmflow({"check", "1", "--json"}).out)[0]["flow"], 1);
}

TEST_F(CheckTest, WhatIsNeitherFileNorFlowIsTold) {
  (void)Succeed({"init"});
  EXPECT_THAT(Fail(1, {"check", "nothing"}), HasSubstr("nothing"));
}

TEST_F(CheckTest, ImportRefusesErrorsAndTellsThem) {
  (void)Succeed({"init"});
  EXPECT_EQ(Fail(1, {"import", "bad.flow"}),
            "talmflow: the definition holds errors and was not loaded; --force loads it all the same\n" +
                std::string(kBadFindings) + "\n");
  EXPECT_EQ(Rows("select FlowID from WorkFlowName"), json::array());
}

TEST_F(CheckTest, ImportLoadsErrorsWhenForcedAndTellsThem) {
  (void)Succeed({"init"});
  const auto result = Talmflow({"import", "bad.flow", "--force"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "Added flow 1 \"bad\" with 3 steps\n");
  EXPECT_EQ(result.err, std::string(kBadFindings) + "\n");
}

TEST_F(CheckTest, ImportLoadsTrapsAndTellsThem) {
  (void)Succeed({"init"});
  const auto result = Talmflow({"import", "trap.flow", "--json"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(json::parse(result.out)["findings"][0]["code"], "W310");
}

TEST_F(CheckTest, ImportLooksForChildFlows) {
  (void)Succeed({"init"});
  Write("parent.flow", Definition({{1, 0, "C_18", {"1"}}}));
  EXPECT_THAT(Fail(1, {"import", "parent.flow"}), HasSubstr("E216"));
  (void)Succeed({"import", "good.flow"});
  EXPECT_THAT(Succeed({"import", "parent.flow"}), StartsWith("Added flow 2"));
  EXPECT_THAT(Fail(1, {"import", "parent.flow", "--flow", "1"}), HasSubstr("E403"));
}

}  // namespace
}  // namespace talm_flow::test
