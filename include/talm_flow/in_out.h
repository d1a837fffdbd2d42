#pragma once

/// @file
/// Class `InOut`: flow definitions as texts ("Ver:Flow_V600").
///
/// As with `Command`, an object keeps nothing between calls and no error is caught. The building blocks of the reader
/// are public and pure.

#include <cstdint>
#include <string>

#include "talm_flow/export.h"
#include "talm_flow/host/connection.h"
#include "talm_flow/host/services.h"
#include "talm_flow/value.h"

namespace talm_flow {

/// Writes flow definitions as texts and loads them.
class TALM_FLOW_API InOut {
 public:
  /// @param services  the host's services; what they refer to outlives this object.
  explicit InOut(const host::Services& services) : services_(services) {}

  /// The whole definition of a flow as a text, CR LF after every line. @throws DatabaseError  there is no such flow.
  [[nodiscard]] std::string MakeConstructionBak(Connection& ConnDB, const Value& FlowID);

  /// Writes a text, and one more CR LF, into a file, replacing what was there.
  /// @throws FileError  the file cannot be written, or cannot hold the text (then it is left as it was).
  void CreateTxt(const Value& FileName, const Value& StrContent);

  /// Replaces a flow's steps, parameters, input parameters and remark with the content of a definition text.
  /// @returns 0 loaded; 1 no such flow, 2 no version line (in both cases nothing is changed).
  /// @throws ArgumentError  a parameter line without ":"; the message names the line. What was loaded before stays.
  [[nodiscard]] std::int16_t CreatFlow(Connection& ConnDB, const Value& FlowID, const Value& StrContent);

  /// The first line and the rest, the CR LF between them removed.
  void SeparateLine(const Value& StrAll, Value& ForntLine, Value& BackLine);

  /// The first value, with the lines that continue it, and the rest.
  void SeparateValue(const Value& StrAll, Value& ForntValue, Value& BackValue);

  /// Whether a line begins with one of the separator keys.
  [[nodiscard]] bool IsSeparateLine(const Value& StrLine);

  /// Reads the attribute lines of a step in any order. Numbers not given are 0, texts empty; `BackLine` is set only
  /// when a key was found.
  void GetStepValue(const Value& StrAll, Value& BackLine, Value& FlowNo, Value& ParentNo, Value& Serial, Value& Remark,
                    Value& Command);

  /// As `GetStepValue` for an input parameter.
  void GetFunctionValue(const Value& StrAll, Value& BackLine, Value& InputTitle, Value& OrderNo, Value& Sort,
                        Value& ClassContent);

  /// Whether a value begins with "FlowRemark:".
  [[nodiscard]] bool IsFlowRemark(const Value& StrValue);

 private:
  host::Services services_;
};

}  // namespace talm_flow
