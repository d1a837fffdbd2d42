#!/usr/bin/env python3
"""Runs a leave request through `talmflow rpc` with nothing but the standard library: leave.py TALMFLOW DEFINITION

The program speaks JSON-RPC 2.0 on standard input and output, one object a line. Every public operation is a method,
called with its arguments by position; the result holds the arguments after the call, where operations write what they
have found.
"""

import json
import pathlib
import subprocess
import sys
import tempfile


class FlowError(Exception):
    """What the component raised: its kind, such as DatabaseError, and its message."""

    def __init__(self, error):
        super().__init__(error["message"])
        self.code = error["code"]
        self.kind = error.get("data", {}).get("kind", "")


class Flows:
    """A session with the program. With all_or_nothing each call that fails leaves nothing behind."""

    def __init__(self, program, url):
        self.process = subprocess.Popen([program, "--db", url, "rpc", "--init", "--all-or-nothing"], encoding="utf-8",
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.calls = 0

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.process.stdin.close()  # the end of its input ends the session
        self.process.wait(timeout=30)
        self.process.stdout.close()

    def call(self, method, *params):
        """The operation's value, and its arguments after the call. Out-arguments take None."""
        self.calls += 1
        request = {"jsonrpc": "2.0", "id": self.calls, "method": method, "params": params}
        self.process.stdin.write(json.dumps(request, ensure_ascii=False) + "\n")
        self.process.stdin.flush()
        line = self.process.stdout.readline()
        if not line:
            raise RuntimeError("talmflow has ended; its standard error tells why")
        answer = json.loads(line)
        assert answer["id"] == self.calls, answer
        if "error" in answer:
            raise FlowError(answer["error"])
        return answer["result"]["value"], answer["result"]["params"]

    def value(self, method, *params):
        return self.call(method, *params)[0]

    def rows(self, query):
        """The rows of a query on the session's own connection, each a dictionary by column name."""
        return self.value("Connection.Execute", query) or []


def open_tasks(flows):
    return flows.rows("Select DataAppID,ExecuteID,FlowNo,Appover,NoticInf From DataApp Where Status<2 Order By DataAppID")


def approve(flows, task):
    """What a host does when an approver has decided: mark the task, go on below its step, end what is over."""
    flows.call("Command.ChangeAppStatusToFinish", task["DataAppID"], 0)
    if not flows.value("Command.NotAppExists", task["DataAppID"]):
        flows.call("Command.FlowExecuteAfter", task["ExecuteID"], task["FlowNo"])
        flows.call("Command.EndFlow", task["ExecuteID"])


def run_leave_request(flows, definition):
    assert flows.value("Name.FlowAdd", "Leave", "office", definition) == 0
    flow = flows.value("Name.MaxFlowID")
    known, params = flows.call("Name.GetAll", flow, None, None, None)
    print(f"Flow {flow} is known: {known}, as {params[1]} by {params[2]}")

    flows.rows("Insert Into TableData12 (name,inputtime,Days,Reason) Values ('赵雷','2026-03-02 09:00:00',5,'Hiking')")
    flows.call("Command.FlowExecute", flow, 12, 1, "赵雷", "127.0.0.1", 0, 0)
    while tasks := open_tasks(flows):
        for task in tasks:
            print(f"{task['Appover']} approves: {task['NoticInf']}")
            approve(flows, task)
    print("Result:", flows.rows("Select Result From TableData12 Where ID=1")[0]["Result"])
    print("Instances left:", len(flows.rows("Select ExecuteID From WorkFlowExecuteID")))


def show_errors(flows):
    for method, params in (
            ("Command.FlowExecute", [1, "no number", 1, "kim", "127.0.0.1", 0, 0]),
            ("Command.GetVariableValue", [0, 0, "1+" * 101 + "1", 0, 0]),
            ("InOut.MakeConstructionBak", [99]),
            ("Command.NoSuchOperation", []),
            ("Name.GetFlowName", []),
    ):
        try:
            flows.call(method, *params)
        except FlowError as error:
            print(f"{method}: {error.code} {error.kind}")
    # An expression's own errors are no errors of the call: they come back as texts.
    print("1/0 is", flows.value("Command.GetVariableValue", 0, 0, "1/0", 0, 0))


def main() -> int:
    program, definition = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        url = f"sqlite:{folder}/office.db"
        for words in (["init"],
                      ["form", "add", "12", "--unit", "Days:InputNum", "--unit", "Reason:InputTextArea", "--unit",
                       "Result:InputText"],
                      ["form", "add", "13", "--unit", "Opinion:InputTextArea"]):
            subprocess.run([program, "--db", url, *words], stdout=subprocess.DEVNULL, check=True, timeout=60)
        with Flows(program, url) as flows:
            # Definitions end their lines with CR LF, which reading as text would change.
            run_leave_request(flows, pathlib.Path(definition).read_bytes().decode("utf-8"))
            show_errors(flows)
    return 0


if __name__ == "__main__":
    sys.exit(main())
