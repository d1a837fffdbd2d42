#include "program/talmflow.h"

namespace talm_flow::test {
namespace {

using testing::HasSubstr;

class DefinitionsTest : public TalmflowTest {
 protected:
  DefinitionsTest() { (void)Succeed({"init"}); }

  /// The complaint about a text, after which no flow is there.
  std::string Refused(std::string_view text) const {
    Write("flow.txt", text);
    auto complaint = Fail(1, {"import", "flow.txt", "--force"});
    EXPECT_EQ(Rows("select FlowID from WorkFlowName"), nlohmann::json::array());
    EXPECT_EQ(Rows("select FlowNo from WorkFlowConstruction"), nlohmann::json::array());
    return complaint;
  }
};

const std::vector<StepText> kSteps = {{1, 0, "C_22", {"days", "3"}, "Count the days"},
                                      {2, 1, "C_11", {"days", ">", "2"}, "Long?"},
                                      {3, 2, "C_2", {"DataID_Submit", "\"lee\""}, "Boss"},
                                      {4, 1, "C_80", {"\"done\""}, ""},
                                      {5, 9, "C_99", {}, "Lost"}};

TEST_F(DefinitionsTest, AFileBecomesAFlowNamedLikeIt) {
  Write("leave.txt", Definition(kSteps, "Leave requests"));
  EXPECT_EQ(Load("leave.txt"), "Added flow 1 \"leave\" with 5 steps\n");
  EXPECT_EQ(Succeed({"flows"}),
            "Flow  Name   Creater  Steps  Remark\n"
            "1     leave           5      Leave requests\n");
}

TEST_F(DefinitionsTest, NameAndMakerMayBeGiven) {
  Write("leave.txt", Definition(kSteps));
  (void)Load("leave.txt", {"--name", "请假", "--creater", "kim"});
  EXPECT_EQ(SucceedJson({"flows"}),
            nlohmann::json::parse(R"([{"flow":1,"name":"请假","creater":"kim","steps":5,"remark":""}])"));
}

TEST_F(DefinitionsTest, ColumnsOfWideCharactersStayAligned) {
  Write("leave.txt", Definition({{1, 0, "C_73"}}));
  (void)Load("leave.txt", {"--name", "请假"});
  (void)Load("leave.txt", {"--name", "trip"});
  EXPECT_EQ(Succeed({"flows"}),
            "Flow  Name  Creater  Steps  Remark\n"
            "2     trip           1\n"
            "1     请假           1\n");
}

TEST_F(DefinitionsTest, AFlowsStepsAreReplaced) {
  Write("leave.txt", Definition(kSteps, "old"));
  Write("new.txt", Definition({{1, 0, "C_73"}}, "new"));
  (void)Load("leave.txt", {"--creater", "kim"});
  EXPECT_EQ(Load("new.txt", {"--flow", "leave"}), "Replaced flow 1 \"leave\" with 1 step\n");
  EXPECT_EQ(SucceedJson({"import", "new.txt", "--flow", "1", "--name", "trip"}),
            nlohmann::json::parse(R"({"flow":1,"name":"trip","steps":1})"));
  EXPECT_EQ(SucceedJson({"flows"})[0],
            nlohmann::json::parse(R"({"flow":1,"name":"trip","creater":"kim","steps":1,"remark":"new"})"));
}

TEST_F(DefinitionsTest, LineEndsAndByteOrderMarksDoNotMatter) {
  const auto lf = Definition({{1, 0, "C_22", {"text", "first\nsecond"}}});
  std::string crlf = "\xEF\xBB\xBF";
  for (const char c : lf) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  Write("lf.txt", lf);
  Write("crlf.txt", crlf);
  (void)Load("lf.txt");
  (void)Load("crlf.txt");
  EXPECT_EQ(Succeed({"export", "lf"}), Succeed({"export", "crlf"}));
  EXPECT_EQ(Rows("select distinct ParameterData from WorkFlowParameter where ParameterName='C_22_2'"),
            nlohmann::json::parse(R"([{"ParameterData":"first\r\nsecond"}])"));
}

TEST_F(DefinitionsTest, ATextMayComeFromStandardInput) {
  EXPECT_EQ(Succeed({"import", "-", "--name", "leave"}, Definition({{1, 0, "C_73"}})),
            "Added flow 1 \"leave\" with 1 step\n");
  EXPECT_THAT(Fail(2, {"import", "-"}, Definition({{1, 0, "C_73"}})), HasSubstr("--name is needed"));
}

TEST_F(DefinitionsTest, AnExportLoadsAsTheSameFlow) {
  Write("leave.txt", Definition(kSteps, "Leave\nrequests"));
  (void)Load("leave.txt");
  EXPECT_EQ(Succeed({"export", "leave", "-o", "copy.txt"}), "Wrote flow 1 \"leave\" to copy.txt\n");
  (void)Load("copy.txt");
  EXPECT_EQ(Succeed({"export", "2"}), Succeed({"export", "1"}));
  EXPECT_EQ(Read("copy.txt"), Succeed({"export", "1"}) + "\r\n");
  EXPECT_EQ(SucceedJson({"export", "1"})["text"], Succeed({"export", "1"}));
}

TEST_F(DefinitionsTest, AnExportThatCannotBeWrittenIsTold) {
  Write("leave.txt", Definition(kSteps));
  (void)Load("leave.txt");
  EXPECT_THAT(Fail(1, {"export", "1", "-o", "no/such/folder.txt"}), HasSubstr("no/such/folder.txt"));
}

TEST_F(DefinitionsTest, BadFilesAreRefusedWithTheirPlace) {
  EXPECT_EQ(Fail(1, {"import", "missing.txt"}), "talmflow: cannot read \"missing.txt\": No such file or directory\n");
  EXPECT_EQ(Fail(1, {"import", "."}), "talmflow: cannot read \".\": Is a directory\n");
  EXPECT_EQ(Refused(""), "talmflow: \"flow.txt\" is no flow definition: it has no line \"Ver:Flow_V600\"\n");
  EXPECT_EQ(Refused("once upon a time\n"),
            "talmflow: \"flow.txt\" is no flow definition: it has no line \"Ver:Flow_V600\"\n");
  EXPECT_EQ(Refused("//\nVer:Flow_V600 \n"),
            "talmflow: \"flow.txt\" is no flow definition: it has no line \"Ver:Flow_V600\"\n");
  EXPECT_EQ(Refused("Ver:Flow_V600\nFlowBegin\n"),
            "talmflow: flow.txt:1: the version line must not come first; put a line \"//\" before it\n");
  EXPECT_EQ(Refused("//\nVer:Flow_V600\n\xB4\xFA\n"), "talmflow: flow.txt:3: the text is not UTF-8\n");
  EXPECT_EQ(Refused("//\n\xC0\x80\n"), "talmflow: flow.txt:2: the text is not UTF-8\n");
  EXPECT_EQ(Refused("//\n\xED\xA0\x80"), "talmflow: flow.txt:2: the text is not UTF-8\n");
  EXPECT_EQ(Refused("//\n\xE4\xB8"), "talmflow: flow.txt:2: the text is not UTF-8\n");
}

TEST_F(DefinitionsTest, BadLinesAreRefusedWithTheirPlace) {
  const std::string start = "//\nVer:Flow_V600\nFlowBegin\nStepBegin\nFlowNo:1\nParentNo:0\nSerial:0\nCommand:C_22\n";
  EXPECT_EQ(Refused("//\nVer:Flow_V600\nStepBegin\nFlowNo:one\nFlowEnd\n"),
            "talmflow: flow.txt:4: \"FlowNo:\" takes a number, not \"one\"\n");
  EXPECT_EQ(Refused("//\nVer:Flow_V600\nFunctionParameterBegin\nInputTitle:x\nSort:\nFlowEnd\n"),
            "talmflow: flow.txt:5: \"Sort:\" takes a number, not \"\"\n");
  EXPECT_EQ(Refused(start + "ParameterBegin\nC_22_1:x\n"),
            "talmflow: flow.txt:9: the parameters that begin here have no \"ParameterEnd\"\n");
  EXPECT_EQ(Refused(start + "ParameterBegin\nC_22_1:x\nFlowEnd\n"),
            "talmflow: flow.txt:11: a parameter or \"ParameterEnd\" is expected, not \"FlowEnd\"\n");
}

TEST_F(DefinitionsTest, ABlankNameIsRefused) {
  Write("leave.txt", Definition(kSteps));
  EXPECT_EQ(Fail(1, {"import", "leave.txt", "--name", " ", "--force"}), "talmflow: a flow's name must not be blank\n");
  EXPECT_EQ(Succeed({"flows"}), "There are no flows.\n");
}

TEST_F(DefinitionsTest, AStatementThatTheDatabaseRefusesIsTold) {
  const auto complaint =
      Refused("//\nVer:Flow_V600\nStepBegin\nFlowNo:1\nParentNo:0\nSerial:1,2\nCommand:C_22\nFlowEnd\n");
  EXPECT_THAT(complaint, HasSubstr("the database refused the statement \"Insert Into WorkFlowConstruction "));
}

TEST_F(DefinitionsTest, WithoutATransactionWhatWasWrittenStays) {
  Write("flow.txt", "//\nVer:Flow_V600\nStepBegin\nFlowNo:1\nParentNo:0\nSerial:1,2\nCommand:C_22\nFlowEnd\n");
  (void)Fail(1, {"--no-transaction", "import", "flow.txt", "--force"});
  EXPECT_EQ(Rows("select FlowName from WorkFlowName"), nlohmann::json::parse(R"([{"FlowName":"flow"}])"));
}

TEST_F(DefinitionsTest, FlowsAreNamedByNumberOrName) {
  Write("leave.txt", Definition(kSteps));
  (void)Load("leave.txt");
  (void)Load("leave.txt");
  (void)Load("leave.txt", {"--name", "it's"});
  EXPECT_EQ(Fail(1, {"show", "7"}), "talmflow: there is no flow 7\n");
  EXPECT_EQ(Fail(1, {"show", "trip"}), "talmflow: there is no flow named \"trip\"\n");
  EXPECT_EQ(Fail(1, {"export", "leave"}),
            "talmflow: several flows are named \"leave\": 1, 2; name one by its number\n");
  EXPECT_THAT(Succeed({"show", "it's"}), HasSubstr("it's (flow 3)\n"));
  EXPECT_EQ(Fail(1, {"import", "leave.txt", "--flow", "9"}), "talmflow: there is no flow 9\n");
}

TEST_F(DefinitionsTest, AFlowIsDrawnAsATree) {
  Write("leave.txt", Definition(kSteps, "Leave requests\nof all"));
  (void)Load("leave.txt", {"--creater", "kim"});
  EXPECT_EQ(Succeed({"show", "leave"}),
            "leave (flow 1) by kim\n"
            "Leave requests\n"
            "of all\n"
            "\n"
            "1 Assign text (C_22)  Count the days\n"
            "│    Variable: days\n"
            "│    Text: 3\n"
            "├─ 2 Condition (C_11)  Long?\n"
            "│  │    Left value: days\n"
            "│  │    Comparison: >\n"
            "│  │    Right value: 2\n"
            "│  └─ 3 Approval task (C_2)  Boss\n"
            "│          Record: DataID_Submit\n"
            "│          Approvers: \"lee\"\n"
            "└─ 4 Operation log (C_80)\n"
            "        Text: \"done\"\n"
            "\n"
            "Not reached from step 1:\n"
            "5 unknown command (C_99)  Lost\n");
}

TEST_F(DefinitionsTest, ACyclicTreeIsDrawnOnce) {
  Write("loop.txt", Definition({{1, 2, "C_73"}, {2, 1, "C_74"}}));
  (void)Load("loop.txt");
  EXPECT_THAT(Succeed({"show", "loop"}), testing::MatchesRegex("loop.*1 .*C_73.*2 .*C_74.\n"));
}

TEST_F(DefinitionsTest, ADeepChainIsDrawnInLinesOfBoundedLength) {
  std::vector<StepText> steps;
  for (int number = 1; number <= 2000; ++number) steps.push_back({number, number - 1, "C_73"});
  Write("deep.txt", Definition(steps));
  (void)Load("deep.txt");
  const auto shown = Succeed({"show", "deep"});
  EXPECT_THAT(shown, HasSubstr("] "));
  EXPECT_THAT(shown, HasSubstr("└─ 2000 "));
  EXPECT_LT(shown.size(), 2000U * 200U);
}

TEST_F(DefinitionsTest, AFlowWithoutStepsIsShown) {
  Write("empty.txt", Definition({}));
  (void)Load("empty.txt");
  EXPECT_EQ(Succeed({"show", "empty"}), "empty (flow 1)\n\nIt has no steps.\n");
}

TEST_F(DefinitionsTest, ControlCharactersOfStoredTextsDoNotReachTheTerminal) {
  Write("evil.txt", Definition({{1, 0, "C_22", {"x", "a\x1b[31mb\nc"}, "\x7f"}}));
  (void)Load("evil.txt");
  const auto shown = Succeed({"show", "evil"});
  EXPECT_THAT(shown, testing::Not(HasSubstr("\x1b")));
  EXPECT_THAT(shown, HasSubstr("a␛[31mb ↵ c"));
}

TEST_F(DefinitionsTest, AFlowIsShownAsJson) {
  auto text = Definition({{1, 0, "C_22", {"days", "3"}, "Count"}}, "Leave");
  text.insert(text.find("FlowEnd"),
              "FunctionParameterBegin\nInputTitle:Amount\nOrderNo:1\nSort:2\nClassContent:\nFunctionParameterEnd\n");
  Write("leave.txt", text);
  (void)Load("leave.txt");
  auto shown = SucceedJson({"show", "1"});
  EXPECT_EQ(shown["name"], "leave");
  EXPECT_EQ(shown["remark"], "Leave");
  EXPECT_EQ(shown["steps"],
            nlohmann::json::parse(R"([{"step":1,"parent":0,"serial":0,"caption":"Count","command":"C_22",
                                       "title":"Assign text","parameters":{"C_22_1":"days","C_22_2":"3"}}])"));
  EXPECT_EQ(shown["inputs"], nlohmann::json::parse(R"([{"title":"Amount","order":1,"sort":2,"content":""}])"));
  EXPECT_THAT(Succeed({"show", "1"}), HasSubstr("\nInput parameters:\n  Title   Order  Sort  Content\n"));
}

}  // namespace
}  // namespace talm_flow::test
