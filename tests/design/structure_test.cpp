#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class StructureTest : public DesignTest {
 protected:
  /// 1 -> (2 -> (3, 4), 5) in flow 1, stored in another order than the tree's.
  void Tree() {
    world.Step(1, 1, 0, "C_1");
    world.Step(1, 2, 1, "C_2");
    world.Step(1, 5, 1, "C_5");
    world.Step(1, 3, 2, "C_3");
    world.Step(1, 4, 2, "C_4");
    world.Step(2, 7, 1, "C_7");
  }
};

TEST_F(StructureTest, MaxFlowNoIsTheHighestNumberOfTheFlow) {
  EXPECT_EQ(construction.MaxFlowNo(db, 1), 0);
  Tree();
  EXPECT_EQ(construction.MaxFlowNo(db, 1), 5);
  EXPECT_EQ(construction.MaxFlowNo(db, "2"), 7);
  EXPECT_THAT(world.trace(),
              ElementsAre("Select top 1 FlowNo from WorkFlowConstruction where FlowID=1 order by FlowNo desc",
                          "Select top 1 FlowNo from WorkFlowConstruction where FlowID=1 order by FlowNo desc",
                          "Select top 1 FlowNo from WorkFlowConstruction where FlowID=2 order by FlowNo desc"));
}

TEST_F(StructureTest, FlowNoExistsTellsWhetherTheFlowHasTheStep) {
  Tree();
  EXPECT_TRUE(construction.FlowNoExists(db, 1, 5));
  EXPECT_FALSE(construction.FlowNoExists(db, 1, 7));
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=1 and FlowNo=5",
                                         "Select Top 1 FlowNo From WorkFlowConstruction where FlowID=1 and FlowNo=7"));
}

TEST_F(StructureTest, GetParentNoIsZeroForAMissingStep) {
  Tree();
  EXPECT_EQ(construction.GetParentNo(db, 1, 4), 2);
  EXPECT_EQ(construction.GetParentNo(db, 1, 1), 0);
  EXPECT_EQ(construction.GetParentNo(db, 1, 7), 0);
  EXPECT_EQ(world.trace().front(), "Select Top 1 ParentNo from WorkFlowConstruction where FlowID=1 and FlowNo=4");
}

TEST_F(StructureTest, GetStepQtyCountsTheStepsUpToTheTop) {
  Tree();
  EXPECT_EQ(construction.GetStepQty(db, 1, 4), 3);
  EXPECT_THAT(world.trace(),
              ElementsAre("Select Top 1 ParentNo from WorkFlowConstruction where FlowID=1 and FlowNo=4",
                          "Select Top 1 ParentNo from WorkFlowConstruction where FlowID=1 and FlowNo=2",
                          "Select Top 1 ParentNo from WorkFlowConstruction where FlowID=1 and FlowNo=1"));
}

struct Depth {
  Value flow_no;
  int depth;
};

class DepthTest : public StructureTest, public ::testing::WithParamInterface<Depth> {};

TEST_P(DepthTest, IsThatOfTheNearestWholeNumber) {
  Tree();
  EXPECT_EQ(construction.GetStepQty(db, 1, GetParam().flow_no), GetParam().depth);
}

INSTANTIATE_TEST_SUITE_P(Steps, DepthTest,
                         ::testing::Values(Depth{1, 1}, Depth{2, 2}, Depth{"3", 3}, Depth{4.4, 3}, Depth{7, 1},
                                           Depth{32767, 1}, Depth{0, 0}, Depth{-3, 0}, Depth{"0.5", 0}));

TEST_F(StructureTest, GetStepQtyTakesStepNumbersOnly) {
  EXPECT_THROW((void)construction.GetStepQty(db, 1, 32768), OverflowError);
  EXPECT_THROW((void)construction.GetStepQty(db, 1, "-40000"), OverflowError);
  EXPECT_THROW((void)construction.GetStepQty(db, 1, "x"), ConversionError);
  EXPECT_THROW((void)construction.GetStepQty(db, 1, Value()), ConversionError);
  EXPECT_THAT(world.trace(), IsEmpty());
}

