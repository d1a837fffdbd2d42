/// A leave request in an office with tables of its own, told on standard output.

#include <fstream>
#include <iostream>
#include <sstream>

#include "desk.h"
#include "office_tables.h"
#include "read_only_connection.h"
#include "talm_flow/command.h"
#include "talm_flow/error.h"
#include "talm_flow/name.h"

namespace {

using namespace office;

std::string ContentOf(const char* file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

void Tell(talm_flow::Connection& connection, const char* what, const char* query) {
  std::cout << what << ':';
  const auto rows = connection.Open(query);
  if (rows->AtEnd()) std::cout << " none";
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::cout << " [";
    for (std::size_t column = 0; column < rows->ColumnCount(); ++column) {
      std::cout << (column == 0 ? "" : ", ") << talm_flow::JoinedText(rows->FieldAt(column));
    }
    std::cout << ']';
  }
  std::cout << '\n';
}

void TellMessages(Desk& desk) {
  for (const auto& message : desk.SendMessages()) std::cout << "Message to " << message << '\n';
}

// snippet: broken
void SubmitBroken(Desk& desk, const Value& flow) {
  try {
    desk.Submit(flow, "no number", 1, "Kim");
  } catch (const talm_flow::DatabaseError& error) {
    // The message is the database's own; everything that the unit of work had written is taken back.
    std::cout << error.Kind() << ": " << error.what() << '\n';
  }
}
// snippet end

void Run(const char* definition) {
  const auto database = talm_flow::adapters::Open("sqlite::memory:");
  database->CreateTables();
  CreateOffice(*database);
  OfficeHost host(talm_flow::MakeDateTime(2026, 3, 2, 9, 0, 0));
  Desk desk(*database, host);
  talm_flow::Name name(host.services());
  if (name.FlowAdd(*database, "Leave", "office", ContentOf(definition)) != 0) {
    throw std::runtime_error("the definition was refused");
  }
  const Value flow = name.MaxFlowID(*database);

  std::cout << "# Kim asks for five days\n";
  (void)database->Execute("Insert Into TableData30 (name,inputtime,leave_days) Values ('Kim','2026-03-02 09:00:00',5)");
  desk.Submit(flow, 30, 1, "Kim");
  const char* open_approvals =
      "Select DataAppID,Appover,NoticInf,WaitTime From DataApp Where Status<2 Order By DataAppID";
  Tell(*database, "Approvals", open_approvals);
  Tell(*database, "Timers",
       "Select Command,FlowNo,Times,Interval,InputTime From WorkFlowExecute "
       "Where Command='C_15' Or Command='C_86' Order By ID");

  std::cout << "# Lee agrees at once, Moreau takes a while\n";
  desk.Approve(1, 0, true);
  std::cout << desk.RunDueTimers() << " timers ran\n";
  for (int hour = 1; hour <= 3; ++hour) {
    host.clock().PutOn(1);
    std::cout << desk.RunDueTimers() << " timers ran\n";
    TellMessages(desk);
  }
  Tell(*database, "Approvals", open_approvals);

  std::cout << "# Moreau agrees, Kim names a deputy\n";
  (void)database->Execute("Insert Into TableData31 (name,words) Values ('Moreau','Have a good time')");
  desk.Approve(2, 1, true);
  Tell(*database, "Fill-ins", "Select ID,InPuter,InUnitID From InUnitSub Where Status<2");
  (void)database->Execute("Update TableData30 Set leave_deputy='Lee' Where ID=1");
  desk.FillIn(1);
  TellMessages(desk);
  Tell(*database, "Request", "Select leave_days,leave_result,leave_deputy From TableData30 Where ID=1");
  Tell(*database, "Instances", "Select ExecuteID From WorkFlowExecuteID");

  std::cout << "# The last timer is over after three days, and with it the flow\n";
  host.clock().PutOn(72);
  std::cout << desk.RunDueTimers() << " timers ran\n";
  Tell(*database, "Log", "Select Operation From OperationRec");
  Tell(*database, "Instances", "Select ExecuteID From WorkFlowExecuteID");

  std::cout << "# A locked record gets no approvals\n";
  (void)database->Execute("Insert Into OfficeLock (FormNo,RecordNo) Values (30,1)");
  desk.Submit(flow, 30, 1, "Kim");
  Tell(*database, "Approvals", open_approvals);

  std::cout << "# A broken request leaves nothing behind\n";
  Tell(*database, "Instances", "Select ExecuteID From WorkFlowExecuteID");
  SubmitBroken(desk, flow);
  Tell(*database, "Instances", "Select ExecuteID From WorkFlowExecuteID");

  std::cout << "# An auditor may look\n";
  ReadOnlyConnection auditor(*database);
  std::cout << name.GetFlowName(auditor, flow) << ": " << name.GetRemark(auditor, flow) << '\n';
  try {
    talm_flow::Command(host.services()).FlowExecute(auditor, flow, 30, 1, "Kim", "127.0.0.1", 0, 0);
  } catch (const talm_flow::DatabaseError& error) {
    std::cout << error.Kind() << ": " << error.what() << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: own_host leave.flow\n";
    return 2;
  }
  try {
    Run(argv[1]);
  } catch (const std::exception& error) {
    std::cerr << "own_host: " << error.what() << '\n';
    return 1;
  }
}
