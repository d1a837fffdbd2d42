#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "program/talmflow.h"

namespace talm_flow::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class DrawTest : public TalmflowTest {
 protected:
  DrawTest() { (void)Succeed({"init"}); }

  void Import(const std::string& name, const std::vector<StepText>& steps, const std::string& remark = {}) const {
    Write(name + ".txt", Definition(steps, remark));
    (void)Load(name + ".txt");
  }
  void Run(const std::string& statement) const { EXPECT_TRUE(Rows(statement).is_null()); }
};

std::size_t Count(std::string_view text, std::string_view sought) {
  std::size_t count = 0;
  for (auto at = text.find(sought); at != std::string_view::npos; at = text.find(sought, at + 1)) ++count;
  return count;
}

/// What stands between two texts.
std::string Between(const std::string& text, const std::string& begin, const std::string& end) {
  const auto from = text.find(begin);
  if (from == std::string::npos) return {};
  const auto start = from + begin.size();
  return text.substr(start, text.find(end, start) - start);
}

std::string Policy(const std::string& page) { return Between(page, "Content-Security-Policy\" content=\"", "\""); }

const std::vector<StepText> kDrawnSteps = {{1, 0, "C_22", {"x", "1"}, "first"}, {2, 1, "C_73", {}, "<b>second</b>"}};

TEST_F(DrawTest, APageGoesToStandardOutputOrIntoAFile) {
  Import("leave", kDrawnSteps, "A & B");
  const auto page = Succeed({"draw", "leave"});
  EXPECT_THAT(page, testing::StartsWith("<!DOCTYPE html>\n"));
  EXPECT_EQ(Succeed({"draw", "1", "-o", "leave.html"}), "Drew flow 1 \"leave\" in leave.html\n");
  EXPECT_EQ(Read("leave.html"), page);
  EXPECT_EQ(SucceedJson({"draw", "1"}), (nlohmann::json{{"flow", 1}, {"text", page}}));
  EXPECT_EQ(SucceedJson({"draw", "1", "-o", "x.html"}), (nlohmann::json{{"flow", 1}, {"file", "x.html"}}));
}

TEST_F(DrawTest, ThePageCarriesTheComponentsDrawingAsData) {
  Import("leave", kDrawnSteps, "A & B");
  const auto page = Succeed({"draw", "leave"});
  const auto data = nlohmann::json::parse(Between(page, "id=\"PageData\">", "</script>"));
  const auto drawing = SucceedJson({"call", "Construction.DisplayFlow", "1", "0", "StepForm"})["value"];
  EXPECT_EQ(data["drawing"], drawing);
  EXPECT_THAT(page, AllOf(HasSubstr("<h1>leave</h1>"), HasSubstr("Flow 1 · 2 steps"), HasSubstr("A &amp; B"),
                          Not(HasSubstr("<form")), Not(HasSubstr("<b>second"))));
}

TEST_F(DrawTest, APolicyAdmitsThePagesScriptsAndNothingElse) {
  Import("leave", kDrawnSteps);
  const auto policy = Policy(Succeed({"draw", "leave"}));
  EXPECT_THAT(policy,
              testing::StartsWith("default-src 'none'; base-uri 'none'; form-action 'none'; style-src 'sha256-"));
  EXPECT_THAT(policy, Not(HasSubstr("unsafe")));
  EXPECT_EQ(Count(policy, "'sha256-"), 3U);
}

TEST_F(DrawTest, AnEditablePageAdmitsOneHandlerAStep) {
  Import("leave", kDrawnSteps);
  const auto policy = Policy(Succeed({"draw", "leave", "--editable"}));
  EXPECT_THAT(policy, AllOf(HasSubstr("'unsafe-hashes'"), Not(HasSubstr("'unsafe-inline'"))));
  EXPECT_EQ(Count(policy, "'sha256-"), 5U);
}

TEST_F(DrawTest, AHandlerIsAdmittedByTheDigestOfWhatABrowserReads) {
  Import("leave", {{1, 0, "C_73", {}, "it's <i>"}});
  // The digest of: document.StepForm.FlowNo.value='1';document.StepForm.FlowNoNow.value='1';
  // document.StepForm.OldFlowNo.value='1';document.StepForm.ParentNo.value='0';
  // document.StepForm.Remark.value='it\'s <i>';document.StepForm.Command.value='C_73';
  // buttoncon();opendiv();return false;
  EXPECT_THAT(Policy(Succeed({"draw", "leave", "--editable"})),
              HasSubstr("'sha256-ZlMWG14bCFjIyuPLhRyw+Sq3jVsfiN3c+/gqFm/juuA='"));
}

