// Drawn flows: what the pages show, what their forms hold, and what they keep from running.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { test } from "node:test";
import { newPage, screenshot } from "./browser.mjs";
import { hostileTexts, mark, mixedTexts } from "./hostile.mjs";

const examples = { budget_check: 1, leave_request: 2, purchase: 3, reminder: 4 };
const hostileFlow = 5;
const oddFlow = 6;
const baseFields = ["FlowNo", "FlowNoNow", "OldFlowNo", "ParentNo", "Remark", "Command"];

export function prepareFlows(talmflow, folder) {
  for (const name of Object.keys(examples)) talmflow.run("import", `${folder}/${name}.flow`, "--creater", "王芳");
  storeHostileFlow(talmflow);
  talmflow.insert("WorkFlowName", [{ FlowName: "odd", Creater: "kim", Remark: "" }]);
  talmflow.insert("WorkFlowConstruction", [
    { FlowID: oddFlow, FlowNo: 1, ParentNo: 0, Serial: 1, Remark: "fine", Command: "C_22" },
    { FlowID: oddFlow, FlowNo: 2, ParentNo: 1, Serial: 2, Remark: "odd name", Command: "C_22" },
    { FlowID: oddFlow, FlowNo: 3, ParentNo: 1, Serial: 3, Remark: "odd command", Command: `';${mark};'` },
    { FlowID: oddFlow, FlowNo: 4, ParentNo: 1, Serial: 4, Remark: "strange parameter", Command: "C_22" },
  ]);
  talmflow.insert("WorkFlowParameter", [
    { FlowID: oddFlow, FlowNo: 2, ParameterName: `x.value='';${mark}//`, ParameterData: "1" },
    { FlowID: oddFlow, FlowNo: 4, ParameterName: "C_99_9", ParameterData: "kept" },
  ]);
}

/** Every hostile text as a remark, a variable name, a parameter, a title; and in the names of the flow. */
function storeHostileFlow(talmflow) {
  const names = hostileTexts.join("");
  const texts = [...hostileTexts, ...mixedTexts(120)];
  const step = (i) => ({ FlowID: hostileFlow, FlowNo: i + 1, ParentNo: i === 0 ? 0 : Math.ceil(i / 3), Serial: i + 1 });
  talmflow.insert("WorkFlowName", [{ FlowName: names, Creater: names, Remark: names }]);
  talmflow.insert("WorkFlowConstruction", texts.map((text, i) => ({ ...step(i), Remark: text, Command: "C_22" })));
  talmflow.insert("WorkFlowParameter", texts.flatMap((text, i) => ["C_22_1", "C_22_2"].map((name) =>
    ({ FlowID: hostileFlow, FlowNo: i + 1, ParameterName: name, ParameterData: text }))));
  talmflow.insert("WorkFlowFunctionInput", hostileTexts.map((text, i) =>
    ({ FlowID: hostileFlow, InputTitle: text, OrderNo: i, Sort: 1, ClassContent: text })));
}

/** The definition as the script arrays give it. */
function asArrays({ base, inputs, steps }) {
  return [
    [base.FlowName, base.Creater ?? "", base.Remark ?? ""],
    inputs.map((input) => [input.InputTitle, input.Sort, input.ClassContent]),
    steps.map((step) => [
      String(step.FlowNo), String(step.ParentNo), String(step.Serial), step.Remark,
      [step.Command, step.parameters.map((parameter) => [parameter.ParameterName, parameter.ParameterData])],
    ]),
  ];
}

/** Clicks the box of every step. @returns by step number, the fields of the form that hold anything, and the editors */
function fillByEveryBox(page) {
  return page.evaluate(() => {
    const filled = {};
    for (const link of document.querySelectorAll("#Drawing a[onclick*='buttoncon()']")) {
      link.click();
      const fields = [...document.forms.namedItem("StepForm").querySelectorAll("input[type=hidden]")];
      filled[document.StepForm.FlowNo.value] = {
        fields: Object.fromEntries(fields.filter((field) => field.value !== "").map((field) => [field.name, field.value])),
        editors: [...document.querySelectorAll("#Editors textarea")].map((editor) => editor.dataset.field),
      };
    }
    return filled;
  });
}

