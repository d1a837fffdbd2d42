// What is told about a definition's structure, commands and parameters, beyond the examples of docs/checks.md.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/definitions.h"
#include "support/places.h"
#include "support/run_program.h"
#include "support/world.h"
#include "talm_flow/command_catalogue.h"
#include "talm_flow/error.h"
#include "talm_flow/in_out.h"
#include "talm_flow/name.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

std::string Log(int number, int parent) { return StepLines(number, parent, "C_80", "C_80_1:\"x\"\n"); }

std::string CodesOfStep(std::string_view command, std::string_view parameters) {
  return CodesOf(Text(StepLines(1, 0, command, parameters)));
}

TEST(DefinitionCheckTest, TheExampleFlowsGiveNoFindings) {
  int flows = 0;
  for (const auto& file : std::filesystem::directory_iterator(SourcePath("examples/flows"))) {
    EXPECT_EQ(CodesOf(ReadFile(file.path())), "") << file.path();
    ++flows;
  }
  EXPECT_GE(flows, 5);
}

TEST(DefinitionCheckTest, TheExamplesOfTheManualGiveNoFindings) {
  const auto above = StepLines(1, 0, "C_2", "C_2_1:DataID_Submit\nC_2_2:\"kim\"\nC_2_3:\"TableID:13\"\n");
  for (const auto& command : DescribeCommands()) {
    EXPECT_EQ(CodesOf(Text(above + ExampleStep(command) + Log(3, 1))), "") << command.name;
  }
}

TEST(DefinitionCheckTest, ARequiredParameterOfEveryCommandIsMissed) {
  const auto above = StepLines(1, 0, "C_2", "C_2_1:DataID_Submit\nC_2_2:\"kim\"\nC_2_3:\"TableID:13\"\n");
  for (const auto& command : DescribeCommands()) {
    std::string codes;
    for (const auto& parameter : command.parameters) {
      if (parameter.required) codes += codes.empty() ? "E203" : " E203";
    }
    EXPECT_EQ(CodesOf(Text(above + StepLines(2, 1, command.name) + Log(3, 1))), codes) << command.name;
  }
}

// ---- Structure --------------------------------------------------------------------------------------------------------

struct Structure {
  const char* what;
  std::string steps;
  const char* codes;
};

class StructureCheckTest : public testing::TestWithParam<Structure> {};

TEST_P(StructureCheckTest, TellsExactly) { EXPECT_EQ(CodesOf(Text(GetParam().steps)), GetParam().codes); }

INSTANTIATE_TEST_SUITE_P(
    Trees, StructureCheckTest,
    testing::Values(
        Structure{"a target of a jump needs no parent",
                  Log(1, 0) + StepLines(2, 1, "C_16", "C_16_1:5\n") + Log(5, 0) + Log(6, 5), ""},
        Structure{"a target of a timer needs no parent",
                  StepLines(1, 0, "C_15", "C_15_1:1\nC_15_2:1\nC_15_3:5\n") + Log(5, 9), ""},
        Structure{"a target of a target",
                  StepLines(1, 0, "C_86", "C_86_1:now\nC_86_2:5\n") + StepLines(5, 0, "C_16", "C_16_1:6\n") + Log(6, 0),
                  ""},
        Structure{"only the top of what is never run is told", Log(1, 0) + Log(2, 0) + Log(3, 2) + Log(4, 3), "W106"},
        Structure{"an orphan tells for those below it", Log(1, 0) + Log(2, 9) + Log(3, 2), "W105"},
        Structure{"its own parent", Log(1, 0) + Log(2, 2), "E104"},
        Structure{"two circles", Log(1, 0) + Log(2, 3) + Log(3, 2) + Log(4, 5) + Log(5, 4) + Log(6, 5), "E104 E104"},
        Structure{"children before their parents", Log(3, 2) + Log(2, 1) + Log(1, 0), ""},
        Structure{"number 0", Log(1, 0) + Log(0, 0), "E103"}, Structure{"negative", Log(1, 0) + Log(-4, 1), "E103"},
        Structure{"largest number", Log(1, 0) + Log(32767, 1), ""},
        Structure{"a fraction", Log(1, 0) + "StepBegin\nFlowNo:2.5\nParentNo:1\nCommand:C_73\n", "E103"},
        Structure{"no number at all", Log(1, 0) + "StepBegin\nCommand:C_73\n", "E103"},
        Structure{"three of one number", Log(1, 0) + Log(1, 0) + Log(1, 0), "E102 E102"}));

