#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/scene.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

// "TableID:12,DataID:345" in base64url.
constexpr const char* kEncodedRecord = "VGFibGVJRDoxMixEYXRhSUQ6MzQ1";

std::string RecordLink(const std::string& encoded, const std::string& text) {
  return "<A Href=\"PerDataDisplay.asp?DataEncode=" + encoded +
         "\" onclick=\"window.open(this.href,'_blank','toolbar=no,location=no,directories=no,status=no,menubar=no,"
         "scrollbars=yes,resizable=yes,width=500,height=400');return false;\">" +
         text + "</A>";
}

std::string PageLink(const std::string& page, const std::string& parameter, const std::string& text) {
  return "<A Href=\"WorkWeb.asp?WebID=" + page + "&TableDataParam=" + parameter +
         "\" onclick=\"window.open(this.href,'_blank','toolbar=no,location=no,directories=no,status=no,menubar=no,"
         "scrollbars=yes,resizable=yes');return false;\">" +
         text + "</A>";
}

TEST(RecordLinkTest, TheLinkOpensTheRecordsPage) {
  Scene scene;
  scene.Run(&Command::C_90, "C_90", {std::string(kRecord), "\"Open\"", "link"});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_90_1", "read C_90_2", "read C_90_3"));
  EXPECT_EQ(scene.Variable("link"), RecordLink(kEncodedRecord, "Open"));
}

TEST(RecordLinkTest, TheRecordNeedNotBeThere) {
  Scene scene;
  scene.Run(&Command::C_90, "C_90", {"\"DataID:3,TableID:99\"", "\"Open\"", "link"});
  EXPECT_EQ(scene.Variable("link"), RecordLink("VGFibGVJRDo5OSxEYXRhSUQ6Mw", "Open"));
}

TEST(RecordLinkTest, TheTextIsTheValueElseTheParameter) {
  const std::pair<std::string, std::string> cases[] = {
      {"\"<b>'x'</b>\"", "<b>'x'</b>"}, {"open_it", "open_it"}, {"title", "A title"}, {"\"\"", "\"\""}};
  for (const auto& [parameter, text] : cases) {
    Scene scene;
    scene.SetVariable("title", "A title");
    scene.Run(&Command::C_90, "C_90", {std::string(kRecord), parameter, "link"});
    EXPECT_EQ(scene.Variable("link"), RecordLink(kEncodedRecord, text)) << parameter;
  }
}

TEST(RecordLinkTest, WithoutATextNothingIsStoredNorReadFurther) {
  Scene scene;
  scene.Run(&Command::C_90, "C_90", {std::string(kRecord), "", "link"});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_90_1", "read C_90_2"));
  EXPECT_EQ(scene.Variable("link"), "none");
}

TEST(RecordLinkTest, AReferenceThatDoesNotSplitStoresNothing) {
  for (const char* record : {"", "\"TableID:12\"", "12", "\"TableID:0,DataID:1\"", "TableID:12,DataID:345"}) {
    Scene scene;
    scene.Run(&Command::C_90, "C_90", {record, "\"Open\"", "link"});
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_90_1")) << record;
    EXPECT_EQ(scene.Variable("link"), "none");
  }
}

TEST(RecordLinkTest, AHundredThousandCharactersOfTextAreKept) {
  const std::string text = Repeated("'汉😀?", 25000);
  Scene scene;
  scene.Run(&Command::C_90, "C_90", {std::string(kRecord), Marked(text), "link"});
  EXPECT_EQ(scene.Variable("link"), RecordLink(kEncodedRecord, text));
}

TEST(PageLinkTest, TheLinkOpensThePageWithItsParameter) {
  Scene scene;
  scene.Run(&Command::C_91, "C_91", {"5", "\"Open\"", std::string(kRecord), "link"});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_91_1", "read C_91_2", "read C_91_3", "read C_91_4"));
  EXPECT_EQ(scene.Variable("link"), PageLink("5", "TableID%3A12%2CDataID%3A345", "Open"));
}

TEST(PageLinkTest, ThePageIsAWholeNumberAsStoredOrByItsValue) {
  const std::pair<std::string, std::string> cases[] = {{"5", "5"},   {"\"7\"", "7"}, {"page", "9"},     {"2+3", "5"},
                                                       {" 4 ", "4"}, {"2.5", "2"},   {"1,000", "1000"}, {"-3", "-3"},
                                                       {"007", "7"}, {"1e2", "100"}};
  for (const auto& [parameter, page] : cases) {
    Scene scene;
    scene.SetVariable("page", "9");
    scene.Run(&Command::C_91, "C_91", {parameter, "\"Open\"", "\"p\"", "link"});
    EXPECT_EQ(scene.Variable("link"), PageLink(page, "p", "Open")) << parameter;
  }
}

TEST(PageLinkTest, APageThatIsNoNumberStoresNothing) {
  for (const char* page : {"", "unset", "\"five\"", "1/0", "\"\""}) {
    Scene scene;
    scene.Run(&Command::C_91, "C_91", {page, "\"Open\"", "\"p\"", "link"});
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_91_1")) << page;
    EXPECT_EQ(scene.Variable("link"), "none");
  }
}

TEST(PageLinkTest, APageBeyond32BitsRaisesOverflow) {
  Scene scene;
  EXPECT_THROW(scene.Run(&Command::C_91, "C_91", {"2147483648", "\"Open\"", "\"p\"", "link"}), OverflowError);
  EXPECT_EQ(scene.Variable("link"), "none");
}

TEST(PageLinkTest, WithoutATextNothingIsStoredNorReadFurther) {
  Scene scene;
  scene.Run(&Command::C_91, "C_91", {"5", "", "\"p\"", "link"});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_91_1", "read C_91_2"));
  EXPECT_EQ(scene.Variable("link"), "none");
}

TEST(PageLinkTest, TheParameterIsTheValueElseTheStoredTextAndMayBeEmpty) {
  const std::pair<std::string, std::string> cases[] = {
      {"as_stored", "as_stored"}, {"", ""}, {"\"汉 \"\"", "%22%E6%B1%89%20%22%22"}, {"\"a&b\"", "a%26b"}};
  for (const auto& [parameter, encoded] : cases) {
    Scene scene;
    scene.Run(&Command::C_91, "C_91", {"5", "open_it", parameter, "link"});
    EXPECT_EQ(scene.Variable("link"), PageLink("5", encoded, "open_it")) << parameter;
  }
}

}  // namespace
}  // namespace talm_flow::test
