#pragma once

/// What the office answers when the component asks: people from `Staff`, forms from `OfficeForm` and `OfficeField`.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "talm_flow/host/reference_host.h"
#include "talm_flow/host/services.h"

namespace office {

using talm_flow::Connection;
using talm_flow::DateTime;
using talm_flow::Value;

/// Form tables are those of `OfficeForm`.
class OfficeTables : public talm_flow::host::TableService {
 public:
  explicit OfficeTables(const talm_flow::host::Services& basics) : basics_(basics) {}

  [[nodiscard]] std::optional<std::int32_t> AcceptTable(Connection& connection, const Value& table_id) override;
  [[nodiscard]] bool AcceptsApprovalForm(Connection& connection, std::int32_t table_id) override;
  [[nodiscard]] bool AcceptsAttentionForm(Connection& connection, std::int32_t table_id) override;
  void OperateOnTable(Connection& connection, std::int32_t table_id, std::string_view operator_name) override;

 private:
  talm_flow::host::Services basics_;
};

/// Records are documents unless they are locked.
class OfficeRecords : public talm_flow::host::RecordService {
 public:
  explicit OfficeRecords(OfficeTables& tables) : tables_(tables) {}

  [[nodiscard]] bool AcceptsRecord(Connection& connection, std::int32_t table_id, std::int32_t data_id) override;
  [[nodiscard]] bool CheckDocument(Connection& connection, const Value& table_id, const Value& data_id) override;
  [[nodiscard]] DateTime DocumentDate(Connection& connection, std::int32_t table_id, std::int32_t data_id) override;
  [[nodiscard]] std::string EncodeRecord(std::int32_t table_id, std::int32_t data_id) override;

 private:
  OfficeTables& tables_;
};

/// A person expression is full names and "team:NAME", separated by ";".
class OfficePeople : public talm_flow::host::UserListService {
 public:
  explicit OfficePeople(const talm_flow::host::Services& basics) : basics_(basics) {}

  [[nodiscard]] std::string UserNames(Connection& connection, std::string_view expression) override;

 private:
  talm_flow::host::Services basics_;
};

/// Input units are the rows of `OfficeField`. A unit's column need not be named like its code.
class OfficeForms : public talm_flow::host::FormService {
 public:
  [[nodiscard]] std::optional<talm_flow::host::InputUnit> FindUnit(Connection& connection, std::int32_t table_id,
                                                                   std::string_view code) override;
  [[nodiscard]] std::string UnitValue(Connection& connection, std::int32_t table_id, std::int32_t data_id,
                                      const talm_flow::host::InputUnit& unit) override;
};

/// A clock that the office sets, so that a run of this program tells the same times whenever it runs.
class OfficeClock : public talm_flow::host::Clock {
 public:
  explicit OfficeClock(DateTime now) : now_(now) {}
  [[nodiscard]] DateTime Now() override { return now_; }
  void PutOn(double hours) { now_ = talm_flow::AddHours(now_, hours); }

 private:
  DateTime now_;
};

// snippet: host
/// The office's own services beside those of the reference host that suit it as they are.
class OfficeHost {
 public:
  explicit OfficeHost(DateTime now) : tables_(reference_.services()), people_(reference_.services()), clock_(now) {}

  [[nodiscard]] talm_flow::host::Services services() {
    const talm_flow::host::Services basics = reference_.services();
    return {.common = basics.common,
            .records = records_,
            .tables = tables_,
            .user_lists = people_,
            .forms = forms_,
            .dates = basics.dates,
            .urls = basics.urls,
            .clock = clock_,
            .files = basics.files};
  }
  [[nodiscard]] OfficeClock& clock() { return clock_; }

 private:
  talm_flow::host::ReferenceHost reference_;
  OfficeTables tables_;
  OfficeRecords records_{tables_};
  OfficePeople people_;
  OfficeForms forms_;
  OfficeClock clock_;
};
// snippet end

}  // namespace office
