#pragma once

#include "talm_flow/host/common_functions.h"
#include "talm_flow/host/form_service.h"

namespace talm_flow::host {

/// The input units of a form are the rows of `TableInUnitConstruction`.
class ReferenceFormService : public FormService {
 public:
  explicit ReferenceFormService(const CommonFunctions& common) : common_(common) {}

  [[nodiscard]] std::optional<InputUnit> FindUnit(Connection& connection, std::int32_t table_id,
                                                  std::string_view code) override;
  [[nodiscard]] std::string UnitValue(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                      const InputUnit& unit) override;

 private:
  [[nodiscard]] std::string FileReferences(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                           std::string_view code) const;
  [[nodiscard]] std::string NewestPicture(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                          std::string_view code) const;
  [[nodiscard]] std::string ColumnText(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                       std::string_view field) const;

  const CommonFunctions& common_;
};

}  // namespace talm_flow::host
