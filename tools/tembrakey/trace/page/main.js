// What stands around the list, and the address: #q=sign&thread=7&entry=DeviceSign&failed=1&fold=open&line=41

function figures() {
  const sum = data.summary;
  const figure = (value, text, kind) =>
    element("li", value ? kind : "", element("b", "", grouped(value)), element("span", "", text));
  byId("figures").append(
    figure(sum.calls, t("calls"), ""), figure(sum.failedCalls, t("with errors"), "fail"),
    figure(sum.lostCalls, t("did not return"), "lost"), figure(sum.warnedCalls, t("with warnings"), "warn"),
    figure(sum.threads, t("threads"), ""), figure(sum.lines, t("lines"), ""),
    figure(sum.foreignLines, t("foreign lines"), ""));
}

function notes() {
  const sum = data.summary;
  const note = (text, kind) => byId("notes").append(element("p", kind, text));
  if (data.callsShown < data.callsSeen)
    note(t("This page holds {1} of {2} calls: those with errors first, then the latest others. Filter, or raise --limit, to see more.",
      grouped(data.callsShown), grouped(data.callsSeen)), "limit");
  if (data.isFiltered) note(t("The log was filtered when this page was made."), "limit");
  note(sum.hasDurations
    ? t("The log's clock shows whole seconds: durations are right to within one second.")
    : t("No durations: the log has no entry and exit lines (level 4 writes them); calls are told apart by the lines of their arguments."));
  note(t("PINs, and hex texts other than certificates and public keys, are masked. Results are not in the log: a call counts as failed when it wrote an error line."));
}

function failedList() {
  const bad = calls.filter((call) => call.failed || call.lost);
  byId("failed").hidden = bad.length === 0;
  byId("failed").append(element("h2", "", t("Calls with errors, or without an end ({1})", grouped(bad.length))));
  for (const call of bad.slice(0, 200)) {
    const error = firstError(call);
    const row = element("button", "", element("span", "time", call.begin), element("span", "id", String(call.thread)),
      element("span", "name", nameOf(call)), element("span", "what", error ? error.message : durationText(call)));
    row.type = "button";
    row.addEventListener("click", () => show(call));
    byId("failed").append(row);
  }
  if (bad.length > 200) byId("failed").append(element("p", "fine", t("{1} more are in the list below", grouped(bad.length - 200))));
}

function entryTable() {
  const cell = (name, text, kind) => element(name, kind, text);
  const table = element("table", "", element("tr", "", cell("th", t("Entry point")), cell("th", t("Calls"), "number"),
    cell("th", t("With errors"), "number"), cell("th", t("Longest"), "number")));
  for (const entry of [...data.summary.entryPoints].sort((a, b) => b.calls - a.calls)) {
    const longest = entry.longestSeconds === null ? "" : entry.longestSeconds === 0 ? t("under 1 s") : t("about {1} s", entry.longestSeconds);
    table.append(element("tr", "", cell("td", entry.name), cell("td", grouped(entry.calls), "number"),
      cell("td", grouped(entry.failed), "number"), cell("td", longest, "number")));
  }
  return element("details", "card", element("summary", "", t("Entry points in the whole log")), table);
}

function foreignList() {
  const text = element("pre");
  for (const line of data.foreign) text.append(element("b", "", String(line.line).padStart(8) + "  "), line.text + "\n");
  const more = data.summary.foreignLines - data.foreign.length;
  if (more > 0) text.append(t("... and {1} more", grouped(more)));
  return element("details", "card", element("summary", "", t("Lines that are no trace lines ({1})", grouped(data.summary.foreignLines))), text);
}

function option(value, text) {
  const made = element("option", "", text);
  made.value = value;
  return made;
}

function fillTools() {
  byId("search").value = state.q;
  byId("thread").value = state.thread;
  byId("entry").value = state.entry;
  byId("only-failed").checked = state.failed;
}

function makeTools() {
  byId("search").placeholder = t("Search calls, arguments, messages ( / )");
  byId("unfold").textContent = t("Unfold all");
  byId("fold").textContent = t("Fold all");
  byId("only-failed").nextSibling.textContent = t("only failed");
  const threads = [...new Set(calls.map((call) => call.thread))].sort((a, b) => a - b);
  byId("thread").append(option("", t("all threads")), ...threads.map((id) => option(String(id), t("thread {1}", id))));
  const names = [...new Set(calls.map((call) => call.entryPoint).filter(Boolean))].sort();
  byId("entry").append(option("", t("all entry points")), ...names.map((name) => option(name, name)));
  let waiting = 0;
  byId("search").addEventListener("input", (event) => {
    clearTimeout(waiting);
    waiting = setTimeout(() => { state.q = event.target.value.toLowerCase(); update(); }, 150);
  });
  byId("thread").addEventListener("change", (event) => { state.thread = event.target.value; update(); });
  byId("entry").addEventListener("change", (event) => { state.entry = event.target.value; update(); });
  byId("only-failed").addEventListener("change", (event) => { state.failed = event.target.checked; update(); });
  byId("unfold").addEventListener("click", () => foldAll(false));
  byId("fold").addEventListener("click", () => foldAll(true));
  byId("more").addEventListener("click", buildMore);
  document.addEventListener("keydown", (event) => {
    if (event.key !== "/" || event.target === byId("search")) return;
    event.preventDefault();
    byId("search").focus();
  });
}

// All that are built; the list grows by its button.
function foldAll(isFolded) {
  for (const call of calls) {
    if (!isFolded && rows[call.index]) unfold(call);
    else if (rows[call.index]) rows[call.index].open = false;
  }
  tell();
}

// Keeps the address in step, and says in the document what is shown.
function tell(line) {
  document.body.dataset.shown = shownRoots.length;
  document.body.dataset.open = document.querySelectorAll("details.call[open]").length;
  const query = new URLSearchParams();
  for (const [name, value] of Object.entries(state)) if (value) query.set(name, value === true ? "1" : value);
  if (line) query.set("line", line);
  try { history.replaceState(null, "", "#" + query); } catch (refused) { /* some browsers do for local files */ }
}

function theme() {
  const dark = matchMedia("(prefers-color-scheme: dark)");
  const set = (isDark) => {
    document.documentElement.dataset.theme = isDark ? "dark" : "light";
    byId("theme").textContent = isDark ? t("Light") : t("Dark");
  };
  set(dark.matches);
  dark.addEventListener("change", (event) => set(event.matches));
  byId("theme").addEventListener("click", () => set(document.documentElement.dataset.theme !== "dark"));
}

function start() {
  const asked = new URLSearchParams(location.hash.slice(1));
  document.documentElement.lang = t("en");
  document.title = t("Trace of {1}", data.source);
  byId("title").textContent = document.title;
  byId("span").textContent = data.summary.begin ? data.summary.begin + " \u2013 " + data.summary.end : "";
  theme();
  figures();
  notes();
  drawTimeline();
  failedList();
  makeTools();
  if (data.summary.entryPoints.length) byId("extras").append(entryTable());
  if (data.foreign.length) byId("extras").append(foreignList());
  Object.assign(state, { q: (asked.get("q") || "").toLowerCase(), thread: asked.get("thread") || "",
    entry: asked.get("entry") || "", failed: asked.get("failed") === "1" });
  if (asked.has("theme")) byId("theme").click();
  fillTools();
  update();
  if (asked.get("fold") === "open") foldAll(false);
  if (asked.get("fold") === "closed") foldAll(true);
  const wanted = calls.find((call) => String(call.firstLine) === asked.get("line"));
  if (wanted) show(wanted);
}
start();
