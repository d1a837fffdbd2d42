// What all commands that compute a value and write it into a variable have in common.

#include "commands/value_command.h"

#include "talm_flow/conversion.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAreArray;

/// One run of every such command that writes.
std::vector<ValueCase> EveryCommand() {
  return {
      {{19, &Command::C_19}, {"text", "+", "n", "target"}, "a,b,c5"},
      {{22, &Command::C_22}, {"target", "text"}, "text"},
      {{23, &Command::C_23}, {"target", "text"}, "text"},
      {{24, &Command::C_24}, {"target", "text"}, "text"},
      {{25, &Command::C_25}, {"target", "text"}, "text"},
      {{26, &Command::C_26}, {"target", "text"}, "text"},
      {{27, &Command::C_27}, {"target", "text"}, "text"},
      {{28, &Command::C_28}, {"target", "text"}, "text"},
      {{29, &Command::C_29}, {"target", "text"}, "text"},
      {{30, &Command::C_30}, {"target", "text"}, "text"},
      {{31, &Command::C_31}, {"target"}, "TableID:12,DataID:345"},
      {{32, &Command::C_32}, {"target"}, "TableID:12"},
      {{33, &Command::C_33}, {"target"}, "TableID:12"},
      {{34, &Command::C_34}, {"target"}, "TableID:12,DataID:345"},
      {{35, &Command::C_35}, {"target"}, "TableID:21"},
      {{36, &Command::C_36}, {"target"}, "TableID:21,DataID:8"},
      {{37, &Command::C_37}, {"target"}, "TableID:23"},
      {{38, &Command::C_38}, {"target"}, "TableID:23,DataID:9"},
      {{39, &Command::C_39}, {"target", "text"}, "a,b,c"},
      {{40, &Command::C_40}, {"target", "text"}, "a,b,c"},
      {{41, &Command::C_41}, {"target", "text"}, "a,b,c"},
      {{42, &Command::C_42}, {"target", "text"}, "a,b,c"},
      {{43, &Command::C_43}, {"target", "text"}, "a,b,c"},
      {{44, &Command::C_44}, {"target", "text"}, "a,b,c"},
      {{45, &Command::C_45}, {"target", "DataID_Submit"}, "TableID:12"},
      {{46, &Command::C_46}, {"target", "\"dataid:345,TABLEID:012\""}, "TableID:12,DataID:345"},
      {{47, &Command::C_47}, {"target", "DataID_Submit", "\"title\""}, "合同 O'Brien"},
      {{48, &Command::C_48}, {"target", "moment"}, "2026/1/31 9:05:07"},
      {{49, &Command::C_49}, {"target", "DataID_Submit"}, "TableID:12,DataID:345"},
      {{50, &Command::C_50}, {"target", "12"}, "TableID:12"},
      {{51, &Command::C_51}, {"target", "\"inunitid:ab12\""}, "AB12"},
      {{52, &Command::C_52}, {"target", "\"FileID:007\""}, "fileid:7"},
      {{53, &Command::C_53}, {"target", "\"TablePicDataID:8\""}, "tablepicdataid:8"},
      {{54, &Command::C_54}, {"target", "\"李雷; 韩梅梅\""}, "李雷,韩梅梅"},
      {{55, &Command::C_55}, {"target", "n"}, "5"},
      {{56, &Command::C_56}, {"target", "n"}, "5"},
      {{57, &Command::C_57}, {"target", "n"}, "5"},
      {{58, &Command::C_58}, {"target", "n"}, "5"},
      {{59, &Command::C_59}, {"target", "\"  a b  \""}, "a b"},
      {{60, &Command::C_60}, {"target"}, "2026/1/31 9:05:00"},
      {{61, &Command::C_61}, {"target"}, "2026/1/31"},
      {{62, &Command::C_62}, {"target"}, "李雷"},
      {{63, &Command::C_63}, {"target"}, "10.0.0.7"},
      {{64, &Command::C_64}, {"target", "text"}, "A,B,C"},
      {{65, &Command::C_65}, {"target", "\"ÀB\""}, "àb"},
      {{66, &Command::C_66}, {"target", "n"}, "1"},
      {{67, &Command::C_67}, {"target", "n"}, "0"},
      {{69, &Command::C_69}, {"target", "text"}, "3"},
      {{71, &Command::C_71}, {"target", "n"}, "5"},
      {{72, &Command::C_72}, {"target", "n+0.5"}, "6"},
      {{75, &Command::C_75}, {"target", "text"}, "text"},
      {{78, &Command::C_78}, {"text", "\"b\"", "target"}, "1"},
      {{81, &Command::C_81}, {"moment", "target"}, "2026"},
      {{82, &Command::C_82}, {"moment", "target"}, "1"},
      {{83, &Command::C_83}, {"moment", "target"}, "31"},
      {{84, &Command::C_84}, {"moment", "target"}, "9"},
      {{85, &Command::C_85}, {"moment", "target"}, "5"},
      {{87, &Command::C_87}, {"text", "\"b\"", "1", "target"}, "a,"},
      {{88, &Command::C_88}, {"text", "2", "target"}, "b"},
      {{92, &Command::C_92}, {"moment", "target"}, "6"},
      {{93, &Command::C_93}, {"text", "\",\"", "n", "1", "1", "target"}, "a5b,c"},
      {{94, &Command::C_94}, {"text", "3", "1", "target"}, "b"},
      {{95, &Command::C_95}, {"text", "target"}, "5"},
      {{96, &Command::C_96}, {"text", "\",\"", "3", "target"}, "4"},
  };
}

