#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/form_writing.h"
#include "commands/scene.h"
#include "support/failing_connection.h"
#include "talm_flow/conversion.h"
#include "talm_flow/error.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kTarget(kRecord);
const std::string kSource = "\"TableID:12,DataID:346\"";
/// Bytes that no text holds.
const std::string kBinary("\0\x01\xff\xfe'\"\0", 7);

constexpr const char* kFileDeletion = "delete From TableFile Where TableID=12 And DataID=345 And InUnitID='Doc'";
constexpr const char* kPictureDeletion = "delete From TablePicData Where TableID=12 And DataID=345 And InUnitID='Sign'";
constexpr const char* kNewFile = "Select top 1 * From TableFile";

std::string FileQuery(int number) { return "Select Top 1 * From TableFile Where ID=" + std::to_string(number); }

/// Stores a file and gives its number. A content that is Null stays unset.
int AddFile(Scene& scene, int data_id, const Value& name, const Value& content = "content") {
  const auto rows = scene.world().database().Open("Select Top 1 * From TableFile");
  rows->AddNew();
  rows->SetField("TableID", 12);
  rows->SetField("DataID", data_id);
  rows->SetField("InUnitID", "Doc");
  rows->SetField("FileName", name);
  rows->SetField("Size", 7);
  rows->SetField("FileType", "txt");
  if (content.IsText()) rows->SetBinary("FileContent", content.Text());
  rows->Update();
  return ToInt32(Value(scene.world().Row("Select Max(ID) From TableFile")));
}

void AddPicture(Scene& scene, int data_id, int picture, const std::string& name) {
  scene.world().Run("Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID,InputName) Values (" +
                    std::to_string(picture) + ",12,'Sign'," + std::to_string(data_id) + "," + Literal(name) + ")");
}

/// The commands that write one value.
struct WritingCommand {
  std::string name;
  Scene::Operation operation;
};

class WritingTest : public ::testing::TestWithParam<WritingCommand> {
 protected:
  void Write(const std::string& unit, const std::string& value) {
    scene_.Run(GetParam().operation, GetParam().name, {kTarget, unit, value});
  }
  std::string Read(int n) const { return "read " + GetParam().name + "_" + std::to_string(n); }
  std::string Stored(const std::string& column) {
    return scene_.world().Row("Select " + column + " From TableData12 Where ID=345");
  }

  Scene scene_;
};
INSTANTIATE_TEST_SUITE_P(All, WritingTest,
                         ::testing::Values(WritingCommand{"C_4", &Command::C_4}, WritingCommand{"C_5", &Command::C_5}),
                         [](const auto& test) { return test.param.name; });

TEST_P(WritingTest, AFieldOfTheRecordIsSet) {
  Write("\"inunitid:title\"", "\"New\"");
  EXPECT_THAT(scene_.Trace(),
              ElementsAre(Read(1), Read(2), Read(3), "Update TableData12 set Title='New' Where ID=345"));
  EXPECT_THAT(scene_.Rows("Select ID,Title From TableData12"), ElementsAre("345|New", "346|NULL"));
}

TEST_P(WritingTest, TextsAreCutTo4000CharactersAndLongTextsAreNot) {
  const std::string text = Repeated("汉😀", 2500);
  Write("\"Title\"", Marked(text));
  EXPECT_EQ(Stored("Title"), Repeated("汉😀", 2000));
  Write("\"Memo\"", Marked(text));
  EXPECT_EQ(Stored("Memo"), text);
}

TEST_P(WritingTest, AnEmptyTextIsWritten) {
  Write("\"Title\"", "\"Old\"");
  Write("\"Title\"", "");
  EXPECT_EQ(Stored("Title"), "");
}

TEST_P(WritingTest, HostileTextsAreStoredAsTheyAre) {
  const std::string hundred_thousand = Repeated("'汉😀?", 25000);
  for (const std::string& text : {kHostile, hundred_thousand}) {
    Write("\"Memo\"", Marked(text));
    EXPECT_EQ(Stored("Memo"), text);
    EXPECT_THAT(scene_.Rows("Select ID From TableData12"), ElementsAre("345", "346"));
  }
}

TEST_P(WritingTest, NumbersAreWrittenQuoted) {
  for (const auto& [value, stored] : {std::pair{"12.5", "12.5"}, {"-7", "-7"}, {"2*3", "6"}, {"\"0\"", "0"}}) {
    Write("\"Amount\"", value);
    if (std::string_view(value) == "-7") continue;  // a leading minus is an operator without an operand
    EXPECT_EQ(Stored("Amount"), stored) << value;
  }
  Write("\"Amount\"", "\"-7\"");
  EXPECT_THAT(scene_.Statements(), ElementsAre("Update TableData12 set Amount='-7' Where ID=345"));
}

