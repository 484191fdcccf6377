// Everything around the list, and the address: #q=sign&thread=7&entry=DeviceSign&failed=1&line=41

function address(line) {
  const query = new URLSearchParams(Object.entries(state).filter(([, value]) => value));
  if (line) query.set("line", line);
  try { history.replaceState(null, "", "#" + query); } catch (refusal) { /* some browsers refuse it for local files */ }
}

function makeFigures() {
  const sum = data.summary;
  const figures = [["", sum.calls, t("calls")], ["fail", sum.failedCalls, t("with errors")],
    ["refused", sum.refusedPins.length, t("PINs probably refused")], ["lost", sum.lostCalls, t("did not return")],
    ["warn", sum.warnedCalls, t("with warnings")], ["", sum.threads, t("threads")], ["", sum.lines, t("lines")]];
  byId("figures").append(...figures.map(([kind, value, text]) =>
    element("li", value ? kind : "", element("b", "", grouped(value)), text)));
}

function makeFailure(failure) {
  const call = calls.find((one) => one.firstLine === failure.firstLine || one.lines.some((line) => line.line === failure.firstLine));
  const until = failure.last.slice(0, 10) === failure.first.slice(0, 10) ? clockOf(failure.last) : failure.last;
  const row = button(failure.kind, () => call && show(call), element("b", "", grouped(failure.count) + "\u00d7"),
    element("time", "", failure.first + (failure.count > 1 ? " \u2013 " + until : "")),
    element("b", "", failure.entryPoint), element("span", "", failure.text));
  row.disabled = !call;
  return row;
}

function makeFailures() {
  const all = data.summary.failures;
  const bad = all.filter((one) => one.kind !== "ordinary");
  const ordinary = all.filter((one) => one.kind === "ordinary");
  const rare = [...bad].sort((a, b) => a.count - b.count).slice(0, 200);
  const left = bad.length - rare.length + data.summary.otherFailures;
  byId("failures").hidden = all.length === 0;
  byId("failures").append(element("h2", "", bad.length ? t("Failures") : t("No failures")),
    ...bad.filter((one) => rare.includes(one)).map(makeFailure));
  if (left) byId("failures").append(element("p", "", t("... and {1} more", grouped(left))));
  if (ordinary.length)
    byId("failures").append(element("details", "", element("summary", "",
      t("Notes: ordinary although logged as errors (no such setting, certificate or key pair)")), ...ordinary.map(makeFailure)));
}

function makeExtras() {
  const card = (title, content) => byId("extras").append(element("details", "card", element("summary", "", title), content));
  const row = (kind, ...texts) => element("tr", "", ...texts.map((text) => element(kind, "", text)));
  const entries = [...data.summary.entryPoints].sort((a, b) => b.calls - a.calls).map((entry) =>
    row("td", entry.name, grouped(entry.calls), grouped(entry.failed), durationText(entry.longestSeconds)));
  if (entries.length)
    card(t("Entry points in the whole log"), element("table", "", row("th", t("Entry point"), t("Calls"), t("With errors"), t("Longest")), ...entries));
  const foreign = data.foreign.map((line) => `${String(line.line).padStart(8)}  ${line.text}\n`);
  const more = data.summary.foreignLines - foreign.length;
  if (more > 0) foreign.push(t("... and {1} more", grouped(more)));
  if (foreign.length)
    card(t("Lines that are not trace lines ({1})", grouped(data.summary.foreignLines)), element("pre", "", ...foreign));
}

function makeNotes() {
  const texts = [t("PINs, and hex dumps other than certificates and public keys, are masked. The log has no results: a call counts as failed if it wrote an error line.")];
  if (data.callsShown < data.callsSeen)
    texts.unshift(t("This page holds {1} of {2} calls: of each kind the first and the latest, rare ones all. Filter, or raise --limit, to see more.",
      grouped(data.callsShown), grouped(data.callsSeen)));
  if (data.isFiltered) texts.unshift(t("The log was filtered when this page was made."));
  texts.push(data.summary.hasDurations
    ? t("The clock of the log shows whole seconds: durations are right to within one second; on the timeline, bars within a second follow the order of the lines, and long silences (striped) are drawn short.")
    : t("No durations: they need the entry and exit lines of level 4."));
  byId("notes").append(...texts.map((text) => element("p", "", text)));
}

function makeTools() {
  const option = (value, text) => Object.assign(element("option", "", text), { value });
  const threads = [...new Set(calls.map((call) => call.thread))].sort((a, b) => a - b);
  const names = [...new Set(calls.map((call) => call.entryPoint))].sort();
  byId("thread").append(option("", t("all threads")), ...threads.map((id) => option(String(id), t("thread {1}", id))));
  byId("entry").append(option("", t("all entry points")), ...names.map((name) => option(name, name)));
  byId("q").placeholder = t("Search calls, arguments, messages ( / )");
  for (const [id, text] of [["unfold", t("Unfold all")], ["fold", t("Fold all")], ["zoom-fit", t("Fit")], ["failed-text", t("only failed")],
    ["theme", t("Light or dark")], ["timeline-title", t("Threads")]]) byId(id).textContent = text;
  for (const [id, text] of [["q", t("Search")], ["thread", t("Thread")], ["entry", t("Entry point")], ["lanes", t("Timeline")],
    ["zoom-in", t("Zoom in")], ["zoom-out", t("Zoom out")]]) { byId(id).ariaLabel = text; byId(id).title = text; }
  const kinds = [["", t("call")], ["fail", t("with errors")], ["refused", t("PIN probably refused")], ["lost", t("did not return")]];
  byId("legend").append(...kinds.map(([kind, text]) => element("span", "", element("i", "bar " + kind), text)));
  let waiting = 0;
  const filter = () => setFilter({ q: byId("q").value, thread: byId("thread").value, entry: byId("entry").value, failed: byId("failed").checked ? "1" : "" });
  byId("q").addEventListener("input", () => { clearTimeout(waiting); waiting = setTimeout(filter, 150); });
  for (const id of ["thread", "entry", "failed"]) byId(id).addEventListener("change", filter);
  byId("unfold").addEventListener("click", () => foldAll(true));
  byId("fold").addEventListener("click", () => foldAll(false));
  byId("more").addEventListener("click", buildMore);
  byId("theme").addEventListener("click", () => document.documentElement.classList.toggle("dark"));
  addEventListener("keydown", (event) => {
    if (event.key !== "/" || event.target === byId("q")) return;
    event.preventDefault();
    byId("q").focus();
  });
}

function start() {
  const asked = Object.fromEntries(new URLSearchParams(location.hash.slice(1)));
  document.documentElement.lang = t("en");
  document.documentElement.classList.toggle("dark", matchMedia("(prefers-color-scheme: dark)").matches || asked.theme === "dark");
  byId("title").textContent = document.title = t("Trace of {1}", data.source);
  byId("span").textContent = data.summary.begin ? data.summary.begin + " \u2013 " + data.summary.end : "";
  makeTools();
  makeFigures();
  makeFailures();
  drawTimeline();
  makeExtras();
  makeNotes();
  setFilter(asked);
  if (asked.fold) foldAll(asked.fold === "open");
  const wanted = calls.find((call) => String(call.firstLine) === asked.line);
  if (wanted) show(wanted);
}
start();
