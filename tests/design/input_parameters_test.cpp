#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

using InputParametersTest = DesignTest;

constexpr std::string_view kAll = "select ID,FlowID,InputTitle,OrderNo,Sort,ClassContent from WorkFlowFunctionInput";

struct Title {
  Value given;
  std::string stored;
};

class TitleTest : public DesignTest, public ::testing::WithParamInterface<Title> {};

TEST_P(TitleTest, IsWrittenBackAsItIsStored) {
  Value added = GetParam().given;
  construction.AddInputParameter(db, 1, added, 1, 1, "");
  EXPECT_EQ(added, Value(GetParam().stored));
  EXPECT_EQ(world.Row("select InputTitle from WorkFlowFunctionInput"), GetParam().stored);
  world.Run("update WorkFlowFunctionInput set InputTitle='old'");
  Value updated = GetParam().given;
  construction.UpdateInputParameter(db, 1, updated, 1, 1, "");
  EXPECT_EQ(updated, Value(GetParam().stored));
  EXPECT_EQ(world.Row("select InputTitle from WorkFlowFunctionInput"), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(Titles, TitleTest,
                         ::testing::Values(Title{"Amount", "Amount"}, Title{"  a b ", "a b"}, Title{"", "新参数"},
                                           Title{"   ", "新参数"}, Title{Value(), "新参数"}, Title{12, "12"},
                                           Title{"\t", "\t"}, Title{" O'Neil", "O'Neil"}, Title{" 金额 ", "金额"}));

TEST_F(InputParametersTest, AddInsertsOneRow) {
  Value title = " Amount ";
  construction.AddInputParameter(db, 3, title, 2, "5", "a,b'");
  EXPECT_THAT(world.trace(),
              ElementsAre("insert into WorkFlowFunctionInput (FlowID, InputTitle, OrderNo, sort, ClassContent) values "
                          "(3,'Amount',2,5,'a,b''')"));
  EXPECT_THAT(world.Rows(kAll), ElementsAre("1|3|Amount|2|5|a,b'"));
}

TEST_F(InputParametersTest, UpdateChangesTheRowOfTheNumber) {
  Input(3, "a", 1, 1, "");
  Input(3, "b", 2, 1, "");
  Value title = "new";
  construction.UpdateInputParameter(db, 2, title, 9, 6, "x");
  EXPECT_THAT(
      world.trace(),
      ElementsAre("update WorkFlowFunctionInput set InputTitle='new',OrderNo=9,sort=6,ClassContent='x' where id=2"));
  EXPECT_THAT(world.Rows(kAll), ElementsAre("1|3|a|1|1|", "2|3|new|9|6|x"));
  construction.UpdateInputParameter(db, 7, title, 1, 1, "y");
  EXPECT_THAT(world.Rows(kAll), ElementsAre("1|3|a|1|1|", "2|3|new|9|6|x"));
}

TEST_F(InputParametersTest, DelRemovesTheRowOfTheNumber) {
  Input(3, "a", 1, 1, "");
  Input(3, "b", 2, 1, "");
  construction.DelInputParameter(db, 1);
  construction.DelInputParameter(db, 7);
  EXPECT_THAT(world.trace(), ElementsAre("delete from WorkFlowFunctionInput where id=1",
                                         "delete from WorkFlowFunctionInput where id=7"));
  EXPECT_THAT(world.Rows(kAll), ElementsAre("2|3|b|2|1|"));
}

TEST_F(InputParametersTest, NumbersThatAreNoneFailWithTheDatabasesErrorAndTheTitleIsWrittenBackFirst) {
  Value title = "  ";
  EXPECT_THROW(construction.AddInputParameter(db, 3, title, "1 2", 1, ""), DatabaseError);
  EXPECT_EQ(title, Value("新参数"));
  title = " t ";
  EXPECT_THROW(construction.UpdateInputParameter(db, "", title, 1, 1, ""), DatabaseError);
  EXPECT_EQ(title, Value("t"));
  EXPECT_THROW(construction.DelInputParameter(db, Value()), DatabaseError);
  EXPECT_THROW((void)construction.GetParameterIDStr(db, "x y"), DatabaseError);
}

TEST_F(InputParametersTest, GetParameterIDStrListsTheNumbersInListOrder) {
  EXPECT_EQ(construction.GetParameterIDStr(db, 3), "");
  Input(3, "c", 2, 1, "");
  Input(3, "b", 2, 1, "");
  Input(4, "a", 0, 1, "");
  Input(3, "z", 1, 1, "");
  EXPECT_EQ(construction.GetParameterIDStr(db, 3), "4,2,1");
  EXPECT_EQ(construction.GetParameterIDStr(db, "4"), "3");
  EXPECT_EQ(world.trace().back(),
            "select Top 10000 ID from WorkFlowFunctionInput where FlowID=4 Order By OrderNo,InputTitle");
}

}  // namespace
}  // namespace talm_flow::test