TEST_F(StructureTest, GetMaxStepQtyIsTheHeightOfTheSubtree) {
  Tree();
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, 1), 2);
  EXPECT_THAT(world.trace(),
              ElementsAre("select Top 10000 flowno from WorkFlowConstruction where FlowID=1 and ParentNo=1",
                          "select Top 10000 flowno from WorkFlowConstruction where FlowID=1 and ParentNo=2",
                          "select Top 10000 flowno from WorkFlowConstruction where FlowID=1 and ParentNo=3",
                          "select Top 10000 flowno from WorkFlowConstruction where FlowID=1 and ParentNo=4",
                          "select Top 10000 flowno from WorkFlowConstruction where FlowID=1 and ParentNo=5"));
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, 0), 3) << "the whole tree below the top";
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, "2"), 1);
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, 5), 0);
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, 99), 0);
}

TEST_F(StructureTest, TheHighestBranchCountsWhereverItStands) {
  world.Step(1, 1, 0, "C_1");
  for (const int child : {2, 3, 4}) world.Step(1, child, 1, "C_1");
  world.Step(1, 5, 3, "C_1");
  world.Step(1, 6, 5, "C_1");
  world.Step(1, 7, 4, "C_1");
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, 1), 3);
  world.Step(1, 8, 2, "C_1");
  world.Step(1, 9, 8, "C_1");
  world.Step(1, 10, 9, "C_1");
  EXPECT_EQ(construction.GetMaxStepQty(db, 1, 1), 4);
}

TEST_F(StructureTest, GetChildFlowNoListsTheStepsBelowDepthFirst) {
  Tree();
  EXPECT_EQ(construction.GetChildFlowNo(db, 1, 1), "2,3,4,5");
  EXPECT_THAT(world.trace(),
              ElementsAre("select Top 10000 FlowNo from WorkFlowConstruction where parentno=1 and flowid=1",
                          "select Top 10000 FlowNo from WorkFlowConstruction where parentno=2 and flowid=1",
                          "select Top 10000 FlowNo from WorkFlowConstruction where parentno=3 and flowid=1",
                          "select Top 10000 FlowNo from WorkFlowConstruction where parentno=4 and flowid=1",
                          "select Top 10000 FlowNo from WorkFlowConstruction where parentno=5 and flowid=1"));
  EXPECT_EQ(construction.GetChildFlowNo(db, 1, 2), "3,4");
  EXPECT_EQ(construction.GetChildFlowNo(db, 1, 5), "");
  EXPECT_EQ(construction.GetChildFlowNo(db, 1, 99), "");
  EXPECT_EQ(construction.GetChildFlowNo(db, 1, 0), "1,2,3,4,5");
}

TEST_F(StructureTest, InChildIsTrueForWhatLiesBelow) {
  Tree();
  EXPECT_TRUE(construction.InChild(db, 1, 1, 4));
  EXPECT_TRUE(construction.InChild(db, 1, 2, "3"));
  EXPECT_FALSE(construction.InChild(db, 1, 1, 1)) << "a step is not below itself";
  EXPECT_FALSE(construction.InChild(db, 1, 2, 5));
  EXPECT_FALSE(construction.InChild(db, 1, 99, 4));
  EXPECT_FALSE(construction.InChild(db, 1, 5, ""));
  EXPECT_FALSE(construction.InChild(db, 1, 1, "3,4"));
}

TEST_F(StructureTest, ChildExistsAsksForTheStepFirst) {
  Tree();
  EXPECT_TRUE(construction.ChildExists(db, 1, 2));
  EXPECT_THAT(world.trace(),
              ElementsAre("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=1 and FlowNo=2",
                          "select Top 1 flowno from WorkFlowConstruction where FlowID=1 and ParentNo=2"));
  EXPECT_FALSE(construction.ChildExists(db, 1, 5));
  world.ForgetTrace();
  EXPECT_FALSE(construction.ChildExists(db, 2, 1)) << "step 7 names it, but it is not there";
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=2 and FlowNo=1"));
}

TEST_F(StructureTest, GetCommandIsTheNameAsStored) {
  Tree();
  EXPECT_EQ(construction.GetCommand(db, 1, 3), "C_3");
  EXPECT_EQ(construction.GetCommand(db, 1, 99), "");
  EXPECT_EQ(world.trace().front(), "Select Top 1 Command from WorkFlowConstruction where FlowID=1 and FlowNo=3");
}

TEST_F(StructureTest, NullColumnsAreNoNumbersAndNoTexts) {
  world.Run("Insert Into WorkFlowConstruction (FlowID,ParentNo) Values (1,9)");
  world.Run("Insert Into WorkFlowConstruction (FlowID,FlowNo) Values (2,1)");
  EXPECT_THROW((void)construction.GetChildFlowNo(db, 1, 9), ConversionError);
  EXPECT_THROW((void)construction.GetMaxStepQty(db, 1, 9), ConversionError);
  EXPECT_THROW((void)construction.MaxFlowNo(db, 1), ConversionError);
  EXPECT_THROW((void)construction.GetCommand(db, 2, 1), ConversionError);
  EXPECT_THROW((void)construction.GetParentNo(db, 2, 1), ConversionError);
}

