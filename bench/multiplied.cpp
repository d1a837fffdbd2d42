#include "multiplied.h"

#include <sqlite3.h>

#include <stdexcept>
#include <string>

#include "adapters/sqlite_database.h"
#include "talm_flow/conversion.h"

namespace talm_flow::bench {
namespace {

/// Runs "Insert Into table (columns) Select expressions From rows" for i from 1 to `count`; "+i" makes a new number.
void Multiply(Office& office, int count, const std::string& table, const std::string& columns,
              const std::string& expressions, const std::string& condition) {
  const std::string text = "with recursive n(i) as (select 1 union all select i+1 from n where i<" +
                           std::to_string(count) + ") insert into " + table + " (" + columns + ") select " +
                           expressions + " from n cross join " + table + " where " + condition;
  sqlite3* const engine = static_cast<adapters::SqliteDatabase&>(office.database()).engine();
  if (sqlite3_exec(engine, text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(engine));
  }
}

}  // namespace

void AddWaitingInstances(Office& office, int flow_id, int count) {
  office.Start(office.database(), flow_id);
  const Office::Task task = Office::NewestTask(office.database());
  const std::string of_instance = "ExecuteID=" + JoinedText(task.instance);
  const int more = count - 1;
  if (more < 1) return;
  Multiply(office, more, "WorkFlowExecuteID",
           "ExecuteID,TableID,DataID,FlowID,Operator,RootExecuteID,IpAddress,OtherTableID,OtherDataID",
           "ExecuteID+i,TableID,DataID,FlowID,Operator,RootExecuteID+i,IpAddress,OtherTableID,OtherDataID",
           of_instance);
  Multiply(office, more, "WorkFlowVariable", "RootExecuteID,ExecuteID,VariableName,VariableValue",
           "RootExecuteID+i,ExecuteID+i,VariableName,VariableValue", of_instance);
  Multiply(office, more, "DataApp",
           "DataAppID,ExecuteID,AppedTableID,AppedDataID,Appover,WaitTime,FlowNo,ButtonText,EditEnable,AppTableID,"
           "NoticInf,RelatingID",
           "DataAppID+i,ExecuteID+i,AppedTableID,AppedDataID,Appover,WaitTime,FlowNo,ButtonText,EditEnable,AppTableID,"
           "NoticInf,RelatingID+i",
           of_instance);
  Multiply(office, more, "WorkFlowExecute", "ExecuteID,DataAppID,FlowNo,Command,WaitTime,Appover",
           "ExecuteID+i,DataAppID+i,FlowNo,Command,WaitTime,Appover", of_instance);
  Multiply(office, more, "DataNotice", "Sort,TableID,DataID,Recver,NoticeTitle",
           "Sort,TableID,DataID,Recver,NoticeTitle", "ID=1");
}

void AddDefinitions(Office& office, int flow_id, int count) {
  const std::string flow = std::to_string(flow_id);
  office.Run("Insert Into WorkFlowName (FlowID,FlowName,Creater) Values (" + flow + ",'flow','kim')");
  const int more = count - 1;
  if (more < 1) return;
  const std::string of_flow = "FlowID=" + flow;
  Multiply(office, more, "WorkFlowName", "FlowID,FlowName,Creater", "FlowID+i,FlowName||i,Creater", of_flow);
  Multiply(office, more, "WorkFlowConstruction", "FlowID,FlowNo,ParentNo,Serial,Remark,Command",
           "FlowID+i,FlowNo,ParentNo,Serial,Remark,Command", of_flow);
  Multiply(office, more, "WorkFlowParameter", "FlowID,FlowNo,ParameterName,ParameterData",
           "FlowID+i,FlowNo,ParameterName,ParameterData", of_flow);
}

}  // namespace talm_flow::bench
