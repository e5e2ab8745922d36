// Tells Kestrio, on this computer and nobody else, which tabs are open: all of it, whenever something changed.
//
// The browser may end this script when nothing happens and start it anew with the next event; while Kestrio's native
// host is connected it lets it run. Nothing is kept: each message is made from what the browser says at that moment.

import { Pairs, backOff, messageOf } from "./tabs.js";

const browser = globalThis.browser ?? globalThis.chrome;

const host = "dev.haldorvinter.kestrio.tabs";
const types = ["normal", "popup", "app", "devtools"];

// Events come in bursts. What the person sees at once is told at once, the rest soon.
const atOnce = 5; // milliseconds
const soon = 60;
const settled = 200; // a window of the developer's tools is told as focused a moment after the event
const stableAfter = 10_000; // a connection that held so long was a good one

let port = null;
let failures = 0;
let lastTold = "";
let pairs = new Pairs();
let timer = null;
let isLooking = false;
let looksAgain = false;
let hadFocus = false;
let due = Infinity;

function connect() {
  if (port) return;
  const began = Date.now();
  const opened = browser.runtime.connectNative(host);
  port = opened;
  lastTold = "";
  opened.onDisconnect.addListener(() => {
    void browser.runtime.lastError; // read, or the browser shows it as a fault of ours
    port = null;
    failures = Date.now() - began > stableAfter ? 0 : failures + 1;
    setTimeout(connect, backOff(failures));
  });
  tellWithin(atOnce);
}

function tellWithin(milliseconds) {
  const at = Date.now() + milliseconds;
  if (at >= due) return;
  clearTimeout(timer);
  due = at;
  timer = setTimeout(tell, milliseconds);
}

async function allWindows() {
  const filters = [types, types.slice(0, 2)]; // Firefox knows fewer types, and refuses the rest
  for (const windowTypes of filters) {
    try {
      return await browser.windows.getAll({ populate: true, windowTypes });
    } catch {
      // the next one
    }
  }
  return [];
}

/** One look at a time: an answer that comes late must not be told after a newer one. */
async function tell() {
  due = Infinity;
  if (!port) return;
  if (isLooking) {
    looksAgain = true;
    return;
  }
  isLooking = true;
  try {
    post(messageOf(await allWindows(), pairs, Date.now()));
  } finally {
    isLooking = false;
    if (looksAgain) tellWithin(0);
    looksAgain = false;
  }
}

function post({ message, again }) {
  if (again !== undefined) tellWithin(again);
  // A focus that goes and comes back at once may be missed in between, and Chromium then tells nothing of its return.
  const hasFocus = message.windows.some((window) => window.focused);
  if (hadFocus && !hasFocus) setTimeout(tellWithin, settled, atOnce);
  hadFocus = hasFocus;
  const text = JSON.stringify(message);
  if (!port || text === lastTold) return;
  lastTold = text;
  try {
    port.postMessage(message);
  } catch {
    // It is closing; `onDisconnect` follows.
  }
}

function on(event, milliseconds, ...filter) {
  event?.addListener(() => {
    connect();
    tellWithin(milliseconds);
    if (filter.length > 0) setTimeout(tellWithin, settled, atOnce);
  }, ...filter);
}

/** Chromium tells of other windows than ordinary ones to who asks for them; Firefox refuses to be asked. */
function onWindows(event, milliseconds) {
  try {
    on(event, milliseconds, { windowTypes: types });
  } catch {
    on(event, milliseconds);
  }
}

on(browser.runtime.onInstalled, atOnce);
on(browser.runtime.onStartup, atOnce);
onWindows(browser.windows.onFocusChanged, atOnce);
onWindows(browser.windows.onCreated, atOnce);
onWindows(browser.windows.onRemoved, atOnce);
on(browser.windows.onBoundsChanged, soon); // Chromium alone has it
on(browser.tabs.onActivated, atOnce);
on(browser.tabs.onUpdated, soon);
on(browser.tabs.onRemoved, soon);
on(browser.tabs.onMoved, soon);
on(browser.tabs.onAttached, soon);
on(browser.tabs.onDetached, soon);
on(browser.tabs.onReplaced, soon);

connect();