TEST(DefinitionCheckTest, OnlyTheFirstTenThousandChildrenRun) {
  std::string steps = Log(1, 0);
  for (int i = 2; i <= 10001; ++i) steps += StepLines(i, 1, "C_73");
  EXPECT_EQ(CodesOf(Text(steps)), "");
  EXPECT_EQ(CodesOf(Text(steps + StepLines(10002, 1, "C_73"))), "W107");
}

// ---- Texts ------------------------------------------------------------------------------------------------------------

TEST(DefinitionCheckTest, LinesAreToldFromOne) {
  const auto findings = CheckDefinition(Text(Log(1, 0) + "StepBegin\nFlowNo:2\nParentNo:1\nCommand:C_99\n"));
  ASSERT_EQ(Codes(findings), "E201");
  EXPECT_EQ(findings[0].line, 17U);
  EXPECT_EQ(findings[0].step, 2);
  EXPECT_EQ(findings[0].parameter, "");
}

TEST(DefinitionCheckTest, FindingsComeInTheOrderOfTheLines) {
  const auto findings = CheckDefinition(Text(StepLines(1, 0, "C_60") + StepLines(2, 7, "C_16", "C_16_1:9\n") +
                                             StepLines(3, 1, "C_60", "C_60_1: x\nC_1_1:y\n")));
  EXPECT_EQ(Codes(findings), "E203 W105 E206 W210 W204");
  for (std::size_t i = 1; i < findings.size(); ++i) EXPECT_LE(findings[i - 1].line, findings[i].line);
}

struct Body {
  const char* text;  ///< with LF; whole
  const char* codes;
};

class TextCheckTest : public testing::TestWithParam<Body> {};

TEST_P(TextCheckTest, TellsExactly) {
  EXPECT_EQ(CodesOf(WithCrLf(GetParam().text)), GetParam().codes) << GetParam().text;
}

#define TALM_HEAD "//\nVer:Flow_V600\nFlowBegin\n"

INSTANTIATE_TEST_SUITE_P(
    Bodies, TextCheckTest,
    testing::Values(
        Body{"", "W108 E111"}, Body{"nonsense", "W108 E111"}, Body{"//\nVer:Flow_V600x\nFlowEnd\n", "W108 E111"},
        Body{"a title\n//\nVer:Flow_V600\nStepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n", ""},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_73\nStepEnd\nFlowEnd\n\n\n", ""},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\nStepBegin\n", "W116"},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n// the end\n", ""},
        Body{TALM_HEAD "C_1_1:x\nStepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n", "W116"},
        Body{TALM_HEAD "ParameterBegin\nC_1_1:x\nParameterEnd\nStepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n", "W116"},
        Body{TALM_HEAD "// a remark\nthat goes on\nStepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n", "W116"},
        Body{TALM_HEAD "// a remark\n\nStepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n", ""},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\n// between\nParentNo:0\nCommand:C_73\nFlowEnd\n", "W202 W116 W116"},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_73\n\nParameterBegin\nParameterEnd\nFlowEnd\n", "E201"},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_60\nParameterBegin \nC_60_1:x\nParameterEnd\nFlowEnd\n",
             "E203 E115"},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_60\nParameterBegin\nC_60_1:x\nParameterEnd\n\nFlowEnd\n",
             "E112 E113 E113"},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_60\nParameterBegin\nC_60_1:x\nRemark:y\nParameterEnd\nFlowEnd\n",
             "W204"},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nCommand:C_73\nFunctionParameterBegin\nInputTitle:t\nOrderNo:x\nSort:1\n"
                       "ClassContent:\nFunctionParameterEnd\nFlowEnd\n",
             "E114"},
        Body{TALM_HEAD "FlowRemark:first\nC_99_1:second\nStepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n", "W117"},
        Body{TALM_HEAD "FlowRemark:first\nC_x:second\nStepBegin\nFlowNo:1\nCommand:C_73\nFlowEnd\n", ""},
        Body{TALM_HEAD "StepBegin\nFlowNo:1\nSerial:\nCommand:C_73\nFlowEnd\n", "E114"}));

