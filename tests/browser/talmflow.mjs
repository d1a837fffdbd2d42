// The program under test, on a database of its own.

import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";

const program = process.env.TALM_FLOW_PROGRAM;
if (!program) throw new Error("TALM_FLOW_PROGRAM names no program");

export class TalmFlow {
  constructor() {
    this.folder = mkdtempSync(join(tmpdir(), "talm_flow_browser_"));
    this.run("init");
  }

  remove() {
    rmSync(this.folder, { recursive: true, force: true });
  }

  path(name) {
    return join(this.folder, name);
  }

  /** Runs a subcommand. @returns what it prints */
  run(...words) {
    return this.#execute(words, "");
  }

  /** Calls operations or runs statements, each [method, ...params]. @returns their results */
  calls(...requests) {
    const lines = requests.map(([method, ...params], id) => JSON.stringify({ jsonrpc: "2.0", id, method, params }));
    const answers = this.#execute(["rpc"], lines.join("\n") + "\n").trimEnd().split("\n").map((line) => JSON.parse(line));
    return answers.map(({ result, error }, i) => {
      if (error) throw new Error(`${requests[i][0]}: ${JSON.stringify(error)}`);
      return result.value;
    });
  }

  call(method, ...params) {
    return this.calls([method, ...params])[0];
  }

  rows(query) {
    return this.call("Connection.Execute", query);
  }

  /** Stores rows, objects by column name. */
  insert(table, rows) {
    const columns = Object.keys(rows[0]);
    const literal = (value) => (typeof value === "string" ? `'${value.replaceAll("'", "''")}'` : String(value));
    const tuples = rows.map((row) => `(${columns.map((column) => literal(row[column])).join(",")})`);
    this.call("Connection.Execute", `Insert Into ${table} (${columns.join(",")}) Values ${tuples.join(",")}`);
  }

  /** Draws a flow. @returns the page's address */
  draw(flow, ...options) {
    const file = this.path(`flow_${flow}${options.join("")}.html`);
    this.run("draw", String(flow), "-o", file, ...options);
    return `file://${file}`;
  }

  /** What is stored of a flow, in the order in which pages show it. */
  definition(flow) {
    const [base] = this.rows(`Select FlowName,Creater,Remark From WorkFlowName Where FlowID=${flow}`);
    const inputs = this.rows(`Select InputTitle,Sort,ClassContent From WorkFlowFunctionInput Where FlowID=${flow} Order By OrderNo,ID`);
    const steps = this.rows(`Select FlowNo,ParentNo,Serial,Remark,Command From WorkFlowConstruction Where FlowID=${flow} Order By FlowNo`);
    const parameters = this.rows(`Select FlowNo,ParameterName,ParameterData From WorkFlowParameter Where FlowID=${flow} Order By ID`);
    for (const step of steps) step.parameters = parameters.filter((parameter) => parameter.FlowNo === step.FlowNo);
    return { base, inputs, steps };
  }

  #execute(words, input) {
    const environment = { ...process.env, TALMFLOW_DB: `sqlite:${this.path("flows.db")}?synchronous=normal` };
    return execFileSync(program, words, { input, env: environment, encoding: "utf8", maxBuffer: 1 << 26 });
  }
}