TEST_P(WritingTest, AValueThatDoesNotFitTheUnitWritesNothing) {
  const std::pair<std::string, std::string> cases[] = {
      {"\"Amount\"", "\"abc\""}, {"\"Amount\"", ""},    {"\"Amount\"", "1/0"},         {"\"Amount\"", "\"0x10\""},
      {"\"Day\"", "\"abc\""},    {"\"Day\"", ""},       {"\"Day\"", "\"2023-02-29\""}, {"\"Day\"", "20260131"},
      {"\"Odd\"", "\"x\""},      {"\"Sign\"", "\"5\""}, {"\"Sign\"", "\"fileid:1\""},  {"\"Sign\"", ""}};
  for (const auto& [unit, value] : cases) {
    Write(unit, value);
    EXPECT_THAT(scene_.Trace(), ElementsAre(Read(1), Read(2), Read(3))) << unit << value;
  }
}

TEST_P(WritingTest, DatesAreWrittenAsTheyAreSpelled) {
  for (const char* day : {"2026-01-31", "2026/1/31 9:05:00", "2026年1月31日"}) {
    Write("\"Day\"", Marked(day));
    EXPECT_EQ(Stored("Day"), day);
  }
}

TEST_P(WritingTest, AUnitThatTheFormLacksEndsItBeforeTheValueIsRead) {
  for (const char* unit : {"", "Title", "\"Opinion\"", "\"1x\"", "\"name\"", "\"id=1\"", "\"fileid:1\""}) {
    Write(unit, "\"x\"");
    EXPECT_THAT(scene_.Trace(), ElementsAre(Read(1), Read(2))) << unit;
  }
}

TEST_P(WritingTest, FilesAreCopiedWholeAndStayIndependent) {
  const int first = AddFile(scene_, 346, "a.txt", kBinary);
  const int second = AddFile(scene_, 346, "o'Neil.txt", "");
  Write("\"Doc\"", "\"fileid:" + std::to_string(first) + ", " + std::to_string(second) + "\"");
  EXPECT_THAT(scene_.Statements(), ElementsAre(kFileDeletion, FileQuery(first), kNewFile, FileQuery(second), kNewFile));
  scene_.world().Run("Delete From TableFile Where DataID=346");
  EXPECT_THAT(scene_.Rows("Select TableID,DataID,InUnitID,FileName,Size,FileType,FileContent From TableFile"),
              ElementsAre("12|345|Doc|a.txt|7|txt|" + kBinary, "12|345|Doc|o'Neil.txt|7|txt|"));
}

TEST_P(WritingTest, AFileWithoutContentStaysWithoutContent) {
  const int number = AddFile(scene_, 346, "a.txt", nullptr);
  Write("\"Doc\"", "\"fileid:" + std::to_string(number) + "\"");
  EXPECT_THAT(scene_.Rows("Select FileName,FileContent From TableFile Where DataID=345"), ElementsAre("a.txt|NULL"));
}

TEST_P(WritingTest, FilesWithoutANameAndNumbersWithoutAFileArePassedOver) {
  const int nameless = AddFile(scene_, 346, "");
  const int unnamed = AddFile(scene_, 346, nullptr);
  const int named = AddFile(scene_, 346, "a.txt");
  Write("\"Doc\"",
        "\"" + std::to_string(nameless) + "," + std::to_string(unnamed) + ",777," + std::to_string(named) + "\"");
  EXPECT_THAT(scene_.Statements(), ElementsAre(kFileDeletion, FileQuery(nameless), FileQuery(unnamed), FileQuery(777),
                                               FileQuery(named), kNewFile));
  EXPECT_THAT(scene_.Rows("Select FileName From TableFile Where DataID=345"), ElementsAre("a.txt"));
}

TEST_P(WritingTest, ItemsThatNameNoFileAreSkippedAfterTheOldFilesAreGone) {
  AddFile(scene_, 345, "old.txt");
  Write("\"Doc\"", Marked("0,-1,fileid:0,tableid:1,inunitid:Doc,abc,,99999999999,1 Or 1=1,fileid:'1'"));
  EXPECT_THAT(scene_.Statements(), ElementsAre(kFileDeletion));
  EXPECT_THAT(scene_.Rows("Select * From TableFile"), IsEmpty());
}

