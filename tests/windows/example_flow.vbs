' A whole flow on a SQLite file that the ODBC adapter opens: from its definition to the end of its instance.
'
'   cscript example_flow.vbs URL DEFINITION TEXT
'
' The text, a Chinese one, comes from outside: not every engine that runs this has ChrW.

Option Explicit

Sub Expect(title, found, wanted)
  If found = wanted Then
    WScript.Echo "ok   " & title
  Else
    WScript.Echo "FAIL " & title & ": found " & TypeName(found) & " " & found & ", wanted " & wanted
    WScript.Quit 1
  End If
End Sub

Function First(query)
  Dim rows
  Set rows = database.Execute(query)
  If rows.EOF Then
    First = Empty
  Else
    First = rows.Fields(0).Value
  End If
  rows.Close
End Function

Dim database, name, command, chinese, definition, task
chinese = WScript.Arguments(2)
Set database = CreateObject("TALM_Flow.Connection")
Set name = CreateObject("TALM_Flow.Name")
Set command = CreateObject("TALM_Flow.Command")

database.Open WScript.Arguments(0)
database.CreateTables
Expect "the database has all tables", UBound(database.MissingTables()), -1
database.CreateFormTable 12, "Days:InputNum,Reason:InputTextArea,Result:InputText"
database.CreateFormTable 13, "Opinion:InputTextArea"
database.Execute "Insert Into TableData12 (name,inputtime,Days,Reason) Values ('kim','2026-01-31 09:00:00',2,'" & _
  chinese & "')"
Expect "a record with a Chinese text is stored", First("Select Reason From TableData12"), chinese

definition = CreateObject("Scripting.FileSystemObject").OpenTextFile(WScript.Arguments(1), 1, False, -1).ReadAll
Expect "the definition is taken", name.FlowAdd(database, chinese, "kim", definition), 0
Expect "under its Chinese name", name.GetFlowName(database, 1), chinese

database.BeginTrans
command.FlowExecute database, 1, 12, 1, "kim", "127.0.0.1", 0, 0
database.CommitTrans
Expect "the instance waits", First("Select Count(*) From WorkFlowExecuteID"), 1
task = First("Select DataAppID From DataApp")
WScript.Echo "     approval " & task & " of " & First("Select Appover From DataApp")

database.Execute "Insert Into TableData13 (name,inputtime,Opinion) Values ('lee','2026-01-31 10:00:00','yes')"
command.ChangeAppStatusToFinish database, task, 1
command.FlowExecuteAfter database, 1, First("Select FlowNo From DataApp Where DataAppID=" & task)
command.EndFlow database, 1
Expect "the task is finished", First("Select Status From DataApp"), 2
WScript.Echo "     result " & First("Select Result From TableData12")
Expect "the result is in the record", Right(First("Select Result From TableData12"), 25), "Approved by the team lead"
Expect "the instance is gone", First("Select Count(*) From WorkFlowExecuteID"), 0
database.Close
WScript.Echo "done"
