// Lanes of bars, one lane a thread. The log's clock shows whole seconds only, so within a second the
// order of the lines places the bars; a long silence is drawn short.

const barStep = 23;
let zoom = 1;
const bars = [];

// Every first and last line of a call, in order, with its place between 0 and 1.
function placePoints() {
  const points = [];
  for (const call of calls) {
    points.push({ line: call.firstLine, second: call.from, call, isEnd: false });
    points.push({ line: call.lastLine + 0.5, second: call.to, call, isEnd: true });
  }
  points.sort((a, b) => a.line - b.line);
  let place = 0;
  const pauses = [];
  points.forEach((point, i) => {
    const silence = i > 0 ? Math.max(0, point.second - points[i - 1].second) : 0;
    const step = i === 0 ? 0 : 1 + (silence > 0 ? 1.5 * Math.log2(1 + silence) : 0);
    if (silence >= 60) pauses.push({ from: place, to: place + step, silence });
    place += step;
    point.place = place;
    point.call[point.isEnd ? "right" : "left"] = place;
  });
  const width = place || 1;
  for (const call of calls) {
    call.left /= width;
    call.right /= width;
  }
  return { points, pauses, width };
}

function makeBar(call) {
  const bar = element("button", "bar " + call.state + (call.depth ? " inner" : ""), element("span", "", nameOf(call)));
  bar.type = "button";
  bar.style.left = 100 * call.left + "%";
  bar.style.width = 100 * (call.right - call.left) + "%";
  bar.style.top = 7 + barStep * call.depth + "px";
  const error = firstError(call);
  bar.title = [nameOf(call), call.begin, durationText(call), error ? error.message : ""].filter(Boolean).join("\n");
  bar.addEventListener("click", () => show(call));
  bars[call.index] = bar;
  return bar;
}

function makeLane(thread, members) {
  const depth = Math.max(...members.map((call) => call.depth));
  const track = element("div", "track", ...members.map(makeBar));
  const lane = element("div", "lane", element("div", "lane-name", String(thread)), track);
  lane.style.height = 11 + barStep * (depth + 1) + "px";
  return lane;
}

function drawAxis(track, placed) {
  track.replaceChildren();
  const room = (byId("lanes").clientWidth - 120) * zoom;
  let free = -1;
  let day = "";
  let second = null;
  for (const point of placed.points) {
    const x = (point.place / placed.width) * room;
    if (point.second === second || x < free || x > room - 60) continue;
    second = point.second;
    const text = point.isEnd ? point.call.end : point.call.begin;
    const isNewDay = text.slice(0, 10) !== day;
    day = text.slice(0, 10);
    const tick = element("div", "tick", isNewDay ? text : clockOf(text));
    tick.style.left = x + "px";
    track.append(tick);
    free = x + (isNewDay ? 150 : 84);
  }
}

function drawPauses(track, placed) {
  for (const pause of placed.pauses) {
    const strip = element("div", "pause");
    strip.style.left = (100 * pause.from) / placed.width + "%";
    strip.style.width = (100 * (pause.to - pause.from)) / placed.width + "%";
    strip.title = pauseText(pause.silence);
    track.prepend(strip);
  }
}

function legend() {
  const kinds = [["--accent", t("call")], ["--fail", t("with errors")], ["--lost", t("did not return")]];
  byId("legend").replaceChildren(...kinds.map(([colour, text]) => {
    const box = element("i");
    box.style.background = `var(${colour})`;
    return element("span", "", box, text);
  }));
}

function drawTimeline() {
  byId("timeline").hidden = calls.length === 0;
  byId("timeline-title").textContent = t("Threads");
  byId("zoom-fit").textContent = t("Fit");
  byId("timeline-note").textContent =
    t("Within a second the bars follow the order of the lines; long silences (striped) are drawn short.");
  legend();
  const placed = placePoints();
  const threads = new Map();
  for (const call of calls)
    threads.set(call.thread, [...(threads.get(call.thread) || []), call]);
  const axisTrack = element("div", "track");
  const axis = element("div", "axis", element("div", "lane-name", t("Thread")), axisTrack);
  const inner = element("div", "lanes-inner", axis);
  for (const [thread, members] of threads) {
    const lane = makeLane(thread, members);
    drawPauses(lane.lastChild, placed);
    inner.append(lane);
  }
  byId("lanes").replaceChildren(inner);
  const setZoom = (wanted) => {
    const lanes = byId("lanes");
    const middle = (lanes.scrollLeft + lanes.clientWidth / 2) / inner.clientWidth;
    zoom = Math.min(400, Math.max(1, wanted));
    inner.style.setProperty("--zoom", zoom);
    lanes.scrollLeft = middle * inner.clientWidth - lanes.clientWidth / 2;
    drawAxis(axisTrack, placed);
  };
  byId("zoom-in").addEventListener("click", () => setZoom(zoom * 2));
  byId("zoom-out").addEventListener("click", () => setZoom(zoom / 2));
  byId("zoom-fit").addEventListener("click", () => setZoom(1));
  window.addEventListener("resize", () => drawAxis(axisTrack, placed));
  setZoom(Math.max(1, calls.length / 120));
}
