#pragma once

#include <string>
#include <string_view>

#include "talm_flow/export.h"
#include "talm_flow/value.h"

namespace talm_flow::host {

/// The host's common text functions. All are pure: they reach no database.
class TALM_FLOW_API CommonFunctions {
 public:
  virtual ~CommonFunctions() = default;

  /// Appends the text as a complete SQL text literal, quotes included and inner quotes made safe. (Null is handed over
  /// as the empty text, a number in its plain form.)
  virtual void SqlText(std::string_view text, std::string& out) const = 0;

  /// Whether a text is a valid input-unit code.
  [[nodiscard]] virtual bool CheckInUnitID(std::string_view code) const = 0;

  /// Whether `sought` is one of the ","-separated items of `list`.
  [[nodiscard]] virtual bool InList(std::string_view list, std::string_view sought) const = 0;

  /// The attribute text that marks an option as chosen when `item` is among those that `chosen` names, else the empty
  /// text.
  [[nodiscard]] virtual std::string SelectedMark(const Value& item, const Value& chosen) const = 0;

  /// A database text made safe inside a double-quoted script string of a script element; Null gives the empty text.
  [[nodiscard]] virtual std::string ScriptText(const Value& value) const = 0;

  /// A database text made safe inside a single-quoted script string in a double-quoted HTML attribute, inside an
  /// unquoted attribute and inside an element; Null gives the empty text.
  [[nodiscard]] virtual std::string DisplayText(const Value& value) const = 0;
};

}  // namespace talm_flow::host
