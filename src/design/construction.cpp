#include "talm_flow/construction.h"

#include "design/child_flows.h"
#include "design/drawing.h"
#include "design/input_form.h"
#include "design/input_parameters.h"
#include "design/script_arrays.h"
#include "design/select_list.h"
#include "design/structure.h"

namespace talm_flow {

using db::Session;

std::int16_t Construction::MaxFlowNo(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::MaxFlowNo(session, FlowID);
}

bool Construction::FlowNoExists(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::FlowNoExists(session, FlowID, FlowNo);
}

std::int16_t Construction::GetParentNo(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::GetParentNo(session, FlowID, FlowNo);
}

std::int16_t Construction::GetStepQty(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::GetStepQty(session, FlowID, FlowNo);
}

std::int16_t Construction::GetMaxStepQty(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::GetMaxStepQty(session, FlowID, FlowNo);
}

std::string Construction::GetChildFlowNo(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::GetChildFlowNo(session, FlowID, FlowNo);
}

bool Construction::InChild(Connection& ConnDB, const Value& FlowID, const Value& FlowNo, const Value& FlowNoSeach) {
  Session session(ConnDB, services_);
  return design::InChild(session, FlowID, FlowNo, FlowNoSeach);
}

bool Construction::ChildExists(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::ChildExists(session, FlowID, FlowNo);
}

std::int16_t Construction::DelCommand(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::DelCommand(session, FlowID, FlowNo);
}

std::string Construction::GetCommand(Connection& ConnDB, const Value& FlowID, const Value& FlowNo) {
  Session session(ConnDB, services_);
  return design::GetCommand(session, FlowID, FlowNo);
}

std::string Construction::DisplayFlow(Connection& ConnDB, const Value& FlowID, const Value& DisplayForm,
                                      const Value& FormName) {
  Session session(ConnDB, services_);
  return design::DisplayFlow(session, FlowID, {DisplayForm, FormName});
}

std::string Construction::DisplayNextFlowStep(Connection& ConnDB, const Value& FlowID, const Value& FlowNo,
                                              const Value& DisplayForm, const Value& FormName) {
  Session session(ConnDB, services_);
  return design::DisplayNextFlowStep(session, FlowID, FlowNo, {DisplayForm, FormName});
}

std::string Construction::DisplayPerFlowStep(Connection& ConnDB, const Value& FlowID, const Value& FlowNo,
                                             const Value& DisplayForm, const Value& FormName) {
  Session session(ConnDB, services_);
  return design::DisplayPerFlowStep(session, FlowID, FlowNo, {DisplayForm, FormName});
}

std::string Construction::CreateFlowArr(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::CreateFlowArr(session, FlowID);
}

void Construction::AddInputParameter(Connection& ConnDB, const Value& FlowID, Value& InputTitle, const Value& OrderNo,
                                     const Value& Sort, const Value& ClassContent) {
  Session session(ConnDB, services_);
  design::AddInputParameter(session, FlowID, {InputTitle, OrderNo, Sort, ClassContent});
}

void Construction::UpdateInputParameter(Connection& ConnDB, const Value& ID, Value& InputTitle, const Value& OrderNo,
                                        const Value& Sort, const Value& ClassContent) {
  Session session(ConnDB, services_);
  design::UpdateInputParameter(session, ID, {InputTitle, OrderNo, Sort, ClassContent});
}

void Construction::DelInputParameter(Connection& ConnDB, const Value& ID) {
  Session session(ConnDB, services_);
  design::DelInputParameter(session, ID);
}

std::string Construction::GetParameterIDStr(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::GetParameterIDStr(session, FlowID);
}

std::string Construction::InputParameterSelect(Connection& ConnDB, const Value& FlowID, const Value& SelectName,
                                               const Value& IsMultiple, const Value& Size, const Value& Width,
                                               const Value& HaveSpace, const Value& ParameterIDSelected,
                                               const Value* JavaScriptStr) {
  Session session(ConnDB, services_);
  return design::InputParameterSelect(
      session, FlowID, {SelectName, IsMultiple, Size, Width, HaveSpace, ParameterIDSelected, JavaScriptStr});
}

std::string Construction::GetChildFlowIDStrByFlowID(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::GetChildFlowIDStrByFlowID(session, FlowID);
}

std::string Construction::GetVarNameStrByFlowID(Connection& ConnDB, const Value& FlowID) {
  Session session(ConnDB, services_);
  return design::GetVarNameStrByFlowID(session, FlowID);
}

std::string Construction::VarSelect(Connection& ConnDB, const Value& FlowID, const Value& SelectName,
                                    const Value& IsMultiple, const Value& Size, const Value& Width,
                                    const Value& HaveSpace, const Value& VarSelected, const Value* JavaScriptStr) {
  Session session(ConnDB, services_);
  return design::VarSelect(session, FlowID,
                           {SelectName, IsMultiple, Size, Width, HaveSpace, VarSelected, JavaScriptStr});
}

std::string Construction::DisplayInputParameter(Connection& ConnDB, const Value& FlowID, const Value& DisplayFormat,
                                                const Value& ParameterStrSelected) {
  Session session(ConnDB, services_);
  return design::DisplayInputParameter(session, FlowID, DisplayFormat, ParameterStrSelected);
}

}  // namespace talm_flow
