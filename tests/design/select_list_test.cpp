#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

using SelectListTest = DesignTest;

TEST_F(SelectListTest, FlowsAreListedByName) {
  Flow(1, "Purchase");
  Flow(3, "Leave");
  EXPECT_EQ(name.FlowSelect(db, "Flow", 0, 1, 200, 1, ""),
            "<Select name=\"Flow\" size=1 style=\"width=200\">\r\n<option value=0></option>\r\n"
            "<option value=3>Leave</option><option value=1>Purchase</option></Select>");
  EXPECT_THAT(world.trace(), ElementsAre("select Top 10000 FlowID, FlowName from WorkFlowName Order By FlowName"));
}

TEST_F(SelectListTest, FlowsThatWereChosenAreMarked) {
  for (const int flow : {1, 2, 3}) Flow(flow, "f" + std::to_string(flow));
  EXPECT_EQ(name.FlowSelect(db, "n", 1, "5", "0", 0, "3, 1"),
            "<Select name=\"n\" size=5 multiple>\r\n<option value=1 selected>f1</option><option value=2>f2</option>"
            "<option value=3 selected>f3</option></Select>");
  EXPECT_EQ(name.FlowSelect(db, "n", 0, 1, 0, 0, 2),
            "<Select name=\"n\" size=1>\r\n<option value=1>f1</option><option value=2 selected>f2</option>"
            "<option value=3>f3</option></Select>");
}

TEST_F(SelectListTest, FlowNamesAreShownSafely) {
  Flow(1, "<b>&");
  world.Run("Insert Into WorkFlowName (FlowID) Values (2)");
  EXPECT_EQ(name.FlowSelect(db, "n", 0, 1, 0, 0, Value()),
            "<Select name=\"n\" size=1>\r\n<option value=2></option><option value=1>&lt;b&gt;&amp;</option></Select>");
}

struct Switches {
  Value is_multiple, width, have_space;
  std::string opening;
};

class SwitchesTest : public DesignTest, public ::testing::WithParamInterface<Switches> {};

TEST_P(SwitchesTest, OpenEveryListAlike) {
  const auto& [is_multiple, width, have_space, opening] = GetParam();
  const bool space = opening.ends_with('+');
  const std::string tag =
      "<Select name=\"n\" size=1" + (space ? opening.substr(0, opening.size() - 1) : opening) + ">\r\n";
  const std::string choice = space ? "<option value=0></option>\r\n" : "";
  const std::string empty_choice = space ? "<option value=\"\"></option>\r\n" : "";
  EXPECT_EQ(name.FlowSelect(db, "n", is_multiple, 1, width, have_space, ""), tag + choice + "</Select>");
  EXPECT_EQ(construction.InputParameterSelect(db, 1, "n", is_multiple, 1, width, have_space, ""),
            tag + choice + "</select>\r\n");
  EXPECT_EQ(construction.VarSelect(db, 1, "n", is_multiple, 1, width, have_space, ""),
            tag + empty_choice + "</select>\r\n");
}

INSTANTIATE_TEST_SUITE_P(All, SwitchesTest,
                         ::testing::Values(Switches{0, 0, 0, ""}, Switches{1, 0, 0, " multiple"},
                                           Switches{"1", 0, 0, " multiple"}, Switches{2, 0, 0, ""},
                                           Switches{"x", "x", "x", ""}, Switches{Value(), Value(), Value(), ""},
                                           Switches{0, 200, 0, " style=\"width=200\""},
                                           Switches{0, "12.5", 0, " style=\"width=12.5\""}, Switches{0, -1, 0, ""},
                                           Switches{0, "100%", 0, ""}, Switches{0, 0, 1, "+"},
                                           Switches{0, 0, "1.0", "+"}, Switches{0, 0, 2, ""},
                                           Switches{1, 1, 1, " style=\"width=1\" multiple+"}));

