#include "commands/value_command.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;

const Operation kDocument{31, &Command::C_31};
const Operation kDocumentTable{32, &Command::C_32};
const Operation kLatestTable{33, &Command::C_33};
const Operation kLatestRecord{34, &Command::C_34};
const Operation kOtherTable1{35, &Command::C_35};
const Operation kOtherRecord1{36, &Command::C_36};
const Operation kOtherTable3{37, &Command::C_37};
const Operation kOtherRecord3{38, &Command::C_38};
const Operation kTableOfRecord{45, &Command::C_45};
const Operation kStoreRecord{46, &Command::C_46};
const Operation kUnitValue{47, &Command::C_47};
const Operation kAcceptedRecord{49, &Command::C_49};
const Operation kAcceptedTable{50, &Command::C_50};
const Operation kUnit{51, &Command::C_51};
const Operation kFile{52, &Command::C_52};
const Operation kPicture{53, &Command::C_53};

class ReferenceTest : public ValueCaseTest {};

TEST_P(ReferenceTest, WritesTheReference) { ExpectWritten(); }

/// What no reference of a record is.
const std::vector<OneRun> kNoRecords = {
    {{"target", "text"}, std::nullopt},
    {{"target", "empty"}, std::nullopt},
    {{"target"}, std::nullopt},
    {{"target", "12"}, std::nullopt},
    {{"target", "\"TableID:12\""}, std::nullopt},
    {{"target", "\"TableID:12,TableID:13\""}, std::nullopt},
    {{"target", "\"TableID:0,DataID:1\""}, std::nullopt},
    {{"target", "\"TableID:1,DataID:0\""}, std::nullopt},
    {{"target", "\"TableID:x,DataID:1\""}, std::nullopt},
    {{"target", "\"TableID:1,DataID:3000000000\""}, std::nullopt},
    {{"target", "TableID:12,DataID:345"}, std::nullopt},
    {{"target", "DataID_PerApp"}, std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(NoRecords, ReferenceTest,
                         ::testing::ValuesIn(Runs({kTableOfRecord, kStoreRecord, kAcceptedRecord}, kNoRecords)));

INSTANTIATE_TEST_SUITE_P(TablesOfRecords, ReferenceTest,
                         ::testing::ValuesIn(Runs({kTableOfRecord},
                                                  {{{"target", "DataID_Submit"}, "TableID:12"},
                                                   {{"target", "\"dataid:9,TABLEID:99\""}, "TableID:99"},
                                                   {{"target", "\"TableID:0.7,DataID:1\""}, "TableID:1"}})));

INSTANTIATE_TEST_SUITE_P(Records, ReferenceTest,
                         ::testing::ValuesIn(Runs({kStoreRecord},
                                                  {{{"target", "DataID_Submit"}, "TableID:12,DataID:345"},
                                                   {{"target", "\"dataid:1E3,TABLEID:99\""}, "TableID:99,DataID:1000"},
                                                   {{"target", "\"TableID: 7 ,DataID: 8 \""}, "TableID:7,DataID:8"},
                                                   {{"target", "\"TableID:32767,DataID:2147483647\""},
                                                    "TableID:32767,DataID:2147483647"}})));

INSTANTIATE_TEST_SUITE_P(AcceptedRecords, ReferenceTest,
                         ::testing::ValuesIn(Runs({kAcceptedRecord},
                                                  {{{"target", "DataID_Submit"}, "TableID:12,DataID:345"},
                                                   {{"target", "\"DataID:8,TableID:21\""}, "TableID:21,DataID:8"},
                                                   {{"target", "\"TableID:12,DataID:346\""}, std::nullopt},
                                                   {{"target", "\"TableID:99,DataID:1\""}, std::nullopt}})));

INSTANTIATE_TEST_SUITE_P(AcceptedTables, ReferenceTest,
                         ::testing::ValuesIn(Runs({kAcceptedTable}, {{{"target", "12"}, "TableID:12"},
                                                                     {{"target", "\"tableid:021\""}, "TableID:21"},
                                                                     {{"target", "10+2"}, "TableID:12"},
                                                                     {{"target", "99"}, std::nullopt},
                                                                     {{"target", "\"TableID:99\""}, std::nullopt},
                                                                     {{"target", "0"}, std::nullopt},
                                                                     {{"target", "3000000000"}, std::nullopt},
                                                                     {{"target", "DataID_Submit"}, std::nullopt},
                                                                     {{"target", "text"}, std::nullopt},
                                                                     {{"target"}, std::nullopt}})));

INSTANTIATE_TEST_SUITE_P(Units, ReferenceTest,
                         ::testing::ValuesIn(Runs({kUnit}, {{{"target", "\"ab12\""}, "AB12"},
                                                            {{"target", "\"InUnitID:ab_12\""}, "AB_12"},
                                                            {{"target", "n"}, std::nullopt},
                                                            {{"target", "text"}, std::nullopt},
                                                            {{"target", "\"fileid:ab\""}, std::nullopt},
                                                            {{"target", "\"inunitid:\""}, std::nullopt},
                                                            {{"target", "\"标题\""}, std::nullopt},
                                                            {{"target"}, std::nullopt}})));

INSTANTIATE_TEST_SUITE_P(Files, ReferenceTest,
                         ::testing::ValuesIn(Runs({kFile}, {{{"target", "\"fileid:7\""}, "fileid:7"},
                                                            {{"target", "\"FILEID:1,000\""}, "fileid:1000"},
                                                            {{"target", "7"}, std::nullopt},
                                                            {{"target", "\"fileid:0\""}, std::nullopt},
                                                            {{"target", "\"fileid:x\""}, std::nullopt},
                                                            {{"target", "\"fileid:3000000000\""}, std::nullopt},
                                                            {{"target", "\"tablepicdataid:7\""}, std::nullopt},
                                                            {{"target"}, std::nullopt}})));

INSTANTIATE_TEST_SUITE_P(Pictures, ReferenceTest,
                         ::testing::ValuesIn(Runs({kPicture},
                                                  {{{"target", "\"tablepicdataid:7\""}, "tablepicdataid:7"},
                                                   {{"target", "\"TablePicDataID: 8\""}, "tablepicdataid:8"},
                                                   {{"target", "7"}, std::nullopt},
                                                   {{"target", "\"tablepicdataid:-1\""}, std::nullopt},
                                                   {{"target", "\"fileid:7\""}, std::nullopt},
                                                   {{"target"}, std::nullopt}})));

INSTANTIATE_TEST_SUITE_P(UnitValues, ReferenceTest,
                         ::testing::ValuesIn(Runs({kUnitValue},
                                                  {{{"target", "DataID_Submit", "\"inunitid:TITLE\""}, "合同 O'Brien"},
                                                   {{"target", "DataID_Submit", "\"Title\""}, "合同 O'Brien"},
                                                   {{"target", "DataID_Submit", "\"Files\""}, ""},
                                                   {{"target", "DataID_Submit", "\"Sign\""}, ""},
                                                   {{"target", "DataID_Submit", "\"Unknown\""}, std::nullopt},
                                                   {{"target", "DataID_Submit", "Title"}, std::nullopt},
                                                   {{"target", "DataID_Submit", "\"x'y\""}, std::nullopt},
                                                   {{"target", "\"TableID:12,DataID:346\"", "\"Title\""}, std::nullopt},
                                                   {{"target", "\"TableID:99,DataID:1\"", "\"Title\""}, std::nullopt},
                                                   {{"target", "12", "\"Title\""}, std::nullopt},
                                                   {{"target"}, std::nullopt}})));

class ReferenceCommandTest : public ValueCommandTest {};

TEST_F(ReferenceCommandTest, ATableNumberBeyond16BitsRaisesOverflow) {
  for (const auto& operation : {kTableOfRecord, kStoreRecord, kAcceptedRecord}) {
    EXPECT_THROW(RunStep(operation, {"target", "\"TableID:40000,DataID:5\""}), OverflowError);
  }
  EXPECT_THROW(RunStep(kUnitValue, {"target", "\"TableID:40000,DataID:5\"", "\"Title\""}), OverflowError);
  EXPECT_EQ(Variable(), std::nullopt);
}

TEST_F(ReferenceCommandTest, TheDocumentIsJoinedAsGiven) {
  call().table_id = "012";
  call().data_id = Value();
  RunStep(kDocument, {"record"});
  RunStep(kDocumentTable, {"table"});
  EXPECT_EQ(Variable("record"), "TableID:012,DataID:");
  EXPECT_EQ(Variable("table"), "TableID:012");
}

TEST_F(ReferenceCommandTest, AReferenceIsReadEvaluatedAndWritten) {
  Given("reference", "dataid:345,tableid:12");
  RunStep(kStoreRecord, {"target", "reference"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kStoreRecord, 1), ReadingOf(kStoreRecord, 2), ReadingOf("reference"),
                                   ReadingOf("target"), InsertingOf("target", "TableID:12,DataID:345")));
}

TEST_F(ReferenceCommandTest, AValueThatIsNoReferenceLeavesTheTargetUnchanged) {
  Given("target", "old");
  RunStep(kStoreRecord, {"target", "text"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kStoreRecord, 1), ReadingOf(kStoreRecord, 2), ReadingOf("text")));
  EXPECT_EQ(Variable(), "old");
}

