#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "design/design_test.h"
#include "support/failing_connection.h"

namespace talm_flow::test {
namespace {

const std::string kDefinition =
    "//"
    "\r\nVer:Flow_V600\r\nFlowBegin\r\nFlowRemark:r\r\nStepBegin\r\nFlowNo:1\r\nCommand:C_2\r\nParameterBegin\r\nC_2_1:"
    "a\r\n"
    "C_2_2:b\r\nParameterEnd\r\nStepBegin\r\nFlowNo:2\r\nParentNo:1\r\nCommand:C_1\r\nFunctionParameterBegin\r\n"
    "InputTitle:t\r\nFunctionParameterEnd\r\nFlowEnd\r\n";

/// A flow with a tree, parameters, input parameters, a child flow and an instance.
struct Filled : World {
  Filled() {
    Run("Insert Into WorkFlowName (FlowID,FlowName,Creater,Remark) Values (1,'a','b','c')");
    Step(1, 1, 0, "C_18");
    Step(1, 2, 1, "C_1");
    Step(1, 3, 2, "C_1");
    Parameter(1, 1, "C_18_1", "2");
    Parameter(1, 2, "C_1_1", "x");
    Parameter(2, 1, "C_1_1", "y");
    Run("Insert Into WorkFlowFunctionInput (FlowID,InputTitle,OrderNo,Sort,ClassContent) Values (1,'t',1,1,'')");
    Run("Insert Into WorkFlowExecuteID (ExecuteID,FlowID,RootExecuteID) Values (10,1,10)");
    Run("Insert Into WorkFlowVariable (RootExecuteID,ExecuteID,VariableName,VariableValue) Values (10,10,'v','x')");
  }

  /// All rows of all tables that the design side touches.
  [[nodiscard]] std::vector<std::string> Everything() {
    std::vector<std::string> all;
    for (const char* table : {"WorkFlowName", "WorkFlowConstruction", "WorkFlowParameter", "WorkFlowFunctionInput",
                              "WorkFlowVariable", "WorkFlowExecuteID"}) {
      all.emplace_back(table);
      for (std::string& row : Rows("select * from " + std::string(table))) all.push_back(std::move(row));
    }
    return all;
  }
};

struct Operation {
  const char* title;
  std::function<void(Name&, InOut&, Construction&, Connection&)> call;