TEST_F(SelectListTest, AScriptOfTheFlowListStandsAsItWasGiven) {
  const Value empty = "";
  const Value script = "onchange=\"f()\"";
  const Value spaced = " onchange=f()";
  EXPECT_EQ(name.FlowSelect(db, "n", 0, 1, 0, 0, "", &empty), "<Select name=\"n\" size=1>\r\n</Select>");
  EXPECT_EQ(name.FlowSelect(db, "n", 1, 1, 0, 0, "", &script),
            "<Select name=\"n\" size=1 multipleonchange=\"f()\">\r\n</Select>");
  EXPECT_EQ(name.FlowSelect(db, "n", 0, 1, 0, 0, "", &spaced), "<Select name=\"n\" size=1 onchange=f()>\r\n</Select>");
}

TEST_F(SelectListTest, AScriptOfTheListsOfOneFlowIsSetApart) {
  const Value empty = "";
  const Value script = "onchange=f()";
  EXPECT_EQ(construction.InputParameterSelect(db, 1, "n", 0, 1, 0, 0, 0, &empty),
            "<Select name=\"n\" size=1>\r\n</select>\r\n");
  EXPECT_EQ(construction.InputParameterSelect(db, 1, "n", 0, 1, 0, 0, 0, &script),
            "<Select name=\"n\" size=1 onchange=f()>\r\n</select>\r\n");
  EXPECT_EQ(construction.VarSelect(db, 1, "n", 0, 1, 0, 0, "", &script),
            "<Select name=\"n\" size=1 onchange=f()>\r\n</select>\r\n");
}

TEST_F(SelectListTest, InputParametersAreNumberedInListOrder) {
  Input(1, "c", 2, 1, "");
  Input(1, "b", 2, 1, "");
  Input(2, "other flow", 0, 1, "");
  Input(1, "z<", 1, 1, "");
  world.Run("Insert Into WorkFlowFunctionInput (FlowID,OrderNo) Values (1,9)");
  EXPECT_EQ(construction.InputParameterSelect(db, 1, "p", 0, 1, 0, 1, "2"),
            "<Select name=\"p\" size=1>\r\n<option value=0></option>\r\n<option value=\"1\">z<</option>\r\n"
            "<option value=\"2\" selected>b</option>\r\n<option value=\"3\">c</option>\r\n"
            "<option value=\"4\"></option>\r\n</select>\r\n");
  EXPECT_THAT(world.trace(),
              ElementsAre("select Top 10000 InputTitle from WorkFlowFunctionInput where FlowID=1 Order By "
                          "OrderNo,InputTitle"));
}

TEST_F(SelectListTest, NoInputParameterIsMarkedForWhatIsNoPosition) {
  Input(1, "a", 1, 1, "");
  for (const Value& selected : {Value(), Value(""), Value("1,2"), Value(0), Value(2)}) {
    EXPECT_THAT(construction.InputParameterSelect(db, 1, "p", 0, 1, 0, 0, selected), Not(HasSubstr(" selected")));
  }
}

TEST_F(SelectListTest, VariablesOfTheChildFlowsAreListed) {
  world.Parameter(1, 1, "C_18_1", "2");
  world.Parameter(2, 1, "C_1_1", "a b");
  world.Parameter(2, 1, "C_1_2", "<x>,Private_v");
  EXPECT_EQ(construction.VarSelect(db, 1, "v", 0, 1, 0, 1, "Private_v"),
            "<Select name=\"v\" size=1>\r\n<option value=\"\"></option>\r\n"
            "<option value=a&#32;b>a&#32;b</option><option value=&lt;x&gt;>&lt;x&gt;</option>"
            "<option value=Private_v selected>Private_v</option></select>\r\n");
}

TEST_F(SelectListTest, AFlowWithoutChildFlowsHasNoVariablesToList) {
  world.Parameter(1, 1, "C_1_1", "v");
  EXPECT_EQ(construction.VarSelect(db, 1, "v", 0, 1, 0, 0, "v"), "<Select name=\"v\" size=1>\r\n</select>\r\n");
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 100000 ParameterData from WorkFlowParameter where FlowID=1 and "
                                         "ParameterName='C_18_1'"));
}

}  // namespace
}  // namespace talm_flow::test
