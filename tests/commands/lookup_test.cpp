#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/scene.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A condition, and the statement's condition that it becomes.
struct Condition {
  std::string name, stored, statement;
};

class ConditionTest : public ::testing::TestWithParam<Condition> {
 protected:
  ConditionTest() {
    scene_.SetVariable("who", "张三");
    scene_.SetVariable("Who", "李四");
    scene_.SetVariable("limit", "100");
    scene_.SetVariable("since", "2026/1/2 3:04:05");
    scene_.SetVariable("quoted", "o'Neil and (b)>=1");
    scene_.SetVariable("two words", "2");
  }

  Scene scene_;
};

INSTANTIATE_TEST_SUITE_P(
    Good, ConditionTest,
    ::testing::Values(
        Condition{"Literal", "name=\"张三\"", "name='张三'"}, Condition{"Variable", "name=who", "name='张三'"},
        Condition{"AVariableKeepsItsCase", "NAME=Who", "name='李四'"},
        Condition{"ALiteralKeepsItsCase", "Name=\"ABC\"", "name='ABC'"},
        Condition{"CaseAfterLettersThatShrinkInLowerCase", "name=\"\u212a\u0130\" and title=Who",
                  "name='\u212a\u0130' and Title='李四'"},
        Condition{"Id", "ID>=\"7.5\"", "id>=8"}, Condition{"IdByExpression", "id<limit/2", "id<50"},
        Condition{"Moment", "InputTime>\"2026/1/2\"", "inputtime>'2026-01-02 00:00:00'"},
        Condition{"MomentByVariable", "inputtime<=since", "inputtime<='2026-01-02 03:04:05'"},
        Condition{"MomentByArithmetic", "inputtime<since+24", "inputtime<'2026-01-03 03:04:05'"},
        Condition{"UnitByAnyCase", "TITLE<>\"x\"", "Title<>'x'"},
        Condition{"UnitByReference", "inunitid:title=\"x\"", "Title='x'"},
        Condition{"NumbersOfUnitsAreQuoted", "amount>limit", "Amount>'100'"},
        Condition{"QuotesAreDoubled", "title=quoted", "Title='o''Neil and (b)>=1'"},
        Condition{"EmptyLiteral", "title=\"\"", "Title=''"}, Condition{"UnsetVariable", "title=unset", "Title=''"},
        Condition{"And", "name=who AND id=1", "name='张三' and id=1"},
        Condition{"Or", "id=1 or id=2 Or id=3", "id=1 or id=2 or id=3"},
        Condition{"Parentheses", "( (id=1) or ( name = who and id<>3 ) )", "((id=1) or (name='张三' and id<>3))"},
        Condition{"BlanksAround", "  id  =  1  ", "id=1"},
        Condition{"BlanksWithinAName", "id=two words and id>0", "id=2 and id>0"},
        Condition{"LineBreaksSeparate", "id\r\n=\r\n1", "id=1"},
        Condition{"AnErrorOfAnExpressionIsAText", "title=1/0", "Title='除数为0'"}),
    [](const auto& test) { return test.param.name; });

TEST_P(ConditionTest, BecomesTheStatementsCondition) {
  scene_.Run(&Command::C_77, "C_77", {"\"TableID:12\"", GetParam().stored, "found"});
  EXPECT_THAT(scene_.Trace(),
              ElementsAre("read C_77_1", "read C_77_2", "read C_77_3",
                          "Select Top 1 ID from TableData12 Where " + GetParam().statement + " Order By ID Desc"));
}

TEST_P(ConditionTest, IsTheSameForFields) {
  scene_.Run(&Command::C_79, "C_79", {"\"TableID:12\"", GetParam().stored, "\"name\"", "found"});
  EXPECT_THAT(scene_.Trace(),
              ElementsAre("read C_79_1", "read C_79_2", "read C_79_3", "read C_79_4",
                          "Select Top 10000 name from TableData12 Where " + GetParam().statement + " Order By ID"));
}

TEST(BadConditionTest, AConditionThatDoesNotFitWritesNothingAndRunsNoQuery) {
  const std::string deep = Repeated("(", 50000);
  const std::string cases[] = {"name",
                               "name=",
                               "=name",
                               "name=\"a\" and ",
                               "and name=\"a\"",
                               "name=\"a\" name=\"b\"",
                               "name==\"a\"",
                               "name=\"a\" and or name=\"b\"",
                               "(name=\"a\"",
                               "name=\"a\")",
                               ")name=\"a\"(",
                               "()",
                               "(",
                               ")",
                               "and",
                               "or",
                               "=",
                               "name like \"a\"",
                               "name!=\"a\"",
                               "opinion=\"a\"",
                               "1=1",
                               "name=\"a\" or 1=1",
                               "name=and",
                               "not name=\"a\"",
                               "name=\"a and b\"",
                               "name=\"(a)\"",
                               "name>(1+2)",
                               "1x=\"a\"",
                               "\"name\"=\"a\"",
                               "name;id=1",
                               "name--=1",
                               "id=\"abc\"",
                               "id=\"\"",
                               "id=unset",
                               "id=1/0",
                               "inputtime=\"abc\"",
                               "inputtime=5",
                               "inputtime=unset",
                               "inputtime=\"2026-02-30\"",
                               "name=\"a\" and id=\"x\"",
                               "\t",
                               deep,
                               deep + "id=1",
                               Repeated("(id=1)", 2)};
  for (const std::string& condition : cases) {
    Scene scene;
    scene.Run(&Command::C_77, "C_77", {"12", condition, "found"});
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_77_1", "read C_77_2")) << condition.substr(0, 80);
    EXPECT_EQ(scene.Variable("found"), "none") << condition.substr(0, 80);
    scene.Run(&Command::C_79, "C_79", {"12", condition, "\"name\"", "found"});
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_79_1", "read C_79_2")) << condition.substr(0, 80);
    EXPECT_EQ(scene.Variable("found"), "none") << condition.substr(0, 80);
  }
}

