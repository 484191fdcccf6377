"use strict";
// The calls in the order of the log, flat, each with the call around it.

const data = JSON.parse(document.getElementById("data").textContent);

const fill = (text, values) => text.replace(/\{(\d)\}/g, (hole, index) => values[index - 1] ?? hole);
const t = (english, ...values) => fill(data.texts[english] || english, values);
const byId = (id) => document.getElementById(id);

function element(name, className, ...children) {
  const made = document.createElement(name);
  if (className) made.className = className;
  made.append(...children);
  return made;
}

function button(className, action, ...children) {
  const made = element("button", className, ...children);
  made.type = "button";
  made.addEventListener("click", action);
  return made;
}

const grouped = (number) => String(number).replace(/\B(?=(\d{3})+$)/g, "\u202f");
const secondOf = (text) => Date.parse(text.replace(" ", "T") + "Z") / 1000;
const clockOf = (text) => text.slice(11);

const calls = [];
const refused = new Set(data.summary.refusedPins);

function messageOf(line) {
  return line.code ? `${line.message} (${line.code.name}: ${line.code.meaning})` : line.message;
}

function plant(call, around, depth) {
  const lost = call.entryLine && !call.exitLine;
  const isRefused = call.lines.some((line) => refused.has(line.line));
  const texts = call.lines.map((line) => line.function + " " + messageOf(line));
  Object.assign(call, {
    index: calls.length, around, depth, from: secondOf(call.begin), to: secondOf(call.end),
    state: call.failed ? "fail" : isRefused ? "refused" : lost ? "lost" : call.warnings ? "warn" : "",
    text: [call.entryPoint, call.thread, call.begin, ...texts].join("\n").toLowerCase(),
  });
  call.isBad = ["fail", "refused", "lost"].includes(call.state);
  calls.push(call);
  for (const inner of call.calls) plant(inner, call, depth + 1);
}
for (const call of data.calls) plant(call, null, 0);

const rootOf = (call) => (call.around ? rootOf(call.around) : call);

function durationText(seconds) {
  return seconds === null ? "" : seconds === 0 ? t("under 1 s") : t("about {1} s", grouped(seconds));
}

function stateText(call) {
  if (call.state === "refused") return t("PIN probably refused");
  if (call.state === "lost") return t("did not return");
  return durationText(call.durationSeconds) || (call.exitLine ? t("began before the log") : "");
}

function previewOf(call) {
  const error = call.lines.find((line) => line.level === "ERROR" && !line.ordinary);
  const pairs = Object.entries(call.arguments).map(([name, value]) => `${name} ${value}`);
  return error ? messageOf(error) : pairs.join("   ") || (call.lines.length ? messageOf(call.lines[0]) : "");
}
