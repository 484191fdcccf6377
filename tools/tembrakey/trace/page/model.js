"use strict";
// The calls as the page works with them: flat, in the order of the log, each knowing the call around it.

const data = JSON.parse(document.getElementById("data").textContent);

function t(english, ...values) {
  const text = data.texts[english] || english;
  return text.replace(/\{(\d)\}/g, (hole, index) => values[index - 1] ?? hole);
}

const byId = (id) => document.getElementById(id);

function element(name, className, ...children) {
  const made = document.createElement(name);
  if (className) made.className = className;
  made.append(...children);
  return made;
}

const grouped = (number) => String(number).replace(/\B(?=(\d{3})+$)/g, "\u202f");
const secondOf = (text) => Date.parse(text.replace(" ", "T") + "Z") / 1000;
const clockOf = (text) => text.slice(11);

const calls = [];
const roots = [];

function plant(call, around, depth) {
  call.index = calls.length;
  call.around = around;
  call.depth = depth;
  call.from = secondOf(call.begin);
  call.to = secondOf(call.end);
  call.lost = call.entryLine && !call.exitLine;
  call.state = call.failed ? "fail" : call.lost ? "lost" : call.warnings ? "warn" : "";
  const texts = call.lines.map((line) => line.function + " " + line.message);
  call.hay = [call.entryPoint, call.thread, call.begin, ...texts].join("\n").toLowerCase();
  calls.push(call);
  for (const inner of call.calls) plant(inner, call, depth + 1);
}
for (const call of data.calls) {
  roots.push(call);
  plant(call, null, 0);
}

const nameOf = (call) => call.entryPoint || t("(inside a call that began before the log)");

function durationText(call) {
  if (call.durationSeconds !== null)
    return call.durationSeconds === 0 ? t("under 1 s") : t("about {1} s", call.durationSeconds);
  if (call.lost) return t("did not return");
  return call.exitLine ? t("began before the log") : "";
}

const firstError = (call) => call.lines.find((line) => line.level === "ERROR");

function pauseText(seconds) {
  if (seconds < 120) return t("{1} s", seconds);
  if (seconds < 7200) return t("{1} min", Math.round(seconds / 60));
  if (seconds < 172800) return t("{1} h", Math.round(seconds / 3600));
  return t("{1} days", Math.round(seconds / 86400));
}
