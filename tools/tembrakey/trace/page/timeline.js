// One lane per thread: those with failures first, then the ones next to the first failure. The clock of the log shows whole seconds, so within
// a second the order of the lines places the bars; a long silence is drawn short.

const bars = [];
let zoom = 1;

// Places the ends of all calls between 0 and 1; returns them in order, with the long silences.
function placeCalls() {
  const points = calls.flatMap((call) => [
    { call, side: "left", line: call.firstLine, second: call.from, text: call.begin },
    { call, side: "right", line: call.lastLine + 0.5, second: call.to, text: call.end }]);
  points.sort((a, b) => a.line - b.line);
  const silences = [];
  let place = 0;
  points.forEach((point, i) => {
    const silence = i ? Math.max(0, point.second - points[i - 1].second) : 0;
    const step = i ? 1 + 1.5 * Math.log2(1 + silence) : 0;
    if (silence >= 60) silences.push({ left: place, right: place + step, silence });
    point.place = place += step;
  });
  for (const point of points) point.call[point.side] = point.place /= place || 1;
  for (const one of silences) { one.left /= place; one.right /= place; }
  return { points, silences };
}

function put(made, left, right) {
  made.style.left = 100 * left + "%";
  if (right !== undefined) made.style.width = 100 * (right - left) + "%";
  return made;
}

function makeBar(call) {
  const bar = put(element("i", "bar " + call.state, element("span", "", call.entryPoint)), call.left, call.right);
  bar.style.setProperty("--depth", call.depth);
  bar.title = [call.entryPoint, call.begin, stateText(call), previewOf(call)].filter(Boolean).join("\n");
  bar.addEventListener("click", () => show(call));
  return (bars[call.index] = bar);
}

function makeLane(thread, members, silences) {
  const strips = silences.map((one) => {
    const strip = put(element("i", "silence"), one.left, one.right);
    const [unit, text] = one.silence < 7200 ? [60, t("{1} min")] : [3600, t("{1} h")];
    strip.title = fill(text, [Math.round(one.silence / unit)]);
    return strip;
  });
  const lane = element("div", "lane", element("b", "", String(thread)),
    element("div", "track", ...strips, ...members.map(makeBar)));
  lane.style.setProperty("--rows", 1 + Math.max(...members.map((call) => call.depth)));
  return lane;
}

function drawAxis(track, points) {
  const room = track.clientWidth;
  let free = -1;
  let day = "";
  track.replaceChildren(...points.filter((point) => {
    const isFree = point.place * room >= free && point.place * room <= room - 60;
    if (isFree) free = point.place * room + 150;
    return isFree;
  }).map((point) => {
    const text = point.text.startsWith(day || "-") ? clockOf(point.text) : point.text;
    day = point.text.slice(0, 10);
    return put(element("i", "tick", text), point.place);
  }));
}

function drawTimeline() {
  byId("timeline").hidden = calls.length === 0;
  const { points, silences } = placeCalls();
  const focus = calls.find((call) => call.isBad) || calls[0];
  const threads = new Map();
  for (const call of calls) threads.set(call.thread, [...(threads.get(call.thread) || []), call]);
  const distance = ([, members]) => (members.some((call) => call.isBad) ? -1 : Math.abs(members[0].left - focus.left));
  const axis = element("div", "track");
  const inner = element("div", "inner", element("div", "axis", element("b", "", t("Thread")), axis));
  for (const [thread, members] of [...threads].sort((a, b) => distance(a) - distance(b)))
    inner.append(makeLane(thread, members, silences));
  const lanes = byId("lanes");
  lanes.classList.toggle("many", threads.size > 12);
  lanes.replaceChildren(inner);
  const setZoom = (wanted) => {
    const middle = (lanes.scrollLeft + lanes.clientWidth / 2) / inner.clientWidth;
    zoom = Math.min(400, Math.max(1, wanted));
    inner.style.setProperty("--zoom", zoom);
    lanes.scrollLeft = middle * inner.clientWidth - lanes.clientWidth / 2;
    drawAxis(axis, points);
  };
  byId("zoom-in").addEventListener("click", () => setZoom(zoom * 2));
  byId("zoom-out").addEventListener("click", () => setZoom(zoom / 2));
  byId("zoom-fit").addEventListener("click", () => setZoom(1));
  addEventListener("resize", () => drawAxis(axis, points));
  const widths = calls.map((call) => call.right - call.left).sort((a, b) => a - b);
  setZoom(5 / ((widths[widths.length >> 1] || 1) * lanes.clientWidth)); // most bars can be seen
  if (focus) scrollToBar(focus);
}

function scrollToBar(call) {
  const lanes = byId("lanes");
  const bar = bars[call.index].getBoundingClientRect();
  const frame = lanes.getBoundingClientRect();
  lanes.scrollLeft += bar.left - frame.left - frame.width / 2;
  lanes.scrollTop += bar.top - frame.top - frame.height / 2;
}
