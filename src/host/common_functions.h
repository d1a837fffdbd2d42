#pragma once

#include "talm_flow/host/common_functions.h"

namespace talm_flow::host {

class ReferenceCommonFunctions : public CommonFunctions {
 public:
  void SqlText(std::string_view text, std::string& out) const override;
  [[nodiscard]] bool CheckInUnitID(std::string_view code) const override;
  [[nodiscard]] bool InList(std::string_view list, std::string_view sought) const override;
  [[nodiscard]] std::string SelectedMark(const Value& item, const Value& chosen) const override;
  [[nodiscard]] std::string ScriptText(const Value& value) const override;
  [[nodiscard]] std::string DisplayText(const Value& value) const override;
};

}  // namespace talm_flow::host