TEST_P(WritingTest, AnEmptyListRemovesTheFilesOfThisUnitAlone) {
  AddFile(scene_, 345, "old.txt");
  AddFile(scene_, 346, "other.txt");
  scene_.world().Run("Insert Into TableFile (TableID,DataID,InUnitID,FileName) Values (12,345,'Annex','kept.txt')");
  Write("\"Doc\"", "");
  EXPECT_THAT(scene_.Rows("Select FileName From TableFile"), ElementsAre("other.txt", "kept.txt"));
}

TEST_P(WritingTest, AFileOfTheUnitItselfIsGoneBeforeItCouldBeCopied) {
  const int own = AddFile(scene_, 345, "own.txt");
  Write("\"Doc\"", "\"fileid:" + std::to_string(own) + "\"");
  EXPECT_THAT(scene_.Rows("Select * From TableFile"), IsEmpty());
}

TEST_P(WritingTest, AFailureDuringTheCopyLeavesTheFilesCopiedSoFar) {
  const int first = AddFile(scene_, 346, "a.txt");
  const int second = AddFile(scene_, 346, "b.txt");
  AddFile(scene_, 345, "old.txt");
  scene_.SetParameters(GetParam().name,
                       {kTarget, "\"Doc\"", "\"" + std::to_string(first) + "," + std::to_string(second) + "\""});
  FailingConnection failing(scene_.world().connection(), 7);  // the query by which the second copy is begun
  EXPECT_THROW(scene_.RunOn(failing, GetParam().operation), DatabaseError);
  EXPECT_THAT(scene_.Rows("Select FileName From TableFile Where DataID=345"), ElementsAre("a.txt"));
}

TEST(PictureTest, ThePictureRowIsCopiedInPlaceOfTheOldOnes) {
  Scene scene;
  AddPicture(scene, 346, 70, "o'Neil");
  AddPicture(scene, 345, 71, "old");
  AddPicture(scene, 345, 72, "older");
  scene.Run(&Command::C_4, "C_4", {kTarget, "\"Sign\"", "\"TablePicDataID:1\""});
  EXPECT_THAT(scene.Statements(),
              ElementsAre("Select Top 1 * From TablePicData Where TablePicDataID=1", kPictureDeletion,
                          "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID,InputName) Values "
                          "(70,12,'Sign',345,'o''Neil')"));
  EXPECT_THAT(scene.Rows("Select DataID,TablePicID,InputName From TablePicData"),
              ElementsAre("346|70|o'Neil", "345|70|o'Neil"));
}

TEST(PictureTest, APictureThatIsNotThereLeavesTheOldOnes) {
  Scene scene;
  AddPicture(scene, 345, 71, "old");
  scene.Run(&Command::C_4, "C_4", {kTarget, "\"Sign\"", "\"tablepicdataid:9\""});
  EXPECT_THAT(scene.Statements(), ElementsAre("Select Top 1 * From TablePicData Where TablePicDataID=9"));
  EXPECT_THAT(scene.Rows("Select TablePicID From TablePicData"), ElementsAre("71"));
}

TEST(PictureTest, TheCommandWithoutPicturesLeavesThemAlone) {
  Scene scene;
  AddPicture(scene, 346, 70, "a");
  scene.Run(&Command::C_5, "C_5", {kTarget, "\"Sign\"", "\"tablepicdataid:1\""});
  EXPECT_THAT(scene.Trace(), ElementsAre("read C_5_1", "read C_5_2", "read C_5_3"));
}

TEST(UnitTypeTest, EachTypeBelongsToItsGroup) {
  using commands::UnitGroup;
  const std::pair<Texts, UnitGroup> groups[] = {
      {{"InputText", "SelectPosition", "SelectClass", "InputCheckBox", "InputRadioBox", "InputHide", "SelectDept",
        "SelectOrg", "SelectUser", "AutoCal"},
       UnitGroup::kText},
      {{"InputNum"}, UnitGroup::kNumber},
      {{"InputTime"}, UnitGroup::kTime},
      {{"InputTextArea"}, UnitGroup::kLongText},
      {{"UpLoadFile"}, UnitGroup::kFile},
      {{"InputDigitalSign", "InputElectroSeal"}, UnitGroup::kPicture},
      {{"", "Input", "inputtext", "InputText,SelectPosition", " InputText", "InputPassword"}, UnitGroup::kNone}};
  for (const auto& [types, group] : groups) {
    for (const std::string& type : types) EXPECT_EQ(commands::GroupOfType(type), group) << type;
  }
}

class RecordCopyTest : public ::testing::Test {
 protected:
  void Copy(const std::string& source, const std::string& target) {
    scene_.Run(&Command::C_76, "C_76", {source, target});
  }

  Scene scene_;
};

