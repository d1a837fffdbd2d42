#include "design/design_test.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

class ChildFlowsTest : public DesignTest {
 protected:
  /// A step of `flow` starts `child`.
  void Starts(int flow, std::string_view child) { world.Parameter(flow, 1, "C_18_1", child); }

  static std::string QueryOf(int flow) {
    return "Select Top 100000 ParameterData from WorkFlowParameter where FlowID=" + std::to_string(flow) +
           " and ParameterName='C_18_1'";
  }
};

TEST_F(ChildFlowsTest, AFlowThatStartsNoneHasNoChildFlows) {
  world.Parameter(1, 1, "C_18_2", "2");
  EXPECT_EQ(construction.GetChildFlowIDStrByFlowID(db, 1), "");
  EXPECT_EQ(construction.GetVarNameStrByFlowID(db, 1), "");
  EXPECT_THAT(world.trace(), ElementsAre(QueryOf(1), QueryOf(1)));
}

TEST_F(ChildFlowsTest, ChildFlowsComeDepthFirst) {
  Starts(1, "2");
  Starts(1, "3");
  Starts(2, "4");
  Starts(2, "5");
  Starts(4, "6");
  EXPECT_EQ(construction.GetChildFlowIDStrByFlowID(db, "1"), "2,4,6,5,3");
  EXPECT_THAT(world.trace(), ElementsAre(QueryOf(1), QueryOf(2), QueryOf(4), QueryOf(6), QueryOf(5), QueryOf(3)));
}

TEST_F(ChildFlowsTest, EachFlowIsVisitedOnceWhereItIsSeenFirst) {
  Starts(1, "2");
  Starts(1, "3");
  Starts(1, "2");
  Starts(2, "3");
  Starts(3, "2");
  Starts(3, "4");
  EXPECT_EQ(construction.GetChildFlowIDStrByFlowID(db, 1), "2,3,4");
  EXPECT_THAT(world.trace(), ElementsAre(QueryOf(1), QueryOf(2), QueryOf(3), QueryOf(4)));
}

TEST_F(ChildFlowsTest, TheFlowAskedAboutIsLeftOut) {
  Starts(1, "1");
  Starts(1, "2");
  Starts(2, "1");
  EXPECT_EQ(construction.GetChildFlowIDStrByFlowID(db, 1), "2");
  EXPECT_EQ(construction.GetChildFlowIDStrByFlowID(db, 2), "1");
  EXPECT_EQ(construction.GetChildFlowIDStrByFlowID(db, 1.0), "2");
}

TEST_F(ChildFlowsTest, OnlyWholeNumbersWithinThirtyTwoBitsAreFlows) {
  for (const char* data : {"x", "", "Var+1", "\"7\"", " 12 ", "2.6", "1e1", "3000000000", "-3000000000", "2147483647.4",
                           "1,000", "-5", "0x10", "nan"}) {
    Starts(1, data);
  }
  world.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName) Values (1,1,'C_18_1')");
  EXPECT_EQ(construction.GetChildFlowIDStrByFlowID(db, 1), "12,3,10,2147483647,1000,-5");
}

TEST_F(ChildFlowsTest, VariablesAreTheDataOfTheChildFlowsParameters) {
  Starts(1, "2");
  world.Parameter(1, 1, "C_1_1", "not of the flow itself");
  world.Parameter(2, 1, "C_1_1", "a");
  world.Parameter(2, 2, "C_26_1", "b,c");
  world.Parameter(3, 1, "C_1_1", "of no child flow");
  Starts(2, "4");
  world.Parameter(4, 9, "C_1_1", "");
  world.Run("Insert Into WorkFlowParameter (FlowID,FlowNo,ParameterName) Values (4,9,'C_1_2')");
  world.Parameter(4, 9, "C_86_1", "d");
  EXPECT_EQ(construction.GetVarNameStrByFlowID(db, 1), "a,b,c,,,d");
  EXPECT_THAT(world.trace(),
              ElementsAre(QueryOf(1), QueryOf(2), QueryOf(4),
                          "select Top 10000 ParameterData from WorkFlowParameter where FlowID in (2,4) and ("
                          "ParameterName<>'C_11_2' and ParameterName<>'C_15_3' and ParameterName<>'C_16_1' and "
                          "ParameterName<>'C_17_1' and ParameterName<>'C_18_1' and ParameterName<>'C_18_2' and "
                          "ParameterName<>'C_18_3' and ParameterName<>'C_19_2' and ParameterName<>'C_22_2' and "
                          "ParameterName<>'C_23_2' and ParameterName<>'C_24_2' and ParameterName<>'C_25_2' and "
                          "ParameterName<>'C_26_2' and ParameterName<>'C_27_2' and ParameterName<>'C_28_2' and "
                          "ParameterName<>'C_29_2' and ParameterName<>'C_30_2' and ParameterName<>'C_70_1' and "
                          "ParameterName<>'C_75_2' and ParameterName<>'C_77_2' and ParameterName<>'C_79_2' and "
                          "ParameterName<>'C_86_2')"));
}

class ExcludedParameterTest : public ChildFlowsTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(ExcludedParameterTest, IsNoVariable) {
  Starts(1, "2");
  world.Parameter(2, 1, GetParam(), "x");
  EXPECT_EQ(construction.GetVarNameStrByFlowID(db, 1), "");
}

INSTANTIATE_TEST_SUITE_P(Names, ExcludedParameterTest,
                         ::testing::Values("C_11_2", "C_15_3", "C_16_1", "C_17_1", "C_18_2", "C_18_3", "C_19_2",
                                           "C_22_2", "C_23_2", "C_24_2", "C_25_2", "C_26_2", "C_27_2", "C_28_2",
                                           "C_29_2", "C_30_2", "C_70_1", "C_75_2", "C_77_2", "C_79_2", "C_86_2"));

TEST_F(ChildFlowsTest, AFlowNumberThatIsNoneFailsWithTheDatabasesError) {
  EXPECT_THROW((void)construction.GetChildFlowIDStrByFlowID(db, "a b"), DatabaseError);
  EXPECT_THROW((void)construction.GetVarNameStrByFlowID(db, Value()), DatabaseError);
}

}  // namespace
}  // namespace talm_flow::test