function expectedFields(step) {
  const number = String(step.FlowNo);
  const fields = { FlowNo: number, FlowNoNow: number, OldFlowNo: number, ParentNo: String(step.ParentNo),
                   Remark: step.Remark, Command: step.Command };
  for (const { ParameterName, ParameterData } of step.parameters) fields[ParameterName] = ParameterData;
  return Object.fromEntries(Object.entries(fields).filter(([, value]) => value !== ""));
}

/** Until the browser has had time for everything that it does by itself. */
function settled(page) {
  return page.evaluate(() => new Promise((resolve) => {
    requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(resolve, 0)));
  }));
}

async function assertNothingHappened(page, address) {
  await settled(page);
  assert.equal(await page.evaluate(() => window.ran), undefined);
  assert.deepEqual(page.requests, []);
  assert.deepEqual(page.dialogs, []);
  assert.equal(page.url(), address);
}

export function drawingTests(talmflow) {
  for (const [name, flow] of Object.entries(examples)) {
    test(`the page of ${name} shows the component's drawing, and its boxes fill the form`, async () => {
      const definition = talmflow.definition(flow);
      const page = await newPage();
      const address = talmflow.draw(flow, "--editable");
      await page.goto(address);
      const data = JSON.parse(await page.locator("#PageData").textContent());
      assert.equal(data.drawing, talmflow.call("Construction.DisplayFlow", flow, 1, "StepForm"));
      for (const step of definition.steps) {
        const box = page.locator(`#Drawing a[onclick*="FlowNo.value='${step.FlowNo}'"]`);
        assert.equal(await box.innerText(), `序号：${step.FlowNo}\n父序：${step.ParentNo}\n说明：${step.Remark}`);
      }
      const filled = await fillByEveryBox(page);
      for (const step of definition.steps) assert.deepEqual(filled[step.FlowNo].fields, expectedFields(step));
      await page.mouse.move(0, 0);
      await screenshot(page, name);
      await assertNothingHappened(page, address);
      assert.deepEqual(page.errors, []);
      await page.close();
    });
  }

  test("a click shows the form of the step with the parameter fields of its command only", async () => {
    const page = await newPage();
    await page.goto(talmflow.draw(examples.leave_request, "--editable"));
    assert.equal(await page.locator("form").isVisible(), false);
    await page.locator("#Drawing a", { hasText: "组长审批" }).click();
    assert.equal(await page.locator("form").isVisible(), true);
    assert.equal(await page.locator("#StepTitle").innerText(), "Step 3");
    assert.match(await page.locator("#CommandTitle").innerText(), /\(C_2\)$/);
    const editors = () => page.locator("#Editors textarea").evaluateAll((all) => all.map((one) => [one.dataset.field, one.value]));
    const { steps } = talmflow.definition(examples.leave_request);
    const shown = (number, fields) => [["Remark", steps[number - 1].Remark], ["ParentNo", String(steps[number - 1].ParentNo)], ...fields];
    assert.deepEqual(await editors(), shown(3, steps[2].parameters.map((one) => [one.ParameterName, one.ParameterData])));
    assert.equal(await page.locator("#Drawing a.chosen").innerText(), "序号：3\n父序：2\n说明：组长审批 Approval by the team lead");
    await screenshot(page, "form_of_a_step");
    await page.locator("#Drawing a", { hasText: "超过三天" }).click();
    assert.deepEqual(await editors(), shown(4, [["C_11_1", "days"], ["C_11_2", ">"], ["C_11_3", "3"]]));
    assert.equal(await page.evaluate(() => document.StepForm.C_2_2.value), "");
    await page.locator("#Close").click();
    assert.equal(await page.locator("form").isVisible(), false);
    await page.close();
  });

  test("what is typed goes into the field of the form, with the line ends of definitions", async () => {
    const page = await newPage();
    await page.goto(talmflow.draw(examples.leave_request, "--editable"));
    await page.locator("#Drawing a", { hasText: "组长审批" }).click();
    await page.locator("textarea[data-field=C_2_4]").fill("one\ntwo");
    assert.equal(await page.evaluate(() => document.StepForm.C_2_4.value), "one\r\ntwo");
    await page.close();
  });

  test("a page that is not editable has the drawing and the arrays, and nothing to click", async () => {
    const page = await newPage();
    await page.goto(talmflow.draw(examples.purchase));
    const data = JSON.parse(await page.locator("#PageData").textContent());
    assert.equal(data.drawing, talmflow.call("Construction.DisplayFlow", examples.purchase, 0, "StepForm"));
    assert.equal(await page.locator("#Drawing td", { hasText: "预算检查" }).last().innerText(), "序号：2\n父序：1\n说明：预算检查 Budget check (flow 1)");
    assert.deepEqual(await page.locator("a, form, input").count(), 0);
    assert.deepEqual(await page.evaluate(() => FlowArr), asArrays(talmflow.definition(examples.purchase)));
    await page.close();
  });

  test("the script arrays hold exactly the stored definition", async () => {
    const page = await newPage();
    for (const flow of [...Object.values(examples), hostileFlow]) {
      await page.goto(talmflow.draw(flow, "--editable"));
      assert.deepEqual(await page.evaluate(() => FlowArr), asArrays(talmflow.definition(flow)));
    }
    await page.close();
  });

  test("stored texts of every kind reach the form unchanged, and none runs or leads away", async () => {
    const page = await newPage();
    const address = talmflow.draw(hostileFlow, "--editable");
    await page.addInitScript(() => {
      window.refused = [];
      document.addEventListener("securitypolicyviolation", (event) => window.refused.push(event.effectiveDirective));
    });
    await page.goto(address);
    const { base, steps } = talmflow.definition(hostileFlow);
    const filled = await fillByEveryBox(page);
    assert.equal(Object.keys(filled).length, steps.length);
    for (const step of steps) {
      assert.deepEqual(filled[step.FlowNo], { fields: expectedFields(step), editors: ["Remark", "ParentNo", "C_22_1", "C_22_2"] });
    }
    // Handlers that captions bring along were refused, nothing else; the boxes around them work.
    assert.deepEqual(await page.evaluate(() => [...new Set(window.refused)]), ["script-src-attr"]);
    await page.locator("#Drawing b", { hasText: "bold" }).click();
    assert.equal(await page.evaluate(() => document.StepForm.Remark.value), hostileTexts.find((text) => text.startsWith("<b ")));
const asRead = (text) => text.replaceAll(/\r\n?/g, "\n");
    assert.equal(await page.locator("h1").textContent(), asRead(base.FlowName));
    assert.equal(await page.locator(".remark").textContent(), asRead(base.Remark));
    await screenshot(page, "hostile_texts");
    await assertNothingHappened(page, address);
    await page.close();
  });

  test("nothing in a drawing poses as a part of the page", async () => {
    const page = await newPage();
    await page.goto(talmflow.draw(hostileFlow, "--editable"));
    const strangers = "form, input, button, select, textarea, iframe, object, embed, meta, base, link, style, script, img, svg, [id], [name], [style], a[href]:not([href=''])";
    assert.equal(await page.locator("#Drawing").evaluate((drawing, what) => drawing.querySelectorAll(what).length, strangers), 0);
    assert.equal(await page.evaluate(() => document.StepForm instanceof HTMLFormElement), true);
    assert.equal(await page.evaluate(() => document.baseURI === document.URL), true);
    await page.close();
  });

  test("without the policy a handler in a caption would run", async () => {
    const page = await newPage();
    const guarded = readFileSync(new URL(talmflow.draw(hostileFlow, "--editable")), "utf8");
    const policy = /<meta http-equiv="Content-Security-Policy"[^>]*>\n/;
    assert.match(guarded, policy);
    const file = talmflow.path("unguarded.html");
    writeFileSync(file, guarded.replace(policy, ""));
    await page.goto(`file://${file}`);
    await page.locator("#Drawing b", { hasText: "bold" }).click();
    assert.ok(await page.evaluate(() => window.ran) > 0);
    await page.close();
  });

  test("the bare drawing in a page without protection would run scripts by itself", async () => {
    const page = await newPage();
    const file = talmflow.path("bare.html");
    writeFileSync(file, `<meta charset="utf-8">${talmflow.call("Construction.DisplayFlow", hostileFlow, 0, "")}`);
    await page.goto(`file://${file}`, { waitUntil: "commit" });
    await page.waitForFunction(() => window.ran > 0);
    await page.close();
  });

  test("a step whose parameter has no proper name is told and cannot be opened; its neighbours can", async () => {
    const page = await newPage();
    const address = talmflow.draw(oddFlow, "--editable");
    await page.goto(address);
    assert.match(await page.locator(".notice").innerText(), /: 2$/);
    await page.locator("#Drawing a", { hasText: "odd name" }).click();
    assert.equal(await page.locator("form").isVisible(), false);
    await page.locator("#Drawing a", { hasText: "odd command" }).click();
    assert.equal(await page.evaluate(() => document.StepForm.Command.value), `';${mark};'`);
    await page.locator("#Drawing a", { hasText: "strange parameter" }).click();
    assert.deepEqual(await page.locator("#Editors textarea").evaluateAll((all) => all.map((one) => one.dataset.field)),
                     ["Remark", "ParentNo", "C_22_1", "C_22_2", "C_99_9"]);
    await assertNothingHappened(page, address);
    await page.close();
  });

  test("pages are legible in the dark, on narrow screens, and as a picture", async () => {
    const dark = await newPage({ colorScheme: "dark" });
    await dark.goto(talmflow.draw(examples.reminder, "--editable"));
    await dark.locator("#Drawing a", { hasText: "每小时一次" }).click();
    await screenshot(dark, "dark");
    const luminance = (selector) => dark.locator(selector).first().evaluate((element) =>
      getComputedStyle(element).color.match(/\d+/g).slice(0, 3).reduce((sum, part) => sum + Number(part), 0));
    assert.ok(await luminance("#Drawing a") > 600);
    await dark.close();
    const narrow = await newPage({ viewport: { width: 420, height: 800 } });
    await narrow.goto(talmflow.draw(examples.reminder, "--editable"));
    assert.equal(await narrow.evaluate(() => document.documentElement.scrollWidth), 420);
    await screenshot(narrow, "narrow");
    await narrow.close();
    const picture = await newPage({ viewport: { width: 800, height: 1100 } });
    const file = talmflow.path("leave.svg");
    talmflow.run("draw", "leave_request", "--svg", "-o", file);
    await picture.goto(`file://${file}`);
    const steps = await picture.locator("g[data-step]").evaluateAll((all) => all.map((one) => Number(one.dataset.step)));
    assert.deepEqual(steps.toSorted((a, b) => a - b), [1, 2, 3, 4, 5, 6, 7, 8, 9, 10]);
    // Every text fits the card that it stands in.
    const overflow = await picture.locator("g[data-step]").evaluateAll((all) => all.filter((card) => {
      const box = card.querySelector("rect").getBoundingClientRect();
      return [...card.querySelectorAll("text")].some((text) => text.getBoundingClientRect().right > box.right);
    }).length);
    assert.equal(overflow, 0);
    await screenshot(picture, "picture", {});
    await picture.close();
  });
}