  friend std::ostream& operator<<(std::ostream& out, const Operation& operation) { return out << operation.title; }
};

void Call(const Operation& operation, World& world, Connection& connection) {
  Name name(world.services());
  InOut in_out(world.services());
  Construction construction(world.services());
  operation.call(name, in_out, construction, connection);
}

class FailureTest : public ::testing::TestWithParam<Operation> {};

TEST_P(FailureTest, AFailingStatementEndsTheCallAndLeavesWhatWasWritten) {
  Filled untouched;
  Call(GetParam(), untouched, untouched.connection());
  const std::vector<std::string> statements = untouched.trace();
  ASSERT_FALSE(statements.empty());
  for (std::size_t failing = 1; failing <= statements.size(); ++failing) {
    Filled world;
    FailingConnection connection(world.connection(), failing);
    try {
      Call(GetParam(), world, connection);
      ADD_FAILURE() << "statement " << failing << " did not fail";
    } catch (const DatabaseError& error) {
      EXPECT_STREQ(error.what(), "the statement was made to fail");
    }
    EXPECT_EQ(connection.count(), failing) << "nothing runs behind the failure";
    Filled expected;
    for (std::size_t i = 0; i + 1 < failing; ++i) {
      if (statements[i][0] != 's' && statements[i][0] != 'S') expected.Run(statements[i]);
    }
    EXPECT_EQ(world.Everything(), expected.Everything()) << "statement " << failing;
  }
}

using N = Name;
using I = InOut;
using C = Construction;

INSTANTIATE_TEST_SUITE_P(
    Operations, FailureTest,
    ::testing::Values(
        Operation{"FlowSave", [](N& n, I&, C&, Connection& db) { (void)n.FlowSave(db, 1, "n", "c", kDefinition); }},
        Operation{"FlowAdd", [](N& n, I&, C&, Connection& db) { (void)n.FlowAdd(db, "n", "c", kDefinition); }},
        Operation{"GetRs", [](N& n, I&, C&, Connection& db) { (void)n.GetRs(db); }},
        Operation{"GetAll",
                  [](N& n, I&, C&, Connection& db) {
                    Value a, b, c;
                    (void)n.GetAll(db, 1, a, b, c);
                  }},
        Operation{"GetFlowName", [](N& n, I&, C&, Connection& db) { (void)n.GetFlowName(db, 1); }},
        Operation{"GetCreater", [](N& n, I&, C&, Connection& db) { (void)n.GetCreater(db, 1); }},
        Operation{"GetRemark", [](N& n, I&, C&, Connection& db) { (void)n.GetRemark(db, 1); }},
        Operation{"FlowExists", [](N& n, I&, C&, Connection& db) { (void)n.FlowExists(db, 1); }},
        Operation{"Add", [](N& n, I&, C&, Connection& db) { (void)n.Add(db, "n", "c", "r"); }},
        Operation{"Update", [](N& n, I&, C&, Connection& db) { (void)n.Update(db, 1, "n", "c", "r"); }},
        Operation{"Del", [](N& n, I&, C&, Connection& db) { (void)n.Del(db, 1); }},
        Operation{"FlowSelect", [](N& n, I&, C&, Connection& db) { (void)n.FlowSelect(db, "n", 0, 1, 0, 0, ""); }},
        Operation{"MaxFlowID", [](N& n, I&, C&, Connection& db) { (void)n.MaxFlowID(db); }},
        Operation{"MakeConstructionBak", [](N&, I& i, C&, Connection& db) { (void)i.MakeConstructionBak(db, 1); }},
        Operation{"CreatFlow", [](N&, I& i, C&, Connection& db) { (void)i.CreatFlow(db, 1, kDefinition); }},
        Operation{"MaxFlowNo", [](N&, I&, C& c, Connection& db) { (void)c.MaxFlowNo(db, 1); }},
        Operation{"FlowNoExists", [](N&, I&, C& c, Connection& db) { (void)c.FlowNoExists(db, 1, 1); }},
        Operation{"GetParentNo", [](N&, I&, C& c, Connection& db) { (void)c.GetParentNo(db, 1, 1); }},
        Operation{"GetStepQty", [](N&, I&, C& c, Connection& db) { (void)c.GetStepQty(db, 1, 3); }},
        Operation{"GetMaxStepQty", [](N&, I&, C& c, Connection& db) { (void)c.GetMaxStepQty(db, 1, 1); }},
        Operation{"GetChildFlowNo", [](N&, I&, C& c, Connection& db) { (void)c.GetChildFlowNo(db, 1, 1); }},
        Operation{"InChild", [](N&, I&, C& c, Connection& db) { (void)c.InChild(db, 1, 1, 3); }},
        Operation{"ChildExists", [](N&, I&, C& c, Connection& db) { (void)c.ChildExists(db, 1, 1); }},
        Operation{"DelCommand", [](N&, I&, C& c, Connection& db) { (void)c.DelCommand(db, 1, 2); }},
        Operation{"DelCommandOfTheRoot", [](N&, I&, C& c, Connection& db) { (void)c.DelCommand(db, 1, 1); }},
        Operation{"GetCommand", [](N&, I&, C& c, Connection& db) { (void)c.GetCommand(db, 1, 1); }},
        Operation{"DisplayFlow", [](N&, I&, C& c, Connection& db) { (void)c.DisplayFlow(db, 1, 1, "f"); }},
        Operation{"DisplayNextFlowStep", [](N&, I&, C& c, Connection& db) { (void)c.DisplayNextFlowStep(db, 1, 1, 1, "f"); }},
        Operation{"DisplayPerFlowStep", [](N&, I&, C& c, Connection& db) { (void)c.DisplayPerFlowStep(db, 1, 1, 1, "f"); }},
        Operation{"CreateFlowArr", [](N&, I&, C& c, Connection& db) { (void)c.CreateFlowArr(db, 1); }},
        Operation{"AddInputParameter",
                  [](N&, I&, C& c, Connection& db) {
                    Value title = "t";
                    c.AddInputParameter(db, 1, title, 1, 1, "");
                  }},
        Operation{"UpdateInputParameter",
                  [](N&, I&, C& c, Connection& db) {
                    Value title = "u";
                    c.UpdateInputParameter(db, 1, title, 1, 1, "");
                  }},
        Operation{"DelInputParameter", [](N&, I&, C& c, Connection& db) { c.DelInputParameter(db, 1); }},
        Operation{"GetParameterIDStr", [](N&, I&, C& c, Connection& db) { (void)c.GetParameterIDStr(db, 1); }},
        Operation{"InputParameterSelect",
                  [](N&, I&, C& c, Connection& db) { (void)c.InputParameterSelect(db, 1, "n", 0, 1, 0, 0, ""); }},
        Operation{"GetChildFlowIDStrByFlowID",
                  [](N&, I&, C& c, Connection& db) { (void)c.GetChildFlowIDStrByFlowID(db, 1); }},
        Operation{"GetVarNameStrByFlowID", [](N&, I&, C& c, Connection& db) { (void)c.GetVarNameStrByFlowID(db, 1); }},
        Operation{"VarSelect", [](N&, I&, C& c, Connection& db) { (void)c.VarSelect(db, 1, "n", 0, 1, 0, 0, ""); }},
        Operation{"DisplayInputParameter",
                  [](N&, I&, C& c, Connection& db) { (void)c.DisplayInputParameter(db, 1, 1, ""); }}),
    [](const ::testing::TestParamInfo<Operation>& operation) { return std::string(operation.param.title); });

}  // namespace
}  // namespace talm_flow::test