TEST_F(RecordCopyTest, EveryUnitIsWrittenAsItsTypeAsks) {
  scene_.world().Run("Update TableData12 Set Title='T',Amount=1.5,Day='2026-01-31',Memo='M''s',Odd='o' Where ID=346");
  scene_.world().Run("Update TableData12 Set Odd='kept' Where ID=345");
  const int file = AddFile(scene_, 346, "a.txt", kBinary);
  AddFile(scene_, 345, "old.txt");
  AddPicture(scene_, 346, 70, "a");
  Copy(kSource, kTarget);
  EXPECT_THAT(
      scene_.Trace(),
      ElementsAre("read C_76_1", "read C_76_2", "Select Top 10000 * From TableInUnitConstruction where TableID=12",
                  "Update TableData12 set Title='T' Where ID=345", "Update TableData12 set Amount='1.5' Where ID=345",
                  "Update TableData12 set Day='2026-01-31' Where ID=345",
                  "Update TableData12 set Memo='M''s' Where ID=345", kFileDeletion, FileQuery(file), kNewFile,
                  "Select Top 1 * From TablePicData Where TablePicDataID=1", kPictureDeletion,
                  "Insert Into TablePicData (TablePicID,TableID,InUnitID,DataID,InputName) Values "
                  "(70,12,'Sign',345,'a')"));
  EXPECT_THAT(scene_.Rows("Select ID,name,Title,Amount,Day,Memo,Odd From TableData12"),
              ElementsAre("345|张三|T|1.5|2026-01-31|M's|kept", "346|李四|T|1.5|2026-01-31|M's|o"));
  EXPECT_THAT(scene_.Rows("Select FileName,FileContent From TableFile Where DataID=345"),
              ElementsAre("a.txt|" + kBinary));
  EXPECT_THAT(scene_.Rows("Select DataID,TablePicID From TablePicData"), ElementsAre("346|70", "345|70"));
}

TEST_F(RecordCopyTest, MissingValuesBlankTextsAndLeaveNumbersDatesAndPictures) {
  scene_.world().Run("Update TableData12 Set Title='T',Amount=1.5,Day='2026-01-31',Memo='M' Where ID=345");
  AddFile(scene_, 345, "old.txt");
  AddPicture(scene_, 345, 71, "old");
  Copy(kSource, kTarget);
  EXPECT_THAT(scene_.Rows("Select Title,Amount,Day,Memo From TableData12 Where ID=345"),
              ElementsAre("|1.5|2026-01-31|"));
  EXPECT_THAT(scene_.Rows("Select * From TableFile"), IsEmpty());
  EXPECT_THAT(scene_.Rows("Select TablePicID From TablePicData"), ElementsAre("71"));
}

TEST_F(RecordCopyTest, LongTextsAreCopiedWhole) {
  const std::string text = Repeated("'汉😀?", 25000);
  scene_.world().Run("Update TableData12 Set Title=" + Literal(text) + ",Memo=" + Literal(text) + " Where ID=346");
  Copy(kSource, kTarget);
  EXPECT_EQ(scene_.world().Row("Select Memo From TableData12 Where ID=345"), text);
  EXPECT_EQ(scene_.world().Row("Select Title From TableData12 Where ID=345"), Repeated("'汉😀?", 1000));
}

TEST_F(RecordCopyTest, ATargetThatTheHostRefusesStaysUntouched) {
  for (const char* target : {"", "12", "\"TableID:12,DataID:999\"", "\"TableID:99,DataID:1\""}) {
    Copy(kSource, target);
    EXPECT_THAT(scene_.Trace(), ElementsAre("read C_76_1", "read C_76_2")) << target;
  }
}

TEST_F(RecordCopyTest, AUnitThatTheTargetFormLacksEndsTheCopyWithTheDatabasesError) {
  scene_.world().Run("Insert Into TableData13 (ID) Values (1)");
  EXPECT_THROW(Copy(kSource, "\"TableID:13,DataID:1\""), DatabaseError);
  EXPECT_EQ(scene_.Statements().back(), "Update TableData13 set Title='' Where ID=1");
}

TEST_F(RecordCopyTest, UnitsWithoutATypeOrACodeArePassedOver) {
  scene_.world().Run("Delete From TableInUnitConstruction Where TableID=12");
  scene_.world().Run("Insert Into TableInUnitConstruction (TableID,InUnitID,InUnitType) Values (12,Null,'InputText')");
  scene_.world().Run("Insert Into TableInUnitConstruction (TableID,InUnitID,InUnitType) Values (12,'Title',Null)");
  Copy(kSource, kTarget);
  EXPECT_THAT(scene_.Statements(), ElementsAre("Select Top 10000 * From TableInUnitConstruction where TableID=12"));
}

}  // namespace
}  // namespace talm_flow::test
