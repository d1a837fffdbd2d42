' Numbers, texts, by-reference results and errors, on a connection that the script itself makes.
'
'   cscript own_connection.vbs TEXT
'
' The text, a Chinese one, comes from outside: not every engine that runs this has ChrW.

Option Explicit

Dim chinese
chinese = WScript.Arguments(0)

Sub Expect(title, found, wanted)
  If found = wanted Then
    WScript.Echo "ok   " & title
  Else
    WScript.Echo "FAIL " & title & ": found " & TypeName(found) & " " & found & ", wanted " & wanted
    WScript.Quit 1
  End If
End Sub

' ---- The script's own objects: one row, and a note of every statement

Class Field
  Public Value
End Class

Class RowSet
  Public EOF
  Public BOF
  Public Row
  Public Function Fields(name)
    Dim found
    Set found = New Field
    found.Value = Row(LCase(name))
    Set Fields = found
  End Function
  Public Sub MoveNext()
    EOF = True
  End Sub
  Public Sub Close()
    closed = closed + 1
  End Sub
End Class

Class Connection
  Public Row
  Public Statement
  Public Function Execute(text)
    Dim rows
    Statement = text
    If Left(text, 6) <> "Select" Then
      Set Execute = Nothing
      Exit Function
    End If
    Set rows = New RowSet
    rows.EOF = False
    rows.BOF = False
    Set rows.Row = Row
    Set Execute = rows
  End Function
End Class

Class DictionaryRow
  Public names
  Public values
  Public Default Function Item(name)
    Dim i
    For i = 0 To UBound(names)
      If names(i) = name Then Item = values(i)
    Next
  End Function
End Class

Dim closed, own, row
closed = 0
Set row = New DictionaryRow
row.names = Array("flowid", "flowname", "creater", "remark")
row.values = Array(7, chinese, "kim", Null)
Set own = New Connection
Set own.Row = row

' ---- The component

Dim name, command, creater, remark, flow_name, table_id, data_id, list, flow_id
Set name = CreateObject("TALM_Flow.Name")
Set command = CreateObject("TALM_Flow.Command")

Expect "a whole number comes back", name.MaxFlowID(own), 7
Expect "the statement is the component's own", own.Statement, "Select Top 1 FlowID from WorkFlowName order by FlowID desc"
Expect "the row set was closed", closed, 1
Expect "a truth value comes back", name.FlowExists(own, 7), True
Expect "a Chinese text comes back", name.GetFlowName(own, 7), chinese

flow_id = 7
flow_name = "old"
remark = "old"
Expect "the row is found", name.GetAll(own, flow_id, flow_name, creater, remark), True
Expect "a text is written by reference", flow_name, chinese
Expect "another too", creater, "kim"
Expect "Null is written by reference", IsNull(remark), True
Expect "what is only read stays", flow_id, 7

Expect "a result code comes back", name.Update(own, 7, chinese, "O'Hara", "r"), 0
Expect "a Chinese text goes in", own.Statement, _
  "Update WorkFlowName Set FlowName='" & chinese & "',Creater='O''Hara',Remark='r' Where FlowID=7"

Expect "a reference splits", command.SeparateTableIDAndDataID("TableID:12,DataID:345", table_id, data_id), True
Expect "a number is written by reference", table_id, 12
Expect "and another", data_id, 345
command.ExpressToArr chinese & "=1", list
Expect "a list is an array", UBound(list), 2
Expect "with the texts in it", list(0), chinese

Expect "numbers are computed", command.GetVariableValue(own, 0, 0, "2^10/3", 0, 0), "341.333333333333"

' ---- Errors

On Error Resume Next
name.GetRemark own, 7
Expect "an error has its kind's code", Hex(Err.Number), "80040202"
Expect "and the class as its source", Err.Source, "TALM_Flow.Name"
WScript.Echo "     " & Err.Description
Err.Clear
name.NoSuchOperation own
Expect "an unknown name is told", Err.Number <> 0, True
Err.Clear
name.FlowExists own
Expect "a wrong count is told", Err.Number <> 0, True
Err.Clear
CreateObject("TALM_Flow.NoSuchClass")
Expect "an unknown class is told", Err.Number <> 0, True
WScript.Echo "done"