TEST_F(ReferenceCommandTest, FilesAndPicturesAreGivenByTheirReferences) {
  world().Run("Insert Into TableFile (ID,TableID,DataID,InUnitID) Values (3,12,345,'Files')");
  world().Run("Insert Into TableFile (ID,TableID,DataID,InUnitID) Values (4,12,345,'Files')");
  world().Run("Insert Into TablePicData (TablePicDataID,TableID,DataID,InUnitID) Values (5,12,345,'Sign')");
  world().Run("Insert Into TablePicData (TablePicDataID,TableID,DataID,InUnitID) Values (6,12,345,'Sign')");
  RunStep(kUnitValue, {"files", "DataID_Submit", "\"Files\""});
  RunStep(kUnitValue, {"picture", "DataID_Submit", "\"Sign\""});
  EXPECT_EQ(Variable("files"), "fileid:3,fileid:4");
  EXPECT_EQ(Variable("picture"), "tablepicdataid:6");
}

TEST_F(ReferenceCommandTest, AUnitThatHoldsNullGivesTheEmptyText) {
  world().Run("Update TableData12 set Title=NULL Where ID=345");
  RunStep(kUnitValue, {"target", "DataID_Submit", "\"Title\""});
  EXPECT_EQ(Variable(), "");
}

TEST_F(ReferenceCommandTest, AUnitIsEvaluatedEvenWhenTheRecordDoesNotFit) {
  RunStep(kUnitValue, {"target", "text", "n"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kUnitValue, 1), ReadingOf(kUnitValue, 2), ReadingOf("text"),
                                   ReadingOf(kUnitValue, 3), ReadingOf("n")));
}

