#include "office_tables.h"

namespace office {

void CreateOffice(talm_flow::Connection& connection) {
  for (const char* statement : {
           "Create Table Staff (StaffNo integer primary key, FullName text, Team text)",
           "Insert Into Staff (FullName,Team) Values ('Kim','Sales')",
           "Insert Into Staff (FullName,Team) Values ('Lee','Leads')",
           "Insert Into Staff (FullName,Team) Values ('Moreau','Leads')",

           "Create Table OfficeForm (FormNo integer primary key, Title text, Kind integer, Purpose text)",
           "Insert Into OfficeForm (FormNo,Title,Kind,Purpose) Values (30,'Leave',1,'document')",
           "Insert Into OfficeForm (FormNo,Title,Kind,Purpose) Values (31,'Opinion',0,'opinion')",

           "Create Table OfficeField (FieldNo integer primary key, FormNo integer, Code text, ColumnName text, "
           "Widget text)",
           "Insert Into OfficeField (FormNo,Code,ColumnName,Widget) Values (30,'Days','leave_days','InputNum')",
           "Insert Into OfficeField (FormNo,Code,ColumnName,Widget) Values (30,'Result','leave_result','InputText')",
           "Insert Into OfficeField (FormNo,Code,ColumnName,Widget) Values (30,'Deputy','leave_deputy','InputText')",
           "Insert Into OfficeField (FormNo,Code,ColumnName,Widget) Values (31,'Words','words','InputTextArea')",

           "Create Table OfficeLock (FormNo integer, RecordNo integer)",
           "Create Table OfficeOrder (OrderNo integer primary key, FormNo integer, OrderedBy text, OrderedAt text)",
           "Create Table OfficeTimer (WaitID integer primary key, LastRun text)",

           "Create Table TableData30 (ID integer primary key, name text, inputtime text, leave_days real, "
           "leave_result text, leave_deputy text)",
           "Create Table TableData31 (ID integer primary key, name text, inputtime text, words text)",
       }) {
    (void)connection.Execute(statement);
  }
}

}  // namespace office