#undef TALM_HEAD

TEST(DefinitionCheckTest, LineEndsAreTold) {
  const auto findings = CheckDefinition("//\nVer:Flow_V600\nStepBegin\n");
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings.back().code, "E111");
  EXPECT_THAT(findings.back().problem, HasSubstr("CR LF"));
}

TEST(DefinitionCheckTest, TheNearestCommandIsAdvised) {
  const auto findings = CheckDefinition(Text(StepLines(1, 0, "c_2")));
  ASSERT_EQ(Codes(findings), "E201");
  EXPECT_EQ(findings[0].advice, "Write C_2, if that is meant.");
}

// ---- Parameters -------------------------------------------------------------------------------------------------------

struct OneStep {
  const char* command;
  const char* parameters;
  const char* codes;
};

class ParameterCheckTest : public testing::TestWithParam<OneStep> {};

TEST_P(ParameterCheckTest, TellsExactly) {
  EXPECT_EQ(CodesOfStep(GetParam().command, GetParam().parameters), GetParam().codes) << GetParam().parameters;
}

INSTANTIATE_TEST_SUITE_P(
    Steps, ParameterCheckTest,
    testing::Values(
        OneStep{"C_11", "C_11_1:a\nC_11_2:>=\nC_11_3:b\n", ""}, OneStep{"C_11", "C_11_2:<>\n", ""},
        OneStep{"C_11", "C_11_2: =\n", "E207"}, OneStep{"C_11", "C_11_2:\"=\"\n", "E207"},
        OneStep{"C_11", "C_11_1:x\nC_11_2:>\nC_11_3:1,5\n", "W314"},
        OneStep{"C_11", "C_11_1:x\nC_11_2:>\nC_11_3:1,500\n", ""},
        OneStep{"C_11", "C_11_1:x\nC_11_2:=\nC_11_3:1,5\n", ""},
        OneStep{"C_19", "C_19_1:1\nC_19_2:^\nC_19_3:2\nC_19_4:x\n", "E207"},
        OneStep{"C_19", "C_19_1:1\nC_19_2:/\nC_19_3:2\nC_19_4:x\n", ""},
        OneStep{"C_8", "C_8_1:DataID_Submit\nC_8_2:flag\n", ""},
        OneStep{"C_8", "C_8_1:DataID_Submit\nC_8_2:\"1\"\n", ""},
        OneStep{"C_8", "C_8_1:DataID_Submit\nC_8_2:1.0\n", "E208"}, OneStep{"C_8", "C_8_1:DataID_Submit\n", ""},
        OneStep{"C_8", "C_8_1:DataID_Submit\nC_8_2:2-1\n", ""},
        OneStep{"C_9", "C_9_1:DataID_Submit\nC_9_2:1\n", "E203"}, OneStep{"C_9", "C_9_1:DataID_Submit\nC_9_2:0\n", ""},
        OneStep{"C_9", "C_9_1:DataID_Submit\nC_9_2:x\n", ""}, OneStep{"C_12", "C_12_1:\"dataid:3,TABLEID:12\"\n", ""},
        OneStep{"C_12", "C_12_1:\"TableID:12\"\n", "E211"},
        OneStep{"C_12", "C_12_1:\"TableID:40000,DataID:1\"\n", "E211"},
        OneStep{"C_12", "C_12_1:\"TableID:0,DataID:1\"\n", "E211"},
        OneStep{"C_12", "C_12_1:\"TableID:\"+table+\",DataID:1\"\n", ""}, OneStep{"C_10", "C_10_1:12\n", ""},
        OneStep{"C_10", "C_10_1:\"form 12\"\n", "E211"}, OneStep{"C_10", "C_10_1:TableID:12\n", "W312"},
        OneStep{"C_47", "C_47_1:x\nC_47_2:DataID_Submit\nC_47_3:\"unit:A\"\n", "E211"},
        OneStep{"C_47", "C_47_1:x\nC_47_2:DataID_Submit\nC_47_3:\"InUnitID:A\"\n", ""},
        OneStep{"C_52", "C_52_1:x\nC_52_2:\"7\"\n", "E211"}, OneStep{"C_53", "C_53_1:x\nC_53_2:\"fileid:7\"\n", "E211"},
        OneStep{"C_57", "C_57_1:x\nC_57_2:1,5\n", "W314"}, OneStep{"C_57", "C_57_1:x\nC_57_2:1,500.5\n", ""},
        OneStep{"C_81", "C_81_1:\"now\"\nC_81_2:year\n", ""},
        OneStep{"C_48", "C_48_1:x\nC_48_2:\"2026-02-30\"\n", "E213"},
        OneStep{"C_48", "C_48_1:x\nC_48_2:\"2026年1月31日\"\n", ""}, OneStep{"C_70", "C_70_1:1.9\nC_70_2:x\n", ""},
        OneStep{"C_70", "C_70_1:x\n", "E214"}, OneStep{"C_18", "C_18_1:2\nC_18_3:a|^|\"b\"\n", "E209"},
        OneStep{"C_18", "C_18_1:2\nC_18_3:a|^||^|c\n", ""}, OneStep{"C_18", "C_18_1:99999999999\n", "E215"},
        OneStep{"C_60", "C_60_1:a-b\n", "E209"}, OneStep{"C_60", "C_60_1:12\n", "E209"},
        OneStep{"C_60", "C_60_1:DataID_Submit\n", "E209"}, OneStep{"C_60", "C_60_1:金额\n", ""},
        OneStep{"C_60", "C_60_1:two words\n", ""}, OneStep{"C_60", "C_60_1:Global_x\n", ""},
        OneStep{"C_60", "C_60_1:x\nC_60_2:y\n", "W204"}, OneStep{"C_60", "C_60_1:x\nc_60_1:y\n", "W210 W117"},
        OneStep{"C_73", "C_73_1:y\n", "W204"}, OneStep{"C_87", "C_87_1:x\nC_87_2:,\nC_87_3:2\nC_87_4:y\n", ""},
        OneStep{"C_87", "C_87_1:x\nC_87_2:;\nC_87_3:2\nC_87_4:y\n", "W312"},
        OneStep{"C_87", "C_87_1:x\nC_87_3:\"second\"\nC_87_4:y\n", "E212"},
        OneStep{"C_88", "C_88_1:x\nC_88_2:-2\nC_88_3:y\n", ""},
        OneStep{"C_93", "C_93_1:x\nC_93_5:\"all\"\nC_93_6:y\n", ""},
        OneStep{"C_94", "C_94_1:x\nC_94_2:99999999999\nC_94_4:y\n", "E212"},
        OneStep{"C_22", "C_22_1:x\nC_22_2:a - \"b\n", ""}));

