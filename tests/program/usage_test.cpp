#include "program/talmflow.h"
#include "talm_flow/adapters/database.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using UsageTest = TalmflowTest;

TEST_F(UsageTest, TheVersionIsTold) { EXPECT_THAT(Succeed({"--version"}), StartsWith("talmflow 0.")); }

TEST_F(UsageTest, HelpListsTheSubcommands) {
  const auto help = Succeed({"--help"});
  for (const auto* const name : {"init", "schema", "form", "record", "import", "export", "flows", "show", "run",
                                 "tasks", "approve", "finish", "instances", "variables", "timers", "call", "rpc"}) {
    EXPECT_THAT(help, HasSubstr(std::string("\n  ") + name + " "));
  }
}

TEST_F(UsageTest, EverySubcommandHasHelpWithExamples) {
  const std::vector<Words> subcommands = {
      {"init"},           {"schema"}, {"form"},      {"form", "add"}, {"form", "list"}, {"record"}, {"record", "add"},
      {"record", "show"}, {"import"}, {"export"},    {"flows"},       {"show"},         {"run"},    {"tasks"},
      {"approve"},        {"finish"}, {"instances"}, {"variables"},   {"timers"},       {"call"},   {"rpc"}};
  for (auto words : subcommands) {
    std::string example = "talmflow";
    for (const auto& word : words) example += " " + word;
    words.emplace_back("--help");
    EXPECT_THAT(Succeed(words), testing::ContainsRegex("Examples:\n(.*\n)*.*" + words[0])) << example;
  }
}

TEST_F(UsageTest, WrongUsageEndsWithStatusTwo) {
  (void)Fail(2, {});
  (void)Fail(2, {"fly"});
  (void)Fail(2, {"form"});
  (void)Fail(2, {"show"});
  (void)Fail(2, {"flows", "--colour"});
  (void)Fail(2, {"run", "1"});
  (void)Fail(2, {"show", "1", "2"});
  EXPECT_THAT(Fail(2, {"--clock", "noon", "flows"}), HasSubstr("\"noon\" is no date and time"));
  EXPECT_THAT(Fail(2, {"schema", "--dialect", "klingon"}), HasSubstr("klingon"));
}

TEST_F(UsageTest, ADatabaseThatCannotBeReachedEndsWithStatusOne) {
  EXPECT_THAT(Fail(1, {"--db", "cobol:x", "flows"}), testing::AllOf(HasSubstr("--db: "), HasSubstr("\"cobol\"")));
  EXPECT_THAT(Fail(1, {"--db", "sqlite:", "flows"}), HasSubstr("names no file"));
  EXPECT_THAT(Fail(1, {"--db", "nothing", "flows"}), HasSubstr("is no database URL"));
}

TEST_F(UsageTest, AMissingDatabaseIsNamedWithTheCommandThatCreatesIt) {
  EXPECT_EQ(Fail(1, {"flows"}), "talmflow: there is no database \"talmflow.db\"; create it with: talmflow init\n");
  EXPECT_EQ(Fail(1, {"--db", "sqlite:other.db", "flows"}),
            "talmflow: there is no database \"other.db\"; create it with: talmflow --db \"sqlite:other.db\" init\n");
}

TEST_F(UsageTest, NothingButInitCreatesADatabase) {
  Write("leave.txt", Definition({{1, 0, "C_73"}}));
  for (const auto& words : std::vector<Words>{{"flows"},
                                              {"form", "list"},
                                              {"form", "add", "12", "--unit", "DAYS:InputNum"},
                                              {"record", "add", "12"},
                                              {"record", "show", "12/1"},
                                              {"import", "leave.txt"},
                                              {"export", "1"},
                                              {"show", "1"},
                                              {"run", "1", "--record", "12/1", "--operator", "kim"},
                                              {"tasks"},
                                              {"approve", "A1"},
                                              {"finish", "F1"},
                                              {"instances"},
                                              {"variables"},
                                              {"timers"},
                                              {"call", "Name.MaxFlowID"},
                                              {"rpc"}}) {
    EXPECT_THAT(Fail(1, words), HasSubstr("there is no database")) << words[0];
    EXPECT_FALSE(Exists("talmflow.db")) << words[0];
  }
}

