/// Texts made safe for statements, scripts and pages; lists and codes.

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "talm_flow/host/reference_host.h"

namespace talm_flow::host {
namespace {

class CommonFunctionsTest : public testing::Test {
 protected:
  [[nodiscard]] CommonFunctions& common() { return services_.common; }
  [[nodiscard]] std::string Sql(std::string_view text) {
    std::string literal;
    common().SqlText(text, literal);
    return literal;
  }

 private:
  ReferenceHost host_;
  Services services_ = host_.services();
};

// What a database reads in a literal; nothing when the text is not exactly one literal.
std::optional<std::string> ReadLiteral(std::string_view literal) {
  if (literal.size() < 2 || literal.front() != '\'' || literal.back() != '\'') return std::nullopt;
  literal = literal.substr(1, literal.size() - 2);
  std::string text;
  for (std::size_t at = 0; at < literal.size(); ++at) {
    if (literal[at] == '\'' && (++at == literal.size() || literal[at] != '\'')) return std::nullopt;
    text += literal[at];
  }
  return text;
}

std::string Utf8Below0x10000(unsigned code_point) {
  if (code_point < 0x80) return {static_cast<char>(code_point)};
  if (code_point < 0x800) {
    return {static_cast<char>(0xC0 | (code_point >> 6U)), static_cast<char>(0x80 | (code_point & 0x3FU))};
  }
  return {static_cast<char>(0xE0 | (code_point >> 12U)), static_cast<char>(0x80 | ((code_point >> 6U) & 0x3FU)),
          static_cast<char>(0x80 | (code_point & 0x3FU))};
}

// What a script reads in a string with the given quotes; nothing when the text would end the string or is no string.
std::optional<std::string> ReadScriptString(std::string_view body, char quote) {
  std::string text;
  for (std::size_t at = 0; at < body.size(); ++at) {
    const char c = body[at];
    if (c == quote || c == '\r' || c == '\n') return std::nullopt;
    if (body.substr(at).starts_with("\u2028") || body.substr(at).starts_with("\u2029")) return std::nullopt;
    if (c != '\\') {
      text += c;
      continue;
    }
    if (++at == body.size()) return std::nullopt;
    const auto number = [&](std::size_t digits) {
      const unsigned code_point =
          static_cast<unsigned>(std::stoul(std::string(body.substr(at + 1, digits)), nullptr, 16));
      at += digits;
      return Utf8Below0x10000(code_point);
    };
    switch (body[at]) {
      case 'r':
        text += '\r';
        break;
      case 'n':
        text += '\n';
        break;
      case 'x':
        text += number(2);
        break;
      case 'u':
        text += number(4);
        break;
      default:
        text += body[at];
    }
  }
  return text;
}

// What a page reads in an attribute's value, with double quotes around it or without quotes; nothing when the text
// would end it.
std::optional<std::string> ReadAttribute(std::string_view value) {
  if (value.find_first_of(" \t\n\f\r\"=<>`") != std::string_view::npos) return std::nullopt;
  std::string text;
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (value[at] != '&') {
      text += value[at];
      continue;
    }
    const std::size_t end = value.find(';', at);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view name = value.substr(at + 1, end - at - 1);
    if (name == "amp") {
      text += '&';
    } else if (name == "lt") {
      text += '<';
    } else if (name == "gt") {
      text += '>';
    } else if (name == "quot") {
      text += '"';
    } else if (name.starts_with('#')) {
      text += Utf8Below0x10000(static_cast<unsigned>(std::stoul(std::string(name.substr(1)))));
    } else {
      return std::nullopt;
    }
    at = end;
  }
  return text;
}

std::optional<std::string> ReadDisplayed(std::string_view displayed) {
  const auto script = ReadAttribute(displayed);
  return script ? ReadScriptString(*script, '\'') : std::nullopt;
}

// Texts put together from everything that means something to a statement, a script or a page.
std::vector<std::string> HostileTexts() {
  const std::vector<std::string> pieces = {
      "\\",   "'",       "\"",    "`",      "\r",     "\n",       "\t",        "\f",   " ",           "=",
      "&",    "<",       ">",     ";",      "&amp;",  "&#39;",    "</script>", "<!--", "-->",         "\\'",
      "\\n",  "\\u2028", "\\x3C", "\u2028", "\u2029", "\u2027",   "\u202A",    "''",   "' or 1=1 --", ");",
      "中文", "𝄞",       "é",     "\x01",   "\x7F",   "\xE2\x80", "\xE2",      "\xFF", "&lt",         "&quot;",
      "a",    "?",       "%00",   "$(x)",   "${x}",   "\u0085",   "\u00A0",    "/*"};
  std::vector<std::string> texts = pieces;
  texts.emplace_back();
  std::mt19937 random(20260131);
  for (int i = 0; i < 3000; ++i) {
    std::string text;
    for (auto count = random() % 8; count > 0; --count) text += pieces[random() % pieces.size()];
    texts.push_back(std::move(text));
  }
  return texts;
}

TEST_F(CommonFunctionsTest, SqlTextIsOneLiteralWithInnerQuotesDoubled) {
  EXPECT_EQ(Sql(""), "''");
  EXPECT_EQ(Sql("Miller"), "'Miller'");
  EXPECT_EQ(Sql("O'Neill"), "'O''Neill'");
  EXPECT_EQ(Sql("'"), "''''");
  EXPECT_EQ(Sql("''"), "''''''");
  EXPECT_EQ(Sql("x' or 'y'='y"), "'x'' or ''y''=''y'");
  EXPECT_EQ(Sql("back\\slash \"double\" 中𝄞"), "'back\\slash \"double\" 中𝄞'");
}

TEST_F(CommonFunctionsTest, SqlTextAppendsToWhatIsThere) {
  std::string statement = "Select 1 Where x=";
  common().SqlText("a'b", statement);
  EXPECT_EQ(statement, "Select 1 Where x='a''b'");
}

TEST_F(CommonFunctionsTest, SqlTextIsReadAsTheTextItself) {
  for (const std::string& text : HostileTexts()) EXPECT_EQ(ReadLiteral(Sql(text)), text);
}

TEST_F(CommonFunctionsTest, AnInputUnitCodeIsLettersDigitsAndUnderscoresAfterALetter) {
  for (const std::string_view code : {"a", "Z", "A1", "ab_12", "X__", "in1"})
    EXPECT_TRUE(common().CheckInUnitID(code)) << code;
  for (const std::string_view code :
       {"", "1", "1a", "_a", "a b", " a", "a ", "a-b", "a:b", "a'b", "é", "aé", "单元", "ａ", "a\n"}) {
    EXPECT_FALSE(common().CheckInUnitID(code)) << code;
  }
  EXPECT_FALSE(common().CheckInUnitID(std::string_view("a\0b", 3)));
}

TEST_F(CommonFunctionsTest, AnInputUnitCodeHasAtMost50Characters) {
  EXPECT_TRUE(common().CheckInUnitID(std::string(50, 'a')));
  EXPECT_FALSE(common().CheckInUnitID(std::string(51, 'a')));
}

struct ListCase {
  std::string_view list;
  std::string_view sought;
  bool found;
};

class InListTest : public testing::TestWithParam<ListCase> {};

TEST_P(InListTest, ComparesTheTextAsItIsWithTrimmedItems) {
  ReferenceHost host;
  EXPECT_EQ(host.services().common.InList(GetParam().list, GetParam().sought), GetParam().found)
      << '"' << GetParam().list << "\" \"" << GetParam().sought << '"';
}

INSTANTIATE_TEST_SUITE_P(Lists, InListTest,
                         testing::Values(ListCase{"a,b,c", "a", true}, ListCase{"a,b,c", "b", true},
                                         ListCase{"a,b,c", "c", true}, ListCase{" a , b ", "b", true},
                                         ListCase{"a,b", " b", false}, ListCase{"a,b", "a,b", false},
                                         ListCase{"abc", "a", false}, ListCase{"a", "abc", false},
                                         ListCase{"A", "a", false}, ListCase{"张三,李四", "李四", true},
                                         ListCase{"a\t", "a", false}, ListCase{"a b,c", "a b", true}));
INSTANTIATE_TEST_SUITE_P(EmptyItems, InListTest,
                         testing::Values(ListCase{"", "", false}, ListCase{"", "a", false}, ListCase{",", "", true},
                                         ListCase{"a,,b", "", true}, ListCase{"a,", "", true}, ListCase{"a", "", false},
                                         ListCase{"a, ,b", "", true}, ListCase{" ", "", true}));

TEST_F(CommonFunctionsTest, SelectedMarkMarksWhatTheListNames) {
  EXPECT_EQ(common().SelectedMark(Value(2), Value("1,2,3")), " selected");
  EXPECT_EQ(common().SelectedMark(Value("2"), Value(2)), " selected");
  EXPECT_EQ(common().SelectedMark(Value(2.5), Value("2.5")), " selected");
  EXPECT_EQ(common().SelectedMark(Value(4), Value("1,2,3")), "");
  EXPECT_EQ(common().SelectedMark(Value(1), Value("11")), "");
  EXPECT_EQ(common().SelectedMark(Value(1), Value()), "");
  EXPECT_EQ(common().SelectedMark(Value(), Value()), "");
}

TEST_F(CommonFunctionsTest, ScriptTextEscapesForADoubleQuotedString) {
  EXPECT_EQ(common().ScriptText("plain 中𝄞 'x' & >"), "plain 中𝄞 'x' & >");
  EXPECT_EQ(common().ScriptText("a\\b\"c\r\nd"), R"(a\\b\"c\r\nd)");
  EXPECT_EQ(common().ScriptText("</script><!--"), R"(\x3C/script>\x3C!--)");
  EXPECT_EQ(common().ScriptText("a\u2028b\u2029c\u2027"), "a\\u2028b\\u2029c\u2027");
}

TEST_F(CommonFunctionsTest, ScriptTextIsReadAsTheTextItself) {
  for (const std::string& text : HostileTexts()) {
    const std::string script = common().ScriptText(text);
    EXPECT_EQ(ReadScriptString(script, '"'), text);
    EXPECT_EQ(script.find('<'), std::string::npos) << "nothing in it can end the script element";
  }
}

TEST_F(CommonFunctionsTest, DisplayTextEscapesForAScriptStringInAnAttribute) {
  EXPECT_EQ(common().DisplayText("Order_17中𝄞;/?"), "Order_17中𝄞;/?");
  EXPECT_EQ(common().DisplayText("a\\b'c\r\nd"), R"(a\\b\'c\r\nd)");
  EXPECT_EQ(common().DisplayText("<a&b>\""), "&lt;a&amp;b&gt;&quot;");
  EXPECT_EQ(common().DisplayText("a b\tc\fd=e`f"), "a&#32;b&#9;c&#12;d&#61;e&#96;f");
  EXPECT_EQ(common().DisplayText("\u2028\u2029"), R"(\u2028\u2029)");
  EXPECT_EQ(common().DisplayText("&lt;"), "&amp;lt;");
}

TEST_F(CommonFunctionsTest, DisplayTextIsReadAsTheTextItself) {
  for (const std::string& text : HostileTexts()) EXPECT_EQ(ReadDisplayed(common().DisplayText(text)), text);
}

TEST_F(CommonFunctionsTest, NullIsDisplayedAsNothingAndANumberInItsPlainForm) {
  EXPECT_EQ(common().DisplayText(Value()), "");
  EXPECT_EQ(common().ScriptText(Value()), "");
  EXPECT_EQ(common().DisplayText(Value(12)), "12");
  EXPECT_EQ(common().ScriptText(Value(-0.5)), "-0.5");
  EXPECT_EQ(common().DisplayText(Value("")), "");
}

}  // namespace
}  // namespace talm_flow::host