TEST(DefinitionCheckTest, ATimeLimitIsANumber) {
  const auto limit = [](const std::string& text) {
    return CodesOfStep("C_2", "C_2_1:DataID_Submit\nC_2_2:\"kim\"\nC_2_3:\"TableID:13\"\nC_2_7:" + text + "\n");
  };
  EXPECT_EQ(limit("48"), "");
  EXPECT_EQ(limit("-5"), "");
  EXPECT_EQ(limit("limit"), "");
  EXPECT_EQ(limit("24*2"), "");
  EXPECT_EQ(limit("\"soon\""), "E212");
  EXPECT_EQ(limit("1,5"), "W314");
  EXPECT_EQ(limit("9999999999"), "E212");
}

struct Lookup {
  const char* condition;
  const char* codes;
};

class ConditionCheckTest : public testing::TestWithParam<Lookup> {};

TEST_P(ConditionCheckTest, TellsExactly) {
  EXPECT_EQ(CodesOfStep("C_77", "C_77_1:12\nC_77_2:" + std::string(GetParam().condition) + "\nC_77_3:found\n"),
            GetParam().codes)
      << GetParam().condition;
}

INSTANTIATE_TEST_SUITE_P(Conditions, ConditionCheckTest,
                         testing::Values(Lookup{"", ""}, Lookup{"   ", ""}, Lookup{"name=\"kim\"", ""},
                                         Lookup{"Name = person", ""}, Lookup{"id>1 AND (id<5 or Amount>=limit)", ""},
                                         Lookup{"id>x+1", ""}, Lookup{"name=DataID_Submit", ""},
                                         Lookup{"inputtime>=\"2026-01-31 9:05\"", ""}, Lookup{"inputtime>=today", ""},
                                         Lookup{"a=1and b=2", "E217"}, Lookup{"(a=1", "E217"}, Lookup{"a=1)", "E217"},
                                         Lookup{"a", "E217"}, Lookup{"a==1", "E217"}, Lookup{"a=1 b=2", "E217"},
                                         Lookup{"name=\"a and b\"", "E217"}, Lookup{"name=\"a (b)\"", "E217"},
                                         Lookup{"name like \"a\"", "E217"}, Lookup{"id=\"first\"", "E218"},
                                         Lookup{"inputtime>5", "E218"}, Lookup{"name=\"kim", "E308"},
                                         Lookup{"name=x*\"a\"", "E305"}, Lookup{"id>5-8", "E306"},
                                         Lookup{"name=kim,lee", "W312"}));

