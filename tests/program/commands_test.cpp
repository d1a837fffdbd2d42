// `talmflow commands`: the manual of the commands, in a terminal and as a document.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/places.h"
#include "support/run_program.h"

namespace talm_flow::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class CommandsTest : public testing::Test {
 protected:
  [[nodiscard]] ProgramResult Commands(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "commands");
    return RunProgram(ProgramPath(), arguments, folder_);
  }

  TemporaryFolder folder_;
};

TEST_F(CommandsTest, AreListedWithTitleAndEffectWithoutADatabase) {
  const auto result = Commands({});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("\nC_2      Approval task"));
  EXPECT_THAT(result.out, HasSubstr("  waits  "));
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 99);
}

TEST_F(CommandsTest, APageTellsEveryParameterAndShowsAnExample) {
  const auto result = Commands({"C_16"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("C_16  Jump\n"));
  EXPECT_THAT(result.out, HasSubstr("At most 200 runs"));
  EXPECT_THAT(result.out, HasSubstr("  C_16_1  Step\n      as stored; number of a step of the same flow;"));
  EXPECT_THAT(result.out, HasSubstr("\n  Command:C_16\n  ParameterBegin\n  C_16_1:3\n  ParameterEnd\n"));
}

TEST_F(CommandsTest, SeveralPagesComeOneAfterTheOther) {
  const auto result = Commands({"C_73", "C_74"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_LT(result.out.find("C_73  "), result.out.find("C_74  "));
  EXPECT_THAT(result.out, HasSubstr("It takes no parameters."));
}

TEST_F(CommandsTest, OneAsJsonIsAnObject) {
  const auto result = Commands({"C_11", "--json"});
  EXPECT_EQ(result.status, 0) << result.err;
  const auto page = json::parse(result.out);
  EXPECT_EQ(page["command"], "C_11");
  EXPECT_EQ(page["effect"], "by result");
  EXPECT_EQ(page["run_cap"], false);
  ASSERT_EQ(page["parameters"].size(), 3U);
  EXPECT_EQ(page["parameters"][1]["name"], "C_11_2");
  EXPECT_EQ(page["parameters"][1]["taken"], "stored");
  EXPECT_EQ(page["parameters"][1]["required"], true);
}

TEST_F(CommandsTest, AllAsJsonAreAnArray) {
  const auto result = Commands({"--json"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(json::parse(result.out).size(), 98U);
}

TEST_F(CommandsTest, AMisspeltNameIsAnsweredWithTheNearest) {
  const auto result = Commands({"c_2"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "talmflow: there is no command \"c_2\"; did you mean C_2?\n");
  EXPECT_EQ(Commands({"approve"}).err, "talmflow: there is no command \"approve\"; the commands are C_1 to C_98\n");
}

TEST_F(CommandsTest, TheDocumentIsWhatTheProgramWrites) {
  const auto result = Commands({"--markdown"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(ReadFile(SourcePath("docs/commands.md")) == result.out)
      << "docs/commands.md is out of date; write it with: make docs";
}

}  // namespace
}  // namespace talm_flow::test
