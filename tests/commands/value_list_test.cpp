#include "commands/value_command.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

const Operation kNames{54, &Command::C_54};
const Operation kCount{69, &Command::C_69};
const Operation kHasItem{78, &Command::C_78};
const Operation kItem{87, &Command::C_87};
const Operation kCommaItem{88, &Command::C_88};

class ListTest : public ValueCaseTest {};

TEST_P(ListTest, WritesTheValue) { ExpectWritten(); }

INSTANTIATE_TEST_SUITE_P(Names, ListTest,
                         ::testing::ValuesIn(Runs({kNames}, {{{"target", "\"李雷、韩梅梅, 李雷\""}, "李雷,韩梅梅"},
                                                             {{"target", "\"@nobody\""}, ""},
                                                             {{"target", "empty"}, ""},
                                                             {{"target", "\" ,; \""}, ""},
                                                             {{"target", "text"}, "a,b,c"},
                                                             {{"target"}, ""}})));

INSTANTIATE_TEST_SUITE_P(Counts, ListTest,
                         ::testing::ValuesIn(Runs({kCount}, {{{"target", "text"}, "3"},
                                                             {{"target", "\"one\""}, "1"},
                                                             {{"target", "\",\""}, "2"},
                                                             {{"target", "\"a,,b\""}, "3"},
                                                             {{"target", "\"一，二\""}, "1"},
                                                             {{"target", "empty"}, "0"},
                                                             {{"target"}, "0"}})));

INSTANTIATE_TEST_SUITE_P(Items, ListTest,
                         ::testing::ValuesIn(Runs({kHasItem}, {{{"text", "\"b\"", "target"}, "1"},
                                                               {{"\"a , 李雷 ,c\"", "\"李雷\"", "target"}, "1"},
                                                               {{"text", "\"B\"", "target"}, "0"},
                                                               {{"text", "\"b,c\"", "target"}, "0"},
                                                               {{"text", "\" b\"", "target"}, "0"},
                                                               {{"text", "empty", "target"}, "0"},
                                                               {{"\"a,,c\"", "empty", "target"}, "1"},
                                                               {{"empty", "empty", "target"}, "0"},
                                                               {{"\"4,5\"", "n", "target"}, "1"}})));

INSTANTIATE_TEST_SUITE_P(ItemsAtASeparator, ListTest,
                         ::testing::ValuesIn(Runs({kItem}, {{{"text", "", "2", "target"}, "b"},
                                                            {{"text", "", "\"-3\"", "target"}, "c"},
                                                            {{"text", "", "-3", "target"}, "c"},
                                                            {{"text", "", "0", "target"}, "a"},
                                                            {{"text", "", "", "target"}, "a"},
                                                            {{"text", "", "moment", "target"}, "a"},
                                                            {{"text", "", "4", "target"}, ""},
                                                            {{"text", ",", "3", "target"}, "c"},
                                                            {{"text", "empty", "3", "target"}, "c"},
                                                            {{"text", "unknown", "3", "target"}, "c"},
                                                            {{"text", "\",b,\"", "2", "target"}, "c"},
                                                            {{"text", "\";\"", "1", "target"}, "a,b,c"},
                                                            {{"text", "\"B\"", "2", "target"}, ""},
                                                            {{"\"1a2a3\"", "\"a\"", "2", "target"}, "2"},
                                                            {{"\"x5y\"", "n", "2", "target"}, "y"},
                                                            {{"\"一、二、三\"", "\"、\"", "2", "target"}, "二"},
                                                            {{"\"😀|^|😁\"", "\"|^|\"", "2", "target"}, "😁"},
                                                            {{"\"a,,c\"", "", "2", "target"}, ""},
                                                            {{"text", "", "2.5", "target"}, "b"},
                                                            {{"text", "", "\"1,0\"", "target"}, ""},
                                                            {{"text", "", "n-3", "target"}, "b"},
                                                            {{"empty", "", "1", "target"}, ""},
                                                            {{"", "", "", "target"}, ""}})));

INSTANTIATE_TEST_SUITE_P(CommaItems, ListTest,
                         ::testing::ValuesIn(Runs({kCommaItem}, {{{"text", "2", "target"}, "b"},
                                                                 {{"text", "-3", "target"}, "c"},
                                                                 {{"text", "0", "target"}, "a"},
                                                                 {{"text", "4", "target"}, ""},
                                                                 {{"text", "2147483647", "target"}, ""},
                                                                 {{"text", "unknown", "target"}, "a"},
                                                                 {{"\"a;b\"", "1", "target"}, "a;b"},
                                                                 {{"\"a, b\"", "2", "target"}, " b"},
                                                                 {{"empty", "1", "target"}, ""}})));

class ListTraceTest : public ValueCommandTest {};

TEST_F(ListTraceTest, ASeparatorThatIsGivenIsEvaluated) {
  RunStep(kItem, {"text", "n", "2", "target"});
  EXPECT_THAT(trace(),
              ElementsAre(ReadingOf(kItem, 1), ReadingOf("text"), ReadingOf(kItem, 2), ReadingOf("n"),
                          ReadingOf(kItem, 3), ReadingOf(kItem, 4), ReadingOf("target"), InsertingOf("target", "")));
}

TEST_F(ListTraceTest, ACommaIsNotEvaluatedAndAPositionOnlyWhenItIsNoNumber) {
  RunStep(kItem, {"text", ",", "n", "target"});
  EXPECT_THAT(trace(),
              ElementsAre(ReadingOf(kItem, 1), ReadingOf("text"), ReadingOf(kItem, 2), ReadingOf(kItem, 3),
                          ReadingOf("n"), ReadingOf(kItem, 4), ReadingOf("target"), InsertingOf("target", "")));
}

TEST_F(ListTraceTest, APositionBeyond32BitsRaisesOverflow) {
  for (const std::string_view position : {"2147483648", "-2147483648", "\"-2147483648\"", "1E300"}) {
    EXPECT_THROW(RunStep(kItem, {"text", "", position, "target"}), OverflowError) << position;
    EXPECT_THROW(RunStep(kCommaItem, {"text", position, "target"}), OverflowError) << position;
  }
  EXPECT_EQ(Variable(), std::nullopt);
}

TEST_F(ListTraceTest, GroupsStandForTheirMembers) {
  world().Run("Insert Into UserGroup (GroupName,UserName) Values ('sales','李雷')");
  world().Run("Insert Into UserGroup (GroupName,UserName) Values ('sales','O''Brien')");
  RunStep(kNames, {"target", "\"@sales,李雷\""});
  EXPECT_EQ(Variable(), "李雷,O'Brien");
}

}  // namespace
}  // namespace talm_flow::test
