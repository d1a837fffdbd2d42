// `talmflow completion`: the script is loaded into a real shell and asked.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/places.h"
#include "support/run_program.h"

namespace talm_flow::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

class CompletionTest : public testing::Test {
 protected:
  CompletionTest() {
    const auto result = RunProgram(ProgramPath(), {"completion", "bash"}, folder_);
    EXPECT_EQ(result.status, 0) << result.err;
    WriteFile(folder_.File("script"), result.out);
  }

  /// What the shell offers for the last of the words.
  [[nodiscard]] std::vector<std::string> Offered(const std::string& words) {
    const auto result =
        RunProgram("/bin/bash",
                   {"-c", "source ./script; COMP_WORDS=(talmflow " + words +
                              "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _talmflow; "
                              "[[ ${#COMPREPLY[@]} -gt 0 ]] && printf '%s\\n' \"${COMPREPLY[@]}\"; exit 0"},
                   folder_);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    std::vector<std::string> lines;
    for (std::size_t begin = 0, end = 0; (end = result.out.find('\n', begin)) != std::string::npos; begin = end + 1) {
      lines.push_back(result.out.substr(begin, end - begin));
    }
    return lines;
  }

  TemporaryFolder folder_;
};

TEST_F(CompletionTest, SubcommandsAreOfferedByTheirBeginning) {
  EXPECT_THAT(Offered("comm"), ElementsAre("commands"));
  EXPECT_THAT(Offered("''"), IsSupersetOf({"init", "run", "import", "commands", "completion"}));
  EXPECT_THAT(Offered("zzz"), IsEmpty());
}

TEST_F(CompletionTest, SubcommandsOfSubcommandsAreOffered) {
  EXPECT_THAT(Offered("form ''"), ElementsAre("add", "list"));
  EXPECT_THAT(Offered("--db sqlite:x.db form a"), ElementsAre("add"));
}

TEST_F(CompletionTest, AGlobalOptionsValueIsNoSubcommand) {
  EXPECT_THAT(Offered("--db form l"), Not(Contains("list")));
}

TEST_F(CompletionTest, OptionsAreOffered) {
  EXPECT_THAT(Offered("--no"), ElementsAre("--no-transaction"));
  EXPECT_THAT(Offered("import --"), IsSupersetOf({"--name", "--flow", "--json", "--db", "--help"}));
  EXPECT_THAT(Offered("import --"), Not(Contains("--positive")));
  EXPECT_THAT(Offered("approve --posi"), ElementsAre("--positive"));
}

TEST_F(CompletionTest, ValuesOfOptionsAreLeftToTheShell) { EXPECT_THAT(Offered("import --name ''"), IsEmpty()); }

TEST_F(CompletionTest, CommandNamesAreOffered) {
  EXPECT_THAT(Offered("commands C_9"),
              ElementsAre("C_9", "C_90", "C_91", "C_92", "C_93", "C_94", "C_95", "C_96", "C_97", "C_98"));
}

TEST_F(CompletionTest, OperationsAreOffered) {
  EXPECT_THAT(Offered("call Name.FlowEx"), ElementsAre("Name.FlowExists"));
  EXPECT_THAT(Offered("call Command.C_1"), Contains("Command.C_17"));
}

TEST_F(CompletionTest, TheScriptForZshLoadsTheShellsAdapterFirst) {
  const auto result = RunProgram(ProgramPath(), {"completion", "zsh"}, folder_);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "autoload -U bashcompinit && bashcompinit\n" + ReadFile(folder_.File("script")));
}

TEST_F(CompletionTest, OtherShellsAreRefused) {
  const auto result = RunProgram(ProgramPath(), {"completion", "fish"}, folder_);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "talmflow: there is no completion for the shell \"fish\", only for bash and zsh\n");
}

}  // namespace
}  // namespace talm_flow::test