TEST(BadConditionTest, AnIdBeyond32BitsRaisesOverflow) {
  Scene scene;
  EXPECT_THROW(scene.Run(&Command::C_77, "C_77", {"12", "id=\"2147483648\"", "found"}), OverflowError);
}

TEST(BadConditionTest, HostileValuesSelectNothingAndChangeNothing) {
  for (const std::string& value : {kHostile, std::string("' Or 'a'='a"), Repeated("'", 100000)}) {
    Scene scene;
    scene.SetVariable("value", value);
    scene.Run(&Command::C_77, "C_77", {"12", "name=value", "found"});
    EXPECT_EQ(scene.Variable("found"), "");
    EXPECT_THAT(scene.Rows("Select ID From TableData12"), ElementsAre("345", "346"));
  }
}

TEST(FindRecordTest, TheNewestRecordThatMeetsTheConditionIsFound) {
  Scene scene;
  scene.world().Run("Insert Into TableData12 (ID,name) Values (400,'张三')");
  scene.world().Run("Insert Into TableData12 (ID,name) Values (401,'王五')");
  scene.Run(&Command::C_77, "C_77", {"\"TableID:12\"", "name=\"张三\"", "found"});
  EXPECT_EQ(scene.Variable("found"), "TableID:12,DataID:400");
}

TEST(FindRecordTest, TheEmptyConditionSelectsEveryRecord) {
  for (const char* condition : {"", "   ", "\r\n"}) {
    Scene scene;
    scene.Run(&Command::C_77, "C_77", {"12", condition, "found"});
    EXPECT_THAT(scene.Statements(), ElementsAre("Select Top 1 ID from TableData12 Order By ID Desc"));
    EXPECT_EQ(scene.Variable("found"), "TableID:12,DataID:346");
  }
}

TEST(FindRecordTest, NothingFoundWritesTheEmptyText) {
  Scene scene;
  scene.SetVariable("found", "before");
  scene.Run(&Command::C_77, "C_77", {"13", "", "found"});
  EXPECT_EQ(scene.Variable("found"), "");
}

TEST(FindRecordTest, AMomentIsComparedInTheFormInWhichItIsStored) {
  Scene scene;
  scene.Run(&Command::C_77, "C_77", {"12", "inputtime<\"2026年1月3日\"", "found"});
  EXPECT_EQ(scene.Variable("found"), "TableID:12,DataID:345");
}

TEST(FindRecordTest, NumbersOfAFormCompareAsNumbers) {
  Scene scene;
  scene.world().Run("Update TableData12 Set Amount=9 Where ID=345");
  scene.world().Run("Update TableData12 Set Amount=10 Where ID=346");
  scene.Run(&Command::C_77, "C_77", {"12", "amount<10", "found"});
  EXPECT_EQ(scene.Variable("found"), "TableID:12,DataID:345");
}

TEST(CollectFieldTest, TheTextsOfAllRecordsFoundAreJoinedInOrder) {
  Scene scene;
  scene.world().Run("Insert Into TableData12 (ID) Values (347)");
  scene.world().Run("Insert Into TableData12 (ID,name,Title) Values (12,'a,b','x')");
  const std::pair<std::string, std::string> cases[] = {{"\"name\"", "a,b,张三,李四,"},
                                                       {"\"ID\"", "12,345,346,347"},
                                                       {"\"inunitid:TITLE\"", "x,,,"},
                                                       {"\"InputTime\"", ",2026-01-02 03:04:05,2026-01-03 00:00:00,"}};
  for (const auto& [field, texts] : cases) {
    scene.Run(&Command::C_79, "C_79", {"12", "", field, "found"});
    EXPECT_EQ(scene.Variable("found"), texts) << field;
  }
  scene.Run(&Command::C_79, "C_79", {"12", "", "\"TITLE\"", "found"});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_79_1", "read C_79_2", "read C_79_3", "read C_79_4",
                                         "Select Top 10000 Title from TableData12 Order By ID"));
}

TEST(CollectFieldTest, AFieldThatTheFormLacksWritesNothing) {
  for (const char* field : {"", "name", "\"opinion\"", "\"name,id\"", "\"*\"", "\"name from TableData13 --\""}) {
    Scene scene;
    scene.Run(&Command::C_79, "C_79", {"12", "", field, "found"});
    EXPECT_THAT(scene.Trace(), ElementsAre("read C_79_1", "read C_79_2", "read C_79_3")) << field;
    EXPECT_EQ(scene.Variable("found"), "none");
  }
}

TEST(CollectFieldTest, NothingFoundWritesTheEmptyText) {
  Scene scene;
  scene.SetVariable("found", "before");
  scene.Run(&Command::C_79, "C_79", {"12", "id=1", "\"name\"", "found"});
  EXPECT_EQ(scene.Variable("found"), "");
}

TEST(CollectFieldTest, AtMost10000RecordsAreTaken) {
  Scene scene;
  auto& database = scene.world().database();
  database.Begin();
  for (int record = 1; record <= 10001; ++record) scene.world().Run("Insert Into TableData13 (name) Values ('x')");
  database.Commit();
  scene.Run(&Command::C_79, "C_79", {"13", "", "\"id\"", "found"});
  const std::string found = scene.Variable("found");
  EXPECT_TRUE(found.ends_with(",9999,10000"));
}

}  // namespace
}  // namespace talm_flow::test
