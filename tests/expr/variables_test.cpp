#include "expr/variables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "expr/expressions.h"
#include "support/failing_connection.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct ScopeCase {
  std::string_view name;
  std::int32_t type;
};

class VariableScopeTest : public ::testing::TestWithParam<ScopeCase> {};

TEST_P(VariableScopeTest, ThePrefixSelectsTheScope) {
  EXPECT_EQ(expr::GetVarTypeByName(GetParam().name), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Names, VariableScopeTest,
                         ::testing::Values(ScopeCase{"Private_x", 2}, ScopeCase{"Private_", 2},
                                           ScopeCase{"Private_Global_", 2}, ScopeCase{"Global_x", 3},
                                           ScopeCase{"Global_", 3}, ScopeCase{"Global_Private_", 3}, ScopeCase{"", 1},
                                           ScopeCase{"x", 1}, ScopeCase{"private_x", 1}, ScopeCase{"PRIVATE_x", 1},
                                           ScopeCase{"GLOBAL_x", 1}, ScopeCase{"global_x", 1}, ScopeCase{"Private", 1},
                                           ScopeCase{"Global", 1}, ScopeCase{" Private_x", 1}, ScopeCase{"变量", 1}));

TEST(VariablesTest, TheFirstWriteInsertsARowThatNamesTreeAndWriter) {
  Expressions on;
  on.Write("x", "1");
  EXPECT_THAT(on.trace(), ElementsAre("Select Top 1 VariableValue From WorkFlowVariable Where VariableName='x' And "
                                      "RootExecuteID=5",
                                      "insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,"
                                      "VariableValue) values (5,7,'x','1')"));
  EXPECT_THAT(on.Variables(), ElementsAre("5|7|x|1"));
}

TEST(VariablesTest, ASecondWriteUpdatesByTree) {
  Expressions on;
  on.Write("x", "1");
  on.Become(8, 5);
  on.world().ForgetTrace();
  on.Write("x", "2");
  EXPECT_THAT(on.trace(), ElementsAre("Select Top 1 VariableValue From WorkFlowVariable Where VariableName='x' And "
                                      "RootExecuteID=5",
                                      "Update WorkFlowVariable set VariableValue='2' Where VariableName='x' And "
                                      "RootExecuteID=5"));
  EXPECT_THAT(on.Variables(), ElementsAre("5|7|x|2"));
}

TEST(VariablesTest, APrivateVariableIsWrittenByInstance) {
  Expressions on;
  on.Write("Private_x", "1");
  on.Write("Private_x", "2");
  EXPECT_THAT(on.trace(),
              ElementsAre("Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Private_x' And "
                          "ExecuteID=7",
                          "insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) values "
                          "(5,7,'Private_x','1')",
                          "Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Private_x' And "
                          "ExecuteID=7",
                          "Update WorkFlowVariable set VariableValue='2' Where VariableName='Private_x' And "
                          "ExecuteID=7"));
  EXPECT_THAT(on.Variables(), ElementsAre("5|7|Private_x|2"));
}

TEST(VariablesTest, AGlobalVariableBelongsToNoInstance) {
  Expressions on;
  on.Write("Global_x", "1");
  on.Write("Global_x", "2");
  EXPECT_THAT(on.trace(),
              ElementsAre("Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Global_x'",
                          "insert into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) values "
                          "(0,0,'Global_x','1')",
                          "Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Global_x'",
                          "Update WorkFlowVariable set VariableValue='2' Where VariableName='Global_x'"));
  EXPECT_THAT(on.Variables(), ElementsAre("0|0|Global_x|2"));
}

TEST(VariablesTest, AGlobalWriteRewritesEveryRowOfTheName) {
  Expressions on;
  on.Given("Global_x", "old");
  on.Given("Global_x", "older");
  on.Write("Global_x", "new");
  EXPECT_THAT(on.Variables(), ElementsAre("5|7|Global_x|new", "5|7|Global_x|new"));
}

TEST(VariablesTest, EachScopeReadsByItsOwnKey) {
  Expressions on;
  (void)on.Read("x");
  (void)on.Read("Private_x");
  (void)on.Read("Global_x");
  EXPECT_THAT(on.trace(),
              ElementsAre("Select Top 1 VariableValue From WorkFlowVariable Where VariableName='x' And RootExecuteID=5",
                          "Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Private_x' And "
                          "ExecuteID=7",
                          "Select Top 1 VariableValue From WorkFlowVariable Where VariableName='Global_x'"));
}

TEST(VariablesTest, AnotherInstanceOfTheTreeSeesAllButPrivateOnes) {
  Expressions on;
  on.Write("x", "shared");
  on.Write("Private_x", "mine");
  on.Write("Global_x", "everybody's");
  on.Become(8, 5);
  EXPECT_EQ(on.Read("x"), "shared");
  EXPECT_EQ(on.Read("Private_x"), "");
  EXPECT_EQ(on.Read("Global_x"), "everybody's");
}

TEST(VariablesTest, AnotherTreeSeesGlobalOnesOnly) {
  Expressions on;
  on.Write("x", "shared");
  on.Write("private_x", "shared too");
  on.Write("Global_x", "everybody's");
  on.Become(20, 20);
  EXPECT_EQ(on.Read("x"), "");
  EXPECT_EQ(on.Read("private_x"), "");
  EXPECT_EQ(on.Read("Global_x"), "everybody's");
}

TEST(VariablesTest, AMissingVariableReadsAsTheEmptyText) {
  Expressions on;
  EXPECT_EQ(on.Read("nowhere"), "");
  EXPECT_EQ(on.Read(""), "");
}

TEST(VariablesTest, ANullValueCannotBeRead) {
  Expressions on;
  on.world().Run(
      "Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (5,7,'x',NULL)");
  EXPECT_THROW((void)on.Read("x"), ConversionError);
}

TEST(VariablesTest, NamesAreToldApartByCase) {
  Expressions on;
  on.Write("x", "small");
  on.Write("X", "big");
  EXPECT_EQ(on.Read("x"), "small");
  EXPECT_EQ(on.Read("X"), "big");
}

TEST(VariablesTest, AnyTextIsKeptIntact) {
  const std::string texts[] = {"O'Brien",      "''",    "'; drop table WorkFlowVariable --", "流程变量", "😀 𠮷",
                               "line\r\nline", "\t x ", std::string("a\\b%_\"?:1"),          ""};
  Expressions on;
  for (const auto& text : texts) {
    on.Write(text, text);
    EXPECT_EQ(on.Read(text), text);
  }
  EXPECT_EQ(on.Variables().size(), std::size(texts));
}

TEST(VariablesTest, AFailingStatementEndsTheWriteAndWritesNothing) {
  for (const std::size_t failing : {1U, 2U}) {
    Expressions on;
    FailingConnection connection(on.world().connection(), failing);
    db::Session session(connection, on.services());
    EXPECT_THROW(expr::UpdateVariableValue(session, 7, 5, "x", "1"), DatabaseError);
    EXPECT_EQ(connection.count(), failing);
    EXPECT_THAT(on.Variables(), IsEmpty());
  }
}

TEST(VariablesTest, AnInstanceThatIsNoNumberMakesTheStatementFail) {
  Expressions on;
  db::Session session(on.world().connection(), on.services());
  EXPECT_THROW(expr::UpdateVariableValue(session, 7, "no number", "x", "1"), DatabaseError);
  EXPECT_THAT(on.Variables(), IsEmpty());
}

}  // namespace
}  // namespace talm_flow::test
