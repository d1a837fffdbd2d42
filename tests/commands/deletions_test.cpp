#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/scene.h"

namespace talm_flow::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Three commands that delete the form records which the rows of a link table name.
struct DeletionCommand {
  std::string name;
  Scene::Operation operation;
  std::string link_table;  ///< whose rows belong to a record and name a form record
  std::string table_column, data_column, form_column, form_data_column;
  std::string last_statement;
  bool keeps_rows;
};

class FormRecordDeletionTest : public ::testing::TestWithParam<DeletionCommand> {
 protected:
  void AddLink(const std::string& record, const std::string& form, const std::string& form_record) {
    const auto& p = GetParam();
    scene_.world().Run("Insert Into " + p.link_table + " (" + p.table_column + "," + p.data_column + "," +
                       p.form_column + "," + p.form_data_column + ") Values (12," + record + "," + form + "," +
                       form_record + ")");
  }
  void AddFormRecord(int id) { scene_.world().Run("Insert Into TableData13 (ID) Values (" + std::to_string(id) + ")"); }
  std::vector<std::string> Links() {
    return scene_.Rows("Select " + GetParam().data_column + "," + GetParam().form_column + "," +
                       GetParam().form_data_column + " From " + GetParam().link_table);
  }
  std::string Query() const {
    const auto& p = GetParam();
    return "select Top 100000 " + p.form_column + "," + p.form_data_column + " from " + p.link_table + " where " +
           p.table_column + "=12 and " + p.data_column + "=345";
  }

  Scene scene_;
};

INSTANTIATE_TEST_SUITE_P(
    All, FormRecordDeletionTest,
    ::testing::Values(
        DeletionCommand{"C_12", &Command::C_12, "DataApp", "AppedTableID", "AppedDataID", "AppTableID", "AppDataID",
                        "update DataApp set AppDataID=0 where AppedTableID=12 and AppedDataID=345", true},
        DeletionCommand{"C_13", &Command::C_13, "DataAnswer", "TableID", "DataID", "AnswerTableID", "AnswerDataID",
                        "delete from DataAnswer where TableID=12 and DataID=345", false},
        DeletionCommand{"C_14", &Command::C_14, "DataAtt", "AttedTableID", "AttedDataID", "AttTableID", "AttDataID",
                        "update DataAtt set AttDataID=0 where AttedTableID=12 and AttedDataID=345", true}),
    [](const auto& test) { return test.param.name; });

TEST_P(FormRecordDeletionTest, TheFormRecordsGoInTheOrderOfTheirRows) {
  for (const int id : {1, 2, 3}) AddFormRecord(id);
  AddLink("345", "13", "2");
  AddLink("346", "13", "3");
  AddLink("345", "13", "1");
  scene_.Run(GetParam().operation, GetParam().name, {std::string(kRecord)});
  EXPECT_THAT(scene_.Trace(),
              ElementsAre("read " + GetParam().name + "_1", Query(), "delete from TableData13 Where ID=2",
                          "delete from TableData13 Where ID=1", GetParam().last_statement));
  EXPECT_THAT(scene_.Rows("Select ID From TableData13"), ElementsAre("3"));
  if (GetParam().keeps_rows) {
    EXPECT_THAT(Links(), ElementsAre("345|13|0", "346|13|3", "345|13|0"));
  } else {
    EXPECT_THAT(Links(), ElementsAre("346|13|3"));
  }
}

TEST_P(FormRecordDeletionTest, WithoutRowsOnlyTheLastStatementRuns) {
  scene_.Run(GetParam().operation, GetParam().name, {std::string(kRecord)});
  EXPECT_THAT(scene_.Statements(), ElementsAre(Query(), GetParam().last_statement));
}

TEST_P(FormRecordDeletionTest, RowsThatNameNoFormRecordDeleteNone) {
  AddFormRecord(1);
  for (const char* form_record : {"0", "Null", "-1"}) AddLink("345", "13", form_record);
  for (const char* form : {"0", "Null", "-13"}) AddLink("345", form, "1");
  scene_.Run(GetParam().operation, GetParam().name, {std::string(kRecord)});
  EXPECT_THAT(scene_.Statements(), ElementsAre(Query(), GetParam().last_statement));
  EXPECT_THAT(scene_.Rows("Select ID From TableData13"), ElementsAre("1"));
}

TEST_P(FormRecordDeletionTest, ManyRowsAreAllHandled) {
  constexpr int kCount = 2000;
  for (int id = 1; id <= kCount; ++id) {
    AddFormRecord(id);
    AddLink("345", "13", std::to_string(id));
  }
  scene_.Run(GetParam().operation, GetParam().name, {std::string(kRecord)});
  EXPECT_EQ(scene_.Statements().size(), kCount + 2U);
  EXPECT_THAT(scene_.Rows("Select ID From TableData13"), IsEmpty());
}

class OpenApprovalDeletionTest : public ::testing::Test {
 protected:
  void AddApproval(int data_id, const std::string& status) {
    scene_.world().Run("Insert Into DataApp (AppedTableID,AppedDataID,Status) Values (12," + std::to_string(data_id) +
                       "," + status + ")");
    scene_.world().Run("Insert Into WorkFlowExecute (ExecuteID,DataAppID,Command) Values (901," +
                       scene_.world().Row("Select Max(DataAppID) From DataApp") + ",'C_2')");
  }

  Scene scene_;
};

TEST_F(OpenApprovalDeletionTest, WaitsAndApprovalsOfTheRecordGo) {
  AddApproval(345, "0");
  AddApproval(345, "1");
  scene_.Run(&Command::C_89, "C_89", {std::string(kRecord)});
  EXPECT_THAT(scene_.Trace(),
              ElementsAre("read C_89_1",
                          "delete from WorkFlowExecute where DataAppID in (select DataAppID from DataApp where "
                          "AppedTableID=12 and AppedDataID=345 and Status<2)",
                          "delete from DataApp where AppedTableID=12 and AppedDataID=345 and Status<2"));
  EXPECT_THAT(scene_.Rows("Select * From DataApp"), IsEmpty());
  EXPECT_THAT(scene_.Rows("Select * From WorkFlowExecute"), IsEmpty());
}

TEST_F(OpenApprovalDeletionTest, FinishedApprovalsAndOtherRecordsAreKept) {
  AddApproval(345, "1");
  AddApproval(345, "2");
  AddApproval(345, "3");
  AddApproval(346, "0");
  AddApproval(345, "Null");
  scene_.Run(&Command::C_89, "C_89", {std::string(kRecord)});
  EXPECT_THAT(scene_.Rows("Select DataAppID,AppedDataID,Status From DataApp"),
              ElementsAre("2|345|2", "3|345|3", "4|346|0", "5|345|NULL"));
  EXPECT_THAT(scene_.Rows("Select DataAppID From WorkFlowExecute"), ElementsAre("2", "3", "4", "5"));
}

}  // namespace
}  // namespace talm_flow::test