TEST(DefinitionCheckTest, AConditionsWordsAreAdvised) {
  const auto advice = [](const std::string& condition) {
    const auto findings = CheckDefinition(
        Text(StepLines(1, 0, "C_79", "C_79_1:12\nC_79_2:" + condition + "\nC_79_3:\"name\"\nC_79_4:x\n")));
    return findings.size() == 1 ? findings[0].advice : Codes(findings);
  };
  EXPECT_THAT(advice("a=1and b=2"), HasSubstr("a blank on each side"));
  EXPECT_THAT(advice("name=\"a and b\""), HasSubstr("assign it to a variable"));
  EXPECT_THAT(advice("a"), HasSubstr("field >= value"));
}

// ---- Flow of control --------------------------------------------------------------------------------------------------

TEST_P(StructureCheckTest, IsToldBySentences) {
  for (const auto& finding : CheckDefinition(Text(GetParam().steps))) {
    EXPECT_TRUE(finding.problem.ends_with('.')) << finding.problem;
    EXPECT_TRUE(finding.advice.ends_with('.')) << finding.advice;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Loops, StructureCheckTest,
    testing::Values(Structure{"a loop with a condition",
                              Log(1, 0) + StepLines(2, 1, "C_11", "C_11_2:=\n") + StepLines(3, 2, "C_16", "C_16_1:1\n"),
                              ""},
                    Structure{"a loop with a task",
                              StepLines(1, 0, "C_2", "C_2_1:DataID_Submit\nC_2_2:\"kim\"\nC_2_3:13\n") +
                                  StepLines(2, 1, "C_16", "C_16_1:1\n"),
                              ""},
                    Structure{"two jumps to each other",
                              Log(1, 0) + StepLines(2, 1, "C_16", "C_16_1:3\n") + StepLines(3, 0, "C_16", "C_16_1:2\n"),
                              "W402 W402"},
                    Structure{"a jump forward", Log(1, 0) + StepLines(2, 1, "C_16", "C_16_1:3\n") + Log(3, 1), ""},
                    Structure{"a jump to a sibling's subtree that ends",
                              Log(1, 0) + StepLines(2, 1, "C_16", "C_16_1:4\n") + Log(3, 1) + Log(4, 3), ""},
                    Structure{"an unknown command goes on",
                              StepLines(1, 0, "C_0") + StepLines(2, 1, "C_16", "C_16_1:1\n"), "E201 W402"}));

class StoredCheckTest : public testing::Test {
 protected:
  void Store(const std::string& steps) {
    Name names(world_.services());
    ASSERT_EQ(names.FlowAdd(world_.connection(), "Flow", "kim", Text(steps)), 0);
  }
  std::string CodesOfFlow(int flow) { return Codes(CheckFlow(world_.connection(), world_.services(), flow)); }

  static std::string Start(int flow) { return StepLines(1, 0, "C_18", "C_18_1:" + std::to_string(flow) + "\n"); }
  static std::string StartBelowCondition(int flow) {
    return StepLines(1, 0, "C_11", "C_11_2:=\n") + StepLines(2, 1, "C_18", "C_18_1:" + std::to_string(flow) + "\n");
  }

  World world_;
};

TEST_F(StoredCheckTest, CirclesOfChildFlowsAreToldWhereTheyPass) {
  Store(Start(2));
  Store(Start(3));
  Store(Start(2));
  EXPECT_EQ(CodesOfFlow(1), "");
  EXPECT_EQ(CodesOfFlow(2), "E403");
  EXPECT_EQ(CodesOfFlow(3), "E403");
}

TEST_F(StoredCheckTest, AConditionAnywhereMakesACircleAWarning) {
  Store(Start(2));
  Store(StartBelowCondition(1));
  EXPECT_EQ(CodesOfFlow(1), "W404");
  EXPECT_EQ(CodesOfFlow(2), "W404");
}

TEST_F(StoredCheckTest, WhatAChildHandsBackIsCountedOnlyWhereItIsReceived) {
  Store(StepLines(1, 0, "C_18", "C_18_1:2\n"));
  Store(StepLines(1, 0, "C_70", "C_70_1:3\nC_70_2:x\n"));
  Store(StepLines(1, 0, "C_18", "C_18_1:2\nC_18_3:a|^|b|^|c\n"));
  EXPECT_EQ(CodesOfFlow(1), "");
  EXPECT_EQ(CodesOfFlow(3), "");
}

TEST_F(StoredCheckTest, TheFlowIsNamedAndNoLine) {
  Store(Log(1, 0) + StepLines(2, 1, "C_16", "C_16_1:7\n"));
  const auto findings = CheckFlow(world_.connection(), world_.services(), "1");
  ASSERT_EQ(Codes(findings), "E206");
  EXPECT_EQ(findings[0].flow, 1);
  EXPECT_EQ(findings[0].step, 2);
  EXPECT_EQ(findings[0].line, 0U);
}

TEST_F(StoredCheckTest, NothingIsWritten) {
  Store(Start(5));
  world_.ForgetTrace();
  (void)CodesOfFlow(1);
  for (const auto& statement : world_.trace())
    EXPECT_TRUE(statement.starts_with("Select ") || statement.starts_with("select "));
}

TEST_F(StoredCheckTest, NullsAndOddRowsAreTakenAsTheyAre) {
  world_.Run("Insert Into WorkFlowName (FlowName) Values ('odd')");
  world_.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Command) Values (1,1,0,'C_60')");
  world_.Run("Insert Into WorkFlowConstruction (FlowID) Values (1)");
  world_.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName) Values (1,1,'C_60_1')");
  world_.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (1,9,'C_1_1','left')");
  EXPECT_EQ(CodesOfFlow(1), "E203 E103 W202");
}

TEST_F(StoredCheckTest, AReplacementIsCheckedInThePlaceOfTheFlow) {
  Store(Log(1, 0));
  Store(Start(1));
  const auto text = Text(Start(2));
  EXPECT_EQ(Codes(CheckDefinition(world_.connection(), world_.services(), text, 1)), "E403");
  EXPECT_EQ(Codes(CheckDefinition(world_.connection(), world_.services(), text, {})), "");
  EXPECT_EQ(Codes(CheckDefinition(world_.connection(), world_.services(), Text(Start(9)), {})), "E216");
}

}  // namespace
}  // namespace talm_flow::test
