#pragma once

/// @file
/// Class `Construction`: a flow's step tree, its drawing, and its input parameters.
///
/// As with `Command`, an object keeps nothing between calls, no error is caught, and numbers go into statements as they
/// were given. Queries that take a `FlowNo` never see more than 10000 children of a step.

#include <cstdint>
#include <string>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// Reads and edits the step tree of a flow, draws it, and keeps its input parameters.
class TALM_FLOW_API Construction {
 public:
  /// @param services  the host's services; what they refer to outlives this object.
  explicit Construction(const host::Services& services) : services_(services) {}

  // ---- The step tree ----------------------------------------------------------------------------------------------
  // A step number read from the database that does not fit in 16 bits raises OverflowError.

  /// The highest step number of the flow; 0 when it has no steps.
  [[nodiscard]] std::int16_t MaxFlowNo(Connection& ConnDB, const Value& FlowID);

  /// Whether the flow has a step of that number.
  [[nodiscard]] bool FlowNoExists(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// The step's parent; 0 when the step does not exist.
  [[nodiscard]] std::int16_t GetParentNo(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// The depth of a step: the steps from it up to the top, itself included. A step that does not exist has depth 1 when
  /// its number is positive, else 0. @throws OverflowError  deeper than 32767, as in a cycle.
  [[nodiscard]] std::int16_t GetStepQty(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// The height of the subtree below a step: 0 for a leaf. Called with step 0 it measures the whole tree.
  /// @throws NestingError  the tree is cyclic.
  [[nodiscard]] std::int16_t GetMaxStepQty(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// The numbers of all steps below a step, depth first, joined by ",". @throws NestingError  the tree is cyclic.
  [[nodiscard]] std::string GetChildFlowNo(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// Whether `FlowNoSeach` lies below `FlowNo`; a step is not below itself. @throws NestingError  the tree is cyclic.
  [[nodiscard]] bool InChild(Connection& ConnDB, const Value& FlowID, const Value& FlowNo, const Value& FlowNoSeach);

  /// Whether the step exists and has a child.
  [[nodiscard]] bool ChildExists(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// Removes one step with its parameters and hangs its children onto its parent.
  /// @returns 0 removed, 1 no such step, 2 refused (step 1 with children).
  [[nodiscard]] std::int16_t DelCommand(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  /// The step's command name; the empty text when the step does not exist. @throws ConversionError  it is Null.
  [[nodiscard]] std::string GetCommand(Connection& ConnDB, const Value& FlowID, const Value& FlowNo);

  // ---- Drawing ----------------------------------------------------------------------------------------------------

  /// The whole tree from step 1 as HTML. With `DisplayForm` 1 a click on a box fills the form `FormName` of the page.
  /// Remarks go in as stored: a page that shows definitions of others must keep them from running.
  /// @throws NestingError  the tree is cyclic.
  [[nodiscard]] std::string DisplayFlow(Connection& ConnDB, const Value& FlowID, const Value& DisplayForm,
                                        const Value& FormName);

  /// All subtrees below a step; the empty text for a leaf. @throws NestingError  the tree is cyclic.
  [[nodiscard]] std::string DisplayNextFlowStep(Connection& ConnDB, const Value& FlowID, const Value& FlowNo,
                                                const Value& DisplayForm, const Value& FormName);

  /// One box; the empty text when the step does not exist.
  [[nodiscard]] std::string DisplayPerFlowStep(Connection& ConnDB, const Value& FlowID, const Value& FlowNo,
                                               const Value& DisplayForm, const Value& FormName);

  /// The whole definition as nested script arrays in a script element. Names and numbers go in unescaped.
  [[nodiscard]] std::string CreateFlowArr(Connection& ConnDB, const Value& FlowID);

  // ---- Input parameters -------------------------------------------------------------------------------------------

  /// Adds an input parameter. `InputTitle` loses the blanks at its ends; a blank one becomes "新参数". It is written
  /// back.
  void AddInputParameter(Connection& ConnDB, const Value& FlowID, Value& InputTitle, const Value& OrderNo,
                         const Value& Sort, const Value& ClassContent);

  /// Changes an input parameter, with the same treatment of the title. An unknown `ID` changes nothing.
  void UpdateInputParameter(Connection& ConnDB, const Value& ID, Value& InputTitle, const Value& OrderNo,
                            const Value& Sort, const Value& ClassContent);

  /// Deletes an input parameter. An unknown `ID` changes nothing.
  void DelInputParameter(Connection& ConnDB, const Value& ID);

  /// The `ID`s of a flow's input parameters in list order, joined by ",".
  [[nodiscard]] std::string GetParameterIDStr(Connection& ConnDB, const Value& FlowID);

  /// An HTML selection list of the input parameters; the value of an option is its position, from 1.
  /// @param JavaScriptStr  further attribute text of the element; may be left out (null).
  [[nodiscard]] std::string InputParameterSelect(Connection& ConnDB, const Value& FlowID, const Value& SelectName,
                                                 const Value& IsMultiple, const Value& Size, const Value& Width,
                                                 const Value& HaveSpace, const Value& ParameterIDSelected,
                                                 const Value* JavaScriptStr = nullptr);

  /// The flows that a flow starts through child-flow steps, at any depth, each once, without itself, joined by ",".
  [[nodiscard]] std::string GetChildFlowIDStrByFlowID(Connection& ConnDB, const Value& FlowID);

  /// The data of all parameters of those child flows that may hold variable names, joined by ",".
  [[nodiscard]] std::string GetVarNameStrByFlowID(Connection& ConnDB, const Value& FlowID);

  /// An HTML selection list of those.
  [[nodiscard]] std::string VarSelect(Connection& ConnDB, const Value& FlowID, const Value& SelectName,
                                      const Value& IsMultiple, const Value& Size, const Value& Width,
                                      const Value& HaveSpace, const Value& VarSelected,
                                      const Value* JavaScriptStr = nullptr);

  /// The flow's input form as HTML: one widget per input parameter in list order.
  /// @param DisplayFormat         1 for a table, 2 for a plain list.
  /// @param ParameterStrSelected  the values by position, split at "|^|".
  [[nodiscard]] std::string DisplayInputParameter(Connection& ConnDB, const Value& FlowID, const Value& DisplayFormat,
                                                  const Value& ParameterStrSelected);

 private:
  host::Services services_;
};

}  // namespace talm_flow
