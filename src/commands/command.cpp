#include "talm_flow/command.h"

#include "commands/command_table.h"
#include "db/reference.h"
#include "engine/flow.h"
#include "engine/instance.h"
#include "engine/notices.h"
#include "engine/parameters.h"
#include "engine/run_counter.h"
#include "engine/tasks.h"
#include "engine/walk.h"
#include "expr/condition.h"
#include "expr/evaluator.h"
#include "expr/variables.h"

namespace talm_flow {
namespace {

using commands::Commands;
using db::Session;

bool RunCommand(const host::Services& services, InvocationContext& context, std::size_t number) {
  Session session(context.ConnDB, services);
  return engine::Walk(session, Commands()).RunCommand(context, Commands()[number - 1]);
}

/// Hands a number that was found to a by-reference argument. @returns whether there is one.
bool HandOver(std::optional<std::int32_t> found, Value& out) {
  if (found) out = *found;
  return found.has_value();
}

}  // namespace

void Command::FlowExecute(Connection& ConnDB, const Value& FlowID, const Value& TableID, const Value& DataID,
                          const Value& Operator, const Value& IpAddress, const Value& OtherTableID,
                          const Value& OtherDataID) {
  Session session(ConnDB, services_);
  engine::FlowExecute(session, Commands(),
                      {.table_id = TableID,
                       .data_id = DataID,
                       .flow_id = FlowID,
                       .operator_name = Operator,
                       .ip_address = IpAddress,
                       .other_table_id = OtherTableID,
                       .other_data_id = OtherDataID});
}

void Command::FlowExecuteAfter(Connection& ConnDB, const Value& ExecuteID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  engine::FlowExecuteAfter(session, Commands(), ExecuteID, FlowNo);
}

void Command::FlowExecuteByExecuteID(InvocationContext& context) {
  Session session(context.ConnDB, services_);
  engine::Instance instance = engine::InstanceOf(context);
  engine::Walk(session, Commands()).RunStep(instance, context.FlowNo);
}

void Command::NextCommand(InvocationContext& context) {
  Session session(context.ConnDB, services_);
  engine::Instance instance = engine::InstanceOf(context);
  engine::Walk(session, Commands()).RunChildren(instance, context.FlowNo);
}

void Command::EndFlow(Connection& ConnDB, const Value& ExecuteID) {
  Session session(ConnDB, services_);
  engine::EndFlow(session, ExecuteID);
}

bool Command::ExecuteIDExists(Connection& ConnDB, const Value& ExecuteID, Value& RootExecuteID, Value& TableID,
                              Value& DataID, Value& FlowID, Value& Operator, Value& IpAddress, Value& OtherTableID,
                              Value& OtherDataID) {
  Session session(ConnDB, services_);
  auto found = engine::FindInstance(session, ExecuteID);
  if (!found) return false;
  RootExecuteID = std::move(found->root_execute_id);
  TableID = std::move(found->table_id);
  DataID = std::move(found->data_id);
  FlowID = std::move(found->flow_id);
  Operator = std::move(found->operator_name);
  IpAddress = std::move(found->ip_address);
  OtherTableID = std::move(found->other_table_id);
  OtherDataID = std::move(found->other_data_id);
  return true;
}

std::string Command::GetParameterData(Connection& ConnDB, const Value& FlowID, const Value& FlowNo,
                                      const Value& ParameterName) {
  Session session(ConnDB, services_);
  return engine::GetParameterData(session, FlowID, FlowNo, JoinedText(ParameterName));
}

bool Command::IsExecuteOverTimes(Connection& ConnDB, const Value& ExecuteID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return engine::IsExecuteOverTimes(session, ExecuteID, FlowNo);
}

void Command::AddExecuteTimes(Connection& ConnDB, const Value& ExecuteID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  engine::AddExecuteTimes(session, ExecuteID, FlowNo);
}

void Command::ChangeAppStatusToFinish(Connection& ConnDB, const Value& DataAppID, const Value& AppDataID) {
  Session session(ConnDB, services_);
  engine::ChangeAppStatusToFinish(session, DataAppID, AppDataID);
}

void Command::ChangeInUnitSubStatusToFinish(Connection& ConnDB, const Value& InUnitSubID) {
  Session session(ConnDB, services_);
  engine::ChangeInUnitSubStatusToFinish(session, InUnitSubID);
}

bool Command::NotAppExists(Connection& ConnDB, const Value& DataAppID) {
  Session session(ConnDB, services_);
  return engine::NotAppExists(session, DataAppID);
}

std::string Command::GetNoticInfFromDataApp(Connection& ConnDB, const Value& DataAppID) {
  Session session(ConnDB, services_);
  return engine::GetNoticInfFromDataApp(session, DataAppID);
}

std::string Command::GetNoticInfFromInUnitSub(Connection& ConnDB, const Value& InUnitSubID) {
  Session session(ConnDB, services_);
  return engine::GetNoticInfFromInUnitSub(session, InUnitSubID);
}

std::string Command::GetNoticInfFromDataAtt(Connection& ConnDB, const Value& DataAttID) {
  Session session(ConnDB, services_);
  return engine::GetNoticInfFromDataAtt(session, DataAttID);
}

std::int32_t Command::GetFlowNoApprov(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return engine::GetFlowNoApprov(session, FlowID, FlowNo);
}

std::int32_t Command::GetFlowNoInUnitSub(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return engine::GetFlowNoInUnitSub(session, FlowID, FlowNo);
}

bool Command::ChildFlowFinish(Connection& ConnDB, const Value& ExecuteID) {
  Session session(ConnDB, services_);
  return engine::ChildFlowFinish(session, ExecuteID);
}

bool Command::GetParentFlowParam(Connection& ConnDB, const Value& ChildExecuteID, Value& ParentExecuteID,
                                 Value& ParentFlowNo, Value& ExecuteParent) {
  Session session(ConnDB, services_);
  auto link = engine::FindParentLink(session, ChildExecuteID);
  if (!link) {
    ParentExecuteID = ParentFlowNo = ExecuteParent = "";
    return false;
  }
  ParentExecuteID = std::move(link->parent_execute_id);
  ParentFlowNo = std::move(link->parent_flow_no);
  ExecuteParent = std::move(link->execute_parent);
  return true;
}

void Command::FlowNotice(Connection& ConnDB, const Value& TableID, const Value& DataID, const Value& Recver,
                         const Value& NoticeTitle) {
  Session session(ConnDB, services_);
  engine::FlowNotice(session, TableID, DataID, db::Quoted(Recver), db::Quoted(NoticeTitle));
}

void Command::DataTran(Connection& ConnDB, const Value& TableID, const Value& DataID, const Value& TranName,
                       const Value& RecStr, const Value& Remark) {
  Session session(ConnDB, services_);
  engine::DataTran(session, TableID, DataID, TranName, RecStr, Remark);
}

std::int32_t Command::GetVarTypeByName(const Value& VarName) { return expr::GetVarTypeByName(JoinedText(VarName)); }

void Command::UpdateVariableValue(Connection& ConnDB, const Value& ExecuteID, const Value& RootExecuteID,
                                  const Value& VariableName, const Value& VarStr) {
  Session session(ConnDB, services_);
  expr::UpdateVariableValue(session, ExecuteID, RootExecuteID, JoinedText(VariableName), JoinedText(VarStr));
}

std::string Command::GetVariableValue(Connection& ConnDB, const Value& ExecuteID, const Value& RootExecuteID,
                                      const Value& VariableName, const Value& TableID, const Value& DataID) {
  Session session(ConnDB, services_);
  return expr::GetVariableValue(session, {ExecuteID, RootExecuteID, TableID, DataID}, JoinedText(VariableName));
}

void Command::ExpressToArr(const Value& ExpressStr, std::vector<std::string>& ExpressArr) {
  ExpressArr = expr::ExpressToArr(JoinedText(ExpressStr));
}

bool Command::SeparateTableIDAndDataID(const Value& DataStr, Value& TableID, Value& DataID) {
  const auto found = db::SeparateTableIDAndDataID(JoinedText(DataStr));
  if (!found) return false;
  TableID = found->table_id;
  DataID = found->data_id;
  return true;
}

bool Command::SeparateTableID(const Value& TableIDStr, Value& TableID) {
  return HandOver(db::SeparateTableID(JoinedText(TableIDStr)), TableID);
}

bool Command::SeparateInUnitID(const Value& InUnitStr, Value& InUnitID) {
  auto found = db::SeparateInUnitID(JoinedText(InUnitStr), services_.common);
  InUnitID = found ? std::move(*found) : std::string();
  return found.has_value();
}

bool Command::SeparateFileID(const Value& FileIDStr, Value& FileID) {
  return HandOver(db::SeparateFileID(JoinedText(FileIDStr)), FileID);
}

bool Command::SeparateTablePicDataID(const Value& TablePicDataIDStr, Value& TablePicDataID) {
  return HandOver(db::SeparateTablePicDataID(JoinedText(TablePicDataIDStr)), TablePicDataID);
}

void Command::C_1(InvocationContext& context) { RunCommand(services_, context, 1); }
void Command::C_2(InvocationContext& context) { RunCommand(services_, context, 2); }
void Command::C_3(InvocationContext& context) { RunCommand(services_, context, 3); }
void Command::C_4(InvocationContext& context) { RunCommand(services_, context, 4); }
void Command::C_5(InvocationContext& context) { RunCommand(services_, context, 5); }
void Command::C_6(InvocationContext& context) { RunCommand(services_, context, 6); }
void Command::C_7(InvocationContext& context) { RunCommand(services_, context, 7); }
void Command::C_8(InvocationContext& context) { RunCommand(services_, context, 8); }
void Command::C_9(InvocationContext& context) { RunCommand(services_, context, 9); }
void Command::C_10(InvocationContext& context) { RunCommand(services_, context, 10); }
bool Command::C_11(InvocationContext& context) { return RunCommand(services_, context, 11); }
void Command::C_12(InvocationContext& context) { RunCommand(services_, context, 12); }
void Command::C_13(InvocationContext& context) { RunCommand(services_, context, 13); }
void Command::C_14(InvocationContext& context) { RunCommand(services_, context, 14); }
void Command::C_15(InvocationContext& context) { RunCommand(services_, context, 15); }
void Command::C_16(InvocationContext& context) { RunCommand(services_, context, 16); }
void Command::C_17(InvocationContext& context) { RunCommand(services_, context, 17); }
bool Command::C_18(InvocationContext& context) { return RunCommand(services_, context, 18); }
void Command::C_19(InvocationContext& context) { RunCommand(services_, context, 19); }
void Command::C_20(InvocationContext& context) { RunCommand(services_, context, 20); }
void Command::C_21(InvocationContext& context) { RunCommand(services_, context, 21); }
void Command::C_22(InvocationContext& context) { RunCommand(services_, context, 22); }
void Command::C_23(InvocationContext& context) { RunCommand(services_, context, 23); }
void Command::C_24(InvocationContext& context) { RunCommand(services_, context, 24); }
void Command::C_25(InvocationContext& context) { RunCommand(services_, context, 25); }
void Command::C_26(InvocationContext& context) { RunCommand(services_, context, 26); }
void Command::C_27(InvocationContext& context) { RunCommand(services_, context, 27); }
void Command::C_28(InvocationContext& context) { RunCommand(services_, context, 28); }
void Command::C_29(InvocationContext& context) { RunCommand(services_, context, 29); }
void Command::C_30(InvocationContext& context) { RunCommand(services_, context, 30); }
void Command::C_31(InvocationContext& context) { RunCommand(services_, context, 31); }
void Command::C_32(InvocationContext& context) { RunCommand(services_, context, 32); }
void Command::C_33(InvocationContext& context) { RunCommand(services_, context, 33); }
void Command::C_34(InvocationContext& context) { RunCommand(services_, context, 34); }
void Command::C_35(InvocationContext& context) { RunCommand(services_, context, 35); }
void Command::C_36(InvocationContext& context) { RunCommand(services_, context, 36); }
void Command::C_37(InvocationContext& context) { RunCommand(services_, context, 37); }
void Command::C_38(InvocationContext& context) { RunCommand(services_, context, 38); }
void Command::C_39(InvocationContext& context) { RunCommand(services_, context, 39); }
void Command::C_40(InvocationContext& context) { RunCommand(services_, context, 40); }
void Command::C_41(InvocationContext& context) { RunCommand(services_, context, 41); }
void Command::C_42(InvocationContext& context) { RunCommand(services_, context, 42); }
void Command::C_43(InvocationContext& context) { RunCommand(services_, context, 43); }
void Command::C_44(InvocationContext& context) { RunCommand(services_, context, 44); }
void Command::C_45(InvocationContext& context) { RunCommand(services_, context, 45); }
void Command::C_46(InvocationContext& context) { RunCommand(services_, context, 46); }
void Command::C_47(InvocationContext& context) { RunCommand(services_, context, 47); }
void Command::C_48(InvocationContext& context) { RunCommand(services_, context, 48); }
void Command::C_49(InvocationContext& context) { RunCommand(services_, context, 49); }
void Command::C_50(InvocationContext& context) { RunCommand(services_, context, 50); }
void Command::C_51(InvocationContext& context) { RunCommand(services_, context, 51); }
void Command::C_52(InvocationContext& context) { RunCommand(services_, context, 52); }
void Command::C_53(InvocationContext& context) { RunCommand(services_, context, 53); }
void Command::C_54(InvocationContext& context) { RunCommand(services_, context, 54); }
void Command::C_55(InvocationContext& context) { RunCommand(services_, context, 55); }
void Command::C_56(InvocationContext& context) { RunCommand(services_, context, 56); }
void Command::C_57(InvocationContext& context) { RunCommand(services_, context, 57); }
void Command::C_58(InvocationContext& context) { RunCommand(services_, context, 58); }
void Command::C_59(InvocationContext& context) { RunCommand(services_, context, 59); }
void Command::C_60(InvocationContext& context) { RunCommand(services_, context, 60); }
void Command::C_61(InvocationContext& context) { RunCommand(services_, context, 61); }
void Command::C_62(InvocationContext& context) { RunCommand(services_, context, 62); }
void Command::C_63(InvocationContext& context) { RunCommand(services_, context, 63); }
void Command::C_64(InvocationContext& context) { RunCommand(services_, context, 64); }
void Command::C_65(InvocationContext& context) { RunCommand(services_, context, 65); }
void Command::C_66(InvocationContext& context) { RunCommand(services_, context, 66); }
void Command::C_67(InvocationContext& context) { RunCommand(services_, context, 67); }
void Command::C_68(InvocationContext& context) { RunCommand(services_, context, 68); }
void Command::C_69(InvocationContext& context) { RunCommand(services_, context, 69); }
void Command::C_70(InvocationContext& context) { RunCommand(services_, context, 70); }
void Command::C_71(InvocationContext& context) { RunCommand(services_, context, 71); }
void Command::C_72(InvocationContext& context) { RunCommand(services_, context, 72); }
void Command::C_73(InvocationContext& context) { RunCommand(services_, context, 73); }
void Command::C_74(InvocationContext& context) { RunCommand(services_, context, 74); }
void Command::C_75(InvocationContext& context) { RunCommand(services_, context, 75); }
void Command::C_76(InvocationContext& context) { RunCommand(services_, context, 76); }
void Command::C_77(InvocationContext& context) { RunCommand(services_, context, 77); }
void Command::C_78(InvocationContext& context) { RunCommand(services_, context, 78); }
void Command::C_79(InvocationContext& context) { RunCommand(services_, context, 79); }
void Command::C_80(InvocationContext& context) { RunCommand(services_, context, 80); }
void Command::C_81(InvocationContext& context) { RunCommand(services_, context, 81); }
void Command::C_82(InvocationContext& context) { RunCommand(services_, context, 82); }
void Command::C_83(InvocationContext& context) { RunCommand(services_, context, 83); }
void Command::C_84(InvocationContext& context) { RunCommand(services_, context, 84); }
void Command::C_85(InvocationContext& context) { RunCommand(services_, context, 85); }
void Command::C_86(InvocationContext& context) { RunCommand(services_, context, 86); }
void Command::C_87(InvocationContext& context) { RunCommand(services_, context, 87); }
void Command::C_88(InvocationContext& context) { RunCommand(services_, context, 88); }
void Command::C_89(InvocationContext& context) { RunCommand(services_, context, 89); }
void Command::C_90(InvocationContext& context) { RunCommand(services_, context, 90); }
void Command::C_91(InvocationContext& context) { RunCommand(services_, context, 91); }
void Command::C_92(InvocationContext& context) { RunCommand(services_, context, 92); }
void Command::C_93(InvocationContext& context) { RunCommand(services_, context, 93); }
void Command::C_94(InvocationContext& context) { RunCommand(services_, context, 94); }
void Command::C_95(InvocationContext& context) { RunCommand(services_, context, 95); }
void Command::C_96(InvocationContext& context) { RunCommand(services_, context, 96); }
void Command::C_97(InvocationContext& context) { RunCommand(services_, context, 97); }
void Command::C_98(InvocationContext& context) { RunCommand(services_, context, 98); }

}  // namespace talm_flow
