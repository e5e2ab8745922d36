// What the extension tells, without a browser: node --test Tests/Extension
import assert from "node:assert/strict";
import { test } from "node:test";
import { Pairs, backOff, cut, isPlaceholder, limits, messageOf } from "../../Extension/tabs.js";

const tab = (more) => ({ id: 1, url: "https://a.example/", title: "A", status: "complete", active: true, ...more });
const window = (more) => ({ id: 7, type: "normal", state: "normal", focused: true, left: 1, top: 2, width: 3, height: 4,
  tabs: [tab()], ...more });
const shown = (pair) => `${pair.url} ${pair.title}`;

test("a window is told with its tabs", () => {
  const { message, again } = messageOf([window({ tabs: [tab({ audible: true, mutedInfo: { muted: true } })] })], new Pairs(), 0);
  assert.deepEqual(message, { version: 1, windows: [{ id: 7, type: "normal", state: "normal", focused: true, left: 1,
    top: 2, width: 3, height: 4,
    tabs: [{ url: "https://a.example/", title: "A", active: true, audible: true, muted: true }] }] });
  assert.equal(again, undefined);
});

test("what a browser leaves out has plain values", () => {
  const { message } = messageOf([{ id: 1, tabs: [{ id: 2 }] }], new Pairs(), 0);
  assert.deepEqual(message.windows, [{ id: 1, type: "normal", state: "normal", focused: false, left: 0, top: 0, width: 0,
    height: 0, tabs: [{ url: "", title: "", active: false, audible: false, muted: false }] }]);
});

test("private windows and tabs are never told", () => {
  const { message } = messageOf([window({ incognito: true }), window({ tabs: [tab({ incognito: true })] })], new Pairs(), 0);
  assert.deepEqual(message.windows.map((each) => each.tabs), [[]]);
});

test("an address is never paired with the title of the page before", () => {
  const pairs = new Pairs();
  assert.equal(shown(pairs.pair(tab(), 0)), "https://a.example/ A");
  const b = { url: "https://b.example/" };
  assert.equal(shown(pairs.pair(tab({ ...b, status: "loading" }), 10)), "https://a.example/ A");
  assert.equal(shown(pairs.pair(tab({ ...b, title: "b.example", status: "loading" }), 20)), "https://a.example/ A");
  assert.equal(shown(pairs.pair(tab({ ...b, title: "B", status: "loading" }), 30)), "https://b.example/ B");
  assert.equal(shown(pairs.pair(tab({ ...b, title: "B2" }), 40)), "https://b.example/ B2");
});

test("a page that changes its address by itself is given time to change its title", () => {
  const pairs = new Pairs();
  pairs.pair(tab(), 0);
  const next = { url: "https://a.example/next" };
  const early = pairs.pair(tab(next), 100);
  assert.equal(shown(early), "https://a.example/ A");
  assert.equal(early.again, 1000);
  assert.equal(shown(pairs.pair(tab({ ...next, title: "Next" }), 300)), "https://a.example/next Next");
});

test("a page with the same title as the one before has it after a while", () => {
  const pairs = new Pairs();
  pairs.pair(tab(), 0);
  const next = tab({ url: "https://a.example/#part" });
  assert.equal(shown(pairs.pair(next, 0)), "https://a.example/ A");
  assert.equal(shown(pairs.pair(next, 999)), "https://a.example/ A");
  assert.equal(shown(pairs.pair(next, 1000)), "https://a.example/#part A");
});

test("a page that loads for long is told without a title", () => {
  const pairs = new Pairs();
  pairs.pair(tab(), 0);
  const slow = tab({ url: "https://slow.example/", status: "loading" });
  pairs.pair(slow, 0);
  assert.deepEqual(pairs.pair(slow, 2000), { url: "https://a.example/", title: "A", again: 1000 });
  assert.equal(shown(pairs.pair(slow, 3000)), "https://slow.example/ ");
  assert.equal(shown(pairs.pair({ ...slow, status: "complete" }, 4000)), "https://slow.example/ A");
});

test("two addresses in a row never get the first title", () => {
  const pairs = new Pairs();
  pairs.pair(tab(), 0);
  pairs.pair(tab({ url: "https://b.example/", status: "loading" }), 10);
  assert.equal(shown(pairs.pair(tab({ url: "https://c.example/", status: "loading" }), 20)), "https://a.example/ A");
  assert.equal(shown(pairs.pair(tab({ url: "https://c.example/", title: "C", status: "loading" }), 30)), "https://c.example/ C");
});

test("a new tab that still loads has no title yet", () => {
  const pairs = new Pairs();
  assert.equal(shown(pairs.pair(tab({ status: "loading", title: "New Tab" }), 0)), "https://a.example/ ");
  assert.equal(shown(pairs.pair(tab({ status: "loading" }), 10)), "https://a.example/ A");
});

test("a tab that is gone is forgotten", () => {
  const pairs = new Pairs();
  pairs.pair(tab(), 0);
  pairs.keepOnly(new Set());
  assert.equal(shown(pairs.pair(tab({ url: "https://b.example/", title: "B" }), 1)), "https://b.example/ B");
});

test("a title that is the address is none", () => {
  for (const [title, url, is] of [
    ["", "https://a.example/", true], ["a.example", "https://a.example/", true], ["a.example/x", "https://www.a.example/x?y", true],
    ["https://a.example/x", "https://a.example/x", true], ["127.0.0.1:8000/b", "http://127.0.0.1:8000/b", true],
    ["A", "https://a.example/", false], ["Example", "https://example.org/", false],
  ]) assert.equal(isPlaceholder(title, url), is, title);
});

test("texts are cut and never end in half a character", () => {
  assert.equal(cut("abc", 2), "ab");
  assert.equal(cut("a\u{1F642}", 2), "a");
  assert.equal(cut("\ud83da\ude42", 9), "a");
  assert.equal(cut("a\u{1F642}b", 9), "a\u{1F642}b");
});

test("a great many tabs are told in part, the active ones always", () => {
  const tabs = Array.from({ length: limits.tabs + 50 }, (_, id) => tab({ id, active: false, title: "" }));
  const { message } = messageOf([window({ tabs }), window({ id: 8, tabs: [tab({ id: -1 })] })], new Pairs(), 0);
  assert.deepEqual(message.windows.map((each) => each.tabs.length), [limits.tabs, 1]);
});

test("a message never gets too long", () => {
  const tabs = Array.from({ length: 1000 }, (_, id) => tab({ id, active: id === 3, title: "ü".repeat(1000) }));
  const { message } = messageOf([window({ tabs })], new Pairs(), 0);
  assert.ok(JSON.stringify(message).length < limits.message);
  assert.deepEqual(message.windows[0].tabs.map((each) => each.active), [true]);
});

test("a host that is not there is asked less and less often", () => {
  assert.deepEqual([0, 1, 2, 5, 6, 60].map(backOff), [1000, 2000, 4000, 32000, 60000, 60000]);
});
