#include "commands/command_table.h"

#include <gtest/gtest.h>

#include <set>

namespace talm_flow::test {
namespace {

// What a constant expression cannot look at in every build: under sanitizers the address of a function is none.
TEST(CommandTableTest, EveryCommandHasAHandlerOfItsOwn) {
  std::set<engine::Handler> handlers;
  for (const auto& row : commands::Commands()) {
    EXPECT_NE(row.handler, nullptr) << row.name;
    EXPECT_TRUE(handlers.insert(row.handler).second) << row.name;
  }
}

TEST(CommandTableTest, EveryCommandIsFoundByItsNameAlone) {
  for (const auto& row : commands::Commands()) EXPECT_EQ(engine::FindCommand(commands::Commands(), row.name), &row);
  for (const std::string_view name :
       {"", "C_", "C_0", "C_99", "C_01", "C_1 ", " C_1", "c_1", "C_1_1", "C_100", "C_-1", "C_+1", "C1", "D_1"}) {
    EXPECT_EQ(engine::FindCommand(commands::Commands(), name), nullptr) << name;
  }
}

}  // namespace
}  // namespace talm_flow::test
