#include <initializer_list>

#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

using DrawingTest = DesignTest;

constexpr std::string_view kRowEnd = "</tr></table>";
constexpr std::string_view kFirstBar =
    R"(<table border="0" cellspacing="0" cellpadding="0" width="100%" height=1><tr><td width="50%"></td>)"
    R"(<td width="50%" bgcolor="#000000"></td></tr></table>)";
constexpr std::string_view kMiddleBar =
    R"(<table border="0" cellspacing="0" cellpadding="0" width="100%" height=1><tr><td width="50%" bgcolor="#000000">)"
    R"(</td><td width="50%" bgcolor="#000000"></td></tr></table>)";
constexpr std::string_view kLastBar =
    R"(<table border="0" cellspacing="0" cellpadding="0" width="100%" height=1><tr><td width="50%" bgcolor="#000000">)"
    R"(</td><td width="50%"></td></tr></table>)";

TEST_F(DrawingTest, AFlowWithoutARootIsEmpty) {
  EXPECT_EQ(construction.DisplayFlow(db, 1, 0, "f"), "<center></center>");
  EXPECT_THAT(
      world.trace(),
      ElementsAre("select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=1",
                  "select Top 10000 flowno from WorkFlowConstruction where flowid=1 and parentno=1 order by ID"));
}

TEST_F(DrawingTest, AnOnlyChildHangsOnAnArrowWithoutAFork) {
  world.Step(1, 1, 0, "C_1");
  world.Step(1, 2, 1, "C_1");
  EXPECT_EQ(construction.DisplayFlow(db, 1, 0, "f"),
            Joined({"<center>", Box(1, 0), kRow, kCell, "↓", Box(2, 1), "</td>", kRowEnd, "</center>"}));
}

TEST_F(DrawingTest, TwoChildrenForkInTheOrderTheyWereStored) {
  world.Step(1, 1, 0, "C_1");
  world.Step(1, 9, 1, "C_1");
  world.Step(1, 4, 1, "C_1");
  EXPECT_EQ(construction.DisplayNextFlowStep(db, 1, 1, 0, "f"),
            Joined({"↓", kRow, kCell, kFirstBar, "↓", Box(9, 1), "</td>", kCell, kLastBar, "↓", Box(4, 1), "</td>",
                    kRowEnd}));
}

TEST_F(DrawingTest, AWholeTreeIsDrawnDepthFirst) {
  world.Step(1, 1, 0, "C_1");
  for (const int child : {2, 3, 4}) world.Step(1, child, 1, "C_1");
  world.Step(1, 5, 2, "C_1");
  EXPECT_EQ(construction.DisplayFlow(db, 1, 2, "f"),
            Joined({"<center>", Box(1, 0), "↓",       kRow,     kCell,   kFirstBar, "↓",     Box(2, 1),  kRow,
                    kCell,      "↓",       Box(5, 2), "</td>",  kRowEnd, "</td>",   kCell,   kMiddleBar, "↓",
                    Box(3, 1),  "</td>",   kCell,     kLastBar, "↓",     Box(4, 1), "</td>", kRowEnd,    "</center>"}));
  EXPECT_THAT(
      world.trace(),
      ElementsAre("select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=1",
                  "select Top 10000 flowno from WorkFlowConstruction where flowid=1 and parentno=1 order by ID",
                  "select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=2",
                  "select Top 10000 flowno from WorkFlowConstruction where flowid=1 and parentno=2 order by ID",
                  "select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=5",
                  "select Top 10000 flowno from WorkFlowConstruction where flowid=1 and parentno=5 order by ID",
                  "select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=3",
                  "select Top 10000 flowno from WorkFlowConstruction where flowid=1 and parentno=3 order by ID",
                  "select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=4",
                  "select Top 10000 flowno from WorkFlowConstruction where flowid=1 and parentno=4 order by ID"));
}

TEST_F(DrawingTest, ALeafHasNothingBelow) {
  world.Step(1, 1, 0, "C_1");
  EXPECT_EQ(construction.DisplayNextFlowStep(db, 1, 1, 1, "f"), "");
}

