#include "db/schema.h"

#include <array>

namespace talm_flow::db {
namespace {

constexpr Column Integer(std::string_view name, ColumnDefault initial = ColumnDefault::kNull) {
  return {name, ColumnKind::kInteger, initial};
}
constexpr Column Text(std::string_view name) { return {name, ColumnKind::kText}; }
constexpr ColumnDefault kZero = ColumnDefault::kZero;
constexpr ColumnDefault kOne = ColumnDefault::kOne;

// ---- Flow definitions -----------------------------------------------------------------------------------------------

constexpr Column kWorkFlowName[] = {Text("FlowName"), Text("Creater"), Text("Remark")};
constexpr Index kWorkFlowNameIndexes[] = {{"FlowName"}};

constexpr Column kWorkFlowConstruction[] = {Integer("FlowID"), Integer("FlowNo"), Integer("ParentNo"),
                                            Integer("Serial"), Text("Remark"),    Text("Command")};
constexpr Index kWorkFlowConstructionIndexes[] = {{"FlowID,FlowNo"}, {"FlowID,ParentNo,ID"}};

constexpr Column kWorkFlowParameter[] = {Integer("FlowID"), Integer("FlowNo"), Text("ParameterName"),
                                         Text("ParameterData")};
constexpr Index kWorkFlowParameterIndexes[] = {{"FlowID,FlowNo,ParameterName"}, {"FlowID,ParameterName"}};

constexpr Column kWorkFlowFunctionInput[] = {Integer("FlowID"), Text("InputTitle"), Integer("OrderNo"), Integer("Sort"),
                                             Text("ClassContent")};
constexpr Index kWorkFlowFunctionInputIndexes[] = {{"FlowID,OrderNo,InputTitle"}};

// ---- Flow instances -------------------------------------------------------------------------------------------------

constexpr Column kWorkFlowExecuteID[] = {Integer("TableID"),      Integer("DataID"),        Integer("FlowID"),
                                         Text("Operator"),        Integer("RootExecuteID"), Text("IpAddress"),
                                         Integer("OtherTableID"), Integer("OtherDataID")};
constexpr Index kWorkFlowExecuteIDIndexes[] = {{"RootExecuteID"}, {"FlowID"}};

constexpr Column kWorkFlowExecute[] = {
    Integer("ExecuteID"), Integer("DataAppID"),         Integer("FlowNo"),
    Text("Command"),      Integer("WaitTime"),          Text("Appover"),
    Integer("Times"),     Integer("Interval"),          Integer("HaveExeTimes", kZero),
    Text("InputTime"),    Integer("AppFinished", kZero)};
constexpr Index kWorkFlowExecuteIndexes[] = {{"ExecuteID,FlowNo"}, {"DataAppID"}};

constexpr Column kWorkFlowExecuteTimes[] = {Integer("ExecuteID"), Integer("FlowNo"), Integer("Times")};
constexpr Index kWorkFlowExecuteTimesIndexes[] = {{"ExecuteID,FlowNo"}};

constexpr Column kWorkFlowVariable[] = {Integer("RootExecuteID"), Integer("ExecuteID"), Text("VariableName"),
                                        Text("VariableValue")};
constexpr Index kWorkFlowVariableIndexes[] = {{"RootExecuteID,VariableName"}, {"VariableName,ExecuteID"}};

constexpr Column kWorkFlowChildRec[] = {Integer("ParentExecuteID"), Integer("ParentFlowNo"), Integer("ChildExecuteID"),
                                        Integer("ExecuteParent", kOne)};
constexpr Index kWorkFlowChildRecIndexes[] = {{"ChildExecuteID"}, {"ParentExecuteID"}};

// ---- Tasks ----------------------------------------------------------------------------------------------------------

constexpr Column kDataApp[] = {
    Integer("ExecuteID"),    Integer("AppedTableID"),     Integer("AppedDataID"), Text("Appover"),
    Integer("WaitTime"),     Integer("FlowNo"),           Text("ButtonText"),     Integer("EditEnable"),
    Integer("AppTableID"),   Integer("AppDataID", kZero), Text("NoticInf"),       Integer("RelatingID"),
    Integer("Status", kZero)};
constexpr Index kDataAppIndexes[] = {{"ExecuteID,FlowNo"}, {"RelatingID"}, {"AppedTableID,AppedDataID"}};

constexpr Column kDataAtt[] = {Integer("ExecuteID"),  Integer("AttedTableID"), Integer("AttedDataID"),
                               Text("AttName"),       Integer("FlowNo"),       Text("ButtonText"),
                               Integer("EditEnable"), Integer("AttTableID"),   Integer("AttDataID", kZero),
                               Text("NoticInf")};
constexpr Index kDataAttIndexes[] = {{"AttedTableID,AttedDataID"}};

constexpr Column kInUnitSub[] = {Integer("ExecuteID"), Integer("TableID"),      Integer("DataID"),
                                 Text("InUnitID"),     Text("InPuter"),         Integer("WaitTime"),
                                 Integer("FlowNo"),    Text("ButtonText"),      Integer("EditEnable"),
                                 Text("NoticInf"),     Integer("Status", kZero)};
constexpr Index kInUnitSubIndexes[] = {{"ExecuteID,FlowNo"}};

// ---- Documents ------------------------------------------------------------------------------------------------------

constexpr Column kDataNotice[] = {Integer("Sort"), Integer("TableID"), Integer("DataID"), Text("Recver"),
                                  Text("NoticeTitle")};

constexpr Column kDataRec[] = {Integer("TableID"), Integer("DataID"),        Text("Recver"),
                               Text("RecTime"),    Integer("Status", kZero), Integer("SeeTimes", kZero)};
constexpr Index kDataRecIndexes[] = {{"TableID,DataID,Recver"}};

constexpr Column kDataTran[] = {Integer("TableID"), Integer("DataID"), Text("TranName"), Text("RecName"),
                                Text("Remark")};

constexpr Column kDataAllowEdit[] = {Integer("TableID"), Integer("DataID"), Text("Name")};
constexpr Index kDataAllowEditIndexes[] = {{"TableID,DataID,Name"}};

constexpr Column kDataPro[] = {Integer("TableID"), Integer("DataID"), Integer("TranEnable", kZero),
                               Integer("AnswerEnable", kZero), Integer("AnswerTableID")};
constexpr Index kDataProIndexes[] = {{"TableID,DataID"}};

constexpr Column kDataAnswer[] = {Integer("TableID"), Integer("DataID"), Integer("AnswerTableID"),
                                  Integer("AnswerDataID")};
constexpr Index kDataAnswerIndexes[] = {{"TableID,DataID"}};

// ---- Forms ----------------------------------------------------------------------------------------------------------

constexpr Column kTableName[] = {Integer("TableID"), Integer("AddEnable", kOne), Integer("Sort", kZero)};
constexpr Index kTableNameIndexes[] = {{"TableID"}};

constexpr Column kTableFile[] = {
    Integer("TableID"), Integer("DataID"), Text("InUnitID"), {"FileContent", ColumnKind::kBinary},
    Text("FileName"),   Integer("Size"),   Text("FileType")};
constexpr Index kTableFileIndexes[] = {{"TableID,DataID,InUnitID"}};

constexpr Column kTablePicData[] = {Integer("TablePicID"), Integer("TableID"), Text("InUnitID"), Integer("DataID"),
                                    Text("InputName")};
constexpr Index kTablePicDataIndexes[] = {{"TableID,DataID,InUnitID"}};

constexpr Column kTableInUnitConstruction[] = {Integer("TableID"), Text("InUnitID"), Text("InUnitType")};
constexpr Index kTableInUnitConstructionIndexes[] = {{"TableID,InUnitID"}};

constexpr Column kTableOperation[] = {Integer("TableID"), Text("Operator"), Text("InputTime")};

// ---- Queues, log, users ---------------------------------------------------------------------------------------------

constexpr Column kHandSetSend[] = {Text("Recver"), Text("Content")};
constexpr Column kEmailSend[] = {Text("Email"),     Text("Title"),     Text("Content"),  Integer("TableID"),
                                 Integer("DataID"), Integer("FlowID"), Integer("FlowNo")};
constexpr Column kOperationRec[] = {Text("Name"), Text("IpAddress"), Text("Operation")};

constexpr Column kUserGroup[] = {Text("GroupName"), Text("UserName")};
constexpr Index kUserGroupIndexes[] = {{"GroupName"}};

constexpr std::array kTables = {
    Table{"WorkFlowName", "FlowID", kWorkFlowName, kWorkFlowNameIndexes},
    Table{"WorkFlowConstruction", "ID", kWorkFlowConstruction, kWorkFlowConstructionIndexes},
    Table{"WorkFlowParameter", "ID", kWorkFlowParameter, kWorkFlowParameterIndexes},
    Table{"WorkFlowFunctionInput", "ID", kWorkFlowFunctionInput, kWorkFlowFunctionInputIndexes},
    Table{"WorkFlowExecuteID", "ExecuteID", kWorkFlowExecuteID, kWorkFlowExecuteIDIndexes},
    Table{"WorkFlowExecute", "ID", kWorkFlowExecute, kWorkFlowExecuteIndexes},
    Table{"WorkFlowExecuteTimes", "ID", kWorkFlowExecuteTimes, kWorkFlowExecuteTimesIndexes},
    Table{"WorkFlowVariable", "ID", kWorkFlowVariable, kWorkFlowVariableIndexes},
    Table{"WorkFlowChildRec", "ID", kWorkFlowChildRec, kWorkFlowChildRecIndexes},
    Table{"DataApp", "DataAppID", kDataApp, kDataAppIndexes},
    Table{"DataAtt", "DataAttID", kDataAtt, kDataAttIndexes},
    Table{"InUnitSub", "ID", kInUnitSub, kInUnitSubIndexes},
    Table{"DataNotice", "ID", kDataNotice, {}},
    Table{"DataRec", "DataRecID", kDataRec, kDataRecIndexes},
    Table{"DataTran", "ID", kDataTran, {}},
    Table{"DataAllowEdit", "ID", kDataAllowEdit, kDataAllowEditIndexes},
    Table{"DataPro", "ID", kDataPro, kDataProIndexes},
    Table{"DataAnswer", "ID", kDataAnswer, kDataAnswerIndexes},
    Table{"TableName", "ID", kTableName, kTableNameIndexes},
    Table{"TableFile", "ID", kTableFile, kTableFileIndexes},
    Table{"TablePicData", "TablePicDataID", kTablePicData, kTablePicDataIndexes},
    Table{"TableInUnitConstruction", "ID", kTableInUnitConstruction, kTableInUnitConstructionIndexes},
    Table{"HandSetSend", "ID", kHandSetSend, {}},
    Table{"EmailSend", "ID", kEmailSend, {}},
    Table{"OperationRec", "ID", kOperationRec, {}},
    Table{"TableOperation", "ID", kTableOperation, {}},
    Table{"UserGroup", "ID", kUserGroup, kUserGroupIndexes},
};

constexpr Column kFormTable[] = {Text("name"), Text("inputtime")};

}  // namespace

std::span<const Table> Tables() { return kTables; }

std::span<const Column> FormTableColumns() { return kFormTable; }

ColumnKind InputUnitKind(std::string_view unit_type) {
  return unit_type == "InputNum" ? ColumnKind::kReal : ColumnKind::kText;
}

}  // namespace talm_flow::db
