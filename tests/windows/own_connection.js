// A connection whose objects are those of the other script engine: plain objects with functions.

function expect(title, found, wanted) {
  if (found === wanted) {
    WScript.Echo("ok   " + title);
    return;
  }
  WScript.Echo("FAIL " + title + ": found " + found + ", wanted " + wanted);
  WScript.Quit(1);
}

var chinese = "\u8BF7\u5047";
var statements = [];
var row = { FlowID: 7, FlowName: chinese };

function rowSet() {
  return {
    EOF: false,
    BOF: false,
    Fields: function (name) { return { Value: row[name] }; },
    MoveNext: function () { this.EOF = true; },
    Close: function () { statements.push("closed"); }
  };
}

var connection = {
  Execute: function (text) {
    statements.push(text);
    return text.substr(0, 6) === "Select" ? rowSet() : null;
  }
};

var name = new ActiveXObject("TALM_Flow.Name");
expect("a whole number comes back", name.MaxFlowID(connection), 7);
expect("the statements are the component's own", statements.join("; "),
       "Select Top 1 FlowID from WorkFlowName order by FlowID desc; closed");
expect("a Chinese text comes back", name.GetFlowName(connection, 7), chinese);
expect("names are found in any case", name.flowexists(connection, 7), true);
expect("a result code comes back", name.Update(connection, 7, chinese, "kim", ""), 0);
expect("a Chinese text goes in", statements[statements.length - 1],
       "Update WorkFlowName Set FlowName='" + chinese + "',Creater='kim',Remark='' Where FlowID=7");
WScript.Echo("done");
