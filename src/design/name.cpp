#include "talm_flow/name.h"

#include "design/catalogue.h"
#include "design/select_list.h"

namespace talm_flow {

using db::Session;

std::int16_t Name::FlowSave(Connection& ConnDB, const Value& FlowID, const Value& FlowName, const Value& Creater,
                            const Value& FlowInfStr) {
  Session session(ConnDB, services_);
  return design::FlowSave(session, FlowID, FlowName, Creater, FlowInfStr);
}

std::int16_t Name::FlowAdd(Connection& ConnDB, const Value& FlowName, const Value& Creater, const Value& FlowInfStr) {
  Session session(ConnDB, services_);
  return design::FlowAdd(session, FlowName, Creater, FlowInfStr);
}

std::unique_ptr<RowSet> Name::GetRs(Connection& ConnDB) {
  Session session(ConnDB, services_);
  return design::GetRs(session);
}

bool Name::GetAll(Connection& ConnDB, const Value& FlowID, Value& FlowName, Value& Creater, Value& Remark) {
  Session session(ConnDB, services_);
  return design::GetAll(session, FlowID, FlowName, Creater, Remark);
}

std::string Name::GetFlowName(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::GetFlowName(session, FlowID);
}

std::string Name::GetCreater(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::GetCreater(session, FlowID);
}

std::string Name::GetRemark(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::GetRemark(session, FlowID);
}

bool Name::FlowExists(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::FlowExists(session, FlowID);
}

std::int16_t Name::Add(Connection& ConnDB, const Value& FlowName, const Value& Creater, const Value& Remark) {
  Session session(ConnDB, services_);
  return design::Add(session, FlowName, Creater, Remark);
}

std::int16_t Name::Update(Connection& ConnDB, const Value& FlowID, const Value& FlowName, const Value& Creater,
                          const Value& Remark) {
  Session session(ConnDB, services_);
  return design::Update(session, FlowID, FlowName, Creater, Remark);
}

std::int16_t Name::Del(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::Del(session, FlowID);
}

std::string Name::FlowSelect(Connection& ConnDB, const Value& SelectName, const Value& IsMultiple, const Value& Size,
                             const Value& Width, const Value& HaveSpace, const Value& StrSelected,
                             const Value* JavaScriptStr) {
  Session session(ConnDB, services_);
  return design::FlowSelect(session, {SelectName, IsMultiple, Size, Width, HaveSpace, StrSelected, JavaScriptStr});
}

std::int32_t Name::MaxFlowID(Connection& ConnDB) {
  Session session(ConnDB, services_);
  return design::MaxFlowID(session);
}

}  // namespace talm_flow
