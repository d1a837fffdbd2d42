#pragma once

/// The office's own tables:
///
///   Staff        StaffNo, FullName, Team          who works here
///   OfficeForm   FormNo, Title, Kind, Purpose     'document', 'opinion' or 'note'
///   OfficeField  FormNo, Code, ColumnName, Widget what can be filled in, and where it is kept
///   OfficeLock   FormNo, RecordNo                 records that flows must leave alone
///   OfficeOrder  FormNo, OrderedBy, OrderedAt     what C_10 has asked for
///   OfficeTimer  WaitID, LastRun                  when the scheduler last ran a repeating timer
///
/// The content of a form is in the table that the component writes to: "TableData" and the form's number, with the
/// columns `ID`, `name` and `inputtime`; all further columns are the office's.

#include "talm_flow/host/connection.h"

namespace office {

/// Creates the tables, with a few people and the forms 30 (leave) and 31 (opinion).
void CreateOffice(talm_flow::Connection& connection);

}  // namespace office
