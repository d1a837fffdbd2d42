"use strict";

const data = JSON.parse(document.getElementById("PageData").textContent);
const drawing = document.getElementById("Drawing");

// What a drawing may consist of. A caption is shown as it is stored, and may hold any markup: what could lead away,
// pose as a part of this page or load something loses its tags, its text stays.
const kElements = new Set(
  ("A B BR CENTER CODE DIV EM FONT HR I LI OL P PRE S SMALL SPAN STRONG SUB SUP TABLE TBODY TD TR U UL").split(" "));
const kAttributes = new Set(
  ("align bgcolor border cellpadding cellspacing color height onclick valign width").split(" "));

// Markup as nodes. A template is inert: nothing in it loads or runs while it is cleaned.
function withoutStrangers(markup) {
  const template = document.createElement("template");
  template.innerHTML = markup;
  for (const element of template.content.querySelectorAll("*")) {
    if (!kElements.has(element.tagName)) {
      element.replaceWith(...element.childNodes);
      continue;
    }
    for (const { name } of [...element.attributes]) {
      if (!kAttributes.has(name)) element.removeAttribute(name);
    }
    if (element.tagName === "A" && element.hasAttribute("onclick")) element.setAttribute("href", "");
  }
  return template.content;
}

// The drawing with each caption taken out, and the captions. So that a caption with half a tag, an open comment or the
// end of a table stays in its own box, every caption is read as markup by itself.
function apart(markup) {
  const box = /序号：(-?\d*)<br>父序：-?\d*<br>说明：/g;
  // Of two steps with one number the first is drawn.
  const stored = new Map([...data.captions].reverse());
  const captions = [];
  let rest = "";
  let end = 0;
  for (let found = box.exec(markup); found !== null; found = box.exec(markup)) {
    const caption = stored.get(found[1]) ?? "";
    if (!markup.startsWith(caption, box.lastIndex)) continue;
    rest += `${markup.slice(end, box.lastIndex)}<span></span>`;
    captions.push(caption);
    end = box.lastIndex + caption.length;
    box.lastIndex = end;
  }
  return [rest + markup.slice(end), captions];
}

function drawn() {
  const [rest, captions] = apart(data.drawing);
  const content = withoutStrangers(rest);
  content.querySelectorAll("span").forEach((place, i) => place.append(withoutStrangers(captions[i] ?? "")));
  return content;
}

drawing.append(drawn());

// ---- The form of a step -------------------------------------------------------------------------------------------

const form = document.forms.namedItem("StepForm");
const panel = document.getElementById("Panel");
let box = null; // the link of the box that was chosen last

// Runs before a box's own handler, which sets the fields of its step only.
function beginFilling(event) {
  const link = event.target.closest("a[onclick]");
  if (link === null) return;
  event.preventDefault();
  for (const field of form.querySelectorAll("input[type=hidden]")) field.value = "";
  if (box !== null) box.classList.remove("chosen");
  box = link;
}

// Called by a box when its fields are set.
function buttoncon() {
  box.classList.add("chosen");
  for (const button of panel.querySelectorAll("button")) button.disabled = false;
}

// Called by a box next: shows what was set.
function opendiv() {
  panel.classList.add("open");
  const command = form.elements.namedItem("Command").value;
  const known = data.commands[command];
  document.getElementById("StepTitle").textContent = `Step ${form.elements.namedItem("FlowNo").value}`;
  document.getElementById("CommandTitle").textContent = known ? `${known.title} (${command})` : command;
  document.getElementById("CommandSummary").textContent = known ? known.summary : "This command is not known.";
  const editors = document.getElementById("Editors");
  editors.replaceChildren(editor("Remark", "Caption", ""), editor("ParentNo", "Parent step", ""),
                          ...parameterEditors(command, known));
  // On a narrow screen the panel lies below the drawing.
  panel.scrollIntoView({ block: "nearest" });
}

function parameterEditors(command, known) {
  const shown = new Set();
  const result = [];
  (known ? known.parameters : []).forEach(([title, note, example], index) => {
    const name = `${command}_${index + 1}`;
    shown.add(name);
    result.push(editor(name, title, note, example));
  });
  for (const field of form.querySelectorAll("input[type=hidden]")) {
    const stranger = field.name.startsWith("C_") && !shown.has(field.name) && field.value !== "";
    if (stranger) result.push(editor(field.name, field.name, "not a parameter of this command"));
  }
  return result;
}

// What people type into. The field itself is hidden, because only a hidden field keeps every character: a visible one
// would change line ends.
function editor(name, title, note, example = "") {
  const field = form.elements.namedItem(name);
  const label = document.createElement("label");
  const caption = document.createElement("span");
  caption.className = "title";
  caption.textContent = title;
  const code = document.createElement("code");
  code.textContent = name;
  caption.append(" ", code);
  const area = document.createElement("textarea");
  area.value = field.value;
  area.rows = Math.min(8, Math.max(1, area.value.split("\n").length));
  area.dataset.field = name;
  area.placeholder = example === "" ? "" : `such as ${example}`;
  area.spellcheck = false;
  area.addEventListener("input", () => {
    field.value = area.value.replaceAll("\n", "\r\n");
  });
  label.append(caption, area);
  if (note !== "") {
    const hint = document.createElement("small");
    hint.textContent = note;
    label.append(hint);
  }
  return label;
}

function closePanel() {
  panel.classList.remove("open");
  if (box === null) return;
  box.classList.remove("chosen");
  box.focus();
}

if (form !== null) {
  drawing.addEventListener("click", beginFilling, true);
  form.addEventListener("submit", (event) => event.preventDefault());
  document.getElementById("Close").addEventListener("click", closePanel);
  document.addEventListener("keydown", (event) => {
    if (event.key === "Escape") closePanel();
  });
}