// ---- The latest approval-form record ------------------------------------------------------------------------------

constexpr std::string_view kApprovals =
    "Select Top 10000 AppTableID,AppDataID From DataApp Where AppDataID<>0 And ExecuteID in (Select Top 10000 "
    "ExecuteID "
    "From WorkFlowExecuteID Where RootExecuteID=901) Order By AppTableID Desc,AppDataID Desc";

TEST_F(ReferenceCommandTest, WithoutAnApprovalFormRecordNothingIsWritten) {
  for (const auto& operation : {kLatestTable, kLatestRecord}) {
    world().ForgetTrace();
    RunStep(operation, {"target"});
    EXPECT_THAT(trace(), ElementsAre(ReadingOf(operation, 1), kApprovals));
    EXPECT_EQ(Variable(), std::nullopt);
  }
}

TEST_F(ReferenceCommandTest, TheLatestApprovalFormRecordIsFoundBetweenReadingAndWriting) {
  world().Run("Insert Into WorkFlowExecuteID (ExecuteID,RootExecuteID) Values (950,901)");
  world().Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (950,12,345)");
  world().Run("Insert Into DataApp (ExecuteID,AppTableID,AppDataID) Values (950,21,8)");
  RunStep(kLatestRecord, {"target"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kLatestRecord, 1), kApprovals, ReadingOf("target"),
                                   InsertingOf("target", "TableID:12,DataID:345")));
}