class EveryValueCommandTest : public ValueCaseTest {
 protected:
  EveryValueCommandTest() {
    world().Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (901,901)");
    world().Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (901,12,345)");
    if (number() == 37 || number() == 38) {
      call().other_table_id = 23;
      call().other_data_id = 9;
    }
  }

  [[nodiscard]] int number() const { return GetParam().operation.number; }
};

TEST_P(EveryValueCommandTest, WritesItsValue) { ExpectWritten(); }

TEST_P(EveryValueCommandTest, OverwritesWhatTheVariableHeld) {
  Given("target", "old");
  ExpectWritten();
}

TEST_P(EveryValueCommandTest, ReadsEachParameterOnceInOrder) {
  const auto& [operation, parameters, written] = GetParam();
  RunStep(operation, parameters);
  std::vector<std::string> read;
  for (const auto& statement : trace()) {
    if (statement.starts_with("Select Top 1 ParameterData")) read.push_back(statement);
  }
  std::vector<std::string> expected;
  for (std::size_t k = 1; k <= parameters.size(); ++k) expected.push_back(ReadingOf(operation, k));
  EXPECT_THAT(read, ElementsAreArray(expected));
}

TEST_P(EveryValueCommandTest, WritesWithTheLastTwoStatements) {
  const auto& [operation, parameters, written] = GetParam();
  RunStep(operation, parameters);
  ASSERT_GE(trace().size(), 2U);
  EXPECT_EQ(trace()[trace().size() - 2], ReadingOf("target"));
  EXPECT_EQ(trace().back(), InsertingOf("target", *written));
}

TEST_P(EveryValueCommandTest, TakesTheTargetsNameAsItIsStored) {
  auto [operation, parameters, written] = GetParam();
  constexpr std::string_view kName = "1+(\"目标's\"";
  for (auto& text : parameters) {
    if (text == "target") text = kName;
  }
  RunStep(operation, parameters);
  EXPECT_EQ(Variable(kName), written);
}

TEST_P(EveryValueCommandTest, EndsAtTheStatementThatFailsAndWritesNothing) {
  const auto& [operation, parameters, written] = GetParam();
  GiveParameters(operation, parameters);
  Call(operation);
  const std::size_t statements = trace().size();
  world().Run("delete from WorkFlowVariable Where VariableName='target'");
  for (std::size_t failing = 1; failing <= statements; ++failing) {
    FailingConnection connection(world().connection(), failing);
    EXPECT_THROW(Call(operation, connection), DatabaseError) << "statement " << failing;
    EXPECT_EQ(connection.count(), failing);
    EXPECT_EQ(Variable(), std::nullopt) << "statement " << failing;
  }
}

TEST_P(EveryValueCommandTest, CannotTakeNullForAParameter) {
  const auto& [operation, parameters, written] = GetParam();
  for (std::size_t k = 1; k <= parameters.size(); ++k) {
    GiveParameters(operation, parameters);
    world().Run("Update WorkFlowParameter set ParameterData=NULL Where ParameterName='" + ParameterName(operation, k) +
                "'");
    EXPECT_THROW(Call(operation), ConversionError) << "parameter " << k;
    EXPECT_EQ(Variable(), std::nullopt);
  }
}

TEST_P(EveryValueCommandTest, LeavesTheValuesOfItsCallAlone) {
  const auto& [operation, parameters, written] = GetParam();
  const Invocation before = call();
  RunStep(operation, parameters);
  EXPECT_EQ(call().execute_id, before.execute_id);
  EXPECT_EQ(call().flow_no, before.flow_no);
  EXPECT_EQ(call().root_execute_id, before.root_execute_id);
  EXPECT_EQ(call().table_id, before.table_id);
  EXPECT_EQ(call().data_id, before.data_id);
  EXPECT_EQ(call().flow_id, before.flow_id);
  EXPECT_EQ(call().other_table_id, before.other_table_id);
  EXPECT_EQ(call().other_data_id, before.other_data_id);
}

INSTANTIATE_TEST_SUITE_P(Commands, EveryValueCommandTest, ::testing::ValuesIn(EveryCommand()),
                         [](const auto& suite) { return "C_" + std::to_string(suite.param.operation.number); });

}  // namespace
}  // namespace talm_flow::test
