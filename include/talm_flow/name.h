#pragma once

/// @file
/// Class `Name`: the catalogue of flows.
///
/// As with `Command`, an object keeps nothing between calls and no error is caught. A name is blank when nothing is left
/// of it without the blanks at its ends.

#include <cstdint>
#include <memory>
#include <string>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// Lists, adds, renames, replaces and deletes flows.
class TALM_FLOW_API Name {
 public:
  /// @param services  the host's services; what they refer to outlives this object.
  explicit Name(const host::Services& services) : services_(services) {}

  /// Renames a flow and replaces its structure from a definition text.
  /// @returns 0 done, 1 no such flow, 2 blank name, 3 the text was refused (the new name stays).
  [[nodiscard]] std::int16_t FlowSave(Connection& ConnDB, const Value& FlowID, const Value& FlowName,
                                      const Value& Creater, const Value& FlowInfStr);

  /// Creates a flow from a definition text. @returns 0 done, 1 blank name, 2 the text was refused (the row stays).
  [[nodiscard]] std::int16_t FlowAdd(Connection& ConnDB, const Value& FlowName, const Value& Creater,
                                     const Value& FlowInfStr);

  /// The whole catalogue by name, at most 10000 flows; the caller closes the row set.
  [[nodiscard]] std::unique_ptr<RowSet> GetRs(Connection& ConnDB);

  /// Reads a flow's columns as they are (Null stays Null). @returns whether it exists; when not, three empty texts.
  [[nodiscard]] bool GetAll(Connection& ConnDB, const Value& FlowID, Value& FlowName, Value& Creater, Value& Remark);

  /// A flow's name; the empty text for an unknown flow. @throws ConversionError  the column is Null.
  [[nodiscard]] std::string GetFlowName(Connection& ConnDB, const Value& FlowID);
  /// As `GetFlowName`, who created the flow.
  [[nodiscard]] std::string GetCreater(Connection& ConnDB, const Value& FlowID);
  /// As `GetFlowName`, the flow's remark.
  [[nodiscard]] std::string GetRemark(Connection& ConnDB, const Value& FlowID);

  /// Whether the catalogue has a flow of that number.
  [[nodiscard]] bool FlowExists(Connection& ConnDB, const Value& FlowID);

  /// Adds an empty flow. @returns 0 added, 1 blank name.
  [[nodiscard]] std::int16_t Add(Connection& ConnDB, const Value& FlowName, const Value& Creater, const Value& Remark);

  /// @returns 0 updated, 1 no such flow, 2 blank name (tested first).
  [[nodiscard]] std::int16_t Update(Connection& ConnDB, const Value& FlowID, const Value& FlowName,
                                    const Value& Creater, const Value& Remark);

  /// Deletes a flow with its steps, parameters and the variables of its instances; input parameters and instances stay.
  /// @returns 0 deleted, 1 no such flow.
  [[nodiscard]] std::int16_t Del(Connection& ConnDB, const Value& FlowID);

  /// An HTML selection list of all flows by name.
  /// @param JavaScriptStr  appended to the element's attributes as it is; may be left out (null).
  [[nodiscard]] std::string FlowSelect(Connection& ConnDB, const Value& SelectName, const Value& IsMultiple,
                                       const Value& Size, const Value& Width, const Value& HaveSpace,
                                       const Value& StrSelected, const Value* JavaScriptStr = nullptr);

  /// The highest flow number, which is the newest flow's; 0 when the catalogue is empty.
  [[nodiscard]] std::int32_t MaxFlowID(Connection& ConnDB);

 private:
  host::Services services_;
};

}  // namespace talm_flow