// ---- The second document ------------------------------------------------------------------------------------------

struct OtherCase {
  Value table_id;
  Value data_id;
  std::optional<std::string> table_of_kind_1;
  std::optional<std::string> record_of_kind_1;
  std::optional<std::string> table_of_kind_3;
  std::optional<std::string> record_of_kind_3;
};

class OtherDocumentTest : public ::testing::TestWithParam<OtherCase>, protected ValueCommands {};

TEST_P(OtherDocumentTest, IsWrittenWhenTheHostAcceptsItInItsKind) {
  call().other_table_id = GetParam().table_id;
  call().other_data_id = GetParam().data_id;
  RunStep(kOtherTable1, {"table1"});
  RunStep(kOtherRecord1, {"record1"});
  RunStep(kOtherTable3, {"table3"});
  RunStep(kOtherRecord3, {"record3"});
  EXPECT_EQ(Variable("table1"), GetParam().table_of_kind_1);
  EXPECT_EQ(Variable("record1"), GetParam().record_of_kind_1);
  EXPECT_EQ(Variable("table3"), GetParam().table_of_kind_3);
  EXPECT_EQ(Variable("record3"), GetParam().record_of_kind_3);
}

INSTANTIATE_TEST_SUITE_P(
    Documents, OtherDocumentTest,
    ::testing::Values(OtherCase{21, 8, "TableID:21", "TableID:21,DataID:8", {}, {}},
                      OtherCase{23, 9, {}, {}, "TableID:23", "TableID:23,DataID:9"},
                      OtherCase{"21", "8", "TableID:21", "TableID:21,DataID:8", {}, {}},
                      OtherCase{21.0, 8.0, "TableID:21", "TableID:21,DataID:8", {}, {}},
                      OtherCase{21, 9, "TableID:21", {}, {}, {}}, OtherCase{21, "x", "TableID:21", {}, {}, {}},
                      OtherCase{21, Value(), "TableID:21", {}, {}, {}}, OtherCase{21, 8.4, "TableID:21", {}, {}, {}},
                      OtherCase{12, 345, {}, {}, {}, {}}, OtherCase{0, 0, {}, {}, {}, {}},
                      OtherCase{"", "", {}, {}, {}, {}}, OtherCase{Value(), Value(), {}, {}, {}, {}},
                      OtherCase{"x", 8, {}, {}, {}, {}}, OtherCase{20.6, 8, {}, {}, {}, {}},
                      OtherCase{"21 or 1=1", 8, {}, {}, {}, {}}, OtherCase{3e9, 8, {}, {}, {}, {}},
                      OtherCase{99, 8, {}, {}, {}, {}}));

TEST_F(ReferenceCommandTest, TheHostsAnswersAreNoStatements) {
  RunStep(kOtherRecord1, {"target"});
  EXPECT_THAT(trace(), ElementsAre(ReadingOf(kOtherRecord1, 1), ReadingOf("target"),
                                   InsertingOf("target", "TableID:21,DataID:8")));
}

}  // namespace
}  // namespace talm_flow::test
