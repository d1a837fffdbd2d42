#include "program/talmflow.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const StepText kFirst = {1, 0, "C_22", {"x", "\"a\""}, "first"};

class DiffTest : public TalmflowTest {
 protected:
  DiffTest() {
    (void)Succeed({"init"});
    Write("old.txt", Definition({kFirst, {2, 1, "C_73", {}, "second"}, {3, 1, "C_74", {}, "third"}}, "one"));
    Write("new.txt", Definition({{1, 0, "C_22", {"x", "\"b\""}, "first"},
                                 {3, 1, "C_74", {}, "third"},
                                 {2, 3, "C_73", {}, "second"},
                                 {4, 1, "C_80", {"\"done\""}, "fourth"}},
                                "one and two"));
    (void)Succeed({"import", "old.txt"});
  }

  /// What it prints when the two differ.
  [[nodiscard]] std::string Differ(const Words& words) const {
    const auto result = Talmflow(words);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "");
    return result.out;
  }
};

TEST_F(DiffTest, DefinitionsThatAreAlikeGiveStatusZero) {
  EXPECT_EQ(Succeed({"diff", "old.txt", "old.txt"}), "old.txt and old.txt are alike.\n");
  EXPECT_EQ(Succeed({"diff", "old", "old.txt"}), "flow 1 \"old\" and old.txt are alike.\n");
  EXPECT_EQ(SucceedJson({"diff", "1", "old.txt"}), nlohmann::json::array());
}

TEST_F(DiffTest, ChangesAreToldStepByStepAndGiveStatusOne) {
  EXPECT_EQ(Differ({"diff", "old", "new.txt"}),
            "From flow 1 \"old\" to new.txt:\n"
            "~ The flow's remark: one -> one and two\n"
            "~ Step 1\n"
            "    ~ Text (C_22_2): \"a\" -> \"b\"\n"
            "~ Step 2\n"
            "    ~ parent: step 1 -> step 3\n"
            "+ Step 4  \"fourth\"\n"
            "    + command: C_80 Operation log\n"
            "    + serial number: 0\n"
            "    + Text (C_80_1): \"done\"\n");
  EXPECT_THAT(Differ({"diff", "new.txt", "old"}), HasSubstr("\n- Step 4  \"fourth\"\n"));
}

TEST_F(DiffTest, LongValuesStandBelowEachOtherAndTheOrderOfChildrenIsTold) {
  Write("a.txt", Definition({kFirst, {2, 1, "C_73"}, {3, 1, "C_73"}}, "A sentence that is rather long"));
  Write("b.txt", Definition({kFirst, {3, 1, "C_73"}, {2, 1, "C_73"}}, "A sentence that is rather longer than that"));
  EXPECT_EQ(Differ({"diff", "a.txt", "b.txt"}),
            "From a.txt to b.txt:\n"
            "~ The flow's remark:\n"
            "        - A sentence that is rather long\n"
            "        + A sentence that is rather longer than that\n"
            "~ The children of step 1 run in the order 3,2 (before: 2,3)\n");
}

TEST_F(DiffTest, ChangesAreGivenAsJson) {
  EXPECT_EQ(nlohmann::json::parse(Differ({"--json", "diff", "1", "new.txt"})), nlohmann::json::parse(R"([
    {"change": "changed", "part": "remark", "before": "one", "after": "one and two"},
    {"change": "changed", "part": "parameter", "step": "1", "name": "C_22_2", "before": "\"a\"", "after": "\"b\""},
    {"change": "moved", "part": "step", "step": "2", "before": "1", "after": "3"},
    {"change": "added", "part": "step", "step": "4", "after": "fourth"},
    {"change": "added", "part": "step command", "step": "4", "after": "C_80"},
    {"change": "added", "part": "step serial", "step": "4", "after": "0"},
    {"change": "added", "part": "parameter", "step": "4", "name": "C_80_1", "after": "\"done\""}])"));
}

TEST_F(DiffTest, TwoFilesNeedNoDatabase) {
  EXPECT_EQ(Succeed({"--db", "sqlite:nowhere.db", "diff", "old.txt", "old.txt"}), "old.txt and old.txt are alike.\n");
  EXPECT_FALSE(Exists("nowhere.db"));
}

TEST_F(DiffTest, OneDefinitionMayComeFromStandardInput) {
  EXPECT_EQ(Succeed({"diff", "-", "old"}, Read("old.txt")), "standard input and flow 1 \"old\" are alike.\n");
}

TEST_F(DiffTest, WhatCannotBeComparedGivesStatusTwo) {
  EXPECT_EQ(Fail(2, {"diff", "old", "nobody"}), "talmflow: there is no flow named \"nobody\"\n");
  EXPECT_EQ(Fail(2, {"diff", "-", "-"}), "talmflow: only one definition can come from standard input\n");
  Write("bad.txt", "no definition\n");
  EXPECT_THAT(Fail(2, {"diff", "old", "bad.txt"}), HasSubstr("bad.txt"));
}

TEST_F(DiffTest, ADryRunTellsWhatAnImportWouldChangeAndWritesNothing) {
  EXPECT_THAT(Succeed({"import", "new.txt", "--flow", "old", "--dry-run"}),
              StartsWith("What would change in flow 1 \"old\":\n~ The flow's remark: one -> one and two\n~ Step 1\n"));
  EXPECT_EQ(Succeed({"import", "old.txt", "--flow", "old", "--dry-run"}), "Nothing would change in flow 1 \"old\".\n");
  EXPECT_THAT(Succeed({"import", "new.txt", "--dry-run"}), StartsWith("What would change in a new flow:\n"));
  EXPECT_EQ(SucceedJson({"import", "old.txt", "--flow", "1", "--dry-run"}),
            nlohmann::json::parse(R"({"changes": [], "findings": []})"));
  EXPECT_EQ(Rows("select count(*) as n from WorkFlowName"), nlohmann::json::parse(R"([{"n":1}])"));
  EXPECT_EQ(Succeed({"diff", "old", "old.txt"}), "flow 1 \"old\" and old.txt are alike.\n");
}

TEST_F(DiffTest, ADryRunFailsLikeTheImportWould) {
  Write("wrong.txt", Definition({{1, 0, "C_22"}}));
  const auto result = Talmflow({"import", "wrong.txt", "--dry-run"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, StartsWith("What would change in a new flow:\n"));
  EXPECT_THAT(result.err, HasSubstr("the definition holds errors"));
}

}  // namespace
}  // namespace talm_flow::test
