#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "adapters/sqlite_database.h"
#include "support/rows.h"
#include "talm_flow/error.h"
#include "talm_flow/text.h"

namespace talm_flow::adapters {
namespace {

using test::RowsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Key first, then the other columns; a type other than text behind ":", a default behind "=".
const std::map<std::string, std::string> kTables = {
    {"WorkFlowName", "FlowID FlowName Creater Remark"},
    {"WorkFlowConstruction", "ID FlowID:i FlowNo:i ParentNo:i Serial:i Remark Command"},
    {"WorkFlowParameter", "ID FlowID:i FlowNo:i ParameterName ParameterData"},
    {"WorkFlowFunctionInput", "ID FlowID:i InputTitle OrderNo:i Sort:i ClassContent"},
    {"WorkFlowExecuteID",
     "ExecuteID TableID:i DataID:i FlowID:i Operator RootExecuteID:i IpAddress OtherTableID:i OtherDataID:i"},
    {"WorkFlowExecute",
     "ID ExecuteID:i DataAppID:i FlowNo:i Command WaitTime:i Appover Times:i Interval:i HaveExeTimes:i=0 InputTime "
     "AppFinished:i=0"},
    {"WorkFlowExecuteTimes", "ID ExecuteID:i FlowNo:i Times:i"},
    {"WorkFlowVariable", "ID RootExecuteID:i ExecuteID:i VariableName VariableValue"},
    {"WorkFlowChildRec", "ID ParentExecuteID:i ParentFlowNo:i ChildExecuteID:i ExecuteParent:i=1"},
    {"DataApp",
     "DataAppID ExecuteID:i AppedTableID:i AppedDataID:i Appover WaitTime:i FlowNo:i ButtonText EditEnable:i "
     "AppTableID:i AppDataID:i=0 NoticInf RelatingID:i Status:i=0"},
    {"DataAtt",
     "DataAttID ExecuteID:i AttedTableID:i AttedDataID:i AttName FlowNo:i ButtonText EditEnable:i AttTableID:i "
     "AttDataID:i=0 NoticInf"},
    {"InUnitSub",
     "ID ExecuteID:i TableID:i DataID:i InUnitID InPuter WaitTime:i FlowNo:i ButtonText EditEnable:i NoticInf "
     "Status:i=0"},
    {"DataNotice", "ID Sort:i TableID:i DataID:i Recver NoticeTitle"},
    {"DataRec", "DataRecID TableID:i DataID:i Recver RecTime Status:i=0 SeeTimes:i=0"},
    {"DataTran", "ID TableID:i DataID:i TranName RecName Remark"},
    {"DataAllowEdit", "ID TableID:i DataID:i Name"},
    {"DataPro", "ID TableID:i DataID:i TranEnable:i=0 AnswerEnable:i=0 AnswerTableID:i"},
    {"DataAnswer", "ID TableID:i DataID:i AnswerTableID:i AnswerDataID:i"},
    {"TableName", "ID TableID:i AddEnable:i=1 Sort:i=0"},
    {"TableFile", "ID TableID:i DataID:i InUnitID FileContent:b FileName Size:i FileType"},
    {"TablePicData", "TablePicDataID TablePicID:i TableID:i InUnitID DataID:i InputName"},
    {"TableInUnitConstruction", "ID TableID:i InUnitID InUnitType"},
    {"HandSetSend", "ID Recver Content"},
    {"EmailSend", "ID Email Title Content TableID:i DataID:i FlowID:i FlowNo:i"},
    {"OperationRec", "ID Name IpAddress Operation"},
    {"TableOperation", "ID TableID:i Operator InputTime"},
    {"UserGroup", "ID GroupName UserName"},
};

class SqliteSchemaTest : public testing::Test {
 protected:
  SqliteSchemaTest() : database_("", OpenMode::kCreate, SqliteDatabase::Synchronous::kFull) {
    database_.CreateTables();
  }

  void Run(const std::string& statement) { (void)database_.Execute(statement); }

  /// The plan that the engine makes for one of the component's queries, with its literals.
  [[nodiscard]] std::string Plan(const std::string& query) {
    std::string plan;
    const auto rows = database_.Open("explain query plan " + query);
    for (; !rows->AtEnd(); rows->MoveNext()) plan += ToText(rows->Field("detail")) + "\n";
    return plan;
  }

