// The selection lists and the input form, as pages of hosts show them.

import assert from "node:assert/strict";
import { test } from "node:test";
import { newPage, screenshot } from "./browser.mjs";
import { hostileTexts } from "./hostile.mjs";

/** A select element's options, and which are chosen. */
function options(page, name) {
  return page.locator(`select[name="${name}"]`).evaluate((list) => ({
    multiple: list.multiple,
    size: list.size,
    all: [...list.options].map((option) => [option.value, option.text]),
    chosen: [...list.selectedOptions].map((option) => option.value),
  }));
}

export function prepareLists(talmflow) {
  talmflow.call("Name.Add", "Parent", "kim", "");
  talmflow.call("Name.Add", "Child", "kim", "");
  const [parent, child] = ["Parent", "Child"].map((name) => talmflow.rows(`Select FlowID From WorkFlowName Where FlowName='${name}'`)[0].FlowID);
  talmflow.insert("WorkFlowParameter", [
    { FlowID: parent, FlowNo: 1, ParameterName: "C_18_1", ParameterData: String(child) },
    { FlowID: child, FlowNo: 1, ParameterName: "C_22_1", ParameterData: "总额" },
    { FlowID: child, FlowNo: 2, ParameterName: "C_22_1", ParameterData: "a < b" },
    { FlowID: child, FlowNo: 3, ParameterName: "C_39_2", ParameterData: '"x"=`y` & \'z\'' },
  ]);
  const inputs = [["姓名 Name", 1, ""], ["Amount", 2, ""], ["Date", 3, ""], ["Reason", 4, ""], ["Urgency", 5, "low,normal,high"],
                  ["Days", 6, "Mo,Tu,We"], ["Agreed", 7, ""], ["Person", 8, ""], ["Record", 9, ""]];
  talmflow.insert("WorkFlowFunctionInput", inputs.map(([InputTitle, Sort, ClassContent], i) =>
    ({ FlowID: parent, InputTitle, OrderNo: i, Sort, ClassContent })));
  return { parent, child };
}