TEST_F(DrawTest, TheFormHasAFieldForEveryParameterOfTheCatalogueAndForStrangeOnes) {
  Import("leave", {{1, 0, "C_73", {}, ""}});
  Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (1,1,'C_99_9','x')");
  const auto page = Succeed({"draw", "leave", "--editable"});
  for (const std::string name : {"FlowNo", "FlowNoNow", "OldFlowNo", "ParentNo", "Remark", "Command", "C_1_1", "C_2_8",
                                 "C_93_6", "C_97_8", "C_98_1", "C_99_9"}) {
    EXPECT_EQ(Count(page, "<input type=\"hidden\" name=\"" + name + "\">"), 1U) << name;
  }
  EXPECT_THAT(page, Not(HasSubstr("name=\"C_73_1\"")));
}

TEST_F(DrawTest, AStepWithAParameterThatNoFieldCanHoldIsNotAdmitted) {
  Import("leave", kDrawnSteps);
  Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName,ParameterData) Values (1,2,'x.y','1')");
  const auto page = Succeed({"draw", "leave", "--editable"});
  EXPECT_THAT(page, HasSubstr("parameter's name is none: 2</p>"));
  EXPECT_EQ(Count(Policy(page), "'sha256-"), 4U);
}

TEST_F(DrawTest, NamesCannotEndTheScriptArrays) {
  Import("leave", kDrawnSteps);
  Run("Update WorkFlowName Set FlowName='</script><script>\"', Creater='a\\' Where FlowID=1");
  const auto page = Succeed({"draw", "1"});
  EXPECT_THAT(page, HasSubstr(R"(FlowBaseInfArr[0]="\x3C/script>\x3Cscript>\"";FlowBaseInfArr[1]="a\\";)"));
  EXPECT_THAT(page, HasSubstr("<title>&lt;/script&gt;&lt;script&gt;&quot;</title>"));
  EXPECT_EQ(Count(page, "<script"), 3U);
}

TEST_F(DrawTest, BytesThatAreNoTextBecomeReplacements) {
  Import("leave", kDrawnSteps);
  Run("Update WorkFlowConstruction Set Remark=Cast(X'41FF42' as text) Where FlowNo=1");
  const auto page = Succeed({"draw", "1"});
  EXPECT_THAT(page, AllOf(HasSubstr("A\uFFFDB"), Not(HasSubstr("\xFF"))));
}

TEST_F(DrawTest, WhatCannotBeDrawnIsTold) {
  EXPECT_EQ(Fail(1, {"draw", "7"}), "talmflow: there is no flow 7\n");
  Import("leave", kDrawnSteps);
  EXPECT_THAT(Fail(1, {"draw", "1", "-o", "no/where.html"}), HasSubstr("cannot write \"no/where.html\": "));
  EXPECT_THAT(Talmflow({"draw", "1", "--svg", "--editable"}).status, 2);
  EXPECT_THAT(Talmflow({"draw", "1", "--instance", "1"}).status, 2);
  Run("Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values (1,1,2,1,'','C_73')");
  EXPECT_THAT(Fail(1, {"draw", "1"}), HasSubstr("flow 1 is no tree: step 1 lies below itself"));
}

// ---- Pictures -----------------------------------------------------------------------------------------------------

class PictureTest : public DrawTest {
 protected:
  PictureTest() {
    (void)Succeed({"form", "add", "12", "--unit", "REASON:InputText"});
    (void)Succeed({"form", "add", "13", "--unit", "OPINION:InputText"});
    (void)Succeed({"record", "add", "12", "REASON=x"});
  }
  void Start(const std::string& flow) const { (void)Succeed({"run", flow, "--record", "12/1", "--operator", "kim"}); }
  std::string Picture(const std::string& flow, const Words& words = {}) const {
    Words all = {"draw", flow, "--svg"};
    all.insert(all.end(), words.begin(), words.end());
    return Succeed(all);
  }
};

struct Box {
  double x, y, width, height;
};

/// The boxes of the steps, in the order in which they are drawn.
std::vector<Box> Boxes(const std::string& picture) {
  std::vector<Box> boxes;
  const std::string begin = "<rect x=\"";
  for (auto at = picture.find(begin); at != std::string::npos; at = picture.find(begin, at + 1)) {
    const auto rect = picture.substr(at, picture.find('>', at) - at);
    boxes.push_back({std::stod(Between(rect, " x=\"", "\"")), std::stod(Between(rect, " y=\"", "\"")),
                     std::stod(Between(rect, " width=\"", "\"")), std::stod(Between(rect, " height=\"", "\""))});
  }
  return boxes;
}

TEST_F(PictureTest, ShowsNumberCommandAndCaptionOfEveryStepBelowTheFirst) {
  Import("leave",
         {{1, 0, "C_22", {"x", "1"}, "记下 <first>"}, {2, 1, "C_99", {}, "second"}, {7, 9, "C_22", {}, "lost"}});
  const auto picture = Picture("leave");
  EXPECT_THAT(picture, testing::StartsWith("<svg xmlns=\"http://www.w3.org/2000/svg\""));
  EXPECT_THAT(picture, AllOf(HasSubstr(">leave</text>"), HasSubstr(">Flow 1 · 3 steps</text>"),
                             HasSubstr(">记下 &lt;first&gt;</text>"), HasSubstr(">C_22</text>"),
                             HasSubstr(">Unknown command</text>"), Not(HasSubstr("lost"))));
  EXPECT_EQ(Count(picture, "<g data-step="), 2U);
}

TEST_F(PictureTest, LongCaptionsAreWrappedAndCutAndToldWhole) {
  const std::string caption =
      "The quick brown fox jumps over the lazy dog and 敏捷的棕色狐狸跳过了懒狗还要继续跑下去直到天黑 " +
      std::string(60, 'W');
  Import("leave", {{1, 0, "C_22", {}, caption}});
  const auto picture = Picture("leave");
  EXPECT_THAT(picture, AllOf(HasSubstr("<title>" + caption + "</title>"), HasSubstr(">The quick brown fox jumps"),
                             HasSubstr("…</text>"), Not(HasSubstr(">" + caption + "</text>"))));
}

TEST_F(PictureTest, ControlCharactersAndBadBytesKeepThePictureWellFormed) {
  Import("leave", {{1, 0, "C_22", {}, ""}});
  Run("Update WorkFlowConstruction Set Remark=Cast(X'4101FF0742' as text) Where FlowNo=1");
  EXPECT_THAT(Picture("leave"), HasSubstr(">A␁\uFFFD␇B</text>"));
}

TEST_F(PictureTest, NoTwoStepsOverlapAndParentsStandOverTheMiddleOfTheirChildren) {
  // Deep on the outside and wide inside, where subtrees could slide into each other.
  std::vector<StepText> steps = {{1, 0, "C_73", {}, ""}};
  for (int i = 2; i <= 60; ++i) steps.push_back({i, i / 3 + (i % 7 == 0 ? 1 : 0), "C_73", {}, ""});
  steps[1].parent = 1;
  Import("leave", steps);
  const auto boxes = Boxes(Picture("leave"));
  ASSERT_EQ(boxes.size(), 60U);
  std::multiset<std::pair<double, double>> rows;
  for (const auto& box : boxes) rows.emplace(box.y, box.x);
  for (auto box = rows.begin(), next = std::next(box); next != rows.end(); ++box, ++next) {
    const bool neighbours = box->first == next->first;
    EXPECT_TRUE(!neighbours || next->second - box->second >= boxes[0].width + 20) << box->first << ' ' << box->second;
  }
  EXPECT_GE(std::ranges::min(boxes, {}, &Box::x).x, 24);
}

TEST_F(PictureTest, AnOnlyChildStandsStraightBelowAndTwoAreCentred) {
  Import("leave", {{1, 0, "C_73"}, {2, 1, "C_73"}, {3, 2, "C_73"}, {4, 2, "C_73"}});
  const auto boxes = Boxes(Picture("leave"));
  ASSERT_EQ(boxes.size(), 4U);
  EXPECT_EQ(boxes[0].x, boxes[1].x);
  EXPECT_EQ(boxes[1].x, (boxes[2].x + boxes[3].x) / 2);
  EXPECT_LT(boxes[2].x, boxes[3].x);
  EXPECT_EQ(boxes[2].y, boxes[3].y);
  EXPECT_GT(boxes[1].y, boxes[0].y + boxes[0].height);
}

TEST_F(PictureTest, AFlowWithoutAFirstStepSaysSo) {
  Import("leave", {{2, 0, "C_73"}});
  EXPECT_THAT(Picture("leave"), HasSubstr("It has no step 1."));
}

TEST_F(PictureTest, ACycleIsDrawnOnce) {
  Import("leave", {{1, 2, "C_73"}, {2, 1, "C_73"}});
  const auto picture = Picture("leave");
  EXPECT_EQ(Count(picture, "<g data-step=\"1\""), 2U);
  EXPECT_EQ(Count(picture, "(as drawn above)"), 1U);
}

TEST_F(PictureTest, StepsAtWhichAnInstanceWaitsAreMarked) {
  Import("leave", {{1, 0, "C_22", {"x", "1"}},
                   {2, 1, "C_2", {"DataID_Submit", "\"lee,max\"", "\"TableID:13\"", "", "\"Look\""}},
                   {3, 1, "C_97", {"DataID_Submit", "\"REASON\"", "\"ann\""}},
                   {4, 1, "C_15", {"3", "60", "6"}},
                   {5, 1, "C_86", {"\"2026/1/31\"", "7"}},
                   {6, 4, "C_73"},
                   {7, 5, "C_73"}});
  Start("leave");
  const auto picture = Picture("leave", {"--instance", "1"});
  EXPECT_EQ(Count(picture, "data-waits"), 4U);
  EXPECT_THAT(picture,
              AllOf(HasSubstr("instance 1</text>"), HasSubstr(">Waits for lee (A1), max<"), HasSubstr(">(A2)<"),
                    HasSubstr(">Waits for ann (F1)<"), HasSubstr(">Waits for timer, 0 of 3"),
                    HasSubstr(">Waits for timer<"), HasSubstr(">2026/1/31<")));
  EXPECT_EQ(Count(Picture("leave"), "data-waits"), 0U);
}

TEST_F(PictureTest, AChildFlowThatWaitsMarksTheStepThatStartedIt) {
  Import("child", {{1, 0, "C_97", {"DataID_Submit", "\"REASON\"", "\"ann\""}}});
  Import("parent", {{1, 0, "C_18", {"1", "", ""}}});
  Start("parent");
  EXPECT_THAT(Picture("parent", {"--instance", "1"}),
              AllOf(HasSubstr(">Waits for flow 1 &quot;child&quot;"), HasSubstr("(instance 2)")));
  EXPECT_EQ(Fail(1, {"draw", "child", "--svg", "--instance", "1"}),
            "talmflow: instance 1 runs flow 2 \"parent\", not flow 1 \"child\"\n");
  EXPECT_EQ(Fail(1, {"draw", "child", "--svg", "--instance", "9"}), "talmflow: there is no instance 9\n");
}

TEST_F(PictureTest, ThePictureInTheDocumentsIsTheProgramsOwn) {
  (void)Succeed({"import", SourcePath("examples/flows/leave_request.flow"), "--name", "Leave request"});
  EXPECT_EQ(Picture("Leave request"), ReadFile(SourcePath("docs/leave_request.svg")));
}

TEST_F(PictureTest, DeepAndWideTreesAreDrawn) {
  constexpr int kMany = 5000;
  std::vector<StepText> deep;
  std::vector<StepText> wide;
  for (int i = 1; i <= kMany; ++i) {
    deep.push_back({i, i - 1, "C_73"});
    wide.push_back({i, i == 1 ? 0 : 1, "C_73"});
  }
  Import("deep", deep);
  Import("wide", wide);
  const auto chain = Boxes(Picture("deep"));
  ASSERT_EQ(chain.size(), std::size_t{kMany});
  EXPECT_TRUE(std::ranges::all_of(chain, [](const Box& box) { return box.x == 24; }));
  const auto fan = Boxes(Picture("wide"));
  ASSERT_EQ(fan.size(), std::size_t{kMany});
  EXPECT_EQ(fan[1].x, 24);
  EXPECT_EQ(fan.back().x, 24 + (kMany - 2) * 240.0);
  EXPECT_EQ(fan[0].x, (fan[1].x + fan.back().x) / 2);
}

}  // namespace
}  // namespace talm_flow::test