TEST_F(UsageTest, AFileThatIsNoDatabaseIsRefusedAndKept) {
  const std::string bytes(4096, 'x');
  Write("talmflow.db", bytes);
  EXPECT_THAT(Fail(1, {"flows"}), HasSubstr("\"sqlite:talmflow.db\" as a database: "));
  EXPECT_THAT(Fail(1, {"init"}), HasSubstr("\"sqlite:talmflow.db\" as a database: "));
  EXPECT_THAT(Fail(1, {"rpc"}), HasSubstr("\"sqlite:talmflow.db\" as a database: "));
  EXPECT_EQ(Read("talmflow.db"), bytes);
}

TEST_F(UsageTest, MissingTablesAreNamed) {
  (void)Succeed({"init"});
  (void)Rows("drop table DataApp");
  EXPECT_EQ(Fail(1, {"flows"}),
            "talmflow: the database \"sqlite:talmflow.db\" lacks the table DataApp; create what is missing with: "
            "talmflow init\n");
  (void)Succeed({"init"});
  EXPECT_EQ(Succeed({"flows"}), "There are no flows.\n");
}

TEST_F(UsageTest, ManyMissingTablesAreCounted) {
  EXPECT_THAT(Fail(1, {"--db", "sqlite::memory:", "flows"}),
              testing::ContainsRegex("lacks the tables .* and [0-9]+ more;"));
}

TEST_F(UsageTest, InitCreatesTheTablesOnce) {
  EXPECT_THAT(Succeed({"init"}), testing::MatchesRegex("sqlite:talmflow.db: created [0-9]+ tables\n"));
  EXPECT_EQ(Succeed({"init"}), "sqlite:talmflow.db has all tables\n");
  EXPECT_EQ(SucceedJson({"init"}),
            (nlohmann::json{{"database", "sqlite:talmflow.db"}, {"created", nlohmann::json::array()}}));
}

TEST_F(UsageTest, TheEnvironmentNamesTheDatabaseUnlessTheCommandLineDoes) {
  const auto result = RunProgram(ProgramPath(), {"init"}, TemporaryFolder(), {}, {"TALMFLOW_DB=sqlite::memory:"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, StartsWith("sqlite::memory:: created"));
}

TEST_F(UsageTest, TheSchemaIsAScript) {
  const auto script = Succeed({"schema"});
  EXPECT_THAT(script, HasSubstr("WorkFlowExecuteID"));
  EXPECT_EQ(Succeed({"schema", "--dialect", "sqlite"}), script);
  EXPECT_EQ(SucceedJson({"schema"})["script"], script);
  EXPECT_FALSE(Exists("talmflow.db"));
}

TEST_F(UsageTest, TheSchemaIsPrintedInEachDialect) {
  for (const char* const dialect : {"sqlite", "postgresql", "mariadb", "tsql"}) {
    const auto script = Succeed({"schema", "--dialect", dialect});
    EXPECT_EQ(script, adapters::SchemaScript(dialect));
    EXPECT_EQ(SucceedJson({"schema", "--dialect", dialect}),
              (nlohmann::json{{"dialect", dialect}, {"script", script}}));
  }
}

TEST_F(UsageTest, OutputThatIsNoTerminalHasNoColours) {
  (void)Succeed({"init"});
  Write("leave.txt", Definition({{1, 0, "C_73"}}));
  (void)Succeed({"import", "leave.txt"});
  EXPECT_THAT(Succeed({"flows"}), Not(HasSubstr("\x1b")));
}

TEST_F(UsageTest, GlobalOptionsMayStandBehindTheSubcommand) {
  (void)Succeed({"init"});
  EXPECT_EQ(Succeed({"flows", "--json"}), "[]\n");
}

TEST_F(UsageTest, TheTraceGoesToStandardError) {
  (void)Succeed({"init"});
  const auto result = Talmflow({"--trace", "flows"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "There are no flows.\n");
  EXPECT_EQ(result.err, "Select Top 10000 * from WorkFlowName Order By FlowName\n");
}

}  // namespace
}  // namespace talm_flow::test