export function listTests(talmflow, flows) {
  test("the list of flows offers each by number and chooses the ones that are named", async () => {
    const page = await newPage();
    const stored = talmflow.rows("Select FlowID,FlowName From WorkFlowName Where FlowName in ('Parent','Child')");
    await page.setContent(talmflow.call("Name.FlowSelect", "flows", 1, 5, 300, 1, `${flows.child},${flows.parent}`, ""));
    const list = await options(page, "flows");
    assert.equal(list.multiple, true);
    assert.equal(list.size, 5);
    assert.deepEqual(list.all[0], ["0", ""]);
    for (const { FlowID, FlowName } of stored) assert.ok(list.all.some(([value, text]) => value === String(FlowID) && text === FlowName));
    assert.deepEqual(list.chosen.toSorted(), [String(flows.parent), String(flows.child)].toSorted());
    await page.close();
  });

  test("the list of input parameters offers positions and chooses by position", async () => {
    const page = await newPage();
    await page.setContent(talmflow.call("Construction.InputParameterSelect", flows.parent, "inputs", 0, 1, 0, 1, 2, "title=\"t\""));
    const list = await options(page, "inputs");
    assert.deepEqual(list.all, [["0", ""], ["1", "姓名 Name"], ["2", "Amount"], ["3", "Date"], ["4", "Reason"], ["5", "Urgency"],
                                ["6", "Days"], ["7", "Agreed"], ["8", "Person"], ["9", "Record"]]);
    assert.deepEqual(list.chosen, ["2"]);
    assert.equal(await page.locator("select").getAttribute("title"), "t");
    await page.close();
  });

  test("the list of variables keeps each name whole in its unquoted attribute", async () => {
    const page = await newPage();
    await page.setContent(talmflow.call("Construction.VarSelect", flows.parent, "variables", 0, 1, 0, 1, "a < b"));
    const list = await options(page, "variables");
    const shown = ["", "总额", "a < b", '"x"=`y` & \\\'z\\\''];
    assert.deepEqual(list.all, shown.map((text) => [text, text]));
    assert.deepEqual(list.chosen, ["a < b"]);
    await page.close();
  });

  test("hostile variable names stay names", async () => {
    const page = await newPage();
    const names = hostileTexts.filter((text) => !text.includes(","));
    const [{ FlowID: child }] = talmflow.rows("Select FlowID From WorkFlowName Where FlowName='Child'");
    const count = talmflow.rows(`Select Max(FlowNo) as n From WorkFlowParameter Where FlowID=${child}`)[0].n;
    talmflow.insert("WorkFlowParameter", names.map((name, i) =>
      ({ FlowID: child, FlowNo: count + 1 + i, ParameterName: "C_22_1", ParameterData: name })));
    await page.setContent(talmflow.call("Construction.VarSelect", flows.parent, "variables", 0, 1, 0, 0, ""));
    const list = await options(page, "variables");
    // What the attribute holds is the text of a script string, so a script that takes it gets the name.
    const read = list.all.slice(-names.length).map(([value]) => Function(`return '${value}'`)());
    assert.deepEqual(read, names);
    assert.equal(await page.evaluate(() => window.ran), undefined);
    await page.close();
  });

  for (const [format, name] of [[1, "table"], [2, "list"]]) {
    test(`the input form as a ${name} holds the given values and tells them as they were`, async () => {
      const page = await newPage();
      const values = ["王芳 <b>", "12.5", "2026/1/31", "one\r\ntwo\r\n", "normal", "Mo,We", "1", "李强", "TableID:12,DataID:1"];
      await page.setContent(`<form>${talmflow.call("Construction.DisplayInputParameter", flows.parent, format, values.join("|^|"))}</form>`);
      const entries = await page.evaluate(() => [...new FormData(document.forms[0])]);
      const expected = values.map((value, i) => [`InputParameter_${i + 1}`, value]);
      expected.splice(5, 1, ["InputParameter_6", "Mo"], ["InputParameter_6", "We"]);
      expected[3][1] = entries.find(([key]) => key === "InputParameter_4")[1].replaceAll(/\r?\n/g, "\r\n");
      assert.equal(expected[3][1], values[3]);
      assert.deepEqual(entries.map(([key, value]) => [key, value.replaceAll(/\r?\n/g, "\r\n")]), expected);
      assert.equal(await page.getByLabel("姓名 Name").inputValue(), values[0]);
      assert.equal(await page.getByRole("group", { name: "Days" }).getByLabel("Tu").isChecked(), false);
      await screenshot(page, `input_form_${name}`);
      await page.close();
    });
  }

  test("hostile titles, options and values stay texts in the input form", async () => {
    const page = await newPage();
    talmflow.call("Name.Add", "Hostile inputs", "kim", "");
    const [{ FlowID: flow }] = talmflow.rows("Select FlowID From WorkFlowName Where FlowName='Hostile inputs'");
    const texts = hostileTexts.filter((text) => !/[\r\n]/.test(text));
    talmflow.insert("WorkFlowFunctionInput", texts.map((text, i) =>
      ({ FlowID: flow, InputTitle: text, OrderNo: i, Sort: 1 + (i % 9), ClassContent: text })));
    await page.setContent(talmflow.call("Construction.DisplayInputParameter", flow, 1, texts.join("|^|")));
    const titles = await page.locator("th").evaluateAll((all) => all.map((one) => one.textContent));
    assert.deepEqual(titles, texts);
    const values = await page.locator("input[type=text], textarea").evaluateAll((all) =>
      all.map((one) => [Number(one.name.split("_")[1]), one.value]));
    assert.ok(values.length > texts.length / 2);
    for (const [position, value] of values) assert.equal(value, texts[position - 1]);
    assert.equal(await page.evaluate(() => window.ran), undefined);
    await page.close();
  });
}
