#include <gtest/gtest.h>

#include "talm_flow/late_bound.h"

namespace talm_flow::late_bound {
namespace {

TEST(FindTest, EveryOperationIsFoundUnderItsName) {
  for (const auto& operation : Operations()) EXPECT_EQ(Find(operation.name), &operation) << operation.name;
}

TEST(FindTest, AllNinetyEightCommandsAreThere) {
  for (int number = 1; number <= 98; ++number) {
    const auto* const operation = Find("Command.C_" + std::to_string(number));
    ASSERT_NE(operation, nullptr) << number;
    EXPECT_EQ(operation->MinArguments(), 10U);
    EXPECT_EQ(operation->MaxArguments(), 10U);
  }
  EXPECT_EQ(Find("Command.C_0"), nullptr);
  EXPECT_EQ(Find("Command.C_99"), nullptr);
}

TEST(FindTest, NamesCompareExactly) {
  for (const auto* const name : {"name.FlowExists", "Name.flowexists", "Name.FlowExists ", " Name.FlowExists",
                                 "FlowExists", "Name.", "Name", ".FlowExists", "", "Construction.FlowExists"}) {
    EXPECT_EQ(Find(name), nullptr) << name;
  }
}

TEST(FindTest, AnUnknownClassAndAnUnknownOperationAreToldApart) {
  EXPECT_THROW((void)Resolve("Nobody.FlowExists"), UnknownClassError);
  EXPECT_THROW((void)Resolve("command.FlowExecute"), UnknownClassError);
  EXPECT_THROW((void)Resolve(""), UnknownClassError);
  EXPECT_THROW((void)Resolve("Command.FlowExecutes"), UnknownOperationError);
  EXPECT_THROW((void)Resolve("Name"), UnknownOperationError);
}

TEST(FindTest, ArgumentsHaveNamesAndWaysOfPassing) {
  const auto& operation = Resolve("Name.GetAll");
  ASSERT_EQ(operation.MaxArguments(), 4U);
  EXPECT_EQ(operation.ClassName(), "Name");
  EXPECT_EQ(operation.ArgumentName(0), "FlowID");
  EXPECT_EQ(operation.ArgumentName(3), "Remark");
  EXPECT_FALSE(operation.IsByReference(0));
  EXPECT_TRUE(operation.IsByReference(3));
  EXPECT_TRUE(Resolve("Command.ExpressToArr").IsByReference(1));
}

TEST(FindTest, OperationsWithAnOptionalArgumentTakeOneLess) {
  const auto& operation = Resolve("Name.FlowSelect");
  EXPECT_EQ(operation.MinArguments(), 6U);
  EXPECT_EQ(operation.MaxArguments(), 7U);
}

}  // namespace
}  // namespace talm_flow::late_bound