TEST_F(StructureTest, StepNumbersOutsideSixteenBitsOverflow) {
  world.Step(1, 40000, 1, "C_1");
  world.Step(1, 2, -40000, "C_1");
  EXPECT_THROW((void)construction.MaxFlowNo(db, 1), OverflowError);
  EXPECT_THROW((void)construction.GetParentNo(db, 1, 2), OverflowError);
  EXPECT_THROW((void)construction.GetStepQty(db, 1, 2), OverflowError);
  EXPECT_THROW((void)construction.GetMaxStepQty(db, 1, 1), OverflowError);
  EXPECT_THROW((void)construction.GetChildFlowNo(db, 1, 1), OverflowError);
  EXPECT_THROW((void)construction.InChild(db, 1, 1, 2), OverflowError);
  EXPECT_THROW((void)construction.DelCommand(db, 1, 2), OverflowError);
  EXPECT_TRUE(construction.FlowNoExists(db, 1, 40000)) << "a number that is given is not converted";
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction"), "2");
}

TEST_F(StructureTest, WhatIsNoNumberFailsWithTheDatabasesError) {
  EXPECT_THROW((void)construction.FlowNoExists(db, 1, "1 2"), DatabaseError);
  EXPECT_THROW((void)construction.GetMaxStepQty(db, 1, Value()), DatabaseError);
  EXPECT_THROW((void)construction.GetChildFlowNo(db, "", 1), DatabaseError);
  EXPECT_THROW((void)construction.DelCommand(db, 1, "x y"), DatabaseError);
}

TEST_F(StructureTest, DelCommandHangsTheChildrenOntoTheParent) {
  Tree();
  world.Parameter(1, 2, "C_2_1", "gone");
  world.Parameter(1, 3, "C_3_1", "stays");
  world.Parameter(2, 2, "C_2_1", "stays");
  EXPECT_EQ(construction.DelCommand(db, 1, 2), 0);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=1 and FlowNo=2",
                                         "Select Top 1 ParentNo from WorkFlowConstruction where FlowID=1 and FlowNo=2",
                                         "delete from WorkFlowConstruction where FlowID=1 and FlowNo=2",
                                         "delete from WorkFlowParameter where FlowID=1 and FlowNo=2",
                                         "update WorkFlowConstruction set ParentNo=1 where FlowID=1 and ParentNo=2"));
  EXPECT_THAT(world.Rows("select FlowNo,ParentNo from WorkFlowConstruction where FlowID=1 order by FlowNo"),
              ElementsAre("1|0", "3|1", "4|1", "5|1"));
  EXPECT_THAT(world.Rows("select FlowID,FlowNo from WorkFlowParameter"), ElementsAre("1|3", "2|2"));
}

TEST_F(StructureTest, TheRootWithChildrenIsNotRemoved) {
  Tree();
  for (const Value& root : {Value(1), Value("1"), Value(1.0)}) {
    world.ForgetTrace();
    EXPECT_EQ(construction.DelCommand(db, 1, root), 2);
    EXPECT_THAT(world.trace(),
                ElementsAre("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=1 and FlowNo=1",
                            "Select Top 1 FlowNo From WorkFlowConstruction where FlowID=1 and FlowNo=1",
                            "select Top 1 flowno from WorkFlowConstruction where FlowID=1 and ParentNo=1"));
  }
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction where FlowID=1"), "5");
}

TEST_F(StructureTest, TheRootWithoutChildrenIsRemoved) {
  world.Step(1, 1, 0, "C_1");
  EXPECT_EQ(construction.DelCommand(db, 1, 1), 0);
  EXPECT_EQ(world.Row("select count(*) from WorkFlowConstruction"), "0");
}

TEST_F(StructureTest, AMissingStepIsNotRemoved) {
  Tree();
  EXPECT_EQ(construction.DelCommand(db, 2, 1), 1);
  EXPECT_THAT(world.trace(), ElementsAre("Select Top 1 FlowNo From WorkFlowConstruction where FlowID=2 and FlowNo=1"));
}

}  // namespace
}  // namespace talm_flow::test
