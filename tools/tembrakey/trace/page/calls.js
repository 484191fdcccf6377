// The list of calls, folded; the inside of a call is built when it is first unfolded.

const rowsAtOnce = 500;
const state = { q: "", thread: "", entry: "", failed: "" };
const rows = []; // details elements by call index
let shownRoots = [];
let builtRows = 0;

const wordsOf = () => state.q.toLowerCase().split(/\s+/).filter(Boolean);

function marked(text) {
  const words = wordsOf().map((word) => word.replace(/[.*+?^${}()|[\]\\]/g, "\\$&"));
  if (!words.length) return [text];
  return text.split(new RegExp(`(${words.join("|")})`, "i")).map((part, i) => (i % 2 ? element("mark", "", part) : part));
}

function makeRow(call) {
  const badge = (kind, text) => (text ? [element("span", "badge " + kind, text)] : []);
  const row = (rows[call.index] = element("details", "call " + call.state,
    element("summary", "", element("time", "", clockOf(call.begin)), element("span", "badge id", ...marked(String(call.thread))),
      element("b", "", ...marked(call.entryPoint)), element("span", "preview", ...marked(previewOf(call))),
      ...badge("fail", call.errors > 1 ? t("{1} errors", call.errors) : call.errors ? t("error") : ""),
      ...badge("warn", call.warnings ? t("{1} warnings", call.warnings) : ""),
      ...badge(call.failed ? "" : call.state, stateText(call)))));
  row.id = "line-" + call.firstLine;
  row.addEventListener("toggle", () => row.open && build(call));
  return row;
}

function makeLine(line) {
  const level = line.ordinary ? "NOTE" : line.level;
  return element("div", "row " + level, element("span", "", String(line.line)), element("span", "", clockOf(line.time)),
    element("span", "", level), element("span", "", ...marked(line.function)), element("span", "", ...marked(messageOf(line))));
}

function build(call) {
  const row = rows[call.index];
  if (row.children.length > 1) return;
  const pairs = Object.entries(call.arguments).map(([name, value]) => element("span", "", element("i", "", name), ...marked(value)));
  const items = [...call.lines.map((line) => [line.line, () => makeLine(line)]),
    ...call.calls.map((inner) => [inner.firstLine, () => makeRow(inner)])].sort((a, b) => a[0] - b[0]);
  row.append(element("div", "body", element("div", "arguments", ...pairs), ...items.map(([, make]) => make())));
  if (call.omitted) row.append(element("p", "", t("({1} more lines and calls that are not shown)", grouped(call.omitted))));
}

function unfold(call) {
  if (call.around) unfold(call.around);
  while (!rows[call.index] && builtRows < shownRoots.length) buildMore();
  build(call);
  rows[call.index].open = true;
}

// Shows a call in the timeline and in the list.
function show(call) {
  if (!shownRoots.includes(rootOf(call))) setFilter({});
  document.querySelectorAll(".current").forEach((one) => one.classList.remove("current"));
  unfold(call);
  for (const one of [rows[call.index], bars[call.index]]) one.classList.add("current");
  const below = byId("timeline").offsetHeight + byId("tools").offsetHeight + 16; // both stick to the top
  rows[call.index].style.scrollMarginTop = below + "px";
  rows[call.index].scrollIntoView();
  scrollToBar(call);
  rows[call.index].firstChild.focus({ preventScroll: true });
  address(call.firstLine);
}

function buildMore() {
  const next = shownRoots.slice(builtRows, builtRows + rowsAtOnce);
  byId("list").append(...next.map(makeRow));
  builtRows += next.length;
  byId("more").hidden = builtRows === shownRoots.length;
  byId("more").textContent = t("Show {1} more", grouped(Math.min(shownRoots.length - builtRows, rowsAtOnce)));
}

function foldAll(isOpen) {
  for (const call of calls) {
    if (isOpen && rows[call.index]) unfold(call);
    else if (rows[call.index]) rows[call.index].open = false;
  }
}

// Shows the calls that have all words and pass the other filters, and unfolds what hides them.
function setFilter({ q = "", thread = "", entry = "", failed = "" }) {
  Object.assign(state, { q, thread, entry, failed });
  for (const id of ["q", "thread", "entry"]) byId(id).value = state[id];
  byId("failed").checked = Boolean(failed);
  const isFiltered = Boolean(q || thread || entry || failed);
  const words = wordsOf();
  const hits = calls.filter((call) => words.every((word) => call.text.includes(word)) &&
    (!thread || String(call.thread) === thread) && (!entry || call.entryPoint === entry) && (!failed || call.isBad));
  const wanted = new Set();
  for (const hit of hits) for (let call = hit; call; call = call.around) wanted.add(call);
  for (const call of calls) bars[call.index].classList.toggle("dim", !wanted.has(call));
  shownRoots = data.calls.filter((call) => wanted.has(call));
  rows.length = builtRows = 0;
  byId("list").replaceChildren();
  buildMore();
  for (const hit of isFiltered ? hits.slice(0, 200) : []) {
    const head = [hit.entryPoint, hit.thread, previewOf(hit)].join("\n").toLowerCase();
    if (!words.every((word) => head.includes(word))) unfold(hit);
    else if (hit.around) unfold(hit.around);
  }
  byId("count").textContent = isFiltered
    ? t("{1} of {2} calls", grouped(hits.length), grouped(calls.length)) : t("{1} calls", grouped(calls.length));
  address();
}