TEST_F(DrawingTest, ABoxOfAMissingStepIsEmpty) {
  EXPECT_EQ(construction.DisplayPerFlowStep(db, 1, 3, 1, "f"), "");
  EXPECT_THAT(world.trace(), ElementsAre("select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=3"));
}

TEST_F(DrawingTest, AClickOnABoxFillsThePagesForm) {
  world.Run(
      "Insert Into WorkFlowConstruction (FlowID,FlowNo,ParentNo,Serial,Remark,Command) Values "
      "(1,3,2,0,'it''s \"<b>\"\r\n','C_2')");
  world.Parameter(1, 3, "C_2_1", "a'b\\");
  world.Parameter(1, 3, "C_2_2", "");
  EXPECT_EQ(construction.DisplayPerFlowStep(db, 1, 3, 1, "frm"),
            "<table border=\"1\" cellspacing=\"0\" cellpadding=\"0\"><tr><td><a href=\"\" onclick=\""
            "document.frm.FlowNo.value='3';document.frm.FlowNoNow.value='3';document.frm.OldFlowNo.value='3';"
            "document.frm.ParentNo.value='2';document.frm.Remark.value='it\\'s&#32;&quot;&lt;b&gt;&quot;\\r\\n';"
            "document.frm.Command.value='C_2';document.frm.C_2_1.value='a\\'b\\\\';document.frm.C_2_2.value='';"
            "buttoncon();opendiv();return false;\">序号：3<br>父序：2<br>说明：it's \"<b>\"\r\n</a></td></tr></table>");
  EXPECT_THAT(world.trace(), ElementsAre("select Top 1 * from WorkFlowConstruction where flowid=1 and flowno=3",
                                         "select Top 10000 * from WorkFlowParameter where flowid=1 and flowno=3"));
}

TEST_F(DrawingTest, TheSwitchForClicksIsANumber) {
  world.Step(1, 1, 0, "C_1");
  const std::string plain = construction.DisplayPerFlowStep(db, 1, 1, 0, "f");
  const std::string clickable = construction.DisplayPerFlowStep(db, 1, 1, 1, "f");
  EXPECT_EQ(plain, Box(1, 0));
  EXPECT_NE(plain, clickable);
  for (const Value& on : {Value("1"), Value(1.0), Value("1.0")}) {
    EXPECT_EQ(construction.DisplayPerFlowStep(db, 1, 1, on, "f"), clickable);
  }
  for (const Value& off : {Value(), Value(""), Value(2), Value("yes"), Value(true)}) {
    EXPECT_EQ(construction.DisplayPerFlowStep(db, 1, 1, off, "f"), plain);
  }
}

TEST_F(DrawingTest, ClicksGoThroughTheWholeDrawing) {
  world.Step(1, 1, 0, "C_1");
  world.Step(1, 2, 1, "C_1");
  EXPECT_EQ(construction.DisplayFlow(db, 1, 1, "f"),
            Joined({"<center>", construction.DisplayPerFlowStep(db, 1, 1, 1, "f"), kRow, kCell, "↓",
                    construction.DisplayPerFlowStep(db, 1, 2, 1, "f"), "</td>", kRowEnd, "</center>"}));
}

TEST_F(DrawingTest, NullColumnsAddNothing) {
  world.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo) Values (1,3)");
  world.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName) Values (1,3,'C_2_1')");
  EXPECT_EQ(construction.DisplayPerFlowStep(db, 1, 3, 1, "f"),
            "<table border=\"1\" cellspacing=\"0\" cellpadding=\"0\"><tr><td><a href=\"\" onclick=\""
            "document.f.FlowNo.value='3';document.f.FlowNoNow.value='3';document.f.OldFlowNo.value='3';"
            "document.f.ParentNo.value='';document.f.Remark.value='';document.f.Command.value='';"
            "document.f.C_2_1.value='';buttoncon();opendiv();return false;\">"
            "序号：3<br>父序：<br>说明：</a></td></tr></table>");
}

}  // namespace
}  // namespace talm_flow::test
