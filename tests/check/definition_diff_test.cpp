#include "talm_flow/definition_diff.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/small_stack.h"
#include "support/world.h"
#include "talm_flow/in_out.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// One change in one line: kind, part, step, name, before, after, without what is empty at the end.
std::string Line(const DefinitionChange& change) {
  constexpr const char* kKinds[] = {"added", "removed", "moved", "changed"};
  constexpr const char* kParts[] = {"remark",   "step",  "caption", "command", "serial", "parameter",
                                    "children", "input", "title",   "order",   "sort",   "content"};
  std::string line = kKinds[static_cast<int>(change.kind)];
  line += std::string(" ") + kParts[static_cast<int>(change.part)];
  for (const auto* const text : {&change.step, &change.name, &change.before, &change.after}) line += "|" + *text;
  return line.substr(0, line.find_last_not_of('|') + 1);
}

std::vector<std::string> Lines(const DefinitionChanges& changes) {
  std::vector<std::string> lines;
  for (const auto& change : changes) lines.push_back(Line(change));
  return lines;
}

std::string WithLineEnds(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\n') result += '\r';
    result += c;
  }
  return result;
}

std::string Definition(std::string_view body) {
  return WithLineEnds("//\nVer:Flow_V600\nFlowBegin\n" + std::string(body) + "FlowEnd\n");
}

std::string Step(std::string_view number, std::string_view parent, std::string_view serial, std::string_view remark,
                 std::string_view command, std::string_view parameters = {}) {
  std::string text = "StepBegin\n";
  const auto add = [&](std::string_view key, std::string_view value) {
    text += key;
    text += value;
    text += '\n';
  };
  add("FlowNo:", number);
  add("ParentNo:", parent);
  add("Serial:", serial);
  add("Remark:", remark);
  add("Command:", command);
  text += "ParameterBegin\n" + std::string(parameters) + "ParameterEnd\n";
  return text;
}

std::string Input(std::string_view title, std::string_view order, std::string_view sort, std::string_view content) {
  return "FunctionParameterBegin\nInputTitle:" + std::string(title) + "\nOrderNo:" + std::string(order) +
         "\nSort:" + std::string(sort) + "\nClassContent:" + std::string(content) + "\nFunctionParameterEnd\n";
}

std::vector<std::string> ChangesBetween(std::string_view before, std::string_view after) {
  const auto first = Definition(before);
  const auto second = Definition(after);
  return Lines(CompareDefinitions(std::string_view(first), std::string_view(second)));
}

TEST(DefinitionDiffTest, ATextIsLikeItself) {
  const auto body = "FlowRemark:x\n" + Step("1", "0", "1", "a", "C_2", "C_2_1:v\n") + Input("t", "1", "2", "");
  EXPECT_THAT(ChangesBetween(body, body), IsEmpty());
}

TEST(DefinitionDiffTest, EveryAttributeOfAStepIsCompared) {
  EXPECT_THAT(
      ChangesBetween(Step("1", "0", "1", "", "C_22") + Step("2", "1", "2", "a", "C_22"),
                     Step("1", "0", "1", "", "C_22") + Step("2", "3", "5", "b", "C_23") + Step("3", "1", "3", "", "")),
      ElementsAre("moved step|2||1|3", "changed caption|2||a|b", "changed command|2||C_22|C_23",
                  "changed serial|2||2|5", "added step|3", "added command|3", "added serial|3|||3"));
}

TEST(DefinitionDiffTest, AnAddedStepBringsEverythingAlong) {
  EXPECT_THAT(ChangesBetween("", Step("4", "1", "9", "new", "C_22", "C_22_1:x\nC_22_2:1\n")),
              ElementsAre("added step|4|||new", "added command|4|||C_22", "added serial|4|||9",
                          "added parameter|4|C_22_1||x", "added parameter|4|C_22_2||1"));
}

TEST(DefinitionDiffTest, ARemovedStepIsOneChange) {
  EXPECT_THAT(ChangesBetween(Step("4", "1", "9", "old", "C_22", "C_22_1:x\n"), ""), ElementsAre("removed step|4||old"));
}

