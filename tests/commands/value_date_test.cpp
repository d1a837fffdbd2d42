#include "commands/value_command.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

const Operation kGeneral{48, &Command::C_48};
const Operation kYear{81, &Command::C_81};
const Operation kMonth{82, &Command::C_82};
const Operation kDay{83, &Command::C_83};
const Operation kHour{84, &Command::C_84};
const Operation kMinute{85, &Command::C_85};
const Operation kWeekday{92, &Command::C_92};

class DateTest : public ValueCaseTest {};

TEST_P(DateTest, WritesTheValue) { ExpectWritten(); }

INSTANTIATE_TEST_SUITE_P(GeneralForm, DateTest,
                         ::testing::ValuesIn(Runs({kGeneral},
                                                  {{{"target", "moment"}, "2026/1/31 9:05:07"},
                                                   {{"target", "\"2026年1月31日\""}, "2026/1/31"},
                                                   {{"target", "\"9:05\""}, "1899/12/30 9:05:00"},
                                                   {{"target", "\"2024-02-29T23:59\""}, "2024/2/29 23:59:00"},
                                                   {{"target", "\"2023-02-29\""}, std::nullopt},
                                                   {{"target", "text"}, std::nullopt},
                                                   {{"target", "n"}, std::nullopt},
                                                   {{"target"}, std::nullopt}})));

// The clock stands at 2026/1/31 9:05:00.
INSTANTIATE_TEST_SUITE_P(Parts, DateTest,
                         ::testing::ValuesIn(std::vector<ValueCase>{{kYear, {"\"1999-12-05 23:59\"", "target"}, "1999"},
                                                                    {kMonth, {"\"1999-12-05 23:59\"", "target"}, "12"},
                                                                    {kDay, {"\"1999-12-05 23:59\"", "target"}, "5"},
                                                                    {kHour, {"\"1999-12-05 23:59\"", "target"}, "23"},
                                                                    {kMinute, {"\"1999-12-05 23:59\"", "target"}, "59"},
                                                                    {kHour, {"\"1999-12-05\"", "target"}, "0"},
                                                                    {kMinute, {"\"1999-12-05\"", "target"}, "0"},
                                                                    {kYear, {"\"8:30\"", "target"}, "1899"},
                                                                    {kYear, {"\"0150-1-1\"", "target"}, "0150"},
                                                                    {kYear, {"\"plain text\"", "target"}, "2026"},
                                                                    {kMonth, {"n", "target"}, "1"},
                                                                    {kDay, {"", "target"}, "31"},
                                                                    {kHour, {"unknown", "target"}, "9"},
                                                                    {kMinute, {"1/0", "target"}, "5"}}));

INSTANTIATE_TEST_SUITE_P(Weekdays, DateTest,
                         ::testing::ValuesIn(Runs({kWeekday}, {{{"\"2026-01-26\"", "target"}, "1"},
                                                               {{"\"2026-01-31 23:59\"", "target"}, "6"},
                                                               {{"\"2026-02-01\"", "target"}, "7"},
                                                               {{"\"0100-01-01\"", "target"}, "5"},
                                                               {{"text", "target"}, std::nullopt},
                                                               {{"", "target"}, std::nullopt},
                                                               {{"n", "target"}, std::nullopt}})));

class DateTraceTest : public ValueCommandTest {};

TEST_F(DateTraceTest, TheClockIsNoStatement) {
  const Operation operation{60, &Command::C_60};
  RunStep(operation, {"target"});
  EXPECT_THAT(trace(),
              ElementsAre(ReadingOf(operation, 1), ReadingOf("target"), InsertingOf("target", "2026/1/31 9:05:00")));
}

TEST_F(DateTraceTest, APartIsReadEvaluatedAndWritten) {
  RunStep(kMonth, {"moment", "target"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kMonth, 1), ReadingOf("moment"), ReadingOf(kMonth, 2), ReadingOf("target"),
                                   InsertingOf("target", "1")));
}

TEST_F(DateTraceTest, AWeekdayOfNoDateLeavesTheTargetUnchanged) {
  Given("target", "old");
  RunStep(kWeekday, {"n", "target"});
  EXPECT_EQ(Variable(), "old");
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kWeekday, 1), ReadingOf("n"), ReadingOf(kWeekday, 2)));
}

}  // namespace
}  // namespace talm_flow::test
