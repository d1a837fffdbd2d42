#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct Widget {
  int sort;
  const char* content;
  const char* value;
  std::string html;
};

/// One input parameter with the title "T" in flow 1.
class WidgetTest : public DesignTest, public ::testing::WithParamInterface<Widget> {};

TEST_P(WidgetTest, StandsInATableOrAListWithItsLabel) {
  const auto& [sort, content, value, html] = GetParam();
  Input(1, "T", 1, sort, content);
  const std::string label =
      sort == 6 ? "<span id=\"InputParameter_1_Title\">T</span>" : "<label for=\"InputParameter_1\">T</label>";
  EXPECT_EQ(construction.DisplayInputParameter(db, 1, 1, value),
            "<table class=\"InputParameters\">\r\n<tr><th scope=\"row\">" + label + "</th><td>" + html +
                "</td></tr>\r\n</table>\r\n");
  EXPECT_EQ(construction.DisplayInputParameter(db, 1, 2, value),
            "<ul class=\"InputParameters\">\r\n<li>" + label + " " + html + "</li>\r\n</ul>\r\n");
}

std::string Input(const std::string& kind, const std::string& more = "") {
  return "<input type=\"text\" id=\"InputParameter_1\" name=\"InputParameter_1\" data-kind=\"" + kind + "\"" + more;
}
std::string LongText(const std::string& content) {
  return "<textarea id=\"InputParameter_1\" name=\"InputParameter_1\" data-kind=\"longtext\" rows=\"4\" cols=\"40\">" +
         content + "</textarea>";
}
std::string Select(const std::string& kind, const std::string& options) {
  return "<select id=\"InputParameter_1\" name=\"InputParameter_1\" data-kind=\"" + kind + "\">" + options +
         "</select>";
}
std::string Boxes(const std::string& boxes) {
  return "<span id=\"InputParameter_1\" role=\"group\" aria-labelledby=\"InputParameter_1_Title\" "
         "data-kind=\"choices\">" +
         boxes + "</span>";
}
std::string CheckBox(int number, const std::string& option, bool checked) {
  const std::string id = "InputParameter_1_" + std::to_string(number);
  return "<input type=\"checkbox\" id=\"" + id + "\" name=\"InputParameter_1\" value=\"" + option +
         (checked ? "\" checked>" : "\">") + "<label for=\"" + id + "\">" + option + "</label>";
}

const std::string kNoChoice = "<option value=\"\" selected></option>";

INSTANTIATE_TEST_SUITE_P(
    Kinds, WidgetTest,
    ::testing::Values(
        Widget{1, "ignored", "", Input("text", " value=\"\">")}, Widget{1, "", "a b", Input("text", " value=\"a b\">")},
        Widget{1, "", "O'Neil \"<&>\"\r\n\\",
               Input("text", " value=\"O&#39;Neil &quot;&lt;&amp;&gt;&quot;&#13;&#10;\\\">")},
        Widget{0, "", "x", Input("text", " value=\"x\">")}, Widget{99, "", "x", Input("text", " value=\"x\">")},
        Widget{2, "", "1,000.5", Input("number", " inputmode=\"decimal\" value=\"1,000.5\">")},
        Widget{3, "", "2026/1/31", Input("date", " autocomplete=\"off\" value=\"2026/1/31\">")},
        Widget{4, "", "<b>", LongText("&lt;b&gt;")}, Widget{4, "", "\nx", LongText("\n&#10;x")},
        Widget{
            5, "红, b ,c", "b",
            Select("choice",
                   "<option value=\"\"></option><option value=\"红\">红</option><option value=\"b\" selected>b</option>"
                   "<option value=\"c\">c</option>")},
        Widget{5, "a,\"<", "other",
               Select("choice",
                      "<option value=\"\"></option><option value=\"a\">a</option>"
                      "<option value=\"&quot;&lt;\">&quot;&lt;</option>")},
        Widget{5, "a", "", Select("choice", kNoChoice + "<option value=\"a\">a</option>")},
        Widget{5, "", "", Select("choice", kNoChoice)},
        Widget{6, "a,b,c", "c, a", Boxes(CheckBox(1, "a", true) + CheckBox(2, "b", false) + CheckBox(3, "c", true))},
        Widget{6, "a,&", "", Boxes(CheckBox(1, "a", false) + CheckBox(2, "&amp;", false))},
        Widget{6, "", "a", Boxes("")},
        Widget{7, "", "1", Select("yesno", "<option value=\"0\">否</option><option value=\"1\" selected>是</option>")},
        Widget{7, "", "0", Select("yesno", "<option value=\"0\" selected>否</option><option value=\"1\">是</option>")},
        Widget{7, "", "", Select("yesno", "<option value=\"0\" selected>否</option><option value=\"1\">是</option>")},
        Widget{8, "", "Ann,@all", Input("person", " value=\"Ann,@all\">")},
        Widget{9, "", "TableID:1,DataID:2", Input("record", " value=\"TableID:1,DataID:2\">")}));

using InputFormTest = DesignTest;

TEST_F(InputFormTest, AFlowWithoutInputParametersHasNoForm) {
  EXPECT_EQ(construction.DisplayInputParameter(db, 1, 1, "a|^|b"), "");
  EXPECT_THAT(world.trace(),
              ElementsAre("select Top 10000 * from WorkFlowFunctionInput where FlowID=1 Order By OrderNo,InputTitle"));
}

TEST_F(InputFormTest, ValuesBelongToPositionsInListOrder) {
  Input(1, "second", 2, 1, "");
  Input(1, "third", 2, 1, "");
  Input(1, "first", 1, 1, "");
  const std::string html = construction.DisplayInputParameter(db, 1, 2, "a||^||^|c|^|beyond");
  const auto row = [](const std::string& position, const std::string& title, const std::string& value) {
    const std::string input_name = "InputParameter_" + position;
    return "<li><label for=\"" + input_name + "\">" + title + "</label> <input type=\"text\" id=\"" + input_name +
           "\" name=\"" + input_name + "\" data-kind=\"text\" value=\"" + value + "\"></li>\r\n";
  };
  EXPECT_EQ(html, "<ul class=\"InputParameters\">\r\n" + row("1", "first", "a|") + row("2", "second", "") +
                      row("3", "third", "c") + "</ul>\r\n");
}

TEST_F(InputFormTest, TitlesAreEscapedAndMissingColumnsAreEmpty) {
  Input(1, "<script>&'\"", 1, 1, "");
  world.Run("Insert Into WorkFlowFunctionInput (FlowID,OrderNo) Values (1,2)");
  const std::string html = construction.DisplayInputParameter(db, 1, 1, Value());
  EXPECT_THAT(html, HasSubstr(">&lt;script&gt;&amp;&#39;&quot;</label>"));
  EXPECT_THAT(html, HasSubstr("<label for=\"InputParameter_2\"></label></th><td><input type=\"text\" "
                              "id=\"InputParameter_2\" name=\"InputParameter_2\" data-kind=\"text\" value=\"\">"));
}

TEST_F(InputFormTest, AFlowNumberThatIsNoneFailsWithTheDatabasesError) {
  EXPECT_THROW((void)construction.DisplayInputParameter(db, "x y", 1, ""), DatabaseError);
}

}  // namespace
}  // namespace talm_flow::test
