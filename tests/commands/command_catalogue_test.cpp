#include "talm_flow/command_catalogue.h"

#include <gtest/gtest.h>

#include <string>

#include "commands/command_table.h"

namespace talm_flow {
namespace {

TEST(CommandCatalogueTest, AllCommandsComeAscendingByNumber) {
  const auto all = DescribeCommands();
  ASSERT_EQ(all.size(), 98U);
  for (std::size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(all[i].number, static_cast<int>(i) + 1);
    EXPECT_EQ(all[i].name, "C_" + std::to_string(i + 1));
  }
}

TEST(CommandCatalogueTest, ADescriptionTellsWhatTheTableHolds) {
  const auto approval = DescribeCommand("C_2");
  ASSERT_TRUE(approval);
  EXPECT_EQ(approval->title, "Approval task");
  EXPECT_EQ(approval->effect, CommandEffect::kWaits);
  EXPECT_FALSE(approval->run_cap);
  ASSERT_EQ(approval->parameters.size(), 8U);
  EXPECT_EQ(approval->parameters[0].title, "Record");
  EXPECT_TRUE(approval->parameters[0].required);
  EXPECT_EQ(approval->parameters[4].taken, ParameterTaken::kEvaluatedOrStored);
  EXPECT_EQ(approval->parameters[6].taken, ParameterTaken::kStoredOrEvaluated);
  EXPECT_FALSE(approval->parameters[6].required);
}

TEST(CommandCatalogueTest, NamesCompareExactly) {
  for (const char* name : {"", "C_0", "C_99", "C_02", "c_2", "C_2 ", " C_2", "C2", "C_2_1", "C_1000"}) {
    EXPECT_FALSE(DescribeCommand(name)) << name;
  }
}

TEST(CommandCatalogueTest, OnlyJumpsAndTimedRunsHaveACap) {
  for (const auto& command : DescribeCommands()) {
    EXPECT_EQ(command.run_cap, command.number == 16 || command.number == 86) << command.name;
  }
}

TEST(CommandCatalogueTest, FiveCommandsDoNotRunTheirChildrenAtOnce) {
  for (const auto& command : DescribeCommands()) {
    const bool leaves = command.number == 2 || command.number == 11 || command.number == 16 || command.number == 18 ||
                        command.number == 97;
    EXPECT_EQ(command.effect != CommandEffect::kContinues, leaves) << command.name;
  }
}

/// How many parameters each command reads, by number.
constexpr int kParameterCounts[] = {3, 8, 7, 3, 3, 3, 2, 2, 3, 1, 3, 1, 1, 1, 3, 1, 1, 3, 4, 2, 3, 2, 2, 2, 2,
                                    2, 2, 2, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 3, 2, 2, 2,
                                    2, 2, 2, 2, 2, 2, 2, 2, 2, 1, 1, 1, 1, 2, 2, 2, 2, 1, 2, 2, 2, 2, 0, 0, 2,
                                    2, 3, 3, 4, 1, 2, 2, 2, 2, 2, 2, 4, 3, 1, 3, 4, 2, 6, 4, 2, 4, 8, 1};

TEST(CommandCatalogueTest, EveryCommandTellsAllItsParameters) {
  for (const auto& command : DescribeCommands()) {
    EXPECT_EQ(static_cast<int>(command.parameters.size()), kParameterCounts[command.number - 1]) << command.name;
  }
}

struct Spelling {
  const char* text;
  const char* meant;  ///< empty for none
};

class NearestCommandTest : public testing::TestWithParam<Spelling> {};

TEST_P(NearestCommandTest, IsToldByTheNumber) {
  EXPECT_EQ(NearestCommand(GetParam().text).value_or(""), GetParam().meant) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Spellings, NearestCommandTest,
                         testing::Values(Spelling{"C_2", "C_2"}, Spelling{"c_2", "C_2"}, Spelling{"C2", "C_2"},
                                         Spelling{"C-2", "C_2"}, Spelling{" C_2 ", "C_2"}, Spelling{"2", "C_2"},
                                         Spelling{"C_02", "C_2"}, Spelling{"C_77x", "C_77"}, Spelling{"C_777", "C_77"},
                                         Spelling{"C_99", ""}, Spelling{"C_0", ""}, Spelling{"C_", ""},
                                         Spelling{"", ""}, Spelling{"approve", ""}, Spelling{"C_1_2", ""},
                                         Spelling{"Command C_2", ""}, Spelling{"C_2222", ""}));

TEST(CommandCatalogueTest, AnExampleStepNamesEveryParameter) {
  const auto jump = DescribeCommand("C_16");
  ASSERT_TRUE(jump);
  EXPECT_EQ(ExampleStep(*jump),
            "StepBegin\nFlowNo:2\nParentNo:1\nSerial:2\nRemark:Jump\nCommand:C_16\nParameterBegin\nC_16_1:3\n"
            "ParameterEnd\n");
  for (const auto& command : DescribeCommands()) {
    const auto text = ExampleStep(command);
    for (std::size_t i = 0; i < command.parameters.size(); ++i) {
      const auto line = "\n" + std::string(command.name) + "_" + std::to_string(i + 1) + ":";
      EXPECT_NE(text.find(line + std::string(command.parameters[i].example) + "\n"), std::string::npos) << line;
    }
  }
}

}  // namespace
}  // namespace talm_flow
