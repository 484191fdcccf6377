// The list of calls, folded; what is inside a call is built when it is first unfolded.

const rowsAtOnce = 500;
const state = { q: "", thread: "", entry: "", failed: false };
let shownRoots = [];
let builtRows = 0;
const rows = []; // details elements by call index

function marked(text) {
  const found = [];
  const small = text.toLowerCase();
  let at = 0;
  for (let hit; state.q && small.length === text.length && (hit = small.indexOf(state.q, at)) >= 0; at = hit + state.q.length)
    found.push(text.slice(at, hit), element("mark", "", text.slice(hit, hit + state.q.length)));
  return [...found, text.slice(at)];
}

function previewOf(call) {
  const error = firstError(call);
  if (error) return error.message;
  const pairs = Object.entries(call.arguments).map(([name, value]) => `${name} ${value}`);
  return pairs.length ? pairs.join("   ") : call.lines.length ? call.lines[0].message : "";
}

function badges(call) {
  const made = [];
  if (call.failed) made.push(element("span", "badge fail", call.errors === 1 ? t("error") : t("{1} errors", call.errors)));
  if (call.warnings) made.push(element("span", "badge warn", call.warnings === 1 ? t("warning") : t("{1} warnings", call.warnings)));
  const duration = durationText(call);
  if (duration) made.push(element("span", "badge " + (call.lost ? "lost" : ""), duration));
  return made;
}

function makeRow(call) {
  const row = element("details", "call " + call.state);
  row.id = "line-" + call.firstLine;
  row.append(element("summary", "",
    element("span", "time", clockOf(call.begin)),
    element("span", "badge id", ...marked(String(call.thread))),
    element("span", "name", ...marked(nameOf(call))),
    element("span", "preview", ...marked(previewOf(call))),
    ...badges(call)));
  row.addEventListener("toggle", () => { if (row.open) build(call); tell(); });
  rows[call.index] = row;
  return row;
}

function makeLine(line) {
  const kind = line.level === "ERROR" ? " error" : line.level === "WARN" ? " warn" : "";
  return element("div", "row" + kind,
    element("span", "", String(line.line)), element("span", "", clockOf(line.time)),
    element("span", "", line.level), element("span", "", ...marked(line.function)),
    element("span", "", ...marked(line.message)));
}

function makeArguments(call) {
  return element("div", "arguments", ...Object.entries(call.arguments).map(([name, value]) =>
    element("span", "", element("i", "", name), ...marked(value))));
}

function build(call) {
  const row = rows[call.index];
  if (row.querySelector(":scope > .body")) return;
  const body = element("div", "body");
  if (Object.keys(call.arguments).length) body.append(makeArguments(call));
  const items = [...call.lines.map((line) => [line.line, () => makeLine(line)]),
    ...call.calls.map((inner) => [inner.firstLine, () => makeRow(inner)])];
  for (const [, make] of items.sort((a, b) => a[0] - b[0])) body.append(make());
  if (call.omitted) body.append(element("p", "fine", t("({1} more lines and calls that are not shown)", grouped(call.omitted))));
  row.append(body);
}

function unfold(call) {
  if (call.around) unfold(call.around);
  while (!rows[call.index] && builtRows < shownRoots.length) buildMore();
  if (!rows[call.index]) return;
  build(call);
  rows[call.index].open = true;
}

function show(call) {
  let root = call;
  while (root.around) root = root.around;
  if (!shownRoots.includes(root)) {
    Object.assign(state, { q: "", thread: "", entry: "", failed: false });
    fillTools();
    update();
  }
  unfold(call);
  document.querySelectorAll(".current").forEach((one) => one.classList.remove("current"));
  rows[call.index].classList.add("current");
  if (bars[call.index]) bars[call.index].classList.add("current");
  rows[call.index].scrollIntoView({ block: "center" });
  tell(call.firstLine);
}

function matches(call) {
  return (!state.q || call.hay.includes(state.q)) && (!state.thread || String(call.thread) === state.thread) &&
    (!state.entry || call.entryPoint === state.entry) && (!state.failed || call.failed || call.lost);
}

function buildMore() {
  const next = shownRoots.slice(builtRows, builtRows + rowsAtOnce);
  byId("list").append(...next.map(makeRow));
  builtRows += next.length;
  const left = shownRoots.length - builtRows;
  byId("more").hidden = left === 0;
  byId("more").textContent = t("Show {1} more", grouped(Math.min(left, rowsAtOnce)));
}

// Shows the calls that match, and unfolds what hides a match.
function update() {
  const isFiltered = Boolean(state.q || state.thread || state.entry || state.failed);
  const hits = calls.filter(matches);
  const wanted = new Set();
  for (const hit of hits)
    for (let call = hit; call; call = call.around) wanted.add(call);
  for (const call of calls) bars[call.index].classList.toggle("dim", isFiltered && !wanted.has(call));
  shownRoots = roots.filter((call) => wanted.has(call));
  rows.length = builtRows = 0;
  byId("list").replaceChildren();
  buildMore();
  if (isFiltered) {
    for (const hit of hits.slice(0, 200)) if (hit.around) unfold(hit.around);
    const hidden = hits.filter((hit) => state.q && !(nameOf(hit) + previewOf(hit)).toLowerCase().includes(state.q));
    hidden.slice(0, 50).forEach(unfold);
  }
  byId("count").textContent = isFiltered
    ? t("{1} of {2} calls", grouped(hits.length), grouped(calls.length)) : t("{1} calls", grouped(calls.length));
  document.body.dataset.hits = hits.length;
  tell();
}