  SqliteDatabase database_;
};

TEST_F(SqliteSchemaTest, EveryTableHasItsColumnsTypesAndDefaults) {
  for (const auto& [table, description] : kTables) {
    std::vector<std::string> expected;
    for (const std::string_view column : Split(description, " ")) expected.emplace_back(column);
    expected[0] += ":i key";
    std::vector<std::string> found;
    const auto rows = database_.Open("select name,type,dflt_value,pk from pragma_table_info('" + table + "')");
    for (; !rows->AtEnd(); rows->MoveNext()) {
      std::string column = rows->Field("name").Text();
      const std::string type = rows->Field("type").Text();
      if (type != "TEXT") column += type == "INTEGER" ? ":i" : type == "BLOB" ? ":b" : ":" + type;
      if (rows->Field("dflt_value").IsText()) column += "=" + rows->Field("dflt_value").Text();
      if (rows->Field("pk") == Value(1)) column += " key";
      found.push_back(column);
    }
    EXPECT_EQ(found, expected) << table;
  }
}

TEST_F(SqliteSchemaTest, ThereAreNoOtherTables) {
  std::set<std::string> found;
  for (const std::string& name :
       RowsOf(database_, "select name from sqlite_schema where type='table' and name not like 'sqlite%'")) {
    found.insert(name);
  }
  std::set<std::string> expected;
  for (const auto& [table, description] : kTables) expected.insert(table);
  EXPECT_EQ(found, expected);
}

TEST_F(SqliteSchemaTest, KeysAreNeverGivenTwice) {
  for (const auto& [table, description] : kTables) {
    const std::string key(Split(description, " ").front());
    const std::string other(Split(Split(description, " ")[1], ":").front());
    const std::string insert = "insert into " + table + " (" + other + ") values (0)";
    Run(insert);
    Run(insert);
    Run("delete from " + table + " where " + key + "=2");
    Run(insert);
    EXPECT_THAT(RowsOf(database_, "select " + key + " from " + table), ElementsAre("1", "3")) << table;
    Run("delete from " + table);
    Run(insert);
    EXPECT_THAT(RowsOf(database_, "select " + key + " from " + table), ElementsAre("4")) << table;
  }
}

TEST_F(SqliteSchemaTest, EveryTableAcceptsTheSameRowTwice) {
  for (const auto& [table, description] : kTables) {
    std::string names;
    std::string values;
    for (const std::string_view column : Split(description, " ")) {
      if (names.empty()) {
        names = " ";
        continue;
      }
      names.append(names.size() > 1 ? "," : "").append(Split(Split(column, ":").front(), "=").front());
      values.append(values.empty() ? "" : ",").append("1");
    }
    const std::string insert = "insert into " + table + " (" + names + ") values (" + values + ")";
    EXPECT_NO_THROW(Run(insert)) << insert;
    EXPECT_NO_THROW(Run(insert)) << insert;
  }
}

TEST_F(SqliteSchemaTest, CreatingTheTablesAgainChangesNothing) {
  Run("insert into WorkFlowName (FlowName) values ('kept')");
  const auto before = RowsOf(database_, "select name,sql from sqlite_schema");
  database_.CreateTables();
  EXPECT_EQ(RowsOf(database_, "select name,sql from sqlite_schema"), before);
  EXPECT_THAT(RowsOf(database_, "select FlowName from WorkFlowName"), ElementsAre("kept"));
}

TEST_F(SqliteSchemaTest, MissingTablesAreToldAndCreated) {
  EXPECT_THAT(database_.MissingTables(), IsEmpty());
  Run("drop table DataRec");
  Run("drop table UserGroup");
  EXPECT_THAT(database_.MissingTables(), ElementsAre("DataRec", "UserGroup"));
  database_.CreateTables();
  EXPECT_THAT(database_.MissingTables(), IsEmpty());
  EXPECT_EQ(RowsOf(database_, "select name from sqlite_schema where name='DataRec_TableID_DataID_Recver'").size(), 1U);
}

TEST_F(SqliteSchemaTest, AFailingCreationLeavesNothingBehind) {
  SqliteDatabase other("", OpenMode::kCreate, SqliteDatabase::Synchronous::kFull);
  (void)other.Execute("create table DataApp (unlike integer)");
  EXPECT_THROW(other.CreateTables(), DatabaseError);
  EXPECT_FALSE(other.InTransaction());
  EXPECT_THAT(RowsOf(other, "select name from sqlite_schema"), ElementsAre("DataApp"));
}

TEST_F(SqliteSchemaTest, TheScriptCreatesTheSameTablesOneStatementALine) {
  SqliteDatabase scripted("", OpenMode::kCreate, SqliteDatabase::Synchronous::kFull);
  const std::string script = SchemaScript("sqlite");
  for (int times = 0; times < 2; ++times) {
    for (const std::string_view line : Split(script, "\n")) {
      if (!line.empty()) (void)scripted.Execute(line);
    }
  }
  constexpr char kEverything[] = "select name,sql from sqlite_schema order by name";
  EXPECT_EQ(RowsOf(scripted, kEverything), RowsOf(database_, kEverything));
  EXPECT_THROW((void)SchemaScript("nothing"), ArgumentError);
}

// ---- Indexes --------------------------------------------------------------------------------------------------------

TEST_F(SqliteSchemaTest, TheComponentsConditionsAreServedByAnIndex) {
  const std::string tree = "(select ExecuteID From WorkFlowExecuteID where RootExecuteID=9 limit 100000)";
  const std::vector<std::string> queries = {
      "select Command from WorkFlowConstruction where FlowID=1 and FlowNo=2 order by rowid limit 1",
      "select flowno from WorkFlowConstruction where flowid=1 and parentno=2 order by ID limit 10000",
      "select FlowNo from WorkFlowConstruction where FlowID=1 order by FlowNo desc, rowid limit 1",
      "select ParameterData From WorkFlowParameter Where ParameterName='C_2_1' And FlowID=1 And FlowNo=2 order by "
      "rowid "
      "limit 1",
      "select ParameterData from WorkFlowParameter where FlowID=1 and ParameterName='C_18_1' order by rowid limit 10",
      "select ID from WorkFlowFunctionInput where FlowID=1 Order By OrderNo,InputTitle,rowid limit 10000",
      "select * from WorkFlowName Order By FlowName,rowid limit 10000",
      "select ExecuteID from WorkFlowExecuteID where FlowID=1",
      "select ExecuteID from WorkFlowExecuteID where RootExecuteID=1",
      "select VariableValue From WorkFlowVariable Where VariableName='x' And RootExecuteID=1 order by rowid limit 1",
      "select VariableValue From WorkFlowVariable Where VariableName='x' And ExecuteID=1 order by rowid limit 1",
      "select VariableValue From WorkFlowVariable Where VariableName='x' order by rowid limit 1",
      "select ID from WorkFlowExecute where ExecuteID=1 and FlowNo=2 and Command='C_15' order by rowid limit 1",
      "select ID from WorkFlowExecute where DataAppID=1",
      "select Times from WorkFlowExecuteTimes where ExecuteID=1 And FlowNo=2 order by rowid limit 1",
      "select * from WorkFlowChildRec where ChildExecuteID=1 order by rowid limit 1",
      "select ID from WorkFlowChildRec where ParentExecuteID=1 order by rowid limit 1",
      "select ID from WorkFlowChildRec where ParentExecuteID in " + tree + " order by rowid limit 1",
      "select DataAppID from DataApp where ExecuteID=1 and (status=0 or status=1) order by rowid limit 1",
      "select DataAppID from DataApp where (Status=0 or Status=1) and ExecuteID in " + tree + " order by rowid limit 1",
      "select Status from DataApp where ExecuteID=1 and FlowNo=2 Order by DataAppID desc limit 1",
      "select DataAppID From DataApp Where RelatingID=1 And Status<2 order by rowid limit 1",
      "select AppTableID,AppDataID from DataApp where AppedTableID=1 and AppedDataID=2 order by rowid limit 10",
      "select ID from InUnitSub where ExecuteID=1 and (status=0 or status=1) order by rowid limit 1",
      "select ID from InUnitSub where (Status=0 or Status=1) and ExecuteID in " + tree + " order by rowid limit 1",
      "select AttTableID from DataAtt where AttedTableID=1 and AttedDataID=2 order by rowid limit 10",
      "select DataRecID From DataRec Where TableID=1 And DataID=2 And Recver='x' order by rowid limit 1",
      "select ID from DataAllowEdit where TableID=1 and DataID=2 and Name='x' order by rowid limit 1",
      "select ID From DataPro Where TableID=1 and DataID=2 order by rowid limit 1",
      "select AnswerTableID from DataAnswer where TableID=1 and DataID=2 order by rowid limit 10",
      "select ID From TableFile Where TableID=1 And DataID=2 And InUnitID='x' order by rowid limit 1",
      "select TablePicDataID From TablePicData Where TableID=1 And DataID=2 And InUnitID='x' order by rowid limit 1",
      "select * from TableInUnitConstruction where TableID=1 order by rowid limit 10000",
      "select ID from TableName where TableID=1 order by rowid limit 1",
      "select UserName from UserGroup where GroupName='x' order by rowid",
  };
  for (const std::string& query : queries) {
    const std::string plan = Plan(query);
    const std::string first = plan.substr(0, plan.find('\n'));
    const bool lists_everything = query.find("here ") == query.npos;
    EXPECT_THAT(first, HasSubstr(lists_everything ? "INDEX WorkFlowName_FlowName" : "SEARCH")) << query;
    EXPECT_THAT(first, HasSubstr("INDEX")) << query;
  }
}

TEST_F(SqliteSchemaTest, NoIndexIsOnAFlagAlone) {
  for (const std::string& columns :
       RowsOf(database_,
              "select group_concat(i.name) from sqlite_schema s, pragma_index_info(s.name) i where s.type='index' "
              "group by s.name")) {
    EXPECT_THAT(columns, testing::Not(testing::AnyOf("Status", "Sort", "Command", "AppFinished")));
  }
}

// ---- Form tables ----------------------------------------------------------------------------------------------------

TEST_F(SqliteSchemaTest, AFormTableHasAColumnForEachInputUnit) {
  database_.CreateFormTable(12, {{"Subject", "InputText"}, {"Amount", "InputNum"}, {"Day", "InputTime"}});
  EXPECT_THAT(
      RowsOf(database_, "select name,type,pk from pragma_table_info('TableData12')"),
      ElementsAre("ID|INTEGER|1", "name|TEXT|0", "inputtime|TEXT|0", "Subject|TEXT|0", "Amount|REAL|0", "Day|TEXT|0"));
  EXPECT_THAT(RowsOf(database_, "select * from TableName"), ElementsAre("1|12|1|0"));
  EXPECT_THAT(RowsOf(database_, "select TableID,InUnitID,InUnitType from TableInUnitConstruction"),
              ElementsAre("12|Subject|InputText", "12|Amount|InputNum", "12|Day|InputTime"));
  Run("insert into TableData12 (name) values ('x')");
  Run("delete from TableData12");
  Run("insert into TableData12 (name) values ('x')");
  EXPECT_THAT(RowsOf(database_, "select ID from TableData12"), ElementsAre("2"));
}

TEST_F(SqliteSchemaTest, AFormTableThatExistsIsLeftAlone) {
  database_.CreateFormTable(12, {{"a", "InputText"}});
  database_.CreateFormTable(12, {{"b", "InputText"}});
  EXPECT_THAT(RowsOf(database_, "select InUnitID from TableInUnitConstruction"), ElementsAre("a"));
  EXPECT_EQ(RowsOf(database_, "select ID from TableName").size(), 1U);
}

TEST_F(SqliteSchemaTest, AFormThatIsRegisteredIsNotRegisteredAgain) {
  Run("insert into TableName (TableID,AddEnable,Sort) values (12,0,3)");
  database_.CreateFormTable(12, {});
  EXPECT_THAT(RowsOf(database_, "select TableID,AddEnable,Sort from TableName"), ElementsAre("12|0|3"));
}

TEST_F(SqliteSchemaTest, AnInputUnitsTypeMayBeAnyText) {
  database_.CreateFormTable(1, {{"a", "it's"}});
  EXPECT_THAT(RowsOf(database_, "select InUnitType from TableInUnitConstruction"), ElementsAre("it's"));
}

TEST_F(SqliteSchemaTest, AFormCanBeCreatedInsideATransaction) {
  database_.Begin();
  database_.CreateFormTable(12, {{"a", "InputText"}});
  database_.Rollback();
  EXPECT_THROW((void)RowsOf(database_, "select * from TableData12"), DatabaseError);
  EXPECT_THAT(RowsOf(database_, "select * from TableName"), IsEmpty());
}

TEST_F(SqliteSchemaTest, CodesThatAreNoColumnNamesAreRefusedByName) {
  const std::vector<std::string> codes = {"",
                                          "1a",
                                          "_a",
                                          "a b",
                                          "a-b",
                                          "a'b",
                                          "a\"b",
                                          "数量",
                                          "id",
                                          "ID",
                                          "Name",
                                          "InputTime",
                                          std::string(51, 'a'),
                                          "a;",
                                          "inputtime"};
  for (const std::string& code : codes) {
    try {
      database_.CreateFormTable(7, {{"fine", "InputText"}, {code, "InputText"}});
      ADD_FAILURE() << "accepted: " << code;
    } catch (const ArgumentError& error) {
      EXPECT_THAT(std::string(error.what()), HasSubstr("\"" + code + "\""));
    }
  }
  EXPECT_THROW(database_.CreateFormTable(7, {{"a1", "InputText"}, {"A1", "InputText"}}), ArgumentError);
  EXPECT_THROW(database_.CreateFormTable(7, {{std::string("a\0", 2), "InputText"}}), ArgumentError);
  EXPECT_THROW(database_.CreateFormTable(0, {}), ArgumentError);
  EXPECT_THROW(database_.CreateFormTable(-1, {}), ArgumentError);
  EXPECT_THAT(RowsOf(database_, "select * from TableName"), IsEmpty());
  EXPECT_NO_THROW(database_.CreateFormTable(7, {{std::string(50, 'a'), "InputText"}, {"select", "InputNum"}}));
}

}  // namespace
}  // namespace talm_flow::adapters