TEST(DefinitionDiffTest, ParametersAreComparedByName) {
  EXPECT_THAT(
      ChangesBetween(Step("1", "0", "1", "", "C_22", "C_22_1:a\nC_22_2:b\n"),
                     Step("1", "0", "1", "", "C_22", "C_22_2:c\nC_22_3:d\n")),
      ElementsAre("removed parameter|1|C_22_1|a", "changed parameter|1|C_22_2|b|c", "added parameter|1|C_22_3||d"));
}

TEST(DefinitionDiffTest, TheOrderOfParametersDoesNotCountButThatOfTheSameNameDoes) {
  EXPECT_THAT(ChangesBetween(Step("1", "0", "1", "", "C_22", "C_22_1:a\nC_22_2:b\n"),
                             Step("1", "0", "1", "", "C_22", "C_22_2:b\nC_22_1:a\n")),
              IsEmpty());
  EXPECT_THAT(ChangesBetween(Step("1", "0", "1", "", "C_22", "C_22_1:a\nC_22_1:b\n"),
                             Step("1", "0", "1", "", "C_22", "C_22_1:b\nC_22_1:a\n")),
              ElementsAre("changed parameter|1|C_22_1|a|b", "changed parameter|1|C_22_1|b|a"));
}

TEST(DefinitionDiffTest, TheOrderInWhichChildrenRunCounts) {
  const auto step = [](std::string_view number, std::string_view parent) {
    return Step(number, parent, "1", "", "C_22");
  };
  EXPECT_THAT(ChangesBetween(step("1", "0") + step("2", "1") + step("3", "1") + step("4", "1") + step("9", "2"),
                             step("9", "2") + step("1", "0") + step("3", "1") + step("5", "1") + step("2", "1")),
              ElementsAre("removed step|4", "added step|5", "added command|5|||C_22", "added serial|5|||1",
                          "changed children|1||2,3|3,2"));
}

TEST(DefinitionDiffTest, StepsAreToldByNumberHoweverTheyStand) {
  EXPECT_THAT(ChangesBetween(Step("10", "0", "1", "", "C_1") + Step("9", "0", "1", "", "C_1"), ""),
              ElementsAre("removed step|9", "removed step|10"));
}

TEST(DefinitionDiffTest, NumbersCountByTheirValue) {
  EXPECT_THAT(ChangesBetween(Step("1", "0", "1", "", "C_1") + Input("t", "1", "2", ""),
                             Step("01", "00", "1.0", "", "C_1") + Input("t", "01", " 2", "")),
              IsEmpty());
}

TEST(DefinitionDiffTest, TextsCountExactly) {
  EXPECT_THAT(
      ChangesBetween(Step("1", "0", "1", "a", "C_1", "C_1_1:x\n y\n"),
                     Step("1", "0", "1", "a ", "c_1", "C_1_1:x\ny\n")),
      ElementsAre("changed caption|1||a|a ", "changed command|1||C_1|c_1", "changed parameter|1|C_1_1|x\r\n y|x\r\ny"));
}

TEST(DefinitionDiffTest, OfStepsWithOneNumberTheFirstBelongsToTheFirst) {
  EXPECT_THAT(ChangesBetween(Step("1", "0", "1", "a", "C_1") + Step("1", "0", "1", "b", "C_1"),
                             Step("1", "0", "1", "c", "C_1")),
              ElementsAre("changed caption|1||a|c", "removed step|1||b"));
}

TEST(DefinitionDiffTest, TheFlowsRemarkIsCompared) {
  EXPECT_THAT(ChangesBetween("FlowRemark:a\nb\n", "FlowRemark:a\n"), ElementsAre("changed remark|||a\r\nb|a"));
}

TEST(DefinitionDiffTest, ATextWithoutARemarkKeepsTheFlowsOwn) {
  EXPECT_THAT(ChangesBetween("FlowRemark:a\n", ""), IsEmpty());
  EXPECT_THAT(ChangesBetween("", "FlowRemark:a\n"), IsEmpty());
}

