#include "support/html.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace talm_flow::test {
namespace {

using ::testing::HasSubstr;

TEST(HtmlReadingTest, BalancedHtmlHasNoFaultAndTellsItsElements) {
  const auto reading = ReadHtml("a<TABLE border=1 class=\"x y\"><tr><td>b<br>c</td></tr></table><input value='\"'>");
  EXPECT_EQ(reading.fault, "");
  ASSERT_EQ(reading.elements.size(), 5U);
  EXPECT_EQ(reading.elements[0].name, "table");
  EXPECT_EQ(reading.elements[0].attributes[1], (std::pair<std::string, std::string>("class", "x y")));
  EXPECT_EQ(reading.elements[2].text, "bc");
  EXPECT_EQ(reading.elements[4].attributes[0].second, "\"");
}

TEST(HtmlReadingTest, AScriptIsTextUpToItsEndTag) {
  const auto reading = ReadHtml("<script>if (a<b) c=\"</td>\";</Script>");
  EXPECT_EQ(reading.fault, "");
  EXPECT_EQ(reading.elements[0].text, "if (a<b) c=\"</td>\";");
}

struct Fault {
  const char* html;
  const char* fault;
};

class HtmlFaultTest : public ::testing::TestWithParam<Fault> {};

TEST_P(HtmlFaultTest, IsTold) { EXPECT_THAT(ReadHtml(GetParam().html).fault, HasSubstr(GetParam().fault)); }

INSTANTIATE_TEST_SUITE_P(
    All, HtmlFaultTest,
    ::testing::Values(Fault{"<b>", "<b> has no end tag at byte 3"}, Fault{"</b>", "</b> stands in <>"},
                      Fault{"<a><b></a></b>", "</a> stands in <b>"}, Fault{"a < b", "\"<\" begins no tag"},
                      Fault{"<!-- -->", "\"<\" begins no tag"}, Fault{"<td></td>", "<td> stands in <>"},
                      Fault{"<select><li></li></select>", "<li> stands in <select>"},
                      Fault{"<a b=1 B=2></a>", "<a has b twice"}, Fault{"<a b=\"1></a>", "the value of b does not end"},
                      Fault{"<a b=c=d></a>", "the value of b needs quotes"},
                      Fault{"<a b=\"1\"c></a>", "nothing parts the attributes"}, Fault{"<a =1></a>", "has no name"},
                      Fault{"<a ", "<a is not closed"}, Fault{"<textarea><b></textarea>", "\"<\" stands in <textarea>"},
                      Fault{"<script>x", "<script> has no end tag"}));

}  // namespace
}  // namespace talm_flow::test