TEST(DefinitionDiffTest, InputParametersAreComparedByTitle) {
  EXPECT_THAT(ChangesBetween(Input("a", "1", "1", "x") + Input("b", "2", "1", ""),
                             Input("b", "5", "1", "") + Input("a", "1", "4", "y")),
              ElementsAre("changed sort||a|1|4", "changed content||a|x|y", "changed order||b|2|5"));
}

TEST(DefinitionDiffTest, InputParametersComeAndGo) {
  EXPECT_THAT(ChangesBetween(Input("a", "1", "1", ""), Input("b", "2", "5", "x,y")),
              ElementsAre("removed input||a|a", "added input||b||b", "added order||b||2", "added sort||b||5",
                          "added content||b||x,y"));
}

TEST(DefinitionDiffTest, AnInputParameterAtTheSamePlaceWasRenamed) {
  EXPECT_THAT(ChangesBetween(Input("Amount", "1", "2", ""), Input("金额", "1", "2", "")),
              ElementsAre("changed title||Amount|Amount|金额"));
}

class StoredDiffTest : public ::testing::Test {
 protected:
  StoredDiffTest() {
    for (const int flow : {1, 2}) {
      world.Run("Insert Into WorkFlowName (FlowID,FlowName,Remark) Values (" + std::to_string(flow) + ",'f','r')");
    }
  }
  [[nodiscard]] DefinitionSource Flow(int flow) { return StoredFlow{world.connection(), services, flow}; }

  World world;
  host::Services services = world.services();
};

TEST_F(StoredDiffTest, AFlowIsLikeItsOwnTextAndLikeItsCopy) {
  world.Step(1, 1, 0, "C_22");
  world.Parameter(1, 1, "C_22_1", "a\r\nb");
  world.Run("Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values (1,'t',1,2,'')");
  const auto text = InOut(services).MakeConstructionBak(world.connection(), 1);
  EXPECT_THAT(Lines(CompareDefinitions(Flow(1), std::string_view(text))), IsEmpty());
  EXPECT_THAT(Lines(CompareDefinitions(std::string_view(text), Flow(1))), IsEmpty());
  ASSERT_EQ(InOut(services).CreatFlow(world.connection(), 2, text), 0);
  EXPECT_THAT(Lines(CompareDefinitions(Flow(1), Flow(2))), IsEmpty());
}

TEST_F(StoredDiffTest, WhatIsStoredIsComparedWithoutWriting) {
  world.Step(1, 1, 0, "C_22");
  world.Parameter(1, 1, "C_22_1", "a");
  world.Run("Update WorkFlowName Set Remark='other' Where FlowID=2");
  world.Run("Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values (2,'t',1,2,'')");
  EXPECT_THAT(Lines(CompareDefinitions(Flow(1), Flow(2))),
              ElementsAre("changed remark|||r|other", "removed step|1||Step 1", "added input||t||t",
                          "added order||t||1", "added sort||t||2"));
  for (const auto& statement : world.trace()) EXPECT_TRUE(statement.starts_with("Select ")) << statement;
}

TEST_F(StoredDiffTest, AFlowThatIsNotThereIsEmpty) {
  EXPECT_THAT(Lines(CompareDefinitions(Flow(9), Flow(1))), ElementsAre("changed remark||||r"));
}

TEST_F(StoredDiffTest, NullColumnsCountAsEmptyTexts) {
  world.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial) Values (1,1,0,1)");
  world.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (2,1,0,1,'','')");
  EXPECT_THAT(Lines(CompareDefinitions(Flow(1), Flow(2))), IsEmpty());
}

TEST(DefinitionDiffTest, CyclesAndDeepChainsAreComparedOnASmallStack) {
  std::string chain = Step("1", "32767", "1", "", "C_22");
  for (int step = 2; step <= 32767; ++step) {
    chain += Step(std::to_string(step), std::to_string(step - 1), "1", "", "C_22");
  }
  const auto before = Definition(chain);
  const auto after = Definition(Step("1", "0", "1", "", "C_22") + chain.substr(chain.find("StepBegin", 1)));
  RunOnSmallStack([&] {
    EXPECT_THAT(Lines(CompareDefinitions(std::string_view(before), std::string_view(after))),
                ElementsAre("moved step|1||32767|0"));
  });
}

}  // namespace
}  // namespace talm_flow::test
